#pragma once

#include <appconfig/utils/ShownAttribute.h>

#include <QElapsedTimer>
#include <QList>
#include <QPointer>
#include <QString>
#include <QWebSocket>

#include <memory>
#include <variant>

namespace Tessellum::AppData::Storages {
class Storage;
}

namespace Tessellum::AppData::Storages::utils {

/*! A frame as it is sent. */
using RemoteStorageFrame = std::variant<QString, QByteArray>;

/*! The bytes that the contents take in memory. */
inline qint64 SizeOf(const RemoteStorageFrame &frame)
{
    if (const auto *text = std::get_if<QString>(&frame))
        return text->size() * qint64(sizeof(QChar));
    return std::get<QByteArray>(frame).size();
}

/*! What a waiting frame takes beside its bytes. */
inline constexpr qint64 FrameOverhead = 256;

/*! What becomes of a message to a peer. */
enum class RemoteStorageDelivery { Send, Drop, Close };

/*! Nothing is queued for a peer: it may have 2 MiB on their way, and is closed if none of them has been
 * written for more than two seconds. \a elapsed: milliseconds since the first send after the last written
 * bytes, negative where there was none. */
constexpr RemoteStorageDelivery JudgeDelivery(qint64 elapsed, qint64 bytesInFlight)
{
    constexpr qint64 patience = 2000;
    constexpr qint64 mostBytesInFlight = 0x200000;
    if (elapsed > patience)
        return RemoteStorageDelivery::Close;
    return bytesInFlight <= mostBytesInFlight ? RemoteStorageDelivery::Send : RemoteStorageDelivery::Drop;
}

/*! One peer of a server. */
struct RemoteStorageConnection
{
    QPointer<QWebSocket> socket; /*!< For the event thread alone. */
    std::weak_ptr<Storage> storage; /*!< What it asked for; a shared one would keep its own server alive. */
    QElapsedTimer elapsedTimer;
    qint64 bytesInFlight = 0; /*!< Negative only while a message is being sent. */
    QString clientId;
    bool supportsBinaryData = false;

    QString address; /*!< Of the peer. */
    bool isSending = false;
    bool toldOfDrops = false;
    int answers = 0; /*!< That are being rendered. */
    QList<RemoteStorageFrame> held; /*!< What came meanwhile, which the answer must not overtake. */
    qint64 heldBytes = 0;
    std::shared_ptr<AppConfig::utils::ShownAttribute> status; /*!< Null without an id that can be shown. */
};

} // namespace Tessellum::AppData::Storages::utils
