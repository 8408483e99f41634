#pragma once

#include <appconfig/backends/Backend.h>

#include <QUrl>

namespace Tessellum::AppConfig::Backends {

namespace utils {
class RemoteBackendServer;
}

/*!
 * Offers the subtrees of this process to others over web sockets.
 *
 * As "remote-backend-server" its data is a URL whose port is listened at (0 takes a free one), at all
 * addresses unless it carries bind=ADDRESS; limit=BYTES bounds what a peer may send in one message. A port
 * that is taken is a WARNING, and the node stays.
 *
 * The node's lock guards the pointer to the server. Any thread but the event thread may load.
 */
class RemoteBackend : public Backend
{
    Q_OBJECT
public:
    using Backend::Backend;

    static QStringList TypeKeys();
    QStringList getTypeKeys() const override;
    /*! False: there is nothing to save to. */
    bool saveAttributes() override;
    /*! By the end of the type, in any case of letters; false where the data holds no usable URL. */
    bool loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                          const Notification::CreatePoint &waitPoint) override;

private:
    bool loadAttributesServerInternal(const QVariant &data);
    /*! Puts \a next in the place of what was there, which ends with no lock held. */
    void replaceServer(std::shared_ptr<utils::RemoteBackendServer> next);

    std::shared_ptr<utils::RemoteBackendServer> server;
};

} // namespace Tessellum::AppConfig::Backends
