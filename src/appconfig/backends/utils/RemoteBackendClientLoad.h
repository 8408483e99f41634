#pragma once

#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/backends/utils/RemoteBackendClient.h>

#include <QUrl>

#include <memory>

namespace Tessellum::AppConfig::Backends::utils {

class RemoteBackendClientInitializationSynchronizer;

/*!
 * The wait of a backend's load for the subtree. From the answer on, the frames behind it wait until this
 * object goes, which is to be when the attributes of the load stand: a change or an end of one of them would
 * miss it before.
 *
 * For one thread of the repository's pool, whose place is lent for the time of the wait, or any other but the
 * event thread.
 */
class RemoteBackendClientLoad
{
public:
    explicit RemoteBackendClientLoad(const RemoteBackendClientPtr &client);
    ~RemoteBackendClientLoad();
    Q_DISABLE_COPY_MOVE(RemoteBackendClientLoad)

    /*! Connects and appends the mirror attributes of the subtree of \a url to \a out. Ends by the answer, a
     * failed connection, the URL's "timeout" (milliseconds), a "connect" to the control attribute, or the
     * stop of the repository, and at once where the URL has no path. Without an answer in time \a out stays
     * as it is, and a later one makes the attributes. */
    void run(const QUrl &url, Attributes::AttributesCreateData &out);

private:
    const RemoteBackendClientPtr client;
    const std::shared_ptr<RemoteBackendClientInitializationSynchronizer> synchronizer;
};

} // namespace Tessellum::AppConfig::Backends::utils
