#include <appdata/storages/remote/RemoteStorage.h>
#include <appdata/storages/remote/RemoteStorageClient.h>
#include <appdata/storages/remote/RemoteStorageServer.h>
#include <appdata/storages/StorageTypes.h>
#include <notification/utils/MakeNode.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>
#include <QUrl>

namespace Tessellum::AppData::Storages {

using Notification::utils::MakeEventThreadObject;
using Shared::Logging::FrameworkLog;

RemoteStorage::RemoteStorage(const StorageCreateData &data)
    : StorageImplementation(data)
{ }

RemoteStorage::~RemoteStorage() = default;

QStringList RemoteStorage::getEntryTypes() const
{
    return StorageTypes::Remote();
}

bool RemoteStorage::connectStorage()
{
    if (getNode())
        return true;
    NodePtr made = makeNode();
    if (!made)
        return false;
    {
        const QMutexLocker locker(&mutex);
        if (node)
            return true; // another call was faster; the one of this call goes behind the mutex
        node = made;
    }
    return made->initialize();
}

RemoteStorage::NodePtr RemoteStorage::makeNode() const
{
    const StorageCreateData &data = getCreateData();
    const QUrl url = data.location.toUrl();
    const QString type = data.type.toLower();
    const bool isServer = type.endsWith(QLatin1String("server"));
    if (!url.isValid() || (isServer && url.port(-1) < 0)) {
        FrameworkLog().warning() << "RemoteStorage::connectStorage() found invalid remote storage url "
                                 << data.location.toString();
        return nullptr;
    }
    if (isServer)
        return MakeEventThreadObject<utils::RemoteStorageServer>(data.name, url);
    if (type.endsWith(QLatin1String("client")))
        return MakeEventThreadObject<utils::RemoteStorageClient>(url, data.name);
    FrameworkLog().warning() << "RemoteStorage::connectStorage() found neither server nor client in the type "
                             << data.type;
    return nullptr;
}

bool RemoteStorage::disconnectStorage()
{
    return true;
}

bool RemoteStorage::isConnected() const
{
    const NodePtr present = getNode();
    return present && present->isRunning();
}

bool RemoteStorage::serializeEntry(const QString &uuid, const EntryRecord &record)
{
    const NodePtr present = getNode();
    return present && present->createEntry(getCreateData().name, uuid, record);
}

bool RemoteStorage::serializeElement(const QString &entryUuid, const QString &elementUuid,
                                     const ElementValues &values)
{
    const NodePtr present = getNode();
    return present && present->createElement(entryUuid, elementUuid, values);
}

quint64 RemoteStorage::getEntries(QHash<QString, EntryRecord> &entries) const
{
    const NodePtr present = getNode();
    entries = present ? present->readEntries() : QHash<QString, EntryRecord>();
    return quint64(entries.size());
}

bool RemoteStorage::deserializeEntry(const QString &uuid, EntryRecord &record) const
{
    const NodePtr present = getNode();
    return present && present->readEntry(uuid, record);
}

quint64 RemoteStorage::getElementIds(const QString &entryUuid, QStringList &uuids) const
{
    const NodePtr present = getNode();
    uuids = present ? present->readElementNames(entryUuid) : QStringList();
    return quint64(uuids.size());
}

bool RemoteStorage::deserializeElement(const QString &entryUuid, const QString &elementUuid,
                                       ElementValues &values, const LoadDataHint &hint) const
{
    const NodePtr present = getNode();
    const auto stored = present ? present->readElement(entryUuid, elementUuid) : std::nullopt;
    if (!stored)
        return false;
    for (const DataElementUpdateType &type : stored->getUpdateTypes()) {
        if (type != DataElementUpdateType::RawData || hint == LoadDataHint::LoadAtOnce)
            values.insert(type, stored->value(type));
    }
    return true;
}

QByteArray RemoteStorage::getElementRawData(const QString &entryUuid, const QString &elementUuid) const
{
    QByteArray raw;
    const NodePtr present = getNode();
    const auto stored = present ? present->readElement(entryUuid, elementUuid) : std::nullopt;
    if (stored)
        stored->getRawData(raw);
    return raw;
}

bool RemoteStorage::removeEntry(const QString &uuid)
{
    const NodePtr present = getNode();
    return present && present->removeEntry(uuid);
}

bool RemoteStorage::updateElement(const QString &entryUuid, const QString &elementUuid,
                                  const ElementValues &values)
{
    ElementValues stored = values;
    stored.remove(DataElementUpdateType::ParsedData);
    if (stored.isEmpty())
        return true;
    const NodePtr present = getNode();
    return present && present->updateElement(entryUuid, elementUuid, stored);
}

bool RemoteStorage::updateElementValue(const QString &entryUuid, const QString &elementUuid,
                                       const DataElementUpdateType &type, const QVariant &value)
{
    ElementValues values;
    values.insert(type, value);
    return updateElement(entryUuid, elementUuid, values);
}

RemoteStorage::NodePtr RemoteStorage::getNode() const
{
    const QMutexLocker locker(&mutex);
    return node;
}

} // namespace Tessellum::AppData::Storages
