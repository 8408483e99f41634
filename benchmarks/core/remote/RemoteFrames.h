#pragma once

#include <appconfig/backends/utils/RemoteMessage.h>
#include <appdata/storages/remote/RemoteStorageCodec.h>
#include <appdata/storages/remote/RemoteStorageNode.h>

// The frames that the floors send, as the library makes and reads them.

namespace RemoteFrames {

using Tessellum::AppConfig::Backends::utils::RemoteCommand;
using Tessellum::AppData::Storages::utils::RemoteStorageCommand;
using Tessellum::AppData::Storages::utils::RemoteStorageMode;

inline QString ofValue(RemoteCommand command, const QString &path, const QVariant &value)
{
    namespace Remote = Tessellum::AppConfig::Backends::utils;
    return Remote::ComposeRemoteMessage({command, path, Remote::SerializeValue(value)});
}

/*! A new element, as it is pushed in binary mode. */
inline QByteArray ofElement(const QString &path, quint64 timestamp, double value)
{
    namespace Remote = Tessellum::AppData::Storages::utils;
    Tessellum::AppData::Data::Elements::ElementUpdateData values;
    values.setActive(true);
    values.setTimestamp(timestamp);
    values.setRawData(QByteArray(reinterpret_cast<const char *>(&value), sizeof value));
    return Remote::RemoteStorageNode::ComposeBinary(path, RemoteStorageCommand::CreateElement,
                                                    Remote::EncodeElement(values, RemoteStorageMode::Binary),
                                                    {});
}

/*! Whether \a frame holds an element. */
inline bool readElement(const QByteArray &frame)
{
    namespace Remote = Tessellum::AppData::Storages::utils;
    const auto message = Remote::ParseRemoteStorageBinary(frame);
    return Remote::CommandOfWord(message.command) == RemoteStorageCommand::CreateElement
        && Remote::DecodeElement(message.data, RemoteStorageMode::Binary).has_value();
}

} // namespace RemoteFrames
