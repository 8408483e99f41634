#include <appconfig/utils/LiveNode.h>
#include <appdata/data/elements/Element.h>
#include <appdata/data/entries/EntryProperties.h>
#include <appdata/storages/remote/RemoteStorageMirror.h>
#include <appdata/storages/Storage.h>
#include <appdata/utils/RepositoryDataEntryProvider.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/PoolWait.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/ScopedLock.h>

#include <QUuid>

#include <optional>

namespace Tessellum::AppData::Storages::utils {

using AppData::utils::RepositoryProvider;
using Data::Elements::Element;
using Data::Elements::ElementInfo;
using Data::Elements::ElementUpdateDataList;
using Data::Entries::Entry;
using Notification::CreateObserver;
using Notification::CreatePoint;
using Notification::UpdatePoint;
using Notification::utils::WaitForTask;
using Shared::Logging::FrameworkLog;
using Shared::Synchronization::ScopedLock;

namespace {

/*! The most changes that are on their way at once. */
constexpr std::size_t MostUnderWay = 1024;
constexpr int FewCopies = 1024; // for which nobody looks how many are gone

Notification::ThreadPool &Pool()
{
    return RepositoryProvider::getInstance()->getThreadPool();
}

/*! What a new element has where the peer does not say it. */
void FillUp(RemoteStorageNode::ElementValues &values)
{
    if (!values.contains(DataElementUpdateType::Active))
        values.setActive(true);
    if (!values.contains(DataElementUpdateType::Timestamp))
        values.setTimestamp(0);
    if (!values.contains(DataElementUpdateType::RawData))
        values.setRawData(QByteArray());
}

/*! Starts the create of all \a elements; nothing, and nothing has happened, where \a entry does not take so
 * many. The observer is null where the task could not be started. */
std::optional<std::shared_ptr<CreateObserver>>
StartCreate(const std::shared_ptr<Entry> &entry,
            const std::vector<std::pair<QString, RemoteStorageNode::ElementValues>> &elements)
{
    ElementUpdateDataList list;
    list.reserve(int(elements.size()));
    for (const auto &element : elements)
        list.append(element.second);
    // The test and the reservation of the places, by the start of the task, are one step.
    const ScopedLock lock(entry.get());
    const auto &record = std::as_const(*entry).dataLocked().serialize;
    const quint64 taken = entry->getNumberOfChildren() + record.pendingCreates.load();
    if (record.capacity != 0 && record.capacity < taken + elements.size())
        return std::nullopt;
    return Pool().startCreateTask(entry, QString(), QVariant::fromValue(list), CreatePoint::Done);
}

/*! Whether \a element shows something else than \a values, which its storage has got already. */
bool Differs(const Element &element, const RemoteStorageNode::ElementValues &values)
{
    bool active = element.isActive();
    quint64 timestamp = element.getTimestamp();
    values.getActive(active);
    values.getTimestamp(timestamp);
    if (active != element.isActive() || timestamp != element.getTimestamp())
        return true;
    QByteArray raw;
    // A value that is not in memory comes from the storage with the next read.
    return values.getRawData(raw) && element.getLoadStatus() == LoadStatus::Loaded && element.copyParser()
        && element.getQueryInterface()->getRawData() != raw;
}

} // namespace

RemoteStorageMirror::RemoteStorageMirror(RemoteStorageNode &ownNode, const QString &nameOfStorage,
                                         qint64 mostBytes)
    : node(ownNode)
    , storageName(nameOfStorage)
    , copies(ownNode, mostBytes)
{ }

RemoteStorageMirror::~RemoteStorageMirror() = default;

void RemoteStorageMirror::take(const RemoteStorageMessage &message, RemoteStorageMode mode)
{
    if (!message.isValid() || !Pool().isRunning())
        return;
    const QStringList path = RemoteStorageNode::SplitPath(message.path);
    const RemoteStorageCommand command = CommandOfWord(message.command);
    switch (command) {
    case RemoteStorageCommand::Init:
        return takeContents(message, mode);
    case RemoteStorageCommand::CreateElement:
    case RemoteStorageCommand::UpdateElement:
        if (const auto values = DecodeElement(message.data, mode))
            takeElement(path, *values, command == RemoteStorageCommand::CreateElement);
        return;
    case RemoteStorageCommand::CreateEntry:
        // Some senders write the name of the storage before it.
        if (const auto record = DecodeEntryInfo(message.data, mode))
            putEntry(path.value(path.size() - 1), *record);
        return;
    case RemoteStorageCommand::DeleteEntry:
        return deleteEntry(path.value(path.size() - 1));
    case RemoteStorageCommand::PathMap:
        if (const auto map = DecodePathMap(message.data, mode))
            node.replaceMap(*map);
        return;
    case RemoteStorageCommand::Unknown:
        return;
    }
}

void RemoteStorageMirror::flush()
{
    flushCreates();
    flushUpdates();
}

void RemoteStorageMirror::takeContents(const RemoteStorageMessage &message, RemoteStorageMode mode)
{
    flush();
    forgetGoneCopies();
    toldOfBound = false;
    const auto documents = DecodeContents(message.data, mode);
    for (const auto &[remoteEntry, document] : documents) {
        const auto contents = DecodeEntryDocument(document, mode);
        const EntryPtr entry = contents ? putEntry(remoteEntry, contents->info) : nullptr;
        if (!entry)
            continue;
        for (const auto &[remote, values] : contents->elements) {
            if (!Pool().isRunning())
                return;
            takeElementOfContents(entry, remote, values);
        }
    }
    flush();
}

void RemoteStorageMirror::takeElementOfContents(const EntryPtr &entry, const QString &remote,
                                                ElementValues values)
{
    const ElementPtr element = findElement(entry, remote);
    if (!element)
        return addElement(entry, remote, values);
    complete(entry, element, values);
    if (!copies.change(element->getId(), values))
        return tellOfBound();
    // The cache was cleared for this connection, the tree was not.
    node.storeElement(entry->getId(), element->getId(), values);
    if (Differs(*element, values))
        changeElement(entry, element, values);
}

void RemoteStorageMirror::takeElement(const QStringList &path, const ElementValues &values, bool mayCreate)
{
    // A path of one item would let the element take the place of its entry in the map.
    const EntryPtr entry
        = path.size() < 2 || path.constFirst() == path.constLast() ? nullptr : findEntry(path.constFirst());
    if (!entry)
        return;
    if (const ElementPtr element = findElement(entry, path.constLast()))
        changeElement(entry, element, values);
    else if (mayCreate && !values.isEmpty())
        addElement(entry, path.constLast(), values);
}

/*! The entry of the peer's uuid, created where it is missing; null where that fails. */
RemoteStorageMirror::EntryPtr RemoteStorageMirror::putEntry(const QString &remote, EntryRecord record)
{
    namespace Property = Data::Entries::EntryProperties;
    if (remote.isEmpty())
        return nullptr;
    record.storageName = storageName;
    // Whatever it is at the peer: any other entry would be made outside the storage, or not at all.
    record.persistence = PersistenceType::Persistent;
    if (const EntryPtr entry = findEntry(remote)) {
        node.storeEntry(entry->getId(), record);
        return entry;
    }
    const auto provider = RepositoryProvider::getInstance()->getDataEntryProvider();
    const qint64 cost = RemoteStorageCopies::CostOf(remote, record);
    if (!provider || !makeRoom(cost))
        return nullptr;
    const auto created = std::dynamic_pointer_cast<Entry>(provider->addDataEntryExtended(
        storageName,
        {{Property::Classification(), record.classification},
         {Property::Name(), record.name},
         {Property::CategoryType(), static_cast<quint32>(record.category.getType())},
         {Property::CategoryDetail(), record.category.getDetail()},
         {Property::Persistence(), static_cast<quint32>(record.persistence)},
         {Property::Capacity(), record.capacity}}));
    if (created)
        copies.put(remote, created->getId(), cost);
    return created;
}

void RemoteStorageMirror::deleteEntry(const QString &remote)
{
    flush();
    const QString local = node.mapPath(remote);
    const auto provider = RepositoryProvider::getInstance()->getDataEntryProvider();
    if (!provider || local.isEmpty())
        return;
    if (const EntryPtr entry = findEntry(remote)) {
        const auto elements = entry->getChildren(false);
        provider->removeDataEntry(local);
        for (const auto &element : elements)
            copies.drop(element->getId());
    } else {
        // An entry that is not attached is on the storage alone.
        provider->removeDataEntryFromStorage(storageName, local);
    }
    copies.drop(local);
}

/*! What was removed here, and not by the peer. */
void RemoteStorageMirror::forgetGoneCopies()
{
    copies.forgetGone(storage());
    copiesToLook = 2 * copies.size() + FewCopies;
}

/*! Whether the peer may have something more kept. */
bool RemoteStorageMirror::makeRoom(qint64 cost)
{
    const bool hasRoom = copies.hasRoom(cost);
    if ((hasRoom && copies.size() < copiesToLook) || (!hasRoom && toldOfBound))
        return hasRoom;
    flush();
    forgetGoneCopies();
    if (!copies.hasRoom(cost))
        tellOfBound();
    return copies.hasRoom(cost);
}

void RemoteStorageMirror::tellOfBound()
{
    if (!std::exchange(toldOfBound, true))
        FrameworkLog().warning()
            << "RemoteStorageMirror::tellOfBound() a peer tells more than may be kept in " << storageName;
}

std::shared_ptr<Storage> RemoteStorageMirror::storage()
{
    auto known = knownStorage.lock();
    if (!known || known->isDeleteFlagSet()) {
        known = AppData::utils::FindStorage(storageName);
        knownStorage = known;
    }
    return known;
}

RemoteStorageMirror::EntryPtr RemoteStorageMirror::findEntry(const QString &remote)
{
    const QString local = node.mapPath(remote);
    const auto place = local.isEmpty() ? nullptr : storage();
    return place ? std::dynamic_pointer_cast<Entry>(place->getChildById(local)) : nullptr;
}

/*! Null where there is none. What is on its way for that element is done then. */
RemoteStorageMirror::ElementPtr RemoteStorageMirror::findElement(const EntryPtr &entry, const QString &remote)
{
    const QString local = node.mapPath(remote);
    if (local.isEmpty())
        return nullptr;
    if (pending.contains(local))
        flush();
    return std::dynamic_pointer_cast<Element>(entry->getChildById(local));
}

void RemoteStorageMirror::addElement(const EntryPtr &entry, const QString &remote, ElementValues values)
{
    if (creates >= MostUnderWay)
        flushCreates();
    FillUp(values);
    const qint64 cost = RemoteStorageCopies::CostOf(remote, values);
    if (!makeRoom(cost))
        return;
    const auto info = std::make_shared<ElementInfo>();
    info->uuid = QUuid::createUuid().toString();
    values.setInfo(info);
    Batch &batch = batches[entry->getId()];
    batch.entry = entry;
    batch.elements.emplace_back(remote, values);
    ++creates;
    pending.insert(info->uuid);
    copies.put(remote, info->uuid, cost);
}

void RemoteStorageMirror::changeElement(const EntryPtr &entry, const ElementPtr &element,
                                        ElementValues values)
{
    if (updates.size() >= MostUnderWay)
        flushUpdates();
    complete(entry, element, values);
    if (!copies.change(element->getId(), values))
        return tellOfBound();
    if (const auto observer
        = Pool().startUpdateTask(element, QVariant::fromValue(values), UpdatePoint::Done)) {
        updates.push_back(observer);
        pending.insert(element->getId());
    }
}

/*! Adds what the element has now to what \a values do not say. */
void RemoteStorageMirror::complete(const EntryPtr &entry, const ElementPtr &element,
                                   ElementValues &values) const
{
    if (!values.contains(DataElementUpdateType::Active))
        values.setActive(element->isActive());
    if (!values.contains(DataElementUpdateType::Timestamp))
        values.setTimestamp(element->getTimestamp());
    if (values.contains(DataElementUpdateType::RawData))
        return;
    const auto stored = node.readElement(entry->getId(), element->getId());
    QByteArray raw;
    if (stored && stored->getRawData(raw))
        values.setRawData(raw);
    else if (element->copyParser())
        values.setRawData(element->getQueryInterface()->getRawData());
}

void RemoteStorageMirror::flushCreates()
{
    std::vector<std::shared_ptr<CreateObserver>> started;
    for (const Batch &batch : qAsConst(batches)) {
        if (const auto observer = StartCreate(batch.entry, batch.elements))
            started.push_back(*observer);
        else
            createEach(batch);
    }
    for (const auto &create : started)
        WaitForTask(Pool(), create);
    for (const Batch &batch : qAsConst(batches))
        dropFailed(batch);
    batches.clear();
    creates = 0;
    if (updates.empty())
        pending.clear();
}

/*! As an application adds values: where the entry is full the oldest one is overwritten. */
void RemoteStorageMirror::createEach(const Batch &batch)
{
    const auto values = batch.entry->getManipulationInterface();
    for (const auto &[remote, create] : batch.elements) {
        quint64 timestamp = 0;
        QByteArray raw;
        bool active = true;
        create.getTimestamp(timestamp);
        create.getRawData(raw);
        create.getActive(active);
        const QString local
            = values->addDataElementValue(timestamp, ElementValueKind::RawData, raw, CreatePoint::Done);
        if (local.isEmpty())
            continue;
        copies.put(remote, local, RemoteStorageCopies::CostOf(remote, create));
        const auto element
            = active ? nullptr : std::dynamic_pointer_cast<Element>(batch.entry->getChildById(local));
        if (element)
            element->getManipulationInterface()->setActive(false, UpdatePoint::Done);
    }
}

/*! Names of what was not created would lead nowhere. */
void RemoteStorageMirror::dropFailed(const Batch &batch)
{
    for (const auto &element : batch.elements) {
        const QString uuid = element.second.getInfo()->uuid;
        if (!batch.entry->hasChild(uuid))
            copies.drop(uuid);
    }
}

void RemoteStorageMirror::flushUpdates()
{
    for (const auto &update : updates)
        WaitForTask(Pool(), update);
    updates.clear();
    if (batches.isEmpty())
        pending.clear();
}

} // namespace Tessellum::AppData::Storages::utils
