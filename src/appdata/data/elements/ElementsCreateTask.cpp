#include <appconfig/utils/LiveNode.h>
#include <appdata/data/elements/ElementsCreateTask.h>
#include <appdata/data/elements/ElementsFactory.h>
#include <appdata/data/elements/parsers/CallParser.h>
#include <appdata/data/elements/utils/ElementPaths.h>
#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/data/entries/utils/RingOrder.h>
#include <appdata/DataTypeStrings.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/utils/CallMedium.h>
#include <notification/utils/ExceptionBarrier.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/ScopedLock.h>

#include <QUuid>
#include <QWriteLocker>

#include <optional>

namespace Tessellum::AppData::Data::Elements {

using Entries::Entry;
using Notification::CreateObserver;
using Notification::CreatePoint;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;
using Shared::Synchronization::ScopedLock;
using Storages::Storage;
using Storages::utils::CallMedium;

namespace {

template <class T>
bool Is(const QVariant &data)
{
    return data.userType() == qMetaTypeId<T>();
}

bool IsSingle(const QVariant &data)
{
    return Is<ElementUpdateData>(data) || Is<ElementDeserializeInformation>(data);
}

bool IsList(const QVariant &data)
{
    return Is<ElementUpdateDataList>(data) || Is<ElementsDeserializeInformation>(data);
}

quint32 NumberOf(const QVariant &data)
{
    if (IsSingle(data))
        return 1;
    if (Is<ElementUpdateDataList>(data))
        return quint32(data.value<ElementUpdateDataList>().size());
    if (Is<ElementsDeserializeInformation>(data))
        return quint32(data.value<ElementsDeserializeInformation>().size());
    return 0;
}

QVariant ElementsOf(const QVariant &data)
{
    return Is<ElementsCreateRequest>(data) ? data.value<ElementsCreateRequest>().elements : data;
}

std::function<void(bool)> CompletionOf(const QVariant &data)
{
    return Is<ElementsCreateRequest>(data) ? data.value<ElementsCreateRequest>().completion : nullptr;
}

void SetValueOfFresh(ElementData &data, const std::shared_ptr<QVariant> &parsed)
{
    if (parsed)
        data.parsedData = parsed;
    data.loadStatus = LoadStatus::Loaded;
}

} // namespace

bool ElementsCreateTask::Accepts(const QVariant &data)
{
    return IsSingle(data) || IsList(data) || Is<ElementsCreateRequest>(data);
}

ElementsCreateTask::ElementsCreateTask(const Examiners &createExaminer,
                                       const std::weak_ptr<HierarchyNode> &parent, const QString &taskPath,
                                       const QVariant &createData, const CreatePoint &waitPoint)
    : CreateTask(parent, taskPath, ElementsOf(createData))
    , examiner(createExaminer)
    , completion(CompletionOf(createData))
    , singleCreate(IsSingle(data))
    , tracker(std::dynamic_pointer_cast<Entry>(parent.lock()), NumberOf(data))
    , observer(
          makeObserver(waitPoint, [this](const ResultType &result) { handleCreateNotification(result); }))
{ }

ElementsCreateTask::~ElementsCreateTask()
{
    complete(false);
}

CreateObserver::ResultType ElementsCreateTask::runCreate()
{
    createdIds.clear();
    if (!singleCreate && !IsList(data)) {
        FrameworkLog().warning() << "ElementsCreateTask::runCreate() failed to convert the data into "
                                    "ElementCreateData, "
                                    "ElementCreateData or ElementsCreateData, no element(s) created";
        report(CreatePoint::Begin, false);
        return observer->getResult();
    }
    const auto parent = AppConfig::utils::LockLiveNode(root);
    if (!parent) {
        report(CreatePoint::Begin, false);
        return observer->getResult();
    }
    report(CreatePoint::Begin, true);
    bool created = false;
    Notification::utils::RunGuarded("ElementsCreateTask", [&] {
        created = singleCreate ? createElementInHierarchy(parent) : createElementsInHierarchy(parent);
    });
    report(CreatePoint::Done, created);
    return observer->getResult();
}

std::shared_ptr<CreateObserver> ElementsCreateTask::getObserver()
{
    return observer;
}

void ElementsCreateTask::report(CreatePoint point, bool success)
{
    if (point == CreatePoint::Done || !success) {
        // Before those who wait go on: the next value must find the places that this task no longer needs.
        tracker.finishAll();
        complete(success);
    }
    observer->report({point, success});
}

void ElementsCreateTask::complete(bool success)
{
    if (const auto function = std::exchange(completion, nullptr))
        function(success);
}

bool ElementsCreateTask::createElementInHierarchy(const std::shared_ptr<HierarchyNode> &parent)
{
    const auto entry = takeEntry("ElementsCreateTask::createElementInHierarchy()", parent);
    if (!entry)
        return false;
    return Is<ElementUpdateData>(data)
        ? createAndSerializeElementInHierarchy(entry, data.value<ElementUpdateData>())
        : createAndDeserializeElementInHierarchy(entry, data.value<ElementDeserializeInformation>());
}

bool ElementsCreateTask::createElementsInHierarchy(const std::shared_ptr<HierarchyNode> &parent)
{
    const auto entry = takeEntry("ElementsCreateTask::createElementsInHierarchy()", parent);
    if (!entry)
        return false;
    const auto createAll = [&entry](const auto &items, const auto &create) {
        bool created = items.isEmpty();
        for (const auto &item : items) {
            if (entry->isDeleteFlagSet())
                break; // nobody could find the others
            created = create(item) || created;
        }
        return created;
    };
    const bool created = Is<ElementUpdateDataList>(data)
        ? createAll(
            data.value<ElementUpdateDataList>(),
            [&](const ElementUpdateData &item) { return createAndSerializeElementInHierarchy(entry, item); })
        : createAll(data.value<ElementsDeserializeInformation>(),
                    [&](const ElementDeserializeInformation &item) {
                        return createAndDeserializeElementInHierarchy(entry, item);
                    });
    Entries::utils::PointRingAtOldest(*entry);
    return created;
}

ElementsCreateTask::EntryPtr ElementsCreateTask::takeEntry(const char *caller,
                                                           const std::shared_ptr<HierarchyNode> &parent)
{
    auto entry = std::dynamic_pointer_cast<Entry>(parent);
    if (!entry) {
        FrameworkLog().warning() << caller << " found incompatible data entry node!";
        return nullptr;
    }
    entryFacts = entry->copyData();
    entryFacts.serialize.addCounter = 0;
    entryFacts.serialize.pendingCreates.reset();
    return entry;
}

bool ElementsCreateTask::createAndSerializeElementInHierarchy(const EntryPtr &entry,
                                                              ElementUpdateData updateData)
{
    static const char *const caller = "ElementsCreateTask::createAndSerializeElementInHierarchy()";
    quint64 timestamp = 0;
    bool active = false;
    const bool hasRaw = updateData.contains(DataElementUpdateType::RawData);
    const bool hasParsed = updateData.contains(DataElementUpdateType::ParsedData);
    if (!updateData.getTimestamp(timestamp) || !updateData.getActive(active) || (!hasRaw && !hasParsed)) {
        FrameworkLog().warning() << caller << " entry uuid=" << entry->getId()
                                 << " called with invalid or missing element data values";
        return false;
    }
    const auto info = updateData.getInfo();
    const QString uuid = info && !info->uuid.isEmpty() ? info->uuid : QUuid::createUuid().toString();
    const auto element
        = makeElement(ElementData(ElementSerializeInformation{timestamp, active, entryFacts.serialize},
                                  ElementDeserializeInformation{uuid, entryFacts.deserialize}));
    if (!element) {
        FrameworkLog().warning() << caller << " failed to create element for "
                                 << "category="
                                 << ConvertDataEntryCategoryToString(entryFacts.serialize.category)
                                 << " combination not known to factory";
        return false;
    }

    ElementData &facts = element->dataLocked(); // nobody else knows the element yet
    const auto storage = entryFacts.deserialize.storage.lock();
    std::shared_ptr<QVariant> parsed;
    if (hasRaw) {
        QByteArray raw;
        if (facts.parser && updateData.getRawData(raw))
            parsed = Parsers::CallParse(caller, facts.parser, raw);
        else
            FrameworkLog().warning() << caller << " failed to load element=" << uuid
                                     << " could not load the initial raw data value";
    }
    if (hasParsed && !parsed) {
        parsed = std::make_shared<QVariant>(updateData.value(DataElementUpdateType::ParsedData));
        if (facts.parser && storage && !hasRaw) {
            const auto raw = Parsers::CallToRaw(caller, facts.parser, parsed);
            if (!raw) // the medium would keep an element without a value
                return false;
            updateData.setRawData(*raw);
        }
    }
    if (storage && !parsed)
        FrameworkLog().warning() << caller << " failed to load element=" << uuid
                                 << " could not retrieve the initial parsed data value";
    else
        SetValueOfFresh(facts, parsed);

    quint64 position = 0;
    const bool reportIndex = info && info->reportIndex;
    const auto write = [&] {
        CallMedium(caller, false, [&] {
            return storage->getImplementation()->serializeElement(entry->getId(), uuid, updateData);
        });
    };
    const bool added = addElementToEntryAsChild(entry, element, reportIndex ? &position : nullptr,
                                                storage ? std::function<void()>(write) : nullptr);
    if (reportIndex)
        info->index = added ? qint64(position) : -1;
    if (!added)
        return false;
    Entries::utils::AddElementReference(entry, element);
    createdIds.append(uuid);
    if (info)
        info->uuid = uuid;
    return true;
}

bool ElementsCreateTask::createAndDeserializeElementInHierarchy(
    const EntryPtr &entry, const ElementDeserializeInformation &information)
{
    static const char *const caller = "ElementsCreateTask::createAndDeserializeElementInHierarchy()";
    const auto &uuid = information.uuid;
    if (uuid.isEmpty() || information.entry.uuid.isEmpty() || information.entry.storage.expired()) {
        FrameworkLog().warning() << caller
                                 << " the provided deserialize information is empty, nothing to deserialize";
        return false;
    }
    const auto storage = information.entry.storage.lock();
    if (!storage) {
        FrameworkLog().warning() << caller
                                 << " could not get the storage for serialization for element=" << uuid;
        return false;
    }
    ElementUpdateData values;
    const LoadDataHint hint = information.entry.loadDataHint;
    if (!CallMedium(caller, false, [&] {
            return storage->getImplementation()->deserializeElement(information.entry.uuid, uuid, values,
                                                                    hint);
        })) {
        FrameworkLog().warning() << caller << " could not deserialize element=" << uuid
                                 << " from storage=" << storage->getName();
        return false;
    }
    quint64 timestamp = 0;
    bool active = false;
    if (!values.getActive(active) || !values.getTimestamp(timestamp)) {
        FrameworkLog().warning() << caller << " could not read data for element=" << uuid
                                 << " from element update data instance";
        return false;
    }
    const auto element = makeElement(
        ElementData(ElementSerializeInformation{timestamp, active, entryFacts.serialize}, information));
    if (!element)
        return false;
    if (hint == LoadDataHint::LoadAtOnce) {
        ElementData &facts = element->dataLocked(); // nobody else knows the element yet
        QByteArray raw;
        if (!facts.parser || !values.getRawData(raw)) {
            FrameworkLog().warning() << caller << " failed to load element=" << uuid
                                     << " could not load the initial raw data value";
            return false;
        }
        const auto parsed = Parsers::CallParse(caller, facts.parser, raw);
        if (!parsed) {
            FrameworkLog().warning() << caller << " failed to load element=" << uuid
                                     << " could not retrieve the initial parsed data value";
            return false;
        }
        SetValueOfFresh(facts, parsed);
    }
    if (!addElementToEntryAsChild(entry, element, nullptr, nullptr)
        || !Entries::utils::AddElementReference(entry, element))
        return false;
    createdIds.append(uuid);
    return true;
}

ElementsCreateTask::ElementPtr ElementsCreateTask::makeElement(const ElementData &elementData) const
{
    // A creator may ask the application for a parser.
    return Parsers::GuardParser<ElementPtr>("ElementsCreateTask::makeElement()", [&] {
        return ElementsFactory::getInstance()->create(entryFacts.serialize.category, elementData);
    });
}

/*! \a write stores the element on its medium and runs before anybody can change it there. */
bool ElementsCreateTask::addElementToEntryAsChild(const EntryPtr &entry, const ElementPtr &element,
                                                  quint64 *position, const std::function<void()> &write)
{
    bool added = false;
    const Entry::LateAnnouncements announcements; // come when no lock is held
    std::optional<QWriteLocker> changes;
    {
        // The place that was reserved becomes a child in one step, or an add in between would count it twice.
        // A strategy asks the entry for what it judges, so that it waits until the element is there.
        const ScopedLock lock(entry);
        element->setMemoryStrategyWrapper(entry->getMemoryStrategyWrapper());
        added = entry->addChild(element, position);
        tracker.finishOne();
        if (added && write)
            changes.emplace(&element->dataLock());
    }
    if (!added) {
        FrameworkLog().warning() << "ElementsCreateTask::addElementToEntryAsChild() failed to add element="
                                 << element->getId() << " to the entry=" << entry->getId()
                                 << " as reference=" << 0;
        return false;
    }
    if (write)
        write();
    return true;
}

void ElementsCreateTask::handleCreateNotification(const ResultType &result) const
{
    // At the beginning nobody knows the elements yet.
    if (result.first != CreatePoint::Done || !examiner || examiner->isEmpty())
        return;
    const auto entry = std::dynamic_pointer_cast<Entry>(root.lock());
    for (const QString &id : createdIds)
        utils::NotifyPaths(examiner, utils::ElementPaths(entry, id), result.first, result.second);
}

} // namespace Tessellum::AppData::Data::Elements
