#pragma once

#include <QFile>
#include <QTemporaryDir>

namespace TestSupport {

// A folder for the files of a test.
class Files : public QTemporaryDir
{
public:
    // Writes a file and returns its path; without a name under one of its own.
    QString write(const QByteArray &content, const QString &name = QString())
    {
        QFile file(filePath(name.isEmpty() ? QString::number(++count) : name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write the test's file");
        return file.fileName();
    }
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

private:
    int count = 0;
};

} // namespace TestSupport
