#pragma once

#include "FrameReader.h"
#include "SupplyMessage.h"

#include <shared/communication/protocols/Protocol.h>

/*!
 * A power supply at the other end of a connection, which is spoken to by request and answer. For one thread;
 * while it waits the event loop runs.
 */
class Supply : public QObject
{
    Q_OBJECT

public:
    using Connection = Shared::Communication::Connections::Connection;
    using Status = SupplyMessage::ResponseStatus;

    struct Answer
    {
        Status status = Status::Disconnected;
        QByteArray payload;
    };

    /*! \a isStream: whether messages may come cut and joined, as over TCP; otherwise a block is one message.
     */
    Supply(const std::shared_ptr<Connection> &connection, bool isStream);

    /*! Connects and installs the messages under \a name. */
    bool connectToDevice(const QString &name);
    /*! Asks and waits for the answer, at most \a patienceMs. */
    Answer ask(SupplyMessageId id, const QByteArray &payload, int patienceMs);
    bool close(const QString &reason);

    /*! How many messages are installed. */
    int messageCount() const { return protocol.getInstalledMessageIds().size(); }

private:
    std::shared_ptr<SupplyMessage> message(unsigned char id) const;
    void take(const QByteArray &data);
    void deliver(const QVector<SupplyFrame> &frames) const;
    void abandonAll(Status reason) const;

    const std::shared_ptr<Connection> connection;
    const bool isStream;
    Shared::Communication::Protocols::Protocol protocol;
    FrameReader reader; // of a stream
};
