#include "Quantities.h"

#include <QDataStream>

namespace Quantities {

const QStringList &Names()
{
    static const QStringList names{QStringLiteral("voltage"), QStringLiteral("current"),
                                   QStringLiteral("frequency")};
    return names;
}

QByteArray Reading::toBytes() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << isOn;
    for (const qint32 value : values)
        stream << value;
    return bytes;
}

std::optional<Reading> Reading::Parse(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    Reading reading;
    reading.values.resize(Names().size());
    stream >> reading.isOn;
    for (qint32 &value : reading.values)
        stream >> value;
    return stream.status() == QDataStream::Ok && stream.atEnd() ? std::make_optional(reading) : std::nullopt;
}

QByteArray Setting::toBytes() const
{
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << quantity << value;
    return bytes;
}

std::optional<Setting> Setting::Parse(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    Setting setting;
    stream >> setting.quantity >> setting.value;
    const bool isSetting
        = stream.status() == QDataStream::Ok && stream.atEnd() && setting.quantity < Names().size();
    return isSetting ? std::make_optional(setting) : std::nullopt;
}

} // namespace Quantities
