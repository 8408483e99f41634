#include <shared/conversion/FlatJson.h>

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace Shared::Conversion {

namespace {

constexpr int WordSize = 4;
constexpr int HeaderSize = 2 * WordSize; /*!< The tag and the version. */
constexpr int BaseSize = 3 * WordSize; /*!< Size, number of members and where their table stands. */
constexpr quint32 Version = 1;
constexpr char Tag[] = "qbjs";

enum ValueType : quint32 { NullType = 0, BoolType = 1, StringType = 3, ObjectType = 5 };

/*! A value is one word: 3 bits of type, whether its text is Latin-1, whether its key is, 27 bits of value. */
constexpr quint32 LatinText = 1U << 3;
constexpr quint32 LatinKey = 1U << 4;
constexpr int ValueShift = 5;

int aligned(qint64 size)
{
    return static_cast<int>((size + WordSize - 1) & ~qint64(WordSize - 1));
}

bool isLatin(const QString &text)
{
    constexpr int longest = 0x7fff;
    return text.size() <= longest
        && std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x100; });
}

int storageOf(const QString &text)
{
    return isLatin(text) ? aligned(2 + text.size()) : aligned(WordSize + qint64(2) * text.size());
}

/*! Walks the objects of a document. No byte is told twice, whatever the offsets say: that is counted. */
class BinaryReader
{
public:
    BinaryReader(const QByteArray &bytes, const FlatMemberHandler &toTell)
        : document(reinterpret_cast<const uchar *>(bytes.constData()))
        , size(bytes.size())
        , allowance(bytes.size())
        , handler(toTell)
    { }

    bool read()
    {
        return size >= HeaderSize + BaseSize && std::memcmp(document, Tag, WordSize) == 0
            && word(WordSize) == Version && readObject(HeaderSize, size, nullptr);
    }

private:
    quint32 word(qint64 at) const { return qFromLittleEndian<quint32>(document + at); }
    bool spend(qint64 bytes) { return (allowance -= bytes) >= 0; }

    /*! The object between \a base and \a limit; \a outer is its key, if it is a member itself. */
    bool readObject(qint64 base, qint64 limit, const QString *outer)
    {
        if (limit - base < BaseSize)
            return false;
        const qint64 end = base + word(base);
        const qint64 table = base + word(base + 2LL * WordSize);
        const quint32 kind = word(base + WordSize);
        const qint64 length = kind >> 1;
        if (!(kind & 1) || end > limit || table < base + BaseSize || table + length * WordSize > end
            || !spend(BaseSize + length * WordSize))
            return false;
        for (qint64 index = 0; index < length; ++index) {
            const qint64 entry = base + word(table + index * WordSize);
            if (entry < base + BaseSize || entry + WordSize > table || !readMember(base, entry, table, outer))
                return false;
        }
        return true;
    }

    bool readMember(qint64 base, qint64 entry, qint64 limit, const QString *outer)
    {
        const quint32 value = word(entry);
        FlatMember member;
        if (!spend(WordSize) || !readText(entry + WordSize, limit, value & LatinKey, member.key))
            return false;
        const QString key = member.key;
        if (outer) {
            member.isInner = true;
            member.inner = key;
            member.key = *outer;
        }
        const qint64 at = base + (value >> ValueShift);
        switch (value & 7) {
        case BoolType:
            member.kind = FlatMember::Kind::Flag;
            member.flag = value >> ValueShift;
            break;
        case StringType:
            member.kind = FlatMember::Kind::Text;
            if (at < base + BaseSize || !readText(at, limit, value & LatinText, member.text))
                return false;
            break;
        case ObjectType:
            if (outer)
                break;
            member.kind = FlatMember::Kind::Object;
            handler(member);
            return at >= base + BaseSize && readObject(at, limit, &key);
        default:
            break;
        }
        handler(member);
        return true;
    }

    bool readText(qint64 at, qint64 limit, bool latin, QString &text)
    {
        const int prefix = latin ? 2 : WordSize;
        if (at + prefix > limit)
            return false;
        const qint64 length = latin ? qFromLittleEndian<quint16>(document + at) : word(at);
        const qint64 bytes = latin ? length : 2 * length;
        if (at + prefix + bytes > limit || !spend(prefix + bytes))
            return false;
        const uchar *from = document + at + prefix;
        if (latin) {
            text = QString::fromLatin1(reinterpret_cast<const char *>(from), static_cast<int>(length));
        } else {
            text = QString(static_cast<int>(length), Qt::Uninitialized);
            qFromLittleEndian<ushort>(from, length, text.data());
        }
        return true;
    }

    const uchar *const document;
    const qint64 size;
    qint64 allowance;
    const FlatMemberHandler &handler;
};

/*! Writes a document in one go; each object knows its members from the sorted list. */
class BinaryWriter
{
public:
    explicit BinaryWriter(const FlatMembers &sorted)
        : members(sorted)
    { }

    QByteArray write()
    {
        qint64 size = HeaderSize + BaseSize;
        for (const auto &member : members)
            size += entrySize(member) + WordSize;
        if (size > MaximumBinaryJson)
            return {};
        bytes.reserve(static_cast<int>(size));
        bytes.append(Tag, WordSize);
        appendWord(Version);
        std::size_t next = 0;
        appendObject(next, false);
        return bytes;
    }

private:
    static const QString &keyOf(const FlatMember &member)
    {
        return member.isInner ? member.inner : member.key;
    }

    static qint64 entrySize(const FlatMember &member)
    {
        const qint64 key = WordSize + storageOf(keyOf(member));
        if (member.kind == FlatMember::Kind::Object)
            return key + BaseSize;
        return member.kind == FlatMember::Kind::Text ? key + storageOf(member.text) : key;
    }

    void appendWord(quint32 word)
    {
        const quint32 little = qToLittleEndian(word);
        bytes.append(reinterpret_cast<const char *>(&little), WordSize);
    }

    void setWord(int at, quint32 word) { qToLittleEndian(word, bytes.data() + at); }

    void appendText(const QString &text)
    {
        const int end = bytes.size() + storageOf(text);
        if (isLatin(text)) {
            const auto length = qToLittleEndian(static_cast<quint16>(text.size()));
            bytes.append(reinterpret_cast<const char *>(&length), sizeof length);
            bytes.append(text.toLatin1());
        } else {
            appendWord(static_cast<quint32>(text.size()));
            const int at = bytes.size();
            bytes.resize(at + 2 * text.size());
            qToLittleEndian<ushort>(text.utf16(), text.size(), bytes.data() + at);
        }
        bytes.append(end - bytes.size(), '\0');
    }

    /*! The members from \a next on that belong to one object. */
    void appendObject(std::size_t &next, bool within)
    {
        const int base = bytes.size();
        bytes.append(BaseSize, '\0');
        std::vector<quint32> entries;
        while (next < members.size() && (!within || members[next].isInner)) {
            entries.push_back(static_cast<quint32>(bytes.size() - base));
            appendMember(base, next);
        }
        setWord(base + WordSize, static_cast<quint32>(entries.size()) << 1 | 1U);
        setWord(base + 2 * WordSize, static_cast<quint32>(bytes.size() - base));
        for (const quint32 entry : entries)
            appendWord(entry);
        setWord(base, static_cast<quint32>(bytes.size() - base));
    }

    void appendMember(int base, std::size_t &next)
    {
        const FlatMember &member = members[next++];
        const QString &key = keyOf(member);
        const int entry = bytes.size();
        appendWord(0);
        appendText(key);
        const quint32 keyBit = isLatin(key) ? LatinKey : 0;
        const auto here = static_cast<quint32>(bytes.size() - base) << ValueShift;
        switch (member.kind) {
        case FlatMember::Kind::Text:
            setWord(entry, StringType | (isLatin(member.text) ? LatinText : 0) | keyBit | here);
            appendText(member.text);
            break;
        case FlatMember::Kind::Flag:
            setWord(entry, BoolType | keyBit | (member.flag ? 1U << ValueShift : 0));
            break;
        case FlatMember::Kind::Object:
            setWord(entry, ObjectType | keyBit | here);
            appendObject(next, true);
            break;
        case FlatMember::Kind::Other:
            setWord(entry, NullType | keyBit);
            break;
        }
    }

    const FlatMembers &members;
    QByteArray bytes;
};

} // namespace

bool ReadFlatBinaryJson(const QByteArray &bytes, const FlatMemberHandler &handler)
{
    return bytes.isEmpty() || BinaryReader(bytes, handler).read();
}

QByteArray WriteFlatBinaryJson(FlatMembers members)
{
    if (members.empty())
        return {};
    SortFlatMembers(members);
    return BinaryWriter(members).write();
}

} // namespace Shared::Conversion
