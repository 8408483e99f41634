#pragma once

#include "SupplyFrame.h"

#include <shared/communication/protocols/ProtocolMessageInterface.h>

/*! The messages of a power supply. */
enum SupplyMessageId : unsigned char {
    Identify = 1, ///< the response is a text
    Read = 2, ///< the response is a Quantities::Reading
    Set = 3, ///< the request is a Quantities::Setting
};

/*! A message to a supply on one connection; one request at a time. For the connection's thread. */
class SupplyMessage : public Shared::Communication::Protocols::ProtocolMessageInterface
{
    Q_OBJECT

public:
    SupplyMessage(const QString &name, const std::shared_ptr<SupplyHeader> &requestHeader,
                  const std::shared_ptr<SupplyHeader> &responseHeader,
                  const std::shared_ptr<Shared::Communication::Connections::Connection> &connection);

    /*! Sends a request; false where the connection takes none, or the last one still waits for its answer. */
    bool request(const QByteArray &payload);
    /*! Takes the answer to the last request; one to an earlier request is passed over. */
    void take(const SupplyFrame &response);
    /*! Gives up waiting for an answer. */
    void abandon(ResponseStatus reason);

    /*! Tells the message factory of all messages of a supply. */
    static void RegisterAll();
    static const QStringList &Names();

Q_SIGNALS:
    void answered(Shared::Communication::Protocols::ProtocolMessageInterface::ResponseStatus status,
                  const QByteArray &payload);

private:
    void finish(ResponseStatus status, const QByteArray &payload);

    quint16 number = 0; // of the last request
};
