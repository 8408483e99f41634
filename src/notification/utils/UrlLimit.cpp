#include <notification/utils/UrlLimit.h>

#include <QUrl>
#include <QUrlQuery>
#include <QWebSocket>

#include <algorithm>

namespace Tessellum::Notification::utils {

std::optional<qint64> ReadUrlLimit(const QUrl &url, qint64 preset)
{
    const QUrlQuery query(url);
    const QString key = QStringLiteral("limit");
    if (!query.hasQueryItem(key))
        return preset;
    bool isNumber = false;
    const qint64 limit = query.queryItemValue(key, QUrl::FullyDecoded).toLongLong(&isNumber);
    if (!isNumber || limit <= 0)
        return std::nullopt;
    return std::min(limit, static_cast<qint64>(QWebSocket::maxIncomingMessageSize()));
}

} // namespace Tessellum::Notification::utils
