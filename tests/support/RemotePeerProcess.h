#pragma once

#include <QProcess>

namespace TestSupport {

/*! A RemotePeer; it ends with this at the latest. */
class RemotePeerProcess
{
public:
    static constexpr int Patience = 60000;

    explicit RemotePeerProcess(const QStringList &arguments)
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(REMOTE_PEER), arguments);
    }
    ~RemotePeerProcess() { kill(); }
    Q_DISABLE_COPY_MOVE(RemotePeerProcess)

    QByteArray readLine()
    {
        while (!process.canReadLine() && process.waitForReadyRead(Patience)) { }
        return process.readLine().trimmed();
    }
    void kill()
    {
        process.kill();
        process.waitForFinished();
    }
    int finish()
    {
        process.closeWriteChannel();
        return process.waitForFinished(Patience) ? process.exitCode() : -1;
    }
    qint64 processId() const { return process.processId(); }

private:
    QProcess process;
};

} // namespace TestSupport
