#pragma once

#include "StorageTwin.h"

#include <appdata/storages/remote/RemoteStorageSource.h>

#include <QMutexLocker>

#include <utility>

namespace TestSupport {

namespace Remote = Tessellum::AppData::Storages::utils;

// An end without a socket.
class CacheNode : public Remote::RemoteStorageNode
{
public:
    explicit CacheNode(const QUrl &url = QUrl())
        : RemoteStorageNode(QStringLiteral("node"), url)
    { }
    using RemoteStorageNode::getLimit;
    bool initialize() override { return true; }
    bool isRunning() const override { return true; }
    bool createEntry(const QString &, const QString &path, const EntryRecord &info) override
    {
        storeEntry(path, info);
        return true;
    }
    bool createElement(const QString &path, const QString &name, const ElementValues &values) override
    {
        return storeElement(path, name, values);
    }
    bool updateElement(const QString &path, const QString &name, const ElementValues &values) override
    {
        return changeElement(path, name, values);
    }
    bool removeEntry(const QString &path) override { return dropEntry(path); }
};

// The storage of the other process: what is done to it is sent.
class SourceStorage : public StorageTwin
{
public:
    bool serializeEntry(const QString &uuid, const EntryRecord &record) override
    {
        return StorageTwin::serializeEntry(uuid, record)
            && push(Remote::RemoteStorageCommand::CreateEntry,
                    Remote::RemoteStorageNode::JoinPath("served", uuid),
                    [&](Remote::RemoteStorageMode wire) { return Remote::EncodeEntryInfo(record, wire); });
    }
    bool serializeElement(const QString &entry, const QString &element, const ElementValues &values) override
    {
        return StorageTwin::serializeElement(entry, element, values)
            && push(Remote::RemoteStorageCommand::CreateElement,
                    Remote::RemoteStorageNode::JoinPath(entry, element),
                    [&](Remote::RemoteStorageMode wire) { return Remote::EncodeElement(values, wire); });
    }
    bool removeEntry(const QString &uuid) override
    {
        return StorageTwin::removeEntry(uuid)
            && push(Remote::RemoteStorageCommand::DeleteEntry, uuid, nullptr);
    }
    bool updateElement(const QString &entry, const QString &element, const ElementValues &values) override
    {
        return StorageTwin::updateElement(entry, element, values)
            && push(Remote::RemoteStorageCommand::UpdateElement,
                    Remote::RemoteStorageNode::JoinPath(entry, element),
                    [&](Remote::RemoteStorageMode wire) { return Remote::EncodeElement(values, wire); });
    }

    QList<Remote::RemoteStorageMessage> takeSent()
    {
        const QMutexLocker locker(&mutex);
        return std::exchange(sent, {});
    }
    Remote::RemoteStorageMode mode = Remote::RemoteStorageMode::Text;

private:
    bool push(Remote::RemoteStorageCommand command, const QString &target,
              const Remote::RemoteStorageSource::Payload &payload)
    {
        const bool isBinary = mode == Remote::RemoteStorageMode::Binary;
        const auto frame
            = Remote::RemoteStorageSource::MakePush(command, target, payload, !isBinary, isBinary)
                  .frameFor(isBinary);
        const QMutexLocker locker(&mutex);
        sent.append(Parse(frame));
        return true;
    }

public:
    static Remote::RemoteStorageMessage Parse(const Remote::RemoteStorageFrame &frame)
    {
        const auto *text = std::get_if<QString>(&frame);
        return text ? Remote::ParseRemoteStorageText(*text)
                    : Remote::ParseRemoteStorageBinary(std::get<QByteArray>(frame));
    }

private:
    QMutex mutex;
    QList<Remote::RemoteStorageMessage> sent;
};

} // namespace TestSupport
