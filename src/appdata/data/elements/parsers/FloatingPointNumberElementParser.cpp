#include <appdata/data/elements/parsers/FloatingPointNumberElementParser.h>

#include <QDataStream>

namespace Tessellum::AppData::Data::Elements::Parsers {

QByteArray FloatingPointNumberElementParser::toRaw(const std::shared_ptr<QVariant> &value) const
{
    QByteArray raw;
    QDataStream stream(&raw, QIODevice::WriteOnly);
    stream << value->toDouble();
    return raw;
}

std::shared_ptr<QVariant> FloatingPointNumberElementParser::parse(const QByteArray &raw) const
{
    double value = 0.0;
    QDataStream stream(raw);
    stream >> value;
    return std::make_shared<QVariant>(value);
}

} // namespace Tessellum::AppData::Data::Elements::Parsers
