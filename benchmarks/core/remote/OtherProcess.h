#pragma once

#include <QProcess>

#include <chrono>

/*! Nanoseconds of a clock that all processes of the machine share. */
inline qint64 monotonicTime()
{
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/*!
 * A RemoteBenchmarkPeer, which tells numbers of eight bytes: one when it is ready, then what its role says.
 * It ends with this. For the main thread.
 */
class OtherProcess
{
public:
    /*! Returns when it is ready; ends the program if that takes too long, as do the reads. */
    explicit OtherProcess(const QStringList &arguments);
    ~OtherProcess();
    Q_DISABLE_COPY_MOVE(OtherProcess)

    /*! The next number. */
    qint64 read();
    /*! The same; the events of this thread go on. */
    qint64 readWithEvents();

private:
    qint64 take();

    QProcess process;
};
