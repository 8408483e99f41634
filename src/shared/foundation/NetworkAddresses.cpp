#include <shared/foundation/NetworkAddresses.h>

#include <QHostAddress>
#include <QStringList>

namespace Shared {

unsigned int ConvertIPStringToIP(const QString &text)
{
    QStringList parts = text.split(QLatin1Char('.'));
    for (QString &part : parts)
        part = QString::number(part.toInt());
    return QHostAddress(parts.join(QLatin1Char('.'))).toIPv4Address();
}

QString ConvertIPToIPString(const unsigned int &address)
{
    return QHostAddress(address).toString();
}

QString NormalizeIPString(const QString &text)
{
    return ConvertIPToIPString(ConvertIPStringToIP(text));
}

} // namespace Shared
