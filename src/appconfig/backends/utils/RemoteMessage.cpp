#include <appconfig/backends/utils/RemoteMessage.h>
#include <shared/conversion/FlatJson.h>

#include <array>

namespace Tessellum::AppConfig::Backends::utils {

using Shared::Conversion::FlatMember;
using Shared::Conversion::FlatMembers;

namespace {

/*! By number. */
constexpr std::array words{"", "init", "read", "write", "create", "update", "delete", "rewrite"};

const QLatin1String CommandKey("command");
const QLatin1String PathKey("path");
const QLatin1String DataKey("data");

RemoteCommand commandOf(const QString &word)
{
    for (std::size_t number = 1; number < words.size(); ++number) {
        if (word == QLatin1String(words[number]))
            return static_cast<RemoteCommand>(number);
    }
    return RemoteCommand::Unknown;
}

/*! The bytes of an invalid value begin with its type, 0. */
bool isNothing(const QByteArray &serialized)
{
    return serialized.isEmpty() || serialized.startsWith(QByteArray(4, '\0'));
}

} // namespace

RemoteMessage ParseRemoteMessage(const QString &frame)
{
    RemoteMessage message;
    QString data;
    const bool read = Shared::Conversion::ReadFlatJson(frame, [&](const FlatMember &member) {
        if (member.isInner)
            return;
        if (member.key == CommandKey)
            message.command = commandOf(member.text);
        else if (member.key == PathKey)
            message.path = member.text;
        else if (member.key == DataKey)
            data = member.text;
    });
    if (!read || !message.isValid())
        return {};
    if (!data.isEmpty())
        message.data = DecodeSerialized(data);
    if (isNothing(message.data))
        message.data = QByteArray();
    return message;
}

QString ComposeRemoteMessage(const RemoteMessage &message)
{
    const auto number = static_cast<std::size_t>(message.command);
    if (!message.isValid() || number >= words.size())
        return {};
    FlatMembers members{FlatMember::Text(CommandKey, QLatin1String(words[number])),
                        FlatMember::Text(PathKey, message.path)};
    if (!isNothing(message.data))
        members.push_back(FlatMember::Text(DataKey, EncodeSerialized(message.data)));
    return Shared::Conversion::WriteFlatJson(std::move(members));
}

QString ComposeRemoteSubtree(const RemoteSubtree &subtree)
{
    FlatMembers members;
    members.reserve(static_cast<std::size_t>(subtree.size()));
    for (auto value = subtree.cbegin(); value != subtree.cend(); ++value) {
        const QByteArray serialized = value->isEmpty() ? SerializeValue({}) : *value;
        members.push_back(FlatMember::Text(value.key(), EncodeSerialized(serialized)));
    }
    return Shared::Conversion::WriteFlatJson(std::move(members));
}

RemoteSubtree ParseRemoteSubtree(const QString &text)
{
    RemoteSubtree subtree;
    const QByteArray invalid = SerializeValue({});
    qint64 left = MaximumSerialized;
    const bool read = Shared::Conversion::ReadFlatJson(text, [&](const FlatMember &member) {
        if (member.isInner)
            return;
        const QByteArray serialized = DecodeSerialized(member.text, left);
        left -= serialized.size();
        subtree.insert(member.key, isNothing(serialized) ? invalid : serialized);
    });
    return read ? subtree : RemoteSubtree();
}

} // namespace Tessellum::AppConfig::Backends::utils
