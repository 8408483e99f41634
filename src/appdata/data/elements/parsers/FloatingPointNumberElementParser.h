#pragma once

#include <appdata/interfaces/DataElementParserInterface.h>

namespace Tessellum::AppData::Data::Elements::Parsers {

/*! One double as eight bytes, big-endian IEEE 754; fewer bytes are 0.0. */
class TESSELLUM_EXPORT FloatingPointNumberElementParser : public Interfaces::DataElementParserInterface
{
public:
    QByteArray toRaw(const std::shared_ptr<QVariant> &value) const override;
    std::shared_ptr<QVariant> parse(const QByteArray &raw) const override;
};

} // namespace Tessellum::AppData::Data::Elements::Parsers
