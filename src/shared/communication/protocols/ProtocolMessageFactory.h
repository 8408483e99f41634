#pragma once

#include <shared/communication/protocols/ProtocolDirection.h>
#include <shared/communication/protocols/ProtocolMessageInterface.h>
#include <shared/synchronization/Factory.h>
#include <shared/synchronization/Singleton.h>

#include <QPair>

namespace Shared::Communication::Protocols {

/*! Makes the header of a message id, for one direction. */
using ProtocolHeaderFactory = Factory<ProtocolHeaderInterface, QPair<unsigned char, ProtocolDirection>>;
/*! Makes the message of an id from its request header, its response header and a connection. */
using ProtocolMessageObjectFactory
    = Factory<ProtocolMessageInterface, unsigned char, std::shared_ptr<ProtocolMessageInterface>,
              std::function<std::shared_ptr<ProtocolMessageInterface>(
                  const std::shared_ptr<ProtocolHeaderInterface> &requestHeader,
                  const std::shared_ptr<ProtocolHeaderInterface> &responseHeader,
                  const std::shared_ptr<Connections::Connection> &connection)>>;
/*! Gives the name of a message id. */
using ProtocolMessageNameFactory = Factory<QString, unsigned char, QString, std::function<QString()>>;

/*!
 * All messages that the protocols of this process know, by their ids. The three tables have functions of the
 * same names, so a call names the table: factory->ProtocolMessageNameFactory::registerProduct(id, name).
 *
 * Threads: any. Creators run on the caller's thread, with no lock held.
 */
class TESSELLUM_EXPORT ProtocolMessageFactory : public Singleton<ProtocolMessageFactory>,
                                                public ProtocolHeaderFactory,
                                                public ProtocolMessageObjectFactory,
                                                public ProtocolMessageNameFactory
{
    friend class Singleton<ProtocolMessageFactory>;

public:
    /*! Makes a message with its headers; a header that nobody registered is empty. Empty where nobody
     * registered the message. */
    std::shared_ptr<ProtocolMessageInterface>
    createMessage(unsigned char id, const std::shared_ptr<Connections::Connection> &connection) const;
    /*! Empty where nobody registered one. */
    std::shared_ptr<ProtocolHeaderInterface> createHeader(unsigned char id,
                                                          ProtocolDirection direction) const;
    /*! Empty where nobody registered one. */
    QString getMessageName(unsigned char id) const;

private:
    ProtocolMessageFactory();
    ~ProtocolMessageFactory() override;
};

} // namespace Shared::Communication::Protocols
