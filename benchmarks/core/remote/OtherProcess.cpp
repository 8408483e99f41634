#include "OtherProcess.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

namespace {

constexpr int patience = 120000; // milliseconds

} // namespace

OtherProcess::OtherProcess(const QStringList &arguments)
{
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QStringLiteral(REMOTE_BENCHMARK_PEER), arguments);
    readWithEvents();
}

OtherProcess::~OtherProcess()
{
    process.closeWriteChannel();
    if (!process.waitForFinished(patience))
        process.kill();
}

qint64 OtherProcess::read()
{
    while (process.bytesAvailable() < qint64(sizeof(qint64))) {
        if (!process.waitForReadyRead(patience))
            qFatal("the other process tells nothing");
    }
    return take();
}

qint64 OtherProcess::readWithEvents()
{
    QElapsedTimer since;
    since.start();
    QTimer wake;
    wake.start(1000);
    while (process.bytesAvailable() < qint64(sizeof(qint64))) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (since.hasExpired(patience) || process.state() == QProcess::NotRunning)
            qFatal("the other process tells nothing");
    }
    return take();
}

qint64 OtherProcess::take()
{
    qint64 number = 0;
    process.read(reinterpret_cast<char *>(&number), sizeof number);
    return number;
}
