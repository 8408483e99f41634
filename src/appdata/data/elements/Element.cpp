#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementManipulationProvider.h>
#include <appdata/data/elements/ElementQueryProvider.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/utils/ElementTimeIndex.h>
#include <appdata/memory_strategy/MemoryStrategyWrapper.h>
#include <appdata/utils/PinnedInterface.h>
#include <notification/utils/MakeNode.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/ScopedLock.h>

namespace Tessellum::AppData::Data::Elements {

using AppData::utils::PinnedInterface;
using Shared::Hierarchy::HierarchyNode;
using Shared::Synchronization::ScopedLock;

Element::Element(const ElementData &elementData,
                 const std::shared_ptr<Interfaces::DataElementParserInterface> &parser)
    : HierarchyNodeInstance(elementData.deserialize.uuid)
    , AppDataRepositoryEventThreadUser(this)
    , data(elementData)
{
    data.parser = parser;
}

Element::~Element() = default;

QString Element::getUuid() const
{
    return getId();
}

std::shared_ptr<const Interfaces::DataElementQueryInterface> Element::getQueryInterface() const
{
    // Loads on demand, so that a read may change the element.
    return const_cast<Element *>(this)->getQueryInterface();
}

std::shared_ptr<Interfaces::DataElementQueryInterface> Element::getQueryInterface()
{
    const ScopedLock lock(this);
    if (!queryProvider)
        queryProvider = std::make_shared<ElementQueryProvider>(this);
    return PinnedInterface<Interfaces::DataElementQueryInterface>(*this, queryProvider.get());
}

std::shared_ptr<const Interfaces::DataElementManipulationInterface> Element::getManipulationInterface() const
{
    return const_cast<Element *>(this)->getManipulationProvider();
}

std::shared_ptr<Interfaces::DataElementManipulationInterface> Element::getManipulationInterface()
{
    return getManipulationProvider();
}

std::shared_ptr<ElementManipulationProvider> Element::getManipulationProvider()
{
    const ScopedLock lock(this);
    if (!manipulationProvider) {
        manipulationProvider = Notification::utils::MakeEventThreadObject<ElementManipulationProvider>(this);
    }
    return PinnedInterface(*this, manipulationProvider.get());
}

bool Element::setMemoryStrategyWrapper(
    const std::shared_ptr<MemoryStrategies::MemoryStrategyWrapper> &wrapper)
{
    if (!wrapper) {
        Shared::Logging::FrameworkLog().warning() << "Element::setMemoryStrategyWrapper() invalid memory "
                                                     "strategy wrapper provided, no strategy set";
    }
    // What is not loaded, or never had a strategy, is not connected and goes without a provider.
    const bool isWatched = wrapper && wrapper->expectsStrategy();
    auto provider
        = isWatched && getLoadStatus() == LoadStatus::Loaded ? getManipulationProvider() : madeProvider();
    for (;;) {
        {
            const QWriteLocker lock(data.lock.get());
            const bool connects = isWatched && data.loadStatus == LoadStatus::Loaded;
            if (provider || !connects) {
                if (provider)
                    provider->disconnectStrategyLocked();
                data.memoryStrategy = wrapper;
                return !connects || provider->connectStrategyLocked();
            }
        }
        // Another thread has loaded it meanwhile; the node's lock comes before that of the data.
        provider = getManipulationProvider();
        if (!provider)
            return false; // the node is about to die
    }
}

std::shared_ptr<ElementManipulationProvider> Element::madeProvider()
{
    const ScopedLock lock(this);
    return manipulationProvider ? PinnedInterface(*this, manipulationProvider.get()) : nullptr;
}

ElementData Element::copyData() const
{
    const QReadLocker lock(data.lock.get());
    return data;
}

std::shared_ptr<Interfaces::DataElementParserInterface> Element::copyParser() const
{
    const QReadLocker lock(data.lock.get());
    return data.parser;
}

quint64 Element::getTimestamp() const
{
    const QReadLocker lock(data.lock.get());
    return data.serialize.timestamp;
}

bool Element::isActive() const
{
    const QReadLocker lock(data.lock.get());
    return data.serialize.active;
}

LoadStatus Element::getLoadStatus() const
{
    const QReadLocker lock(data.lock.get());
    return data.loadStatus;
}

bool Element::setParent(const std::weak_ptr<HierarchyNode> &newParent, const bool &silent)
{
    const auto oldParent = std::dynamic_pointer_cast<Entries::Entry>(getParent());
    const bool result = HierarchyNodeInstance::setParent(newParent, silent);
    if (oldParent && getParent() != oldParent)
        oldParent->timeIndex().remove(this);
    return result;
}

} // namespace Tessellum::AppData::Data::Elements
