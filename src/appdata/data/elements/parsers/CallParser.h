#pragma once

#include <appdata/interfaces/DataElementParserInterface.h>
#include <shared/logging/FrameworkLog.h>

#include <optional>

/*! Calls of parsers, which are foreign code: what they throw ends here with a CRITICAL line that begins with
 * the caller, "Class::function()". */
namespace Tessellum::AppData::Data::Elements::Parsers {

/*! What \a call returns, a default value where it throws. */
template <class Result, class Call>
Result GuardParser(const char *caller, const Call &call) noexcept
{
    try {
        return call();
    } catch (const std::exception &exception) {
        Shared::Logging::FrameworkLog().critical()
            << caller << " catched exception of the parser: " << exception.what();
    } catch (...) {
        Shared::Logging::FrameworkLog().critical() << caller << " catched exception of the parser";
    }
    return Result();
}

/*! The value of \a raw; null where \a parser, which is not null, cannot parse it. */
inline std::shared_ptr<QVariant>
CallParse(const char *caller, const std::shared_ptr<Interfaces::DataElementParserInterface> &parser,
          const QByteArray &raw) noexcept
{
    return GuardParser<std::shared_ptr<QVariant>>(caller, [&] { return parser->parse(raw); });
}

/*! The bytes of \a value; nothing where \a parser throws. Neither may be null. */
inline std::optional<QByteArray>
CallToRaw(const char *caller, const std::shared_ptr<Interfaces::DataElementParserInterface> &parser,
          const std::shared_ptr<QVariant> &value) noexcept
{
    return GuardParser<std::optional<QByteArray>>(
        caller, [&] { return std::optional<QByteArray>(parser->toRaw(value)); });
}

} // namespace Tessellum::AppData::Data::Elements::Parsers
