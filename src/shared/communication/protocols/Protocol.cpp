#include <shared/communication/protocols/Protocol.h>
#include <shared/communication/protocols/ProtocolMessageFactory.h>
#include <shared/logging/FrameworkLog.h>

namespace Shared::Communication::Protocols {

using Logging::FrameworkLog;

Protocol::Protocol(const ProtocolVersion &version, QObject *parent)
    : QObject(parent)
    , protocolVersion(version)
{ }

Protocol::~Protocol() = default;

QStringList Protocol::getProtocolMessages() const
{
    return messageNames;
}

int Protocol::registerProtocolMessages(const QStringList &names)
{
    const int before = messageNames.size();
    for (const QString &name : names) {
        if (!messageNames.contains(name))
            messageNames.append(name);
    }
    return messageNames.size() - before;
}

int Protocol::unregisterProtocolMessages(const QStringList &names)
{
    int gone = 0;
    for (const QString &name : names)
        gone += messageNames.removeAll(name);
    return gone;
}

bool Protocol::installProtocol(const QString &context,
                               const std::shared_ptr<Connections::Connection> &connection)
{
    if (!protocolContext.isEmpty()) {
        FrameworkLog().critical() << "Protocol::installProtocol() protocol installation failed for context="
                                  << context << " already installed for context=" << protocolContext;
        return false;
    }
    if (!connection || !connection->isValid()) {
        FrameworkLog().critical()
            << "Protocol::installProtocol() failed to install protocol for invalid connection";
        return false;
    }
    const auto *const factory = ProtocolMessageFactory::getInstance();
    if (!factory) {
        FrameworkLog().critical()
            << "Protocol::installProtocol() protocol installation failed, missing message factory";
        return false;
    }
    const auto ids = factory->ProtocolMessageNameFactory::getRegisteredProductIdentifier();
    for (const unsigned char id : ids) {
        if (!messageNames.contains(factory->getMessageName(id)))
            continue;
        const auto message = factory->createMessage(id, connection);
        if (message) {
            installed.insert(id, message);
        } else {
            FrameworkLog().critical()
                << "Protocol::installProtocol() failed to retrieve protocol message for id=" << int(id);
        }
    }
    protocolContext = context;
    return true;
}

ProtocolVersion Protocol::getProtocolVersion() const
{
    return protocolVersion;
}

std::shared_ptr<ProtocolMessageInterface> Protocol::getInstalledMessageById(unsigned char id) const
{
    return installed.value(id);
}

QList<unsigned char> Protocol::getInstalledMessageIds() const
{
    return installed.keys();
}

QString Protocol::getProtocolContext() const
{
    return protocolContext;
}

} // namespace Shared::Communication::Protocols
