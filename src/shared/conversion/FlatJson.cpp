#include <shared/conversion/FlatJson.h>
#include <shared/conversion/utils/JsonEncoding.h>

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <rapidjson/reader.h>

namespace Shared::Conversion {

namespace {

using utils::JsonEncoding;
using utils::MaximumJsonDepth;

/*! Takes the parser's events. False ends the parse. */
class MemberEvents
{
public:
    using Ch = char16_t;
    using Size = rapidjson::SizeType;

    explicit MemberEvents(const FlatMemberHandler &toTell)
        : handler(toTell)
    { }

    bool Null() { return other(); }
    bool Bool(bool flag) { return value(FlatMember::Kind::Flag, {}, flag); }
    bool Int(int) { return other(); }
    bool Uint(unsigned) { return other(); }
    bool Int64(int64_t) { return other(); }
    bool Uint64(uint64_t) { return other(); }
    bool Double(double) { return other(); }
    bool RawNumber(const Ch *, Size, bool) { return other(); }
    bool String(const Ch *text, Size length, bool)
    {
        return value(FlatMember::Kind::Text, isTold() ? textOf(text, length) : QString());
    }
    bool Key(const Ch *text, Size length, bool)
    {
        if (depth == 1)
            key = textOf(text, length);
        else if (depth == 2 && inObject)
            inner = textOf(text, length);
        return true;
    }
    bool StartObject()
    {
        if (depth == 1) {
            value(FlatMember::Kind::Object);
            inObject = true;
        } else if (depth > 1) {
            other();
        }
        return ++depth <= MaximumJsonDepth;
    }
    bool StartArray()
    {
        if (depth == 0)
            return false;
        other();
        if (depth == 1)
            inObject = false;
        return ++depth <= MaximumJsonDepth;
    }
    bool EndObject(Size) { return end(); }
    bool EndArray(Size) { return end(); }

private:
    static QString textOf(const Ch *text, Size length)
    {
        return QString(reinterpret_cast<const QChar *>(text), static_cast<int>(length));
    }
    bool isTold() const { return depth == 1 || (depth == 2 && inObject); }
    bool other() { return value(FlatMember::Kind::Other); }
    bool value(FlatMember::Kind kind, const QString &text = {}, bool flag = false)
    {
        if (depth == 0)
            return kind == FlatMember::Kind::Object;
        if (depth == 1)
            handler({key, false, {}, kind, text, flag});
        else if (depth == 2 && inObject)
            handler({key, true, inner, kind, text, flag});
        return true;
    }
    bool end()
    {
        --depth;
        return true;
    }

    const FlatMemberHandler &handler;
    QString key;
    QString inner;
    int depth = 0;
    bool inObject = false; /*!< Whether what is open at the second level is an object. */
};

QJsonValue valueOf(const FlatMember &member)
{
    switch (member.kind) {
    case FlatMember::Kind::Text:
        return member.text;
    case FlatMember::Kind::Flag:
        return member.flag;
    default:
        return QJsonValue::Null;
    }
}

} // namespace

bool ReadFlatJson(const QString &text, const FlatMemberHandler &handler)
{
    rapidjson::GenericReader<JsonEncoding, JsonEncoding> reader;
    rapidjson::GenericStringStream<JsonEncoding> stream(reinterpret_cast<const char16_t *>(text.utf16()));
    MemberEvents events(handler);
    // Not recursive, so that depth costs no stack.
    const auto result = reader.Parse<rapidjson::kParseIterativeFlag>(stream, events);
    // The parser takes a null character for the end.
    return !result.IsError() && stream.Tell() == static_cast<std::size_t>(text.size());
}

void SortFlatMembers(FlatMembers &members)
{
    const auto before = [](const FlatMember &left, const FlatMember &right) {
        if (left.key != right.key)
            return left.key < right.key;
        return left.isInner && right.isInner ? left.inner < right.inner : !left.isInner && right.isInner;
    };
    if (!std::is_sorted(members.begin(), members.end(), before))
        std::stable_sort(members.begin(), members.end(), before);
}

QString WriteFlatJson(FlatMembers members)
{
    // An object of Qt takes a member at its end at once, any other only by moving those behind it.
    SortFlatMembers(members);
    QJsonObject object;
    for (auto member = members.cbegin(); member != members.cend();) {
        const FlatMember &outer = *member++;
        if (outer.kind != FlatMember::Kind::Object) {
            object.insert(outer.key, valueOf(outer));
            continue;
        }
        QJsonObject inner;
        for (; member != members.cend() && member->isInner; ++member)
            inner.insert(member->inner, valueOf(*member));
        object.insert(outer.key, inner);
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace Shared::Conversion
