#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/utils/LiveNode.h>
#include <appdata/data/entries/EntryDeserializeInformation.h>
#include <appdata/InternalSettingsProvider.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageCreateTask.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/utils/CallMedium.h>
#include <appdata/storages/utils/StorageNames.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/MakeNode.h>
#include <notification/utils/NotifyExaminers.h>
#include <shared/hierarchy/HierarchyStringPathLink.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>

namespace Tessellum::AppData::Storages {

using AppData::utils::RepositoryProvider;
using Data::Entries::EntryDeserializeInformation;
using Notification::CreateObserver;
using Notification::CreatePoint;
using Shared::Hierarchy::HierarchyNode;
using Shared::Hierarchy::HierarchyStringPathLink;
using Shared::Logging::FrameworkLog;
using utils::CallMedium;

namespace {

bool SetImplementation(StorageCreateData &createData)
{
    if (createData.implementation)
        return true;
    const auto creator = RepositoryProvider::getInstance()->getCreator(createData.type);
    if (!creator) {
        FrameworkLog().warning() << "StorageCreateTask::createStorageInHierarchy() cannot create storage "
                                    "implementation with unknown type="
                                 << createData.type;
        return false;
    }
    createData.implementation
        = CallMedium("StorageCreateTask::createStorageInHierarchy()",
                     std::shared_ptr<StorageImplementation>(), [&] { return creator(createData); });
    if (!createData.implementation) {
        FrameworkLog().warning() << "StorageCreateTask::createStorageInHierarchy() failed to create storage "
                                    "implementation for storage type="
                                 << createData.type;
    }
    return createData.implementation != nullptr;
}

bool Connect(const Storage &storage)
{
    const bool connected = CallMedium("StorageCreateTask::createStorageInHierarchy()", false,
                                      [&] { return storage.getImplementation()->connectStorage(); });
    if (!connected) {
        FrameworkLog().warning()
            << "StorageCreateTask::createStorageInHierarchy() failed to connect storage '" << storage.getId()
            << " - " << storage.getName();
    }
    return connected;
}

bool LinkName(const HierarchyStringPathLink &place, const std::shared_ptr<HierarchyNode> &parent,
              const Storage &storage)
{
    AppConfig::Attributes::AttributeCreateData data;
    data.name = storage.getName();
    data.details.value = QVariant::fromValue(place);
    if (storage.getName() == storage.getId()
        || AppConfig::Attributes::CreateAttributeInHierarchy(parent, data)) {
        return true;
    }
    FrameworkLog().warning()
        << "StorageCreateTask::createStorageInHierarchy() failed to link storage name to "
           "storage path, removing the storage from the hierarchy, uuid="
        << storage.getId();
    return false;
}

/*! Starts an attachment for each entry of the medium; false where the medium threw. */
bool StartAttachments(const std::shared_ptr<Storage> &storage)
{
    QHash<QString, Data::Entries::EntrySerializeInformation> entries;
    const bool listed = CallMedium("StorageCreateTask::createStorageInHierarchy()", false, [&] {
        storage->getImplementation()->getEntries(entries);
        return true;
    });
    auto &pool = RepositoryProvider::getInstance()->getThreadPool();
    for (auto entry = entries.keyBegin(); entry != entries.keyEnd(); ++entry) {
        EntryDeserializeInformation information;
        information.uuid = *entry;
        information.loadDataHint = LoadDataHint::AttachOnly;
        information.storage = storage;
        pool.startCreateTask(storage, QString(), QVariant::fromValue(information), CreatePoint::All);
    }
    return listed;
}

} // namespace

StorageCreateTask::StorageCreateTask(const Examiners &createExaminer,
                                     const std::weak_ptr<HierarchyNode> &parent, const QString &name,
                                     const QVariant &createData, const CreatePoint &waitPoint)
    : CreateTask(parent, name, createData)
    , examiner(createExaminer)
    , observer(
          makeObserver(waitPoint, [this](const ResultType &result) { handleCreateNotification(result); }))
{ }

CreateObserver::ResultType StorageCreateTask::runCreate()
{
    if (!data.canConvert<StorageCreateData>()) {
        FrameworkLog().warning() << "StorageCreateTask::runCreate() failed to convert the create data into "
                                    "StorageCreateData, no storage created";
        observer->report({CreatePoint::Begin, false});
        return observer->getResult();
    }
    const NodePtr parent = AppConfig::utils::LockLiveNode(root);
    const bool isFree = parent && !path.isEmpty() && utils::IsNameFree(parent, path);
    observer->report({CreatePoint::Begin, isFree});
    if (!isFree)
        return observer->getResult();

    return reportOutcome(*observer, [&] { return createStorageInHierarchy(parent); });
}

std::shared_ptr<CreateObserver> StorageCreateTask::getObserver()
{
    return observer;
}

bool StorageCreateTask::createStorageInHierarchy(const NodePtr &parent)
{
    auto createData = data.value<StorageCreateData>();
    if (createData.name.isEmpty() || createData.type.isEmpty()) {
        FrameworkLog().warning() << "StorageCreateTask::createStorageInHierarchy() supplied creation data is "
                                    "empty, no storagecreated";
        return false;
    }
    if (!SetImplementation(createData))
        return false;
    createData.name = parent->getNodePath()->getPathElementsFromPath(path).constLast();
    if (createData.name.isEmpty() || AppData::utils::StorageNames().contains(createData.name))
        return false;
    const auto storage = Notification::utils::MakeNode<Storage>(createData);
    if (!Connect(*storage) || !publish(parent, storage))
        return false;
    storage->setLoadStatus(LoadStatus::CurrentlyLoading);
    const bool listed = createData.loadDataHint != LoadDataHint::LoadAtOnce || StartAttachments(storage);
    storage->setLoadStatus(listed ? LoadStatus::Loaded : LoadStatus::NotLoaded);
    return true;
}

bool StorageCreateTask::publish(const NodePtr &parent, const std::shared_ptr<Storage> &storage)
{
    // Two adds of one name may both have come this far; the medium could not be connected in here.
    const QMutexLocker locker(&RepositoryProvider::getInstance()->pairMutex());
    const QString name = storage->getName();
    const auto names = utils::NameList();
    if (!names || names->hasElement(name) || !utils::IsNameFree(parent, name) || !parent->addChild(storage))
        return false;
    const HierarchyStringPathLink place(storage->getNodePath());
    if (!names->addElementToList(name, QVariant::fromValue(place), false)
        || !LinkName(place, parent, *storage)) {
        names->removeElementFromList(name);
        storage->setDeleteFlag();
        return false;
    }
    resultPaths.append(storage->getNodePath()->getFullPath());
    return true;
}

void StorageCreateTask::handleCreateNotification(const CreateObserver::ResultType &result) const
{
    if (result.first != CreatePoint::Done || !examiner || examiner->isEmpty())
        return;
    for (const QString &resultPath : resultPaths + QStringList(path))
        Notification::utils::NotifyExaminers(examiner, resultPath, result.first, result.second);
}

} // namespace Tessellum::AppData::Storages
