#pragma once

#include <QDir>
#include <QFile>

namespace TestSupport {

/*! What a process has in memory; 0 where there is none. */
inline qint64 ResidentBytes(qint64 processId)
{
    QFile file(QStringLiteral("/proc/%1/statm").arg(processId));
    constexpr qint64 page = 4096;
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() * page : 0;
}

inline int ThreadCount(qint64 processId)
{
    return QDir(QStringLiteral("/proc/%1/task").arg(processId))
        .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
        .size();
}

} // namespace TestSupport
