#include "SupplyMessage.h"

#include <shared/communication/protocols/ProtocolMessageFactory.h>

using namespace Shared::Communication::Protocols;
using Shared::Communication::Connections::Connection;

namespace {

/*! Lets a request go out when the last one has been answered. */
class OneAtATime : public ProtocolMessageTrackingInterface
{
public:
    void trackRequest() override { isWaiting = true; }
    void trackResponse() override { isWaiting = false; }
    bool canProcessRequest() const override { return !isWaiting; }

private:
    bool isWaiting = false;
};

} // namespace

SupplyMessage::SupplyMessage(const QString &name, const std::shared_ptr<SupplyHeader> &requestHeader,
                             const std::shared_ptr<SupplyHeader> &responseHeader,
                             const std::shared_ptr<Connection> &connection)
    : ProtocolMessageInterface(name, requestHeader, responseHeader, connection)
{
    setTracking(std::make_shared<OneAtATime>());
}

bool SupplyMessage::request(const QByteArray &payload)
{
    const auto header = std::dynamic_pointer_cast<SupplyHeader>(getRequestHeader());
    if (!header || !canProcessRequest())
        return false;
    SupplyFrame frame{*header, payload};
    frame.header.number = ++number;
    return getConnection()->onDataSend(frame.toBytes()) && trackRequest();
}

void SupplyMessage::take(const SupplyFrame &response)
{
    const auto expected = std::dynamic_pointer_cast<SupplyHeader>(getResponseHeader());
    if (canProcessRequest() || !expected || response.header.direction != expected->direction
        || response.header.number != number)
        return;
    finish(response.header.status == Done ? ResponseStatus::Ok : ResponseStatus::Refused, response.payload);
}

void SupplyMessage::abandon(ResponseStatus reason)
{
    if (!canProcessRequest())
        finish(reason, {});
}

void SupplyMessage::finish(ResponseStatus status, const QByteArray &payload)
{
    trackResponse();
    Q_EMIT answered(status, payload);
}

const QStringList &SupplyMessage::Names()
{
    static const QStringList names{QStringLiteral("identify"), QStringLiteral("read"), QStringLiteral("set")};
    return names;
}

void SupplyMessage::RegisterAll()
{
    auto *const factory = ProtocolMessageFactory::getInstance();
    unsigned char id = Identify;
    for (const QString &name : Names()) {
        factory->ProtocolMessageNameFactory::registerProduct(id, [name] { return name; });
        for (const auto direction : {ProtocolDirection::Request, ProtocolDirection::Response}) {
            factory->ProtocolHeaderFactory::registerProduct(
                {id, direction}, [id, direction] { return std::make_shared<SupplyHeader>(id, direction); });
        }
        factory->ProtocolMessageObjectFactory::registerProduct(
            id,
            [name](const std::shared_ptr<ProtocolHeaderInterface> &requestHeader,
                   const std::shared_ptr<ProtocolHeaderInterface> &responseHeader,
                   const std::shared_ptr<Connection> &connection) {
                return std::make_shared<SupplyMessage>(
                    name, std::dynamic_pointer_cast<SupplyHeader>(requestHeader),
                    std::dynamic_pointer_cast<SupplyHeader>(responseHeader), connection);
            });
        ++id;
    }
}
