#include <shared/conversion/JsonText.h>
#include <shared/conversion/utils/JsonEncoding.h>

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <rapidjson/reader.h>
#include <utility>
#include <vector>

namespace Shared::Conversion {

namespace {

using utils::JsonEncoding;
using Members = std::vector<std::pair<QString, QJsonValue>>;

/*! The last value of each key counts. */
QJsonObject objectOf(Members &members)
{
    // An object of Qt takes a member at its end at once, any other only by moving those behind it.
    std::stable_sort(members.begin(), members.end(),
                     [](const auto &left, const auto &right) { return left.first < right.first; });
    QJsonObject object;
    for (auto member = members.cbegin(); member != members.cend(); ++member) {
        const auto next = std::next(member);
        if (next == members.cend() || next->first != member->first)
            object.insert(member->first, member->second);
    }
    return object;
}

/*! Takes the parser's events. False ends the parse. */
class ValueEvents
{
public:
    using Ch = char16_t;
    using Size = rapidjson::SizeType;

    bool Null() { return value(QJsonValue(QJsonValue::Null)); }
    bool Bool(bool flag) { return value(flag); }
    bool Int(int number) { return value(number); }
    bool Uint(unsigned number) { return value(static_cast<qint64>(number)); }
    bool Int64(int64_t number) { return value(static_cast<qint64>(number)); }
    bool Uint64(uint64_t number) { return value(static_cast<double>(number)); }
    bool Double(double number) { return value(number); }
    bool RawNumber(const Ch *, Size, bool) { return false; }
    bool String(const Ch *text, Size length, bool) { return value(textOf(text, length)); }
    bool Key(const Ch *text, Size length, bool)
    {
        levels.back().key = textOf(text, length);
        return true;
    }
    bool StartObject() { return start(false); }
    bool StartArray() { return start(true); }
    bool EndObject(Size)
    {
        return end([](Level &level) { return objectOf(level.members); });
    }
    bool EndArray(Size)
    {
        return end([](Level &level) { return level.array; });
    }

    QJsonDocument document;

private:
    struct Level
    {
        bool isArray = false;
        QString key; // of the next member
        Members members;
        QJsonArray array;
    };

    static QString textOf(const Ch *text, Size length)
    {
        return QString(reinterpret_cast<const QChar *>(text), static_cast<int>(length));
    }

    bool value(const QJsonValue &member)
    {
        if (levels.empty())
            return false;
        Level &level = levels.back();
        if (level.isArray)
            level.array.append(member);
        else
            level.members.emplace_back(level.key, member);
        return true;
    }

    bool start(bool isArray)
    {
        levels.emplace_back();
        levels.back().isArray = isArray;
        return levels.size() <= utils::MaximumJsonDepth;
    }

    template <class Make>
    bool end(const Make &make)
    {
        const auto made = make(levels.back());
        levels.pop_back();
        if (!levels.empty())
            return value(made);
        document = QJsonDocument(made);
        return true;
    }

    std::vector<Level> levels;
};

} // namespace

bool ReadJsonText(const QString &text, QJsonDocument &document)
{
    rapidjson::GenericReader<JsonEncoding, JsonEncoding> reader;
    rapidjson::GenericStringStream<JsonEncoding> stream(reinterpret_cast<const char16_t *>(text.utf16()));
    ValueEvents events;
    // Not recursive, so that depth costs no stack.
    const auto result
        = reader.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseFullPrecisionFlag>(stream, events);
    // The parser takes a null character for the end.
    if (result.IsError() || stream.Tell() != static_cast<std::size_t>(text.size()))
        return false;
    document = events.document;
    return true;
}

} // namespace Shared::Conversion
