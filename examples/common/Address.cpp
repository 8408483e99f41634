#include "Address.h"

#include <QUrlQuery>

std::optional<Address> Address::Parse(const QString &text)
{
    const QUrl url(QStringLiteral("ws://") + text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() || url.port() < 0 || url.authority() != text)
        return std::nullopt;
    return Address{url.host(), url.port()};
}

QString Address::toString() const
{
    return toUrl({}).authority();
}

QUrl Address::toUrl(const QVector<QPair<QString, QString>> &items) const
{
    QUrl url;
    url.setScheme(QStringLiteral("ws"));
    url.setHost(host);
    url.setPort(port);
    QUrlQuery query;
    for (const auto &[key, value] : items)
        query.addQueryItem(key, value);
    if (!items.isEmpty())
        url.setQuery(query);
    return url;
}
