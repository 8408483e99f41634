#include <shared/communication/protocols/ProtocolMessageFactory.h>

namespace Shared::Communication::Protocols {

ProtocolMessageFactory::ProtocolMessageFactory() = default;
ProtocolMessageFactory::~ProtocolMessageFactory() = default;

std::shared_ptr<ProtocolMessageInterface>
ProtocolMessageFactory::createMessage(unsigned char id,
                                      const std::shared_ptr<Connections::Connection> &connection) const
{
    const auto create = ProtocolMessageObjectFactory::getCreator(id);
    return create ? create(createHeader(id, ProtocolDirection::Request),
                           createHeader(id, ProtocolDirection::Response), connection)
                  : nullptr;
}

std::shared_ptr<ProtocolHeaderInterface>
ProtocolMessageFactory::createHeader(unsigned char id, ProtocolDirection direction) const
{
    const auto create = ProtocolHeaderFactory::getCreator({id, direction});
    return create ? create() : nullptr;
}

QString ProtocolMessageFactory::getMessageName(unsigned char id) const
{
    const auto name = ProtocolMessageNameFactory::getCreator(id);
    return name ? name() : QString();
}

} // namespace Shared::Communication::Protocols
