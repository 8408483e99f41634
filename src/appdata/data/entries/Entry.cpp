#include <appdata/data/elements/Element.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/EntryManipulationProvider.h>
#include <appdata/data/entries/EntryMemoryStrategyProvider.h>
#include <appdata/data/entries/EntryQueryProvider.h>
#include <appdata/data/entries/utils/ElementTimeIndex.h>
#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/utils/LoadStatusMirror.h>
#include <appdata/utils/PinnedInterface.h>
#include <shared/synchronization/ScopedLock.h>

namespace Tessellum::AppData::Data::Entries {

using AppData::utils::LoadStatusMirror;
using AppData::utils::PinnedInterface;
using Elements::Element;
using Shared::Hierarchy::HierarchyNode;
using Shared::Synchronization::ScopedLock;

namespace {

thread_local Entry::LateAnnouncements *lateAnnouncements = nullptr;

} // namespace

Entry::Entry(const EntryData &entryData)
    : HierarchyNodeInstance(entryData.deserialize.uuid)
    , EntryProvider(entryData, *this)
    , AppDataRepositoryEventThreadUser(this)
    , elementTimes(std::make_unique<utils::ElementTimeIndex>())
    , queryProvider(std::make_shared<EntryQueryProvider>(this))
    , manipulationProvider(std::make_shared<EntryManipulationProvider>(this))
    , memoryStrategyProvider(std::make_shared<EntryMemoryStrategyProvider>(this))
{ }

Entry::~Entry() = default;

std::shared_ptr<const Interfaces::DataEntryManipulationInterface> Entry::getManipulationInterface() const
{
    return PinnedInterface<const Interfaces::DataEntryManipulationInterface>(*this,
                                                                             manipulationProvider.get());
}

std::shared_ptr<Interfaces::DataEntryManipulationInterface> Entry::getManipulationInterface()
{
    return PinnedInterface<Interfaces::DataEntryManipulationInterface>(*this, manipulationProvider.get());
}

std::shared_ptr<const Interfaces::DataEntryQueryInterface> Entry::getQueryInterface() const
{
    return PinnedInterface<const Interfaces::DataEntryQueryInterface>(*this, queryProvider.get());
}

std::shared_ptr<Interfaces::DataEntryQueryInterface> Entry::getQueryInterface()
{
    return PinnedInterface<Interfaces::DataEntryQueryInterface>(*this, queryProvider.get());
}

std::shared_ptr<const Interfaces::DataEntryMemoryStrategyInterface> Entry::getMemoryStrategyInterface() const
{
    return PinnedInterface<const Interfaces::DataEntryMemoryStrategyInterface>(*this,
                                                                               memoryStrategyProvider.get());
}

std::shared_ptr<Interfaces::DataEntryMemoryStrategyInterface> Entry::getMemoryStrategyInterface()
{
    return PinnedInterface<Interfaces::DataEntryMemoryStrategyInterface>(*this, memoryStrategyProvider.get());
}

bool Entry::setLoadStatus(const LoadStatus &status)
{
    std::shared_ptr<LoadStatusMirror> shown;
    LoadStatus old = LoadStatus::Unknown;
    bool taken = false;
    {
        const ScopedLock lock(this);
        if (!mirror)
            mirror = std::make_shared<LoadStatusMirror>(weak_from_this());
        shown = mirror;
        old = EntryProvider::getLoadStatus();
        taken = EntryProvider::setLoadStatus(status);
    }
    shown->publish(old, taken ? status : old);
    return taken;
}

bool Entry::addChild(const std::shared_ptr<HierarchyNode> &child, quint64 *index)
{
    const bool added = HierarchyNodeInstance::addChild(child, index);
    if (!added && index)
        *index = ~0ULL;
    return added;
}

void Entry::childEntered(const std::shared_ptr<HierarchyNode> &child)
{
    // In one step with the entry, so that the index by time stamp has the order of the children.
    const auto element = std::dynamic_pointer_cast<Element>(child);
    if (element && elementTimes->insert(element, element->getTimestamp()))
        ++dataLocked().serialize.addCounter;
}

void Entry::announceChild(const QString &childId)
{
    if (lateAnnouncements)
        lateAnnouncements->added.append({self(), childId});
    else
        HierarchyNodeInstance::announceChild(childId);
}

Entry::LateAnnouncements::LateAnnouncements()
{
    lateAnnouncements = this;
}

Entry::LateAnnouncements::~LateAnnouncements()
{
    lateAnnouncements = nullptr;
    for (const auto &[entry, childId] : qAsConst(added))
        static_cast<Entry &>(*entry).announceChild(childId);
}

std::shared_ptr<MemoryStrategies::MemoryStrategyWrapper> Entry::getMemoryStrategyWrapper() const
{
    return memoryStrategyProvider->getWrapper();
}

std::shared_ptr<Storages::Storage> Entry::getStorage() const
{
    const ScopedLock lock(this);
    return dataLocked().deserialize.storage.lock();
}

QString Entry::getPairPath() const
{
    const ScopedLock lock(this);
    const EntrySerializeInformation &record = dataLocked().serialize;
    return utils::PairPath(record.classification, record.name);
}

} // namespace Tessellum::AppData::Data::Entries
