#include <appconfig/utils/LiveNode.h>
#include <appdata/data/elements/ElementManipulationProvider.h>
#include <appdata/data/elements/ElementUpdateTask.h>
#include <appdata/data/elements/parsers/CallParser.h>
#include <appdata/data/elements/utils/ElementPaths.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/utils/ElementTimeIndex.h>
#include <appdata/memory_strategy/MemoryStrategyWrapper.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/utils/CallMedium.h>
#include <notification/utils/ExceptionBarrier.h>
#include <shared/logging/FrameworkLog.h>

#include <QWriteLocker>

namespace Tessellum::AppData::Data::Elements {

using Entries::Entry;
using Notification::UpdateObserver;
using Notification::UpdatePoint;
using Notification::UpdateResult;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;

/*! One run of the task, from the taking of the element's lock to the reports after it. */
struct ElementUpdateTask::Change
{
    ElementPtr element;
    std::shared_ptr<ElementManipulationProvider>
        provider; // fetched before the lock, which comes after the node's
    std::shared_ptr<Entry> entry;
    QList<ResultType> reports;
    bool unloaded = false; // the value of before; its signal is due
    bool restamped = false;
    bool failed = false;

    ElementData &data() const { return element->dataLocked(); }

    bool note(const UpdatePoint &point, bool success)
    {
        reports.append({point, success ? UpdateResult::Ok : UpdateResult::ApplyFailed});
        return success;
    }
};

ElementUpdateTask::ElementUpdateTask(const Examiners &updateExaminer,
                                     const std::weak_ptr<HierarchyNode> &element, const QVariant &newValue,
                                     const UpdatePoint &waitPoint)
    : UpdateTask(element, newValue)
    , examiner(updateExaminer)
    , observer(
          makeObserver(waitPoint, [this](const ResultType &report) { handleUpdateNotification(report); }))
{ }

std::shared_ptr<UpdateObserver> ElementUpdateTask::getObserver()
{
    return observer;
}

UpdateObserver::ResultType ElementUpdateTask::runUpdate()
{
    const auto end = [this](const ResultType &last) {
        observer->report(last);
        return observer->getResult();
    };

    const auto target = AppConfig::utils::LockLiveNode(node);
    Change change;
    change.element = std::dynamic_pointer_cast<Element>(target);
    if (change.element)
        change.entry = std::dynamic_pointer_cast<Entry>(change.element->getParent());
    owner = change.entry;
    if (value.userType() != qMetaTypeId<ElementUpdateData>())
        return end({UpdatePoint::Check, UpdateResult::CheckFailed});
    observer->report({UpdatePoint::Check, UpdateResult::Ok});
    if (!target)
        return end({UpdatePoint::Check, UpdateResult::NodeGone});
    if (!change.element)
        return end({UpdatePoint::Apply, UpdateResult::NodeGone});
    // An element that is still held after its entry was unloaded or removed: the medium may know the entry,
    // and the one that is attached next would not hear of the change.
    if (!change.entry || change.entry->isDeleteFlagSet())
        return end({UpdatePoint::Check, UpdateResult::NodeGone});

    updateData = value.value<ElementUpdateData>();
    change.failed = true; // unless it comes through
    Notification::utils::RunGuarded("ElementUpdateTask", [&] { apply(change); });
    if (change.unloaded)
        change.provider->emitLoadChange(ElementCommand::Unload);
    if (change.restamped && change.entry)
        change.entry->getMemoryStrategyWrapper()->announceElement(change.element->getId());
    if (!change.failed)
        fillInfo(change);
    else if (change.reports.isEmpty() || change.reports.constLast().second == UpdateResult::Ok)
        change.note(UpdatePoint::Apply, false); // something has been thrown
    for (const ResultType &report : qAsConst(change.reports))
        observer->report(report);
    return observer->getResult();
}

void ElementUpdateTask::apply(Change &change)
{
    const bool hasValue = updateData.contains(DataElementUpdateType::RawData)
        || updateData.contains(DataElementUpdateType::ParsedData);
    if (hasValue)
        change.provider = change.element->getManipulationProvider();
    const QWriteLocker lock(&change.element->dataLock());
    const ElementData &data = change.data();
    previous.setActive(data.serialize.active);
    previous.setTimestamp(data.serialize.timestamp);
    if (hasValue && data.loadStatus == LoadStatus::Loaded)
        previous.setParsedData(*data.parsedData);
    for (const DataElementUpdateType &type : updateData.getUpdateTypes()) {
        if (!applyType(change, type))
            return;
    }
    change.failed = !change.note(UpdatePoint::Done, writeToMedium(change));
}

bool ElementUpdateTask::applyType(Change &change, const DataElementUpdateType &type)
{
    switch (type) {
    case DataElementUpdateType::Active:
        return activeUpdate(change) || change.note(UpdatePoint::Apply, false);
    case DataElementUpdateType::Timestamp:
        return timestampUpdate(change) || change.note(UpdatePoint::Apply, false);
    case DataElementUpdateType::RawData:
        return change.note(UpdatePoint::Apply, rawDataUpdate(change));
    case DataElementUpdateType::ParsedData:
        return change.note(UpdatePoint::Apply, parsedDataUpdate(change));
    case DataElementUpdateType::Unknown:
        break;
    }
    FrameworkLog().warning()
        << "ElementUpdateTask::runUpdate() requested unkown update type for data element="
        << change.element->getId();
    return change.note(UpdatePoint::Apply, false);
}

bool ElementUpdateTask::activeUpdate(const Change &change)
{
    if (updateData.getActive(change.data().serialize.active))
        return true;
    FrameworkLog().warning()
        << "ElementUpdateTask::runUpdate::activeUpdate updating active state for element="
        << change.element->getId() << " failed";
    return false;
}

bool ElementUpdateTask::timestampUpdate(Change &change)
{
    quint64 timestamp = 0;
    if (!updateData.getTimestamp(timestamp)) {
        FrameworkLog().warning()
            << "ElementUpdateTask::runUpdate::timestampUpdate updating time stamp for element="
            << change.element->getId() << " failed";
        return false;
    }
    change.restamped = timestamp != change.data().serialize.timestamp;
    change.data().serialize.timestamp = timestamp;
    // Within the same hold, or two updates could leave an index that says otherwise.
    if (change.restamped && change.entry)
        change.entry->timeIndex().move(change.element.get(), timestamp);
    return true;
}

bool ElementUpdateTask::rawDataUpdate(Change &change)
{
    const bool unloaded = unload(change);
    const auto &parser = change.data().parser;
    if (!parser && !change.data().deserialize.entry.storage.expired()) {
        // Without a parser the bytes are on the medium alone; a read may have left the element loading.
        change.data().loadStatus = LoadStatus::NotLoaded;
        return true;
    }
    if (!unloaded) {
        FrameworkLog().warning() << "ElementUpdateTask::runUpdate::rawDataUpdate updating data for element="
                                 << change.element->getId() << " failed, old data not unloaded";
        return false;
    }
    QByteArray raw;
    if (!parser || !updateData.getRawData(raw))
        return false;
    const auto parsed = Parsers::CallParse("ElementUpdateTask::rawDataUpdate()", parser, raw);
    if (!parsed)
        return false;
    setParsed(change, parsed);
    return true;
}

bool ElementUpdateTask::parsedDataUpdate(Change &change)
{
    const auto &parser = change.data().parser;
    if (!unload(change) && parser) {
        FrameworkLog().warning() << "ElementUpdateTask::runUpdate::rawDataUpdate updating data for element="
                                 << change.element->getId() << " failed, old data not unloaded";
        return false;
    }
    const QVariant given = updateData.value(DataElementUpdateType::ParsedData);
    if (!given.isValid())
        return false;
    const auto parsed = std::make_shared<QVariant>(given);
    if (parser && !change.data().deserialize.entry.storage.expired()) {
        const auto raw = Parsers::CallToRaw("ElementUpdateTask::parsedDataUpdate()", parser, parsed);
        if (!raw)
            return false;
        updateData.setRawData(*raw);
    }
    setParsed(change, parsed);
    return true;
}

bool ElementUpdateTask::unload(Change &change) const
{
    bool changed = false;
    change.provider->performCommandLocked(ElementCommand::Unload, changed);
    change.unloaded = change.unloaded || changed;
    return change.data().loadStatus == LoadStatus::NotLoaded;
}

void ElementUpdateTask::setParsed(const Change &change, const std::shared_ptr<QVariant> &parsed) const
{
    change.data().parsedData = parsed;
    change.data().loadStatus = LoadStatus::Loaded;
    // Loaded again: the strategy decides over this value as it did over the one of before.
    change.provider->connectStrategyLocked();
}

bool ElementUpdateTask::writeToMedium(const Change &change) const
{
    const auto &from = change.data().deserialize;
    const auto storage = from.entry.storage.lock();
    return !storage || Storages::utils::CallMedium("ElementUpdateTask::runUpdate()", false, [&] {
        return storage->getImplementation()->updateElement(from.entry.uuid, from.uuid, updateData);
    });
}

void ElementUpdateTask::fillInfo(const Change &change) const
{
    const auto info = updateData.getInfo();
    if (!info)
        return;
    info->uuid = change.element->getId();
    if (!info->reportIndex)
        return;
    quint64 position = 0;
    info->index = change.entry && change.entry->hasChild(change.element, &position) ? qint64(position) : -1;
}

void ElementUpdateTask::handleUpdateNotification(const ResultType &result) const
{
    if (!examiner || examiner->isEmpty())
        return;
    const auto element = node.lock();
    const auto entry = owner.lock();
    if (!element || element->isDeleteFlagSet() || !entry)
        return; // off the tree it has lost the paths that handlers know it by
    utils::NotifyPaths(examiner, utils::ElementPaths(entry, element->getId()), result.first, result.second,
                       QVariant::fromValue(previous), value);
}

} // namespace Tessellum::AppData::Data::Elements
