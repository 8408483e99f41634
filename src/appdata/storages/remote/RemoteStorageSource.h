#pragma once

#include <appdata/storages/remote/RemoteStorageConnection.h>
#include <appdata/storages/remote/RemoteStorageNode.h>

#include <functional>
#include <memory>

namespace Tessellum::AppData::Storages::utils {

/*! The answer to "init". */
struct RemoteStorageAnswer
{
    std::weak_ptr<Storage> storage;
    bool isBinary = false; /*!< The mode in which the peer is to go on. */
    RemoteStorageFrame frame; /*!< Empty where the contents are too large to send. */
};

/*! A change in the modes in which it is sent; all peers share the frames. */
struct RemoteStoragePush
{
    QString text;
    QByteArray binary;

    /*! The frame for a peer; the text where binary JSON cannot hold the message. */
    RemoteStorageFrame frameFor(bool isBinary) const;
};

/*!
 * What a server tells its peers, without a network. Any thread may call, and no lock may be held: storages
 * are foreign code. It keeps nothing.
 */
namespace RemoteStorageSource {

/*! Reads the storage that \a request names from its medium and leaves its entries unattached. Without an
 * option in the request, the peer goes on in its mode, \a isBinary. Nothing for an unknown storage. */
std::optional<RemoteStorageAnswer> MakeAnswer(const RemoteStorageMessage &request, bool isBinary);

using Payload = std::function<QVariant(RemoteStorageMode)>;

/*! The message in the modes that are needed. */
RemoteStoragePush MakePush(RemoteStorageCommand command, const QString &path, const Payload &payload,
                           bool needsText, bool needsBinary);

} // namespace RemoteStorageSource

} // namespace Tessellum::AppData::Storages::utils
