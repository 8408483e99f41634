#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementManipulationProvider.h>
#include <appdata/data/elements/ElementReference.h>
#include <appdata/data/elements/ElementsCreateTask.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/utils/ElementJobs.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/utils/CallMedium.h>
#include <appdata/utils/RepositoryProvider.h>

#include <QSet>
#include <QWriteLocker>

namespace Tessellum::AppData::Data::Entries::utils {

using AppData::utils::RepositoryProvider;
using Elements::Element;
using Elements::ElementInfo;
using Elements::ElementReference;
using Elements::ElementsCreateRequest;
using Elements::ElementUpdateData;
using Elements::ElementUpdateDataList;

namespace {

/*! The element itself, also for what a pair has in its place. */
std::shared_ptr<Element> ElementOf(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &child)
{
    if (const auto reference = std::dynamic_pointer_cast<ElementReference>(child))
        return std::dynamic_pointer_cast<Element>(reference->getTarget());
    return std::dynamic_pointer_cast<Element>(child);
}

ElementUpdateData CopyOf(const std::shared_ptr<Element> &element)
{
    const auto info = std::make_shared<ElementInfo>();
    info->uuid = element->getId();
    ElementUpdateData copy(info);
    const auto provider = element->copyParser() ? element->getManipulationProvider() : nullptr;
    bool isLoaded = false;
    {
        // In one hold, or an overwrite in between would give the stamp of one value to another.
        const QWriteLocker lock(&element->dataLock());
        const Elements::ElementData &data = element->dataLocked();
        copy.setActive(data.serialize.active);
        copy.setTimestamp(data.serialize.timestamp);
        const auto &origin = data.deserialize;
        const auto storage = origin.entry.storage.lock();
        if (!provider && storage) {
            // Nothing has ever been parsed: the value is on the medium alone.
            copy.setRawData(
                Storages::utils::CallMedium("EntryCreateTask::copyElementsFromSource()", QByteArray(), [&] {
                    return storage->getImplementation()->getElementRawData(origin.entry.uuid, origin.uuid);
                }));
        } else {
            if (provider)
                provider->performCommandLocked(ElementCommand::Load, isLoaded);
            copy.setParsedData(*data.parsedData); // empty where it could not be read
        }
    }
    if (isLoaded)
        provider->emitLoadChange(ElementCommand::Load);
    return copy;
}

} // namespace

void StartElementJob(const std::shared_ptr<Entry> &entry, const QVariant &elements)
{
    const auto setStatus = [entry](bool success) {
        if (!entry->isDeleteFlagSet())
            entry->setLoadStatus(success ? LoadStatus::Loaded : LoadStatus::NotLoaded);
    };
    const auto observer = RepositoryProvider::getInstance()->getThreadPool().startCreateTask(
        entry, QString(), QVariant::fromValue(ElementsCreateRequest{elements, setStatus}),
        Notification::CreatePoint::All);
    if (!observer)
        setStatus(false); // a stopped pool makes no task that would do so
}

ElementUpdateDataList CopiesOfElements(Entry &source, const Entry &destination, const QStringList &uuids)
{
    const QSet<QString> wanted(uuids.cbegin(), uuids.cend());
    ElementUpdateDataList copies;
    for (const auto &child : source.getChildren(false)) {
        const auto element = ElementOf(child);
        if (element && wanted.contains(element->getId()) && !destination.hasChild(element->getId()))
            copies.append(CopyOf(element));
    }
    return copies;
}

} // namespace Tessellum::AppData::Data::Entries::utils
