#include <appdata/storages/remote/RemoteStorageMessage.h>
#include <shared/conversion/BoundedDecoding.h>
#include <shared/conversion/Compression.h>
#include <shared/conversion/FlatJson.h>

#include <QDataStream>

#include <array>

namespace Tessellum::AppData::Storages::utils {

using Shared::Conversion::FlatMember;
using Shared::Conversion::FlatMembers;
using Shared::Conversion::StreamFields;

namespace {

/*! By number; a path map has none. */
constexpr std::array words{"", "init", "create-element", "update-element", "create-entry", "delete-entry"};

const QLatin1String CommandKey("command");
const QLatin1String PathKey("path");
const QLatin1String DataKey("data");
const QLatin1String OptionsKey("options");

constexpr qint64 MaximumSerialized = 64LL * 1024 * 1024;

/*! Only texts and byte arrays travel. */
QVariant readVariant(const QByteArray &serialized)
{
    StreamFields fields(serialized);
    const quint32 type = fields.number();
    fields.byte();
    QVariant value;
    if (type == QMetaType::QString)
        value = fields.text();
    else if (type == QMetaType::QByteArray)
        value = fields.array();
    return fields.isDone() ? value : QVariant();
}

/*! Takes the members of a frame; the data is decoded at the end, as its key may come first. */
class FrameMembers
{
public:
    void take(const FlatMember &member)
    {
        if (member.key == OptionsKey) {
            // Of all options only one is kept, and it is false where it is not told.
            if (!member.isInner)
                message.options.insert(SupportsBinaryData, false);
            else if (member.inner == SupportsBinaryData)
                message.options.insert(SupportsBinaryData, member.flag);
        } else if (!member.isInner) {
            if (member.key == CommandKey)
                message.command = member.text;
            else if (member.key == PathKey)
                message.path = member.text;
            else if (member.key == DataKey)
                data = member.text;
        }
    }

    RemoteStorageMessage finish(bool read, RemoteStorageMode mode)
    {
        if (!read || !message.isValid())
            return {};
        if (!data.isEmpty())
            message.data = DecodeRemoteVariant(data, mode);
        return message;
    }

private:
    RemoteStorageMessage message;
    QString data;
};

FlatMembers membersOf(const RemoteStorageMessage &message, RemoteStorageMode mode)
{
    FlatMembers members{FlatMember::Text(CommandKey, message.command),
                        FlatMember::Text(PathKey, message.path)};
    if (message.data.isValid())
        members.push_back(FlatMember::Text(DataKey, EncodeRemoteVariant(message.data, mode)));
    if (message.options.contains(SupportsBinaryData)) {
        const bool flag = message.options.value(SupportsBinaryData).toBool();
        members.push_back(FlatMember::Object(OptionsKey));
        members.push_back(FlatMember::Flag(SupportsBinaryData, flag).within(OptionsKey));
    }
    return members;
}

} // namespace

RemoteStorageCommand CommandOfWord(const QString &word)
{
    for (std::size_t number = 1; number < words.size(); ++number) {
        if (word == QLatin1String(words[number]))
            return static_cast<RemoteStorageCommand>(number);
    }
    return RemoteStorageCommand::Unknown;
}

QString WordOfCommand(RemoteStorageCommand command)
{
    const auto number = static_cast<std::size_t>(command);
    return number < words.size() ? QString::fromLatin1(words[number]) : QString();
}

QString EncodeRemoteVariant(const QVariant &value, RemoteStorageMode mode)
{
    QByteArray serialized;
    QDataStream stream(&serialized, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << value;
    return Shared::Conversion::ToHexText(
        mode == RemoteStorageMode::Text ? Shared::Conversion::CompressStored(serialized) : serialized);
}

QVariant DecodeRemoteVariant(const QString &text, RemoteStorageMode mode)
{
    const QByteArray bytes = Shared::Conversion::FromHexText(text);
    return readVariant(mode == RemoteStorageMode::Text ? UncompressStored(bytes) : bytes);
}

QByteArray UncompressStored(const QByteArray &compressed)
{
    // What is only stored never shrinks, so a large message is as large before.
    const qint64 limit = qMax(MaximumSerialized, static_cast<qint64>(compressed.size()));
    return Shared::Conversion::UncompressBounded(compressed, limit);
}

RemoteStorageMessage ParseRemoteStorageText(const QString &frame)
{
    FrameMembers members;
    const bool read
        = Shared::Conversion::ReadFlatJson(frame, [&](const FlatMember &member) { members.take(member); });
    return members.finish(read, RemoteStorageMode::Text);
}

RemoteStorageMessage ParseRemoteStorageBinary(const QByteArray &frame)
{
    FrameMembers members;
    const bool read = Shared::Conversion::ReadFlatBinaryJson(
        frame, [&](const FlatMember &member) { members.take(member); });
    return members.finish(read, RemoteStorageMode::Binary);
}

QString ComposeRemoteStorageText(const RemoteStorageMessage &message)
{
    if (!message.isValid())
        return {};
    return Shared::Conversion::WriteFlatJson(membersOf(message, RemoteStorageMode::Text));
}

QByteArray ComposeRemoteStorageBinary(const RemoteStorageMessage &message)
{
    if (!message.isValid())
        return {};
    return Shared::Conversion::WriteFlatBinaryJson(membersOf(message, RemoteStorageMode::Binary));
}

} // namespace Tessellum::AppData::Storages::utils
