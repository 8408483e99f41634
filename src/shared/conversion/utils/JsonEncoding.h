#pragma once

#include <QChar>

#include <rapidjson/encodings.h>

namespace Shared::Conversion::utils {

/*! UTF-16 as QString holds it: RapidJSON's own ends the process on an escaped half of a surrogate pair. */
struct JsonEncoding : rapidjson::UTF16<char16_t>
{
    template <class Stream>
    static void Encode(Stream &stream, unsigned codePoint)
    {
        if (QChar::requiresSurrogates(codePoint)) {
            stream.Put(QChar::highSurrogate(codePoint));
            stream.Put(QChar::lowSurrogate(codePoint));
        } else {
            stream.Put(static_cast<char16_t>(codePoint));
        }
    }
};

/*! Deeper documents are refused, as QJsonDocument does. */
inline constexpr int MaximumJsonDepth = 1024;

} // namespace Shared::Conversion::utils
