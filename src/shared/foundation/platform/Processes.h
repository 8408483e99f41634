#pragma once

#include <QByteArray>
#include <QPair>
#include <QSet>

namespace Shared::Foundation::Platform {

/*! Whether a process has this number. A thread's number is none, and neither is that of a process that has
 * ended and waits for its parent. */
bool IsProcessRunning(int processId);

/*! Ends the process at once. False: it could not be sent the signal. */
bool KillProcess(int processId);

/*! The file that the process runs, as the system names it; empty where that may not be read. The system puts
 * " (deleted)" behind a file that has gone or was replaced. */
QByteArray ProcessFile(int processId);

/*! What tells a file from all others, whatever it is called: its device and number. */
using FileIdentity = QPair<quint64, quint64>;

/*! Of a file that cannot be looked at: zeros. */
FileIdentity IdentityOfFile(const QByteArray &path);

/*! The files of the folder, which is named by its canonical path, that any process has open. Of processes
 * that may not be looked into nothing is known. */
QSet<FileIdentity> OpenFiles(const QByteArray &folder);

} // namespace Shared::Foundation::Platform
