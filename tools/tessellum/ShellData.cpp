// The commands on storages, entries and elements.
#include "RunningLibrary.h"
#include "Shell.h"

#include <appdata/data/entries/EntryProperties.h>
#include <appdata/DataTypeStrings.h>

#include <QDateTime>

namespace Tessellum::Tool {

using namespace AppData;
using AppData::Interfaces::DataElementInterface;
using AppData::Interfaces::DataEntryInterface;
using AppData::Interfaces::PassThroughFilter;
using Notification::CreatePoint;
using Notification::UpdatePoint;
namespace Property = AppData::Data::Entries::EntryProperties;

namespace {

using EntryPtr = std::shared_ptr<DataEntryInterface>;

/*! The interface behind \a handle, which is empty where its target has gone. */
template <class Pointer>
Pointer OrFail(Pointer interface)
{
    if (!interface)
        Fail(QStringLiteral("it has gone"));
    return interface;
}

/*! The value at \a index; fails where it is no number and the entry takes nothing else. */
QVariant valueFor(const DataEntryInterface &entry, const Arguments &arguments, int index)
{
    QVariant value = arguments.value(index);
    if (OrFail(entry.getCategory())->getType() == CategoryType::Float && !value.convert(QMetaType::Double))
        Fail(QStringLiteral("%1 is no number").arg(arguments.text(index)));
    return value;
}

/*! A uuid, or classification and name with a dot between them. */
EntryPtr findEntry(const QString &text)
{
    const auto entries = RecordedData()->getDataEntryInterface();
    EntryPtr entry = entries->getDataEntry(text);
    if (!entry) {
        const int dot = text.lastIndexOf(QLatin1Char('.'));
        entry = entries->getDataEntry(text.left(dot), text.mid(dot + 1));
    }
    if (!entry)
        Fail(QStringLiteral("there is no entry %1").arg(text));
    return entry;
}

quint64 timestampOf(const QString &text)
{
    bool isNumber = false;
    const quint64 timestamp = text.toULongLong(&isNumber);
    if (!isNumber)
        FailUsage(QStringLiteral("%1 is no time stamp").arg(text));
    return timestamp;
}

/*! JSON has no whole numbers of 64 bits: a text keeps all digits. */
QString timestampText(quint64 timestamp)
{
    return QString::number(timestamp);
}

/*! Nothing for an entry that has gone: what it consists of goes with it, in a mirror at any time. */
QVariantMap describe(const DataEntryInterface &entry)
{
    const auto query = entry.getQueryInterface();
    const auto category = entry.getCategory();
    if (!query || !category)
        return {};
    QVariantMap object{{QStringLiteral("uuid"), entry.getUuid()},
                       {QStringLiteral("classification"), entry.getClassification()},
                       {QStringLiteral("name"), entry.getName()},
                       {QStringLiteral("storage"), entry.getStorageName()},
                       {QStringLiteral("category"),
                        ConvertDataEntryCategoryToString(Data::Entries::EntryCategory(*category))},
                       {QStringLiteral("persistence"), EnumJson(entry.getPersistenceType())},
                       {QStringLiteral("capacity"), timestampText(entry.getCapacity())},
                       {QStringLiteral("status"), EnumJson(entry.getLoadStatus())},
                       {QStringLiteral("count"), query->countElements(ActivationMask::All)}};
    quint64 first = 0;
    quint64 last = 0;
    if (query->getTimeSpan(first, last)) {
        object.insert(QStringLiteral("first"), timestampText(first));
        object.insert(QStringLiteral("last"), timestampText(last));
    }
    return object;
}

/*! Nothing for an element that has gone. */
QVariantMap describe(const DataElementInterface &element)
{
    const auto query = element.getQueryInterface();
    if (!query)
        return {};
    const bool loaded = query->performQueryCommand(ElementQueryCommand::IsLoaded);
    return {{QStringLiteral("uuid"), element.getUuid()},
            {QStringLiteral("stamp"), timestampText(query->getTimestamp())},
            {QStringLiteral("active"), query->isActive()},
            {QStringLiteral("loaded"), loaded},
            {QStringLiteral("value"), *query->getParsedData()}};
}

/*! Those of \a items that are there still, as an array under \a key. */
template <class List>
QVariantMap describeAll(const QString &key, const List &items)
{
    QVariantList array;
    for (const auto &item : items) {
        const QVariantMap description = describe(*item);
        if (!description.isEmpty())
            array.append(description);
    }
    return {{key, array}};
}

std::shared_ptr<DataElementInterface> findElement(const EntryPtr &entry, const QString &uuid)
{
    const auto element = OrFail(entry->getQueryInterface())->getElementById(uuid);
    if (!element)
        Fail(QStringLiteral("there is no element %1").arg(uuid));
    return element;
}

/*! Attaches the entry that the storage has under these names; null if it has none. */
EntryPtr attach(const QString &storageName, const QString &classification, const QString &name)
{
    const auto storage = RecordedData()->getStorageInterface()->getStorage(storageName);
    if (!storage)
        return nullptr;
    QHash<QString, Data::Entries::EntrySerializeInformation> stored;
    storage->getQueryInterface()->getEntries(stored);
    for (auto entry = stored.cbegin(); entry != stored.cend(); ++entry) {
        if (entry->classification == classification && entry->name == name
            && storage->getManipulationInterface()->loadDataEntry(entry.key(), LoadDataHint::OnDemand)) {
            const EntryPtr attached = RecordedData()->getDataEntryInterface()->getDataEntry(entry.key());
            WaitUntilLoaded(attached);
            return attached;
        }
    }
    return nullptr;
}

} // namespace

QVariantMap Shell::addStorage(const Arguments &arguments)
{
    Storages::StorageCreateDataDetails details;
    if (arguments.size() > 2)
        details.location = arguments.valueOrWord(2);
    details.mode = arguments.number(3, 0);
    details.loadDataHint
        = static_cast<LoadDataHint>(arguments.number(4, static_cast<int>(LoadDataHint::OnDemand)));
    if (!RecordedData()->getStorageInterface()->addStorage(arguments.text(0), arguments.text(1), details,
                                                           CreatePoint::Done, QString())) {
        Fail(QStringLiteral("the storage was not added"));
    }
    return {{QStringLiteral("name"), arguments.text(1)}};
}

QVariantMap Shell::listStorages(const Arguments &)
{
    const auto interface = RecordedData()->getStorageInterface();
    QVariantList storages;
    for (const QString &name : interface->getStorageNames()) {
        const auto storage = interface->getStorage(name);
        if (!storage)
            continue;
        QHash<QString, Data::Entries::EntrySerializeInformation> stored;
        storage->getQueryInterface()->getEntries(stored);
        storages.append(QVariantMap{{QStringLiteral("name"), name},
                                    {QStringLiteral("type"), storage->getType()},
                                    {QStringLiteral("label"), storage->getLabel()},
                                    {QStringLiteral("status"), EnumJson(storage->getLoadStatus())},
                                    {QStringLiteral("entries"), stored.size()}});
    }
    return {{QStringLiteral("storages"), storages},
            {QStringLiteral("types"), RecordedData()->getStorageTypes()}};
}

QVariantMap Shell::addEntry(const Arguments &arguments)
{
    const QString storage = arguments.text(0) == QLatin1String("-") ? QString() : arguments.text(0);
    if (const EntryPtr attached = attach(storage, arguments.text(1), arguments.text(2)))
        return describe(*attached);
    bool isCategory = false;
    const auto category = ParseDataEntryCategoryFromString(arguments.text(3), &isCategory);
    if (!isCategory)
        FailUsage(QStringLiteral("%1 is no category").arg(arguments.text(3)));
    const auto persistence = storage.isEmpty() ? PersistenceType::Volatile : PersistenceType::Persistent;
    const EntryPtr entry = RecordedData()->getDataEntryInterface()->addDataEntryExtended(
        storage,
        {{Property::Classification(), arguments.text(1)},
         {Property::Name(), arguments.text(2)},
         {Property::CategoryType(), static_cast<quint32>(category.getType())},
         {Property::CategoryDetail(), category.getDetail()},
         {Property::Persistence(), static_cast<quint32>(persistence)},
         {Property::Capacity(),
          arguments.size() > 4 ? QVariant(timestampOf(arguments.text(4))) : QVariant(0ULL)}});
    if (!entry)
        Fail(QStringLiteral("the entry was not added"));
    return describe(*entry);
}

QVariantMap Shell::listEntries(const Arguments &arguments)
{
    const QString pattern = arguments.size() > 0 ? arguments.text(0) : QStringLiteral("*");
    return describeAll(QStringLiteral("entries"),
                       RecordedData()->getDataEntryInterface()->getDataEntries(pattern));
}

QVariantMap Shell::addValue(const Arguments &arguments)
{
    const EntryPtr entry = findEntry(arguments.text(0));
    const CreatePoint point = arguments.enumerator(3, CreatePoint::Done);
    const quint64 timestamp = arguments.size() > 2
        ? timestampOf(arguments.text(2))
        : static_cast<quint64>(QDateTime::currentMSecsSinceEpoch());
    qint64 index = -1;
    const QString uuid = OrFail(entry->getManipulationInterface())
                             ->addDataElementValue(timestamp, ElementValueKind::ParsedValue,
                                                   valueFor(*entry, arguments, 1), point, &index);
    if (uuid.isEmpty())
        Fail(QStringLiteral("the value was not taken"));
    return {{QStringLiteral("uuid"), uuid},
            {QStringLiteral("index"), static_cast<double>(index)},
            {QStringLiteral("point"), EnumJson(point)}};
}

QVariantMap Shell::listElements(const Arguments &arguments)
{
    const EntryPtr entry = findEntry(arguments.text(0));
    return describeAll(QStringLiteral("elements"),
                       OrFail(entry->getQueryInterface())
                           ->getElements(arguments.enumerator(1, ActivationMask::All), PassThroughFilter()));
}

QVariantMap Shell::listRange(const Arguments &arguments)
{
    const EntryPtr entry = findEntry(arguments.text(0));
    return describeAll(
        QStringLiteral("elements"),
        OrFail(entry->getQueryInterface())
            ->getElementsInRange(timestampOf(arguments.text(1)), timestampOf(arguments.text(2)),
                                 arguments.enumerator(3, ActivationMask::All), PassThroughFilter()));
}

QVariantMap Shell::changeElement(const Arguments &arguments)
{
    const QString what = arguments.text(0);
    const EntryPtr entry = findEntry(arguments.text(1));
    const auto element = findElement(entry, arguments.text(2));
    const auto manipulation = OrFail(element->getManipulationInterface());
    bool done = false;
    if (what == QLatin1String("set") && arguments.size() > 3)
        done = manipulation->setData(ElementValueKind::ParsedValue, valueFor(*entry, arguments, 3),
                                     arguments.enumerator(4, UpdatePoint::Done));
    else if (what == QLatin1String("load") && arguments.size() == 3)
        done = manipulation->performCommand(ElementCommand::Load);
    else if (what == QLatin1String("unload") && arguments.size() == 3)
        done = manipulation->performCommand(ElementCommand::Unload);
    else
        FailUsage(QStringLiteral("usage: element set ENTRY UUID VALUE [POINT] | load|unload ENTRY UUID"));
    if (!done)
        Fail(QStringLiteral("the element did not take it"));
    return {{QStringLiteral("loaded"),
             OrFail(element->getQueryInterface())->performQueryCommand(ElementQueryCommand::IsLoaded)}};
}

QVariantMap Shell::memoryStrategy(const Arguments &arguments)
{
    const auto memory = OrFail(findEntry(arguments.text(0))->getMemoryStrategyInterface());
    const QString wanted = arguments.text(1);
    const QString parameters = arguments.text(2);
    QString before;
    memory->getMemoryStrategyType(before);
    bool done = true;
    if (wanted == QLatin1String("none"))
        done = memory->removeMemoryStrategy();
    else if (!wanted.isEmpty())
        done = memory->installMemoryStrategy(wanted, parameters);
    QString type;
    memory->getMemoryStrategyType(type);
    if (done && !parameters.isEmpty() && !memory->configureMemoryStrategy(parameters)) {
        done = false;
        if (type != before) // what was there keeps its parameters, a new one would go by its default ones
            memory->removeMemoryStrategy();
    }
    if (!done)
        Fail(QStringLiteral("the strategy was not set"));
    memory->getMemoryStrategyType(type);
    return {
        {QStringLiteral("type"), type},
        {QStringLiteral("types"), RecordedData()->getMemoryStrategyInterface()->getMemoryStrategyTypes()}};
}

QVariantMap Shell::removeData(const Arguments &arguments)
{
    const QString target = arguments.text(1);
    int removed = 0;
    if (arguments.text(0) == QLatin1String("storage")) {
        removed = RecordedData()->getStorageInterface()->removeStorage(target) ? 1 : 0;
    } else if (arguments.text(0) == QLatin1String("entry")) {
        const auto entries = RecordedData()->getDataEntryInterface();
        removed = entries->getDataEntry(target) ? (entries->removeDataEntry(target) ? 1 : 0)
                                                : entries->removeDataEntries(target);
    } else {
        FailUsage(QStringLiteral("%1 is none of storage, entry").arg(arguments.text(0)));
    }
    if (removed == 0)
        Fail(QStringLiteral("nothing was removed"));
    return {{QStringLiteral("removed"), removed}};
}

} // namespace Tessellum::Tool
