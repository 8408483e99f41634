#include "Supply.h"

#include <QEventLoop>
#include <QTimer>

using Shared::Communication::Protocols::ProtocolVersion;

Supply::Supply(const std::shared_ptr<Connection> &deviceConnection, bool cutsAndJoins)
    : connection(deviceConnection)
    , isStream(cutsAndJoins)
    , protocol(ProtocolVersion{1, 0})
{
    protocol.registerProtocolMessages(SupplyMessage::Names());
    connect(connection.get(), &Connection::dataReceived, this, &Supply::take);
    connect(connection.get(), &Connection::connectionClosed, this,
            [this] { abandonAll(Status::Disconnected); });
}

bool Supply::connectToDevice(const QString &name)
{
    QEventLoop loop;
    bool isTold = false; // over UDP, or by a refusal of this machine, before the loop runs
    const auto end = [&] {
        isTold = true;
        loop.quit();
    };
    connect(connection.get(), &Connection::connectionEstablished, &loop, end);
    connect(connection.get(), &Connection::connectionFailed, &loop, end);
    if (connection->open() && !isTold)
        loop.exec();
    return connection->isConnected() && protocol.installProtocol(name, connection);
}

Supply::Answer Supply::ask(SupplyMessageId id, const QByteArray &payload, int patienceMs)
{
    const auto asked = message(id);
    Answer answer;
    if (!asked || !asked->request(payload))
        return answer;
    QEventLoop loop;
    connect(asked.get(), &SupplyMessage::answered, &loop, [&](Status status, const QByteArray &content) {
        answer = {status, content};
        loop.quit();
    });
    QTimer::singleShot(patienceMs, &loop, [&asked] { asked->abandon(Status::TimedOut); });
    loop.exec();
    return answer;
}

bool Supply::close(const QString &reason)
{
    return connection->close(reason);
}

std::shared_ptr<SupplyMessage> Supply::message(unsigned char id) const
{
    return std::dynamic_pointer_cast<SupplyMessage>(protocol.getInstalledMessageById(id));
}

void Supply::take(const QByteArray &data)
{
    if (!isStream) {
        FrameReader single;
        const auto frames = single.take(data);
        if (!single.isDamaged() && !single.isWithinFrame())
            deliver(frames);
        return;
    }
    deliver(reader.take(data));
    if (!reader.isDamaged())
        return;
    abandonAll(Status::Malformed);
    close(QStringLiteral("the device sent what is no message"));
}

void Supply::deliver(const QVector<SupplyFrame> &frames) const
{
    for (const SupplyFrame &frame : frames) {
        if (const auto asked = message(frame.header.id))
            asked->take(frame);
    }
}

void Supply::abandonAll(Status reason) const
{
    for (const unsigned char id : protocol.getInstalledMessageIds()) {
        if (const auto asked = message(id))
            asked->abandon(reason);
    }
}
