#pragma once

#include <appdata/interfaces/DataElementParserInterface.h>

#include <stdexcept>

namespace TestSupport {

/*! Knows only texts that are not "bad", and throws at "worse". */
class PickyParser : public Tessellum::AppData::Interfaces::DataElementParserInterface
{
public:
    QByteArray toRaw(const std::shared_ptr<QVariant> &value) const override
    {
        if (value->toString() == "worse")
            throw std::runtime_error("worse");
        return value->toByteArray();
    }
    std::shared_ptr<QVariant> parse(const QByteArray &raw) const override
    {
        if (raw == "worse")
            throw std::runtime_error("worse");
        return raw == "bad" ? nullptr : std::make_shared<QVariant>(QString::fromUtf8(raw));
    }
};

} // namespace TestSupport
