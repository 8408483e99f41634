#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementManipulationProvider.h>
#include <appdata/data/elements/parsers/CallParser.h>
#include <appdata/memory_strategy/MemoryStrategyWrapper.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/utils/CallMedium.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/PoolWait.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppData::Data::Elements {

using Interfaces::MemoryStrategyInterface;
using Notification::UpdatePoint;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;
using UpdateHandle = ElementManipulationProvider::UpdateHandle;

namespace {

Notification::ThreadPool &pool()
{
    return AppData::utils::RepositoryProvider::getInstance()->getThreadPool();
}

/*! Whether the change was taken: with UpdatePoint::All it has to be started, no more. */
bool changed(const UpdateHandle &handle, const UpdatePoint &point)
{
    return point == UpdatePoint::All ? handle != nullptr
                                     : Notification::utils::WaitForSuccess(pool(), handle);
}

} // namespace

ElementManipulationProvider::ElementManipulationProvider(Element *changedElement)
    : AppDataRepositoryEventThreadUser(this)
    , element(changedElement)
{ }

ElementManipulationProvider::~ElementManipulationProvider() = default;

bool ElementManipulationProvider::setActive(const bool &active, const UpdatePoint &point)
{
    return changed(startSetActive(active, point), point);
}

bool ElementManipulationProvider::setTimestamp(const quint64 &timestamp, const UpdatePoint &point)
{
    return changed(startSetTimestamp(timestamp, point), point);
}

bool ElementManipulationProvider::setData(const ElementValueKind &kind, const QVariant &value,
                                          const UpdatePoint &point)
{
    return changed(startSetData(kind, value, point), point);
}

bool ElementManipulationProvider::setValues(const ElementValueKind &kind, const QVariant &value,
                                            const quint64 &timestamp, const bool &active,
                                            const UpdatePoint &point)
{
    return changed(startSetValues(kind, value, timestamp, active, point), point);
}

bool ElementManipulationProvider::performCommand(const ElementCommand &command)
{
    bool isChanged = false;
    bool result = false;
    {
        const QWriteLocker lock(&element->dataLock());
        result = performCommandLocked(command, isChanged);
    }
    if (isChanged)
        emitLoadChange(command);
    return result;
}

UpdateHandle ElementManipulationProvider::startSetActive(const bool &active, const UpdatePoint &point)
{
    ElementUpdateData data;
    data.setActive(active);
    return startUpdate(data, point);
}

UpdateHandle ElementManipulationProvider::startSetTimestamp(const quint64 &timestamp,
                                                            const UpdatePoint &point)
{
    ElementUpdateData data;
    data.setTimestamp(timestamp);
    return startUpdate(data, point);
}

UpdateHandle ElementManipulationProvider::startSetData(const ElementValueKind &kind, const QVariant &value,
                                                       const UpdatePoint &point)
{
    ElementUpdateData data;
    return takeRawData(kind, value, data) ? startUpdate(data, point) : nullptr;
}

UpdateHandle ElementManipulationProvider::startSetValues(const ElementValueKind &kind, const QVariant &value,
                                                         const quint64 &timestamp, const bool &active,
                                                         const UpdatePoint &point)
{
    ElementUpdateData data;
    data.setActive(active);
    data.setTimestamp(timestamp);
    return takeRawData(kind, value, data) ? startUpdate(data, point) : nullptr;
}

UpdateHandle ElementManipulationProvider::startUpdate(const ElementUpdateData &data, const UpdatePoint &point)
{
    return pool().startUpdateTask(element->weak_from_this(), QVariant::fromValue(data), point);
}

bool ElementManipulationProvider::takeRawData(const ElementValueKind &kind, const QVariant &value,
                                              ElementUpdateData &data) const
{
    if (kind == ElementValueKind::ParsedValue) {
        const auto parser = element->copyParser();
        if (!parser) {
            FrameworkLog().warning()
                << "ElementManipulationProvider::setData() no parser set, cannot set raw data";
            return false;
        }
        const auto raw = Parsers::CallToRaw("ElementManipulationProvider::setData()", parser,
                                            std::make_shared<QVariant>(value));
        if (raw)
            data.setRawData(*raw);
        return raw.has_value();
    }
    if (!value.canConvert<QByteArray>()) {
        FrameworkLog().warning() << "ElementManipulationProvider::setData() could not retrieve raw data "
                                    "from given variant with type name="
                                 << value.typeName();
        return false;
    }
    data.setRawData(value.toByteArray());
    return true;
}

bool ElementManipulationProvider::performCommandLocked(const ElementCommand &command, bool &isChanged)
{
    ElementData &data = element->dataLocked();
    switch (command) {
    case ElementCommand::Load:
        if (data.loadStatus != LoadStatus::NotLoaded)
            return data.loadStatus == LoadStatus::Loaded;
        data.loadStatus = LoadStatus::CurrentlyLoading;
        if (!data.parser) {
            FrameworkLog().warning() << "ElementManipulationProvider::performCommand() no parser set, "
                                        "cannot perform load command";
            return false; // for good: nobody can load it
        }
        isChanged = loadParsedDataLocked();
        data.loadStatus = isChanged ? LoadStatus::Loaded : LoadStatus::NotLoaded;
        return isChanged;
    case ElementCommand::Unload:
        if (data.loadStatus != LoadStatus::Loaded)
            return data.loadStatus == LoadStatus::NotLoaded;
        data.loadStatus = LoadStatus::CurrentlyUnloading;
        data.parsedData = std::make_shared<QVariant>();
        disconnectStrategyLocked();
        data.loadStatus = LoadStatus::NotLoaded;
        isChanged = true;
        return true;
    case ElementCommand::Unknown:
        break;
    }
    FrameworkLog().warning() << "Element::performCommand() called with unsupported command="
                             << static_cast<quint32>(command);
    return false;
}

void ElementManipulationProvider::emitLoadChange(const ElementCommand &command)
{
    if (command == ElementCommand::Load)
        Q_EMIT dataLoaded();
    else
        Q_EMIT dataUnloaded();
}

bool ElementManipulationProvider::loadParsedDataLocked()
{
    ElementData &data = element->dataLocked();
    if (!data.parser) {
        FrameworkLog().warning()
            << "ElementManipulationProvider::parseRawData() no parser set, cannot set raw data";
        return false;
    }
    if (!connectStrategyLocked())
        return false;
    QByteArray raw;
    if (const auto storage = data.deserialize.entry.storage.lock()) {
        raw = Storages::utils::CallMedium("ElementManipulationProvider::loadParsedData()", QByteArray(), [&] {
            return storage->getImplementation()->getElementRawData(data.deserialize.entry.uuid,
                                                                   data.deserialize.uuid);
        });
    }
    const auto value = Parsers::CallParse("ElementManipulationProvider::loadParsedData()", data.parser, raw);
    if (!value) {
        FrameworkLog().warning() << "ElementManipulationProvider::loadParsedData() failed to parse raw data";
        disconnectStrategyLocked();
        return false;
    }
    data.parsedData = value;
    return true;
}

bool ElementManipulationProvider::connectStrategyLocked()
{
    const auto &wrapper = element->dataLocked().memoryStrategy;
    if (!wrapper || strategyConnection)
        return true;
    strategyConnection = connect(wrapper.get(), &MemoryStrategies::MemoryStrategy::invalidated, this,
                                 &ElementManipulationProvider::onMemoryStrategyInvalidated);
    return bool(strategyConnection);
}

void ElementManipulationProvider::disconnectStrategyLocked()
{
    // By its handle: by sender and receiver the connections of all elements of the entry would be walked.
    disconnect(std::exchange(strategyConnection, QMetaObject::Connection()));
}

void ElementManipulationProvider::onMemoryStrategyInvalidated()
{
    // The element may be about to die on another thread.
    const auto node = element->weak_from_this().lock();
    if (!node)
        return;
    std::shared_ptr<MemoryStrategies::MemoryStrategyWrapper> wrapper;
    {
        const QReadLocker lock(&element->dataLock());
        wrapper = element->dataLocked().memoryStrategy;
    }
    if (wrapper && wrapper->evaluate(element->getId()) == MemoryStrategyInterface::Unload)
        performCommand(ElementCommand::Unload);
}

} // namespace Tessellum::AppData::Data::Elements
