#include <appdata/DataTypeStrings.h>
#include <appdata/storages/remote/RemoteStorageCodec.h>
#include <shared/conversion/BoundedDecoding.h>
#include <shared/conversion/Compression.h>
#include <shared/conversion/FlatJson.h>

#include <QDataStream>

#include <algorithm>

namespace Tessellum::AppData::Storages::utils {

using Data::Elements::ElementUpdateData;
using Data::Entries::EntrySerializeInformation;
using Shared::Conversion::FlatMember;
using Shared::Conversion::FlatMemberHandler;
using Shared::Conversion::FlatMembers;
using Shared::Conversion::FromHexText;
using Shared::Conversion::ToHexText;

namespace {

const QLatin1String TimestampKey("timestamp");
const QLatin1String ActiveKey("active");
const QLatin1String DataKey("data");
const QLatin1String InfoKey("info");
const QLatin1String ElementsKey("elements");

constexpr qint64 MaximumText = 256LL * 1024 * 1024; /*!< Bytes of a text message. */
/*! Hexadecimal doubles the data; before it text has two bytes a character, after it binary JSON a digit. */
constexpr qint64 FrameGrowth = 4;
constexpr qint64 FrameRoom = 64LL * 1024; /*!< For all else in the frame. */
/*! Of an element's own bytes, which are hexadecimal in their document already. */
constexpr qint64 TextGrowth = 2 * FrameGrowth;
constexpr qint64 BinaryGrowth = 4 * FrameGrowth;

qint64 bytesOfFrame(RemoteStorageMode mode)
{
    return (mode == RemoteStorageMode::Binary ? Shared::Conversion::MaximumBinaryJson : MaximumText)
        - FrameRoom;
}

/*! A document in its mode: a QString or a QByteArray. Invalid if binary JSON cannot hold it. */
QVariant render(FlatMembers members, RemoteStorageMode mode)
{
    if (mode == RemoteStorageMode::Text)
        return Shared::Conversion::WriteFlatJson(std::move(members));
    const bool empty = members.empty();
    const QByteArray bytes = Shared::Conversion::WriteFlatBinaryJson(std::move(members));
    return bytes.isEmpty() && !empty ? QVariant() : QVariant(bytes);
}

/*! A document as a string within another one; null if it could not be rendered. */
QString embedded(const QVariant &document)
{
    if (!document.isValid())
        return {};
    if (document.userType() == QMetaType::QString)
        return document.toString();
    const QByteArray bytes = document.toByteArray();
    return bytes.isEmpty() ? QStringLiteral("") : ToHexText(bytes);
}

bool readDocument(const QVariant &payload, RemoteStorageMode mode, const FlatMemberHandler &handler)
{
    const int type = payload.userType();
    if (mode == RemoteStorageMode::Binary)
        return type == QMetaType::QByteArray
            && Shared::Conversion::ReadFlatBinaryJson(payload.toByteArray(), handler);
    if (type != QMetaType::QString && type != QMetaType::QByteArray)
        return false;
    const QString text = payload.toString(); // of an array: as UTF-8
    return text.isEmpty() || Shared::Conversion::ReadFlatJson(text, handler);
}

bool readEmbedded(const QString &document, RemoteStorageMode mode, const FlatMemberHandler &handler)
{
    if (mode == RemoteStorageMode::Text)
        return readDocument(document, mode, handler);
    const QByteArray bytes = FromHexText(document);
    return !bytes.isNull() && readDocument(bytes, mode, handler);
}

bool parseTimestamp(const QString &text, quint64 &timestamp)
{
    const bool digits = std::all_of(text.begin(), text.end(), [](QChar c) { return c >= '0' && c <= '9'; });
    bool ok = false;
    timestamp = text.toULongLong(&ok);
    return ok && digits;
}

/*! False for a key of the wrong type or with a damaged value. */
bool takeElementKey(const FlatMember &member, RemoteStorageMode mode, ElementUpdateData &values)
{
    if (member.isInner)
        return true;
    if (member.key == ActiveKey) {
        values.setActive(member.flag);
        return member.kind == FlatMember::Kind::Flag;
    }
    if (member.key == TimestampKey) {
        quint64 timestamp = 0;
        const bool ok = parseTimestamp(member.text, timestamp);
        values.setTimestamp(timestamp);
        return ok;
    }
    if (member.key == DataKey) {
        const QVariant raw = DecodeRemoteVariant(member.text, mode);
        values.setRawData(raw.toByteArray());
        return raw.userType() == QMetaType::QByteArray;
    }
    return true;
}

template <class Read>
std::optional<ElementUpdateData> decodeElement(const Read &read, RemoteStorageMode mode)
{
    ElementUpdateData values;
    bool ok = true;
    const bool isDocument
        = read([&](const FlatMember &member) { ok = takeElementKey(member, mode, values) && ok; });
    return isDocument && ok ? std::make_optional(values) : std::nullopt;
}

QByteArray writeInfo(const EntrySerializeInformation &info)
{
    const QString persistence = ConvertPersistenceTypeToString(info.persistence);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << info.name << info.classification << ConvertDataEntryCategoryToString(info.category)
           << info.storageName << (persistence.isEmpty() ? QStringLiteral("unknown") : persistence)
           << info.capacity;
    return bytes;
}

std::optional<EntrySerializeInformation> readInfo(const QByteArray &bytes)
{
    Shared::Conversion::StreamFields fields(bytes);
    const QString name = fields.text();
    const QString classification = fields.text();
    const QString category = fields.text();
    const QString storageName = fields.text();
    const QString persistence = fields.text();
    const quint64 capacity = fields.longNumber();
    if (!fields.isDone())
        return std::nullopt;
    return EntrySerializeInformation(name, classification, ParseDataEntryCategoryFromString(category),
                                     storageName, ParseStringToPersistenceType(persistence), capacity);
}

} // namespace

QVariant EncodeElement(const ElementUpdateData &values, RemoteStorageMode mode)
{
    FlatMembers members;
    bool active = false;
    quint64 timestamp = 0;
    QByteArray raw;
    const bool hasRaw = values.getRawData(raw);
    if (raw.size() > bytesOfFrame(mode) / (mode == RemoteStorageMode::Binary ? BinaryGrowth : TextGrowth))
        return {};
    if (values.getActive(active))
        members.push_back(FlatMember::Flag(ActiveKey, active));
    if (hasRaw)
        members.push_back(FlatMember::Text(DataKey, EncodeRemoteVariant(raw, mode)));
    if (values.getTimestamp(timestamp))
        members.push_back(FlatMember::Text(TimestampKey, QString::number(timestamp)));
    return render(std::move(members), mode);
}

std::optional<ElementUpdateData> DecodeElement(const QVariant &payload, RemoteStorageMode mode)
{
    return decodeElement(
        [&](const FlatMemberHandler &handler) { return readDocument(payload, mode, handler); }, mode);
}

QVariant EncodeEntryInfo(const EntrySerializeInformation &info, RemoteStorageMode mode)
{
    const QByteArray bytes = writeInfo(info);
    if (mode == RemoteStorageMode::Binary)
        return bytes;
    return ToHexText(Shared::Conversion::CompressStored(bytes));
}

std::optional<EntrySerializeInformation> DecodeEntryInfo(const QVariant &payload, RemoteStorageMode mode)
{
    const int type = payload.userType();
    if (mode == RemoteStorageMode::Binary)
        return type == QMetaType::QByteArray ? readInfo(payload.toByteArray()) : std::nullopt;
    if (type != QMetaType::QString && type != QMetaType::QByteArray)
        return std::nullopt;
    return readInfo(UncompressStored(FromHexText(payload.toString())));
}

QString EncodeElementDocument(const ElementUpdateData &values, RemoteStorageMode mode)
{
    return embedded(EncodeElement(values, mode));
}

QString EncodeEntryDocument(const EntrySerializeInformation &info, const RemoteDocuments &elements,
                            RemoteStorageMode mode)
{
    FlatMembers members{FlatMember::Object(ElementsKey)};
    members.reserve(static_cast<std::size_t>(elements.size()) + 2);
    for (const auto &[uuid, document] : elements)
        members.push_back(FlatMember::Text(uuid, document).within(ElementsKey));
    members.push_back(FlatMember::Text(InfoKey, ToHexText(writeInfo(info))));
    return embedded(render(std::move(members), mode));
}

std::optional<RemoteEntry> DecodeEntryDocument(const QString &document, RemoteStorageMode mode)
{
    RemoteEntry entry;
    QString info;
    const bool read = readEmbedded(document, mode, [&](const FlatMember &member) {
        if (!member.isInner) {
            if (member.key == InfoKey)
                info = member.text;
        } else if (member.key == ElementsKey && member.kind == FlatMember::Kind::Text) {
            const auto values = decodeElement(
                [&](const FlatMemberHandler &handler) { return readEmbedded(member.text, mode, handler); },
                mode);
            if (values)
                entry.elements.append({member.inner, *values});
        }
    });
    const auto decoded = read ? readInfo(FromHexText(info)) : std::nullopt;
    if (!decoded)
        return std::nullopt;
    entry.info = *decoded;
    return entry;
}

qint64 MostDocuments(RemoteStorageMode mode)
{
    return bytesOfFrame(mode) / FrameGrowth;
}

QVariant EncodeContents(const RemoteDocuments &documents, RemoteStorageMode mode)
{
    const qint64 most = MostDocuments(mode);
    FlatMembers members;
    members.reserve(static_cast<std::size_t>(documents.size()));
    qint64 size = 0;
    for (const auto &document : documents) {
        size += document.first.size() + document.second.size();
        if (size > most)
            return {};
        members.push_back(FlatMember::Text(document.first, document.second));
    }
    const QVariant contents = render(std::move(members), mode);
    const int rendered
        = mode == RemoteStorageMode::Binary ? contents.toByteArray().size() : contents.toString().size();
    return rendered <= most ? contents : QVariant();
}

RemoteDocuments DecodeContents(const QVariant &payload, RemoteStorageMode mode)
{
    RemoteDocuments documents;
    const bool read = readDocument(payload, mode, [&](const FlatMember &member) {
        if (!member.isInner && member.kind == FlatMember::Kind::Text)
            documents.append({member.key, member.text});
    });
    return read ? documents : RemoteDocuments();
}

QVariant EncodePathMap(const QHash<QString, QString> &map, RemoteStorageMode mode)
{
    FlatMembers members;
    for (auto path = map.cbegin(); path != map.cend(); ++path)
        members.push_back(FlatMember::Text(path.key(), path.value()));
    return render(std::move(members), mode);
}

std::optional<QHash<QString, QString>> DecodePathMap(const QVariant &payload, RemoteStorageMode mode)
{
    QHash<QString, QString> map;
    const bool read = readDocument(payload, mode, [&](const FlatMember &member) {
        if (!member.isInner && member.kind == FlatMember::Kind::Text)
            map.insert(member.key, member.text);
    });
    return read ? std::make_optional(map) : std::nullopt;
}

} // namespace Tessellum::AppData::Storages::utils
