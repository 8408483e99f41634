#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/parsers/CallParser.h>
#include <appdata/data/elements/parsers/ElementParserFactory.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/EntryManipulationProvider.h>
#include <appdata/DataTypeStrings.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/PoolWait.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/ScopedLock.h>

#include <QUuid>

namespace Tessellum::AppData::Data::Entries {

using AppData::utils::RepositoryProvider;
using Elements::ElementInfo;
using Elements::ElementUpdateData;
using Notification::CreateObserver;
using Notification::CreatePoint;
using Notification::UpdateObserver;
using Notification::UpdatePoint;
using Notification::utils::WaitForSuccess;
using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;
using Shared::Synchronization::ScopedLock;

/*! What was started for a value, and what is known of it without waiting. */
struct EntryManipulationProvider::Addition
{
    QString uuid;
    qint64 index = -1;
    std::shared_ptr<CreateObserver> create;
    std::shared_ptr<UpdateObserver> update;

    bool wait(Notification::ThreadPool &pool) const
    {
        return create ? WaitForSuccess(pool, create) : WaitForSuccess(pool, update);
    }
};

namespace {

Notification::ThreadPool &Pool()
{
    return RepositoryProvider::getInstance()->getThreadPool();
}

} // namespace

EntryManipulationProvider::EntryManipulationProvider(Entry *changedEntry)
    : entry(changedEntry)
{ }

EntryManipulationProvider::~EntryManipulationProvider() = default;

QString EntryManipulationProvider::addDataElementValue(const quint64 &timestamp, const ElementValueKind &kind,
                                                       const QVariant &value, const CreatePoint &point,
                                                       qint64 *index)
{
    const auto info = std::make_shared<ElementInfo>();
    info->reportIndex = index != nullptr;
    info->uuid = QUuid::createUuid().toString();
    const QString freshUuid = info->uuid;
    ElementUpdateData data(info);
    data.setActive(true);
    data.setTimestamp(timestamp);
    data.setValue(kind, value);

    const Addition addition = startAddition(data, freshUuid, point);
    const bool started = addition.create || addition.update;
    const bool taken = started && (point == CreatePoint::All || addition.wait(Pool()));
    if (index) {
        // A task that is not over still writes into the record.
        const bool isCreated = taken && addition.create && point == CreatePoint::Done;
        *index = isCreated ? info->index : taken ? addition.index : -1;
    }
    return taken ? addition.uuid : QString();
}

/*! The test of the capacity and the reservation of a place, by the start of the task, are one step. */
EntryManipulationProvider::Addition EntryManipulationProvider::startAddition(const ElementUpdateData &data,
                                                                             const QString &freshUuid,
                                                                             const CreatePoint &point) const
{
    Addition addition;
    const ScopedLock lock(entry);
    auto &record = entry->dataLocked().serialize;
    const quint64 children = entry->getNumberOfChildren();
    if (record.capacity == 0 || record.capacity > children + record.pendingCreates.load()) {
        addition.uuid = freshUuid;
        addition.create = Pool().startCreateTask(entry->self(), QString(), QVariant::fromValue(data), point);
        return addition;
    }
    const bool hasValue
        = data.contains(DataElementUpdateType::RawData) || data.contains(DataElementUpdateType::ParsedData);
    if (children < record.capacity || !hasValue)
        return addition; // elements are on their way, or there is nothing to write
    const auto oldest = entry->getChildByIndex(record.addCounter % record.capacity);
    if (!oldest)
        return addition;
    addition.uuid = oldest->getId();
    addition.index = qint64(record.addCounter % record.capacity);
    ++record.addCounter;
    const UpdatePoint updatePoint = point == CreatePoint::Done ? UpdatePoint::Done : UpdatePoint::All;
    addition.update = Pool().startUpdateTask(oldest, QVariant::fromValue(data), updatePoint);
    return addition;
}

bool EntryManipulationProvider::changeDataElementActivationByUuid(const QString &uuid, const bool &active)
{
    return changeActivation(entry->getQueryInterface()->getElementById(uuid), active);
}

bool EntryManipulationProvider::changeDataElementActivationByIndex(const quint64 &index, const bool &active)
{
    return changeActivation(entry->getQueryInterface()->getElementByIndex(index), active);
}

bool EntryManipulationProvider::changeActivation(const ElementPtr &element, bool active)
{
    if (!element) {
        FrameworkLog().warning()
            << "EntryManipulationProvider::changeDataElementActivationInternal() called with invalid element";
        return false;
    }
    return element->getQueryInterface()->isActive() == active
        || element->getManipulationInterface()->setActive(active, UpdatePoint::All);
}

std::shared_ptr<QVariant> EntryManipulationProvider::readDataElementValueByUuid(const QString &uuid)
{
    if (const auto element = entry->getQueryInterface()->getElementById(uuid))
        return read(element);
    FrameworkLog().warning()
        << "EntryManipulationProvider::readDataElementValueByUuid() called with unknown element uuid="
        << uuid;
    return nullptr;
}

std::shared_ptr<QVariant> EntryManipulationProvider::readDataElementValueByIndex(const quint64 &index)
{
    if (const auto element = entry->getQueryInterface()->getElementByIndex(index))
        return read(element);
    FrameworkLog().warning()
        << "EntryManipulationProvider::readDataElementValueByIndex() called with invalue element index="
        << index;
    return nullptr;
}

std::shared_ptr<QVariant> EntryManipulationProvider::read(const ElementPtr &element)
{
    auto parsed = element->getQueryInterface()->getParsedData();
    if (parsed && parsed->isValid())
        return parsed;
    FrameworkLog().warning() << "EntryManipulationProvider::readDataElementValueInternal() failed to read "
                                "element, no parsed data available";
    return nullptr;
}

bool EntryManipulationProvider::writeDataElementValueByUuid(const QString &uuid, const ElementValueKind &kind,
                                                            const QVariant &value, const UpdatePoint &point)
{
    if (const auto element = entry->getQueryInterface()->getElementById(uuid))
        return write(element, kind, value, point);
    FrameworkLog().warning()
        << "EntryManipulationProvider::writeDataElementValueByUuid() called with unknown element uuid="
        << uuid;
    return false;
}

bool EntryManipulationProvider::writeDataElementValueByIndex(const quint64 &index,
                                                             const ElementValueKind &kind,
                                                             const QVariant &value, const UpdatePoint &point)
{
    if (const auto element = entry->getQueryInterface()->getElementByIndex(index))
        return write(element, kind, value, point);
    FrameworkLog().warning()
        << "EntryManipulationProvider::writeDataElementValueByIndex() called with invalue element index="
        << index;
    return false;
}

bool EntryManipulationProvider::rawBytes(const ElementValueKind &kind, const QVariant &value,
                                         QByteArray &raw) const
{
    static const char *const caller = "EntryManipulationProvider::writeDataElementValueInternal()";
    if (kind == ElementValueKind::ParsedValue) {
        const EntryCategory category(*entry->getCategory());
        const auto parser = Elements::Parsers::ElementParserFactory::getInstance()->get(category);
        if (!parser) {
            FrameworkLog().warning() << caller
                                     << " could not retrieve parser "
                                        "instance for given category="
                                     << ConvertDataEntryCategoryToString(category);
            return false;
        }
        const auto bytes = Elements::Parsers::CallToRaw(caller, parser, std::make_shared<QVariant>(value));
        raw = bytes.value_or(QByteArray());
        return bytes.has_value();
    }
    if (!value.canConvert<QByteArray>()) {
        FrameworkLog().warning() << caller
                                 << " could not retrieve raw data "
                                    "from given variant with type name="
                                 << value.typeName();
        return false;
    }
    raw = value.toByteArray();
    return true;
}

bool EntryManipulationProvider::write(const ElementPtr &element, const ElementValueKind &kind,
                                      const QVariant &value, const UpdatePoint &point) const
{
    QByteArray raw;
    if (!rawBytes(kind, value, raw))
        return false;
    ElementUpdateData data;
    data.setRawData(raw);
    const auto observer = Pool().startUpdateTask(std::dynamic_pointer_cast<HierarchyNode>(element),
                                                 QVariant::fromValue(data), point);
    return point == UpdatePoint::All ? observer != nullptr : WaitForSuccess(Pool(), observer);
}

} // namespace Tessellum::AppData::Data::Entries
