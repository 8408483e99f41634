#include <shared/communication/protocols/ProtocolMessageInterface.h>
#include <shared/synchronization/ScopedLock.h>

namespace Shared::Communication::Protocols {

using Synchronization::ScopedLock;

ProtocolMessageInterface::ProtocolMessageInterface(
    const QString &id, const std::shared_ptr<ProtocolHeaderInterface> &requestHeader,
    const std::shared_ptr<ProtocolHeaderInterface> &responseHeader,
    const std::shared_ptr<Connections::Connection> &connection)
    : messageId(id)
    , currentRequestHeader(requestHeader)
    , currentResponseHeader(responseHeader)
    , messageConnection(connection)
{
    // For queued signals of the messages that derive.
    qRegisterMetaType<ResponseStatus>(
        "Shared::Communication::Protocols::ProtocolMessageInterface::ResponseStatus");
}

ProtocolMessageInterface::~ProtocolMessageInterface() = default;

QString ProtocolMessageInterface::getId() const
{
    return messageId;
}

std::shared_ptr<Connections::Connection> ProtocolMessageInterface::getConnection() const
{
    return messageConnection;
}

std::shared_ptr<ProtocolHeaderInterface> ProtocolMessageInterface::getRequestHeader() const
{
    const ScopedLock lock(this);
    return currentRequestHeader;
}

std::shared_ptr<ProtocolHeaderInterface> ProtocolMessageInterface::getResponseHeader() const
{
    const ScopedLock lock(this);
    return currentResponseHeader;
}

bool ProtocolMessageInterface::setRequestHeader(const std::shared_ptr<ProtocolHeaderInterface> &header)
{
    return replace(currentRequestHeader, header);
}

bool ProtocolMessageInterface::setResponseHeader(const std::shared_ptr<ProtocolHeaderInterface> &header)
{
    return replace(currentResponseHeader, header);
}

bool ProtocolMessageInterface::replace(std::shared_ptr<ProtocolHeaderInterface> &header,
                                       const std::shared_ptr<ProtocolHeaderInterface> &next)
{
    if (!next)
        return false;
    const ScopedLock lock(this);
    header = next;
    return true;
}

std::shared_ptr<ProtocolMessageTrackingInterface> ProtocolMessageInterface::getTracking() const
{
    const ScopedLock lock(this);
    return currentTracking;
}

void ProtocolMessageInterface::setTracking(const std::shared_ptr<ProtocolMessageTrackingInterface> &tracking)
{
    const ScopedLock lock(this);
    currentTracking = tracking;
}

bool ProtocolMessageInterface::canProcessRequest() const
{
    const auto current = getTracking();
    return !current || current->canProcessRequest();
}

bool ProtocolMessageInterface::trackRequest()
{
    const auto current = getTracking();
    if (current)
        current->trackRequest();
    return current != nullptr;
}

bool ProtocolMessageInterface::trackResponse()
{
    const auto current = getTracking();
    if (current)
        current->trackResponse();
    return current != nullptr;
}

} // namespace Shared::Communication::Protocols
