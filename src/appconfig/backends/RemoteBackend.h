#pragma once

#include <appconfig/backends/Backend.h>

#include <QUrl>

namespace Tessellum::AppConfig::Backends {

namespace utils {
class RemoteBackendClient;
class RemoteBackendClientLoad;
class RemoteBackendServer;
} // namespace utils

/*!
 * Offers the subtrees of this process to others over web sockets, or mirrors one of another process.
 *
 * As "remote-backend-server" its data is a URL whose port is listened at (0 takes a free one), at all
 * addresses unless it carries bind=ADDRESS; limit=BYTES bounds what a peer may send in one message. A port
 * that is taken is a WARNING, and the node stays.
 *
 * As "remote-backend-client" its data is the server's URL with the items path (of the subtree, whose
 * attributes appear beneath this node), id (names the client's control and status), timeout (milliseconds for
 * which the load waits for the subtree, without a limit if left out) and limit.
 *
 * The node's lock guards the pointers. Any thread but the event thread may load, one at a time.
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
    /*! Waits for the mirror attributes, whatever \a waitPoint, since the changes behind them build on them.
     */
    bool loadAttributes(Notification::ThreadPool &pool, const Notification::CreatePoint &waitPoint) override;
    /*! By the end of the type, in any case of letters; false where the data holds no usable URL. */
    bool loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                          const Notification::CreatePoint &waitPoint) override;

private:
    bool loadAttributesServerInternal(const QVariant &data);
    bool loadAttributesClientInternal(const QVariant &data, Attributes::AttributesCreateData &out);
    /*! Puts \a next in the place of \a held; what was there ends with no lock held. */
    template <class T>
    void replace(std::shared_ptr<T> &held, std::shared_ptr<T> next);

    std::shared_ptr<utils::RemoteBackendServer> server;
    std::shared_ptr<utils::RemoteBackendClient> client;
    std::shared_ptr<utils::RemoteBackendClientLoad> load; // while a load runs
};

} // namespace Tessellum::AppConfig::Backends
