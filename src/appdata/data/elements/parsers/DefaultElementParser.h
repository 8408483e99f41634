#pragma once

#include <appdata/interfaces/DataElementParserInterface.h>

namespace Tessellum::AppData::Data::Elements::Parsers {

/*! Keeps the bytes as they are; a text is bytes without a code page. */
class TESSELLUM_EXPORT DefaultElementParser : public Interfaces::DataElementParserInterface
{
public:
    QByteArray toRaw(const std::shared_ptr<QVariant> &value) const override { return value->toByteArray(); }
    std::shared_ptr<QVariant> parse(const QByteArray &raw) const override
    {
        return std::make_shared<QVariant>(raw);
    }
};

} // namespace Tessellum::AppData::Data::Elements::Parsers
