#include <appconfig/utils/LiveNode.h>
#include <appdata/data/elements/ElementDeserializeInformation.h>
#include <appdata/data/elements/utils/ElementPaths.h>
#include <appdata/data/entries/EntryCreateTask.h>
#include <appdata/data/entries/utils/ElementJobs.h>
#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/memory_strategy/MemoryStrategyRepository.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/utils/CallMedium.h>
#include <appdata/storages/utils/DetachEntry.h>
#include <appdata/utils/RepositoryLookup.h>
#include <notification/utils/ExceptionBarrier.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyStringPath.h>
#include <shared/logging/FrameworkLog.h>

#include <QUuid>

#include <optional>

namespace Tessellum::AppData::Data::Entries {

using Notification::CreateObserver;
using Notification::CreatePoint;
using Notification::utils::MakeNode;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;
using Storages::Storage;
using Storages::utils::CallMedium;

namespace {

using EntryList = QList<EntryDeserializeInformation>;

template <class T>
bool Is(const QVariant &data)
{
    return data.userType() == qMetaTypeId<T>();
}

void InstallMemoryStrategy(const std::shared_ptr<Entry> &entry)
{
    const EntrySerializeInformation record = entry->copyData().serialize;
    const QString type = MemoryStrategies::MemoryStrategyRepository::getInstance()->getStrategyType(
        record.classification, record.name);
    if (!type.isEmpty())
        entry->getMemoryStrategyInterface()->installMemoryStrategy(type, QString());
}

/*! True, and \a entry is off the tree, where its storage has been removed while it was added: the removal
 * did not see it if it looked before. */
bool LeaveRemovedStorage(const std::shared_ptr<Entry> &entry)
{
    const auto storage = entry->getStorage();
    if (!storage || !storage->isDeleteFlagSet())
        return false;
    Storages::utils::DetachEntry(entry);
    return true;
}

/*! The write of an entry's record to its medium, which can be taken back where the entry could not be added
 * to the tree: a new record would be back at the next start. A uuid may also be stored already and only not
 * be in the tree; its record is put back then, since to remove it would take its elements along. */
class EntryWrite
{
public:
    EntryWrite(const std::shared_ptr<Storage> &target, const QString &entryUuid)
        : storage(target)
        , uuid(entryUuid)
    { }

    bool write(const EntrySerializeInformation &record)
    {
        EntrySerializeInformation found;
        if (call([&](auto &medium) { return medium.deserializeEntry(uuid, found); }))
            before = found;
        return call([&](auto &medium) { return medium.serializeEntry(uuid, record); });
    }

    void takeBack() const
    {
        call([&](auto &medium) {
            return before ? medium.serializeEntry(uuid, *before) : medium.removeEntry(uuid);
        });
    }

private:
    template <class Call>
    bool call(const Call &function) const
    {
        return CallMedium("EntryCreateTask::createAndSerializeEntryInHierarchy()", false,
                          [&] { return function(*storage->getImplementation()); });
    }

    const std::shared_ptr<Storage> storage;
    const QString uuid;
    std::optional<EntrySerializeInformation> before;
};

} // namespace

bool EntryCreateTask::Accepts(const QVariant &data)
{
    return Is<EntryInfoContainer>(data) || Is<EntrySerializeInformation>(data)
        || Is<EntryDeserializeInformation>(data) || Is<EntryList>(data);
}

EntryCreateTask::EntryCreateTask(const Examiners &createExaminer, const std::weak_ptr<HierarchyNode> &parent,
                                 const QString &taskPath, const QVariant &createData,
                                 const CreatePoint &waitPoint)
    : CreateTask(parent, taskPath, createData)
    , examiner(createExaminer)
    , observer(
          makeObserver(waitPoint, [this](const ResultType &result) { handleCreateNotification(result); }))
{ }

CreateObserver::ResultType EntryCreateTask::runCreate()
{
    if (!Accepts(data)) {
        FrameworkLog().warning()
            << "EntryCreateTask::runCreate() invalid create data found, no data entry created";
        observer->report({CreatePoint::Begin, false});
        return observer->getResult();
    }
    const auto parent = AppConfig::utils::LockLiveNode(root);
    observer->report({CreatePoint::Begin, parent != nullptr});
    if (!parent)
        return observer->getResult();
    bool created = false;
    Notification::utils::RunGuarded("EntryCreateTask", [&] { created = createEntriesInHierarchy(parent); });
    observer->report({CreatePoint::Done, created});
    return observer->getResult();
}

std::shared_ptr<CreateObserver> EntryCreateTask::getObserver()
{
    return observer;
}

bool EntryCreateTask::createEntriesInHierarchy(const NodePtr &parent)
{
    if (Is<EntryInfoContainer>(data))
        return createFromInfo(parent, data.value<EntryInfoContainer>());
    if (Is<EntrySerializeInformation>(data)) {
        QString uuid;
        return createAndSerializeEntryInHierarchy(parent, data.value<EntrySerializeInformation>(), uuid);
    }
    if (Is<EntryDeserializeInformation>(data))
        return createAndDeserializeEntryInHierarchy(data.value<EntryDeserializeInformation>());
    bool created = false;
    const auto list = data.value<EntryList>();
    for (const EntryDeserializeInformation &information : list)
        created = createAndDeserializeEntryInHierarchy(information) || created;
    return created;
}

bool EntryCreateTask::createFromInfo(const NodePtr &parent, const EntryInfoContainer &info)
{
    if (!info || !createAndSerializeEntryInHierarchy(parent, info->serialize, info->uuid))
        return false;
    return !info->copyElements || info->elementsList.isEmpty() || copyElementsFromSource(*info);
}

bool EntryCreateTask::createAndSerializeEntryInHierarchy(const NodePtr &parent,
                                                         EntrySerializeInformation record, QString &uuid)
{
    if (record.name.isEmpty() || record.classification.isEmpty()) {
        FrameworkLog().warning() << "EntryCreateTask::createAndSerializeEntryInHierarchy empty serialize "
                                    "information "
                                    "cannot add entry";
        return false;
    }
    if (uuid.isEmpty())
        uuid = QUuid::createUuid().toString();
    record.addCounter = 0;
    record.pendingCreates.reset();
    if (record.persistence == PersistenceType::Persistent)
        return createPersistent(record, uuid);
    if (record.persistence != PersistenceType::Volatile) {
        FrameworkLog().warning()
            << "EntryCreateTask::createAndSerializeEntryInHierarchy non persistent entry "
               "requested, "
               "no storage assigned to entry";
        FrameworkLog().warning()
            << "EntryCreateTask::createAndSerializeEntryInHierarchy failed to create data entry=" << uuid;
        return false;
    }
    if (!record.storageName.isEmpty()) {
        FrameworkLog().warning()
            << "EntryCreateTask::createAndSerializeEntryInHierarchy() creating a volatile "
               "data entry with "
               "given storage name";
        record.storageName.clear();
    }
    EntryDeserializeInformation origin;
    origin.uuid = uuid;
    const auto entry = MakeNode<Entry>(EntryData(record, origin));
    return createEntryInHierarchy(parent, entry) && finishNew(entry);
}

bool EntryCreateTask::createPersistent(const EntrySerializeInformation &record, const QString &uuid)
{
    const auto storage = AppData::utils::FindStorage(record.storageName);
    if (!storage) {
        FrameworkLog().warning()
            << "EntryCreateTask::createAndSerializeEntryInHierarchy unknown storage name="
            << record.storageName << " cannot add entry";
        return false;
    }
    const auto isContained = [&] {
        if (!storage->hasChild(uuid))
            return false;
        FrameworkLog().log() << "EntryCreateTask::createAndSerializeEntryInHierarchy() entry with uuid="
                             << uuid
                             << " is already contained inside storage with name=" << record.storageName;
        return true;
    };
    if (isContained())
        return true;
    EntryDeserializeInformation origin;
    origin.uuid = uuid;
    origin.loadDataHint = storage->getLoadDataHint();
    origin.storage = storage;
    const auto entry = MakeNode<Entry>(EntryData(record, origin));
    EntryWrite medium(storage, uuid);
    if (!medium.write(record)) {
        FrameworkLog().warning() << "EntryCreateTask::createAndSerializeEntryInHierarchy failed to serialize "
                                    "data entry="
                                 << uuid << " to storage=" << record.storageName;
        return false;
    }
    if (!createEntryInHierarchy(storage, entry)) {
        // Where another task has added that uuid meanwhile, what is on the medium belongs to that one.
        if (isContained())
            return true;
        medium.takeBack();
        return false;
    }
    if (finishNew(entry))
        return true;
    medium.takeBack();
    return false;
}

bool EntryCreateTask::createEntryInHierarchy(const NodePtr &parent, const EntryPtr &entry)
{
    if (parent->isDeleteFlagSet() || !parent->addChild(entry)) {
        FrameworkLog().warning() << "EntryCreateTask::createEntryInHierarchy failed to add data entry="
                                 << entry->getId() << " to the hierarchy";
        if (!parent->hasChild(entry->getId())) // what is listed under the uuid would be that child's
            entry->getMemoryStrategyInterface()->removeMemoryStrategy();
        return false;
    }
    // An entry that is refused shows no strategy, which would stand under the uuid of another one.
    InstallMemoryStrategy(entry);
    createdPaths.append(entry->getNodePath()->getFullPath());
    return true;
}

bool EntryCreateTask::finishNew(const EntryPtr &entry)
{
    entry->setLoadStatus(LoadStatus::CurrentlyLoading);
    const auto pair = createEntryForClassificationAndName(entry);
    entry->setLoadStatus(pair ? LoadStatus::Loaded : LoadStatus::NotLoaded);
    if (pair)
        pair->setLoadStatus(LoadStatus::Loaded);
    return pair && !LeaveRemovedStorage(entry);
}

std::shared_ptr<ClassificationNameEntry>
EntryCreateTask::createEntryForClassificationAndName(const EntryPtr &entry)
{
    auto pair = utils::LinkEntryToPair(entry);
    if (pair) {
        createdPaths.append(pair->getLinkPath());
        pair->setLoadStatus(LoadStatus::CurrentlyLoading);
    }
    return pair;
}

bool EntryCreateTask::createAndDeserializeEntryInHierarchy(const EntryDeserializeInformation &information)
{
    const auto storage = information.storage.lock();
    if (!storage || storage->isDeleteFlagSet()) {
        FrameworkLog().warning() << "EntryCreateTask::createAndDeserializeEntryInHierarchy expired storage "
                                    "instance provided, "
                                    "cannot add entry";
        return false;
    }
    if (storage->hasChild(information.uuid))
        return true;
    EntrySerializeInformation record;
    if (!CallMedium("EntryCreateTask::createAndDeserializeEntryInHierarchy()", false, [&] {
            return storage->getImplementation()->deserializeEntry(information.uuid, record);
        })) {
        FrameworkLog().warning() << "EntryCreateTask::createAndDeserializeEntryInHierarchy failed to "
                                    "deserialize the entry uuid="
                                 << information.uuid << " from storage=" << storage->getName();
        return false;
    }
    record.storageName = storage->getName();
    record.addCounter = 0;
    record.pendingCreates.reset();
    const auto entry = MakeNode<Entry>(EntryData(record, information));
    if (!createEntryInHierarchy(storage, entry))
        return false;
    entry->setLoadStatus(LoadStatus::CurrentlyLoading);
    const auto pair = createEntryForClassificationAndName(entry);
    if (!pair || LeaveRemovedStorage(entry))
        return false;
    const bool loading = deserializeEntry(entry, information);
    pair->setLoadStatus(LoadStatus::Loaded);
    return loading;
}

bool EntryCreateTask::deserializeEntry(const EntryPtr &entry,
                                       const EntryDeserializeInformation &information) const
{
    const auto storage = information.storage.lock();
    QStringList uuids;
    const quint64 number = !storage ? 0 : CallMedium("EntryCreateTask::deserializeEntry()", quint64(0), [&] {
        return storage->getImplementation()->getElementIds(information.uuid, uuids);
    });
    Elements::ElementsDeserializeInformation elements;
    if (number == quint64(uuids.size())) {
        elements.reserve(uuids.size());
        for (const QString &uuid : qAsConst(uuids)) {
            if (!uuid.isEmpty())
                elements.append({uuid, information});
        }
    }
    if (elements.isEmpty())
        entry->setLoadStatus(LoadStatus::Loaded);
    else
        utils::StartElementJob(entry, QVariant::fromValue(elements));
    return true;
}

bool EntryCreateTask::copyElementsFromSource(const EntryInfo &info) const
{
    const auto destination = AppData::utils::FindEntry(info.uuid);
    const auto source = AppData::utils::FindEntry(info.sourceUuid);
    if (!destination || !source)
        return false;
    const auto elements = utils::CopiesOfElements(*source, *destination, info.elementsList);
    if (elements.isEmpty()) {
        destination->setLoadStatus(LoadStatus::Loaded);
        return true;
    }
    destination->setLoadStatus(LoadStatus::CurrentlyLoading);
    utils::StartElementJob(destination, QVariant::fromValue(elements));
    return true;
}

void EntryCreateTask::handleCreateNotification(const ResultType &result) const
{
    // At the beginning nobody knows the entries yet.
    if (result.first != CreatePoint::Done || !examiner || examiner->isEmpty())
        return;
    QStringList paths = createdPaths;
    paths.removeDuplicates();
    Elements::utils::NotifyPaths(examiner, paths, result.first, result.second);
}

} // namespace Tessellum::AppData::Data::Entries
