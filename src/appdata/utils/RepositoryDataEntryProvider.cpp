#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/EntryProperties.h>
#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/DataTypeStrings.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/utils/PairQuery.h>
#include <appdata/utils/RepositoryDataEntryProvider.h>
#include <appdata/utils/RepositoryLookup.h>
#include <notification/utils/ExceptionBarrier.h>
#include <notification/utils/PoolWait.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppData::utils {

namespace Property = Data::Entries::EntryProperties;
using Data::Entries::ClassificationNameEntry;
using Data::Entries::Entry;
using Data::Entries::EntryInfo;
using Data::Entries::EntryInfoContainer;
using Data::Entries::EntrySerializeInformation;
using Data::Entries::utils::PairPath;
using Notification::CreateObserver;
using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::utils::WaitForSuccess;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;
using EntryPtr = RepositoryDataEntryProvider::EntryPtr;

namespace {

bool removeFromMedium(const Storages::Storage &storage, const QString &uuid)
{
    bool removed = false;
    Notification::utils::RunGuarded("StorageImplementation",
                                    [&] { removed = storage.getImplementation()->removeEntry(uuid); });
    return removed;
}

quint64 capacityOf(const RepositoryDataEntryProvider::Properties &properties)
{
    const auto capacity = properties.constFind(Property::Capacity());
    if (capacity != properties.cend())
        return capacity->toULongLong();
    return properties.value(Property::SingleElement()).toBool() ? 1 : 0;
}

/*! What a new entry takes over from its source where its own properties do not say it. */
void completeFromSource(EntrySerializeInformation &record, const Interfaces::DataEntryInterface &source,
                        const RepositoryDataEntryProvider::Properties &properties)
{
    record.category = Data::Entries::EntryCategory(*source.getCategory());
    if (record.classification.isEmpty())
        record.classification = source.getClassification();
    if (record.name.isEmpty())
        record.name = source.getName();
    if (!properties.contains(Property::Persistence()))
        record.persistence = source.getPersistenceType();
    if (!properties.contains(Property::Capacity()))
        record.capacity = source.getCapacity();
}

QStringList elementUuids(const Interfaces::DataEntryInterface &entry)
{
    QStringList uuids;
    const auto elements
        = entry.getQueryInterface()->getElements(ActivationMask::All, Interfaces::PassThroughFilter());
    for (const auto &element : elements)
        uuids.append(element->getUuid());
    return uuids;
}

} // namespace

RepositoryDataEntryProvider::RepositoryDataEntryProvider(const std::shared_ptr<HierarchyNode> &repositoryRoot,
                                                         Notification::ThreadPool *taskPool)
    : root(repositoryRoot)
    , pool(taskPool)
{ }

RepositoryDataEntryProvider::ConstEntryPtr
RepositoryDataEntryProvider::getDataEntry(const QString &classification, const QString &name) const
{
    return Data::Entries::utils::FindPair(PairPath(classification, name));
}

EntryPtr RepositoryDataEntryProvider::getDataEntry(const QString &classification, const QString &name)
{
    return Data::Entries::utils::FindPair(PairPath(classification, name));
}

RepositoryDataEntryProvider::ConstEntryPtr
RepositoryDataEntryProvider::getDataEntry(const QString &uuid) const
{
    return FindEntry(uuid);
}

EntryPtr RepositoryDataEntryProvider::getDataEntry(const QString &uuid)
{
    return FindEntry(uuid);
}

QList<EntryPtr> RepositoryDataEntryProvider::getDataEntries(const QString &pattern) const
{
    QHash<QString, EntryPtr> found;
    const QStringList paths = FindPairPaths(*root, pattern);
    for (const QString &path : paths) {
        for (const auto &entry : Data::Entries::utils::EntriesOfPair(path))
            found.insert(entry->getUuid(), entry);
    }
    return found.values();
}

EntryPtr RepositoryDataEntryProvider::addDataEntry(const QString &storage, const QString &classification,
                                                   const QString &name, const CategoryType &categoryType,
                                                   const QString &categoryDetail,
                                                   const PersistenceType &persistence,
                                                   const bool &singleElement)
{
    return addDataEntryExtended(
        storage,
        MakeProperties(classification, name, categoryType, categoryDetail, persistence, singleElement));
}

EntryPtr RepositoryDataEntryProvider::addDataEntryExtended(const QString &storage,
                                                           const Properties &properties)
{
    if (!pool->isRunning())
        return nullptr;
    if (properties.isEmpty()) {
        FrameworkLog().warning() << "RepositoryDataEntryProvider::addDataEntryExtended() failed to parse "
                                    "empty entry specification";
        return nullptr;
    }
    const auto info = std::make_shared<EntryInfo>();
    const auto observer = addDataEntryAsynchronous(properties, info, storage, CreatePoint::Done);
    return WaitForSuccess(*pool, observer) ? getDataEntry(info->uuid) : nullptr;
}

int RepositoryDataEntryProvider::removeDataEntries(const QString &pattern)
{
    int removed = 0;
    for (const EntryPtr &entry : getDataEntries(pattern)) {
        if (removeDataEntry(entry->getUuid()))
            ++removed;
    }
    return removed;
}

bool RepositoryDataEntryProvider::removeDataEntry(const QString &uuid)
{
    bool removed = false;
    if (const auto pair = std::dynamic_pointer_cast<ClassificationNameEntry>(FindEntry(uuid))) {
        for (const auto &entry : Data::Entries::utils::EntriesOfPair(pair->getLinkPath()))
            removed = removeDataEntry(entry->getUuid()) || removed;
        return removed;
    }
    QList<std::shared_ptr<HierarchyNode>> nodes{root->getChildById(uuid)};
    for (const auto &storage : FindStorages()) {
        removed = removeFromMedium(*storage, uuid) || removed;
        nodes.append(storage->getChildById(uuid));
    }
    for (const auto &node : qAsConst(nodes)) {
        if (std::dynamic_pointer_cast<Entry>(node)) {
            const auto observer = pool->startDeleteTask(node, uuid, QVariant(), DeletePoint::Done);
            removed = WaitForSuccess(*pool, observer) || removed;
        }
    }
    return removed;
}

bool RepositoryDataEntryProvider::removeDataEntryFromStorage(const QString &storageName, const QString &uuid)
{
    const auto storage = FindStorage(storageName);
    if (!storage) {
        FrameworkLog().warning()
            << "RepositoryDataEntryProvider::removeDataEntryFromStorage() unknown storage name '"
            << storageName << "' cannot remove entry";
        return false;
    }
    return removeFromMedium(*storage, uuid);
}

std::shared_ptr<CreateObserver>
RepositoryDataEntryProvider::addDataEntryAsynchronous(const Properties &properties,
                                                      const EntryInfoContainer &info, const QString &storage,
                                                      const CreatePoint &point)
{
    if (!pool->isRunning())
        return nullptr;
    EntrySerializeInformation record(
        properties.value(Property::Name()).toString(),
        properties.value(Property::Classification()).toString(),
        Data::Entries::EntryCategory(
            static_cast<CategoryType>(properties.value(Property::CategoryType()).toUInt()),
            properties.value(Property::CategoryDetail()).toString()),
        storage, static_cast<PersistenceType>(properties.value(Property::Persistence()).toUInt()),
        capacityOf(properties));
    if (properties.contains(Property::SourceEntry())) {
        info->sourceUuid = properties.value(Property::SourceEntry()).toString();
        const EntryPtr source = getDataEntry(info->sourceUuid);
        if (!source) {
            FrameworkLog().warning() << "RepositoryDataEntryProvider::addDataEntryAsynchronous() could not "
                                        "get the source entry with uuid="
                                     << info->sourceUuid;
            return nullptr;
        }
        completeFromSource(record, *source, properties);
        info->copyElements = properties.contains(Property::ElementsList());
        if (info->copyElements) {
            info->elementsList = properties.value(Property::ElementsList()).toStringList();
            if (info->elementsList.isEmpty())
                info->elementsList = elementUuids(*source);
        }
    }
    info->uuid = properties.value(Property::DestinationEntry()).toString();
    // The name of an unknown category is empty, and leaves a line.
    if (record.name.isEmpty() || record.classification.isEmpty()
        || record.category.getType() == CategoryType::Unknown
        || record.persistence == PersistenceType::Unknown
        || ConvertDataEntryCategoryToString(record.category).isEmpty()) {
        return nullptr;
    }
    info->serialize = record;
    return pool->startCreateTask(root, PairPath(record.classification, record.name),
                                 QVariant::fromValue(info), point);
}

RepositoryDataEntryProvider::Properties
RepositoryDataEntryProvider::MakeProperties(const QString &classification, const QString &name,
                                            const CategoryType &categoryType, const QString &categoryDetail,
                                            const PersistenceType &persistence, bool singleElement)
{
    return {{Property::Classification(), classification},
            {Property::Name(), name},
            {Property::CategoryType(), static_cast<quint32>(categoryType)},
            {Property::CategoryDetail(), categoryDetail},
            {Property::Persistence(), static_cast<quint32>(persistence)},
            {Property::SingleElement(), singleElement}};
}

} // namespace Tessellum::AppData::utils
