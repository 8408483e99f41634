#pragma once

#include <QString>

namespace Tessellum::Tool {

/*! Where values come from: a JSON file, or a running process with the URL of its server. */
struct ValueSource
{
    QString text; ///< the file, or ws://HOST:PORT/?path=...
    qint64 timeoutMs
        = -1; ///< how long a process may take to answer; less than 0: what the URL or default says

    bool isProcess() const;
};

/*! The backend that holds the values of an open source. */
QString BackendName();
/*! A path or pattern of a source in the running library, and the other way round. */
QString LocalPath(const QString &path);
QString SourcePath(const QString &localPath);

/*! Loads a file into the running library; what is missing is empty if it may be. Fails the command if it
 * cannot be read. */
void OpenFile(const ValueSource &source, bool mayBeMissing = false);

/*!
 * Mirrors the subtree of a process in the running library, as backend \a name, until the library stops; the
 * path of the attribute that shows the connection's status. Fails the command if nobody answers in time.
 */
QString OpenProcess(const ValueSource &source, const QString &name = BackendName());
/*! The time that OpenProcess() gives. */
qint64 TimeoutOf(const ValueSource &source);

} // namespace Tessellum::Tool
