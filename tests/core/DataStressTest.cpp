#include "appdata/support/StorageTwin.h"
#include "core/StressRuns.h"

#include <appdata/data/entries/EntryProperties.h>
#include <appdata/EntryLoading.h>
#include <appdata/interfaces/RepositoryInterface.h>

#include <QDeadlineTimer>
#include <QMap>
#include <QRandomGenerator>

#include <algorithm>
#include <support/Literals.h>

using namespace Tessellum;
using namespace Tessellum::AppData;
using Notification::CreatePoint;
using Notification::UpdatePoint;
using TestSupport::StorageTwin;
namespace Property = Tessellum::AppData::Data::Entries::EntryProperties;

namespace {

std::shared_ptr<Interfaces::RepositoryInterface> repository()
{
    Core::CoreInterface *const core = getCoreInterface();
    return core ? core->getAppDataRepository() : nullptr;
}

quint64 nextStamp()
{
    static std::atomic<quint64> last{0};
    return ++last;
}

/*!
 * Does with recorded data what an application could do, at random, in entries and a storage of its own; reads
 * those of the others too. What was acknowledged is its model; only the main thread reads it, while the gate
 * is closed.
 */
class DataStressWorker : public QThread
{
public:
    DataStressWorker(int workerNumber, StressGate &workersGate)
        : number(workerNumber)
        , gate(workersGate)
        , random(quint32(workerNumber) + 1)
    { }

    /*! For the main thread, with the gate closed. Adds the storage and the entries of a run. */
    bool beginRun()
    {
        data = repository();
        valid = true;
        medium = StorageTwin::Make();
        model = {{"plain", {{}, 0, false, {}}},
                 {"ring", {{}, 3, false, {}}},
                 {"stored", {{}, 0, true, {}}},
                 {"storedring", {{}, 5, true, {}}}};
        Storages::StorageCreateDataDetails details;
        details.implementation = medium;
        bool ok = data->getStorageInterface()->addStorage("twin", storageName(), details, CreatePoint::Done,
                                                          QString());
        for (const QString &name : model.keys())
            ok = addEntry(name) && ok;
        return ok;
    }
    /*! What differs between the model, the tree, the pairs and the medium; empty if nothing does. */
    QString findDifference() const
    {
        if (!failure.isEmpty())
            return failure;
        for (auto entry = model.cbegin(); valid && entry != model.cend(); ++entry) {
            const QString difference = differenceOf(entry.key(), *entry);
            if (!difference.isEmpty())
                return "worker %1: %2"_s.arg(number).arg(difference);
        }
        return {};
    }
    int operationCount() const { return operations; }

    /*! Set before a stop begins: what ends later is not taken for acknowledged. */
    static inline std::atomic<bool> stopping{false};

protected:
    void run() override
    {
        while (gate.pass())
            doSomething();
    }

private:
    using EntryPtr = std::shared_ptr<Interfaces::DataEntryInterface>;
    struct Value
    {
        QString uuid;
        quint64 timestamp;
        double value;
    };
    struct Entry
    {
        QString uuid;
        quint64 capacity = 0;
        bool persistent = false;
        QVector<Value> values; // in the order of the children
    };

    void doSomething()
    {
        data = valid ? repository() : nullptr;
        if (!data)
            return;
        ++operations;
        using Action = void (DataStressWorker::*)(const QString &);
        static constexpr std::pair<int, Action> actions[]
            = {{45, &DataStressWorker::add},
               {5, &DataStressWorker::setTimestamp},
               {15, &DataStressWorker::readOwn},
               {7, &DataStressWorker::readOthers},
               {8, &DataStressWorker::loadOrUnload},
               {6, &DataStressWorker::changeStrategy},
               {4, &DataStressWorker::removeAndAdd},
               {2, &DataStressWorker::removeAndAddStorage},
               {4, &DataStressWorker::unloadAndLoadEntry},
               {4, &DataStressWorker::useConfiguration}}; // of a hundred
        const QStringList names = model.keys();
        int dice = random.bounded(100);
        for (const auto &[chances, action] : actions) {
            dice -= chances;
            if (dice < 0) {
                (this->*action)(names.at(random.bounded(names.size())));
                break;
            }
        }
        if (stopping)
            valid = false;
    }
    void add(const QString &name)
    {
        const EntryPtr entry = find(name);
        if (!entry)
            return;
        const quint64 timestamp = nextStamp();
        const double value = double(timestamp) / 2;
        qint64 index = -1;
        const QString uuid = entry->getManipulationInterface()->addDataElementValue(
            timestamp, ElementValueKind::ParsedValue, value, CreatePoint::Done, &index);
        if (uuid.isEmpty()) {
            fail("a value of %1 was not taken"_s.arg(name));
            return;
        }
        Entry &known = model[name];
        if (known.capacity == 0 || quint64(known.values.size()) < known.capacity) {
            known.values.append({uuid, timestamp, value});
            if (index != known.values.size() - 1)
                fail("%1: the new index is %2"_s.arg(name).arg(index));
            return;
        }
        const auto oldest = std::min_element(
            known.values.begin(), known.values.end(),
            [](const Value &left, const Value &right) { return left.timestamp < right.timestamp; });
        if (oldest->uuid != uuid)
            fail("%1: the ring did not overwrite the oldest"_s.arg(name));
        *oldest = {oldest->uuid, timestamp, value};
    }
    void setTimestamp(const QString &name)
    {
        Entry &known = model[name];
        if (known.capacity > 0 || known.values.isEmpty()) // the order of a ring is that of its time stamps
            return;
        Value &value = known.values[random.bounded(known.values.size())];
        const EntryPtr entry = find(name);
        const auto element = entry ? entry->getQueryInterface()->getElementById(value.uuid) : nullptr;
        const quint64 timestamp = nextStamp();
        if (element && element->getManipulationInterface()->setTimestamp(timestamp, UpdatePoint::Done))
            value.timestamp = timestamp;
        else
            fail("%1: a time stamp was not set"_s.arg(name));
    }
    void readOwn(const QString &name)
    {
        const EntryPtr entry = find(name);
        if (!entry)
            return;
        const QString difference = differenceOf(name, model.value(name));
        if (!difference.isEmpty())
            fail(difference);
    }
    void readOthers(const QString &)
    {
        for (const auto &entry : data->getDataEntryInterface()->getDataEntries("stress*")) {
            const auto query = entry->getQueryInterface();
            if (!query) // its owner has removed it
                continue;
            for (const auto &element :
                 query->getElements(ActivationMask::All, Interfaces::PassThroughFilter())) {
                if (const auto elementQuery = element->getQueryInterface())
                    elementQuery->getParsedData();
            }
            quint64 first = 0;
            quint64 last = 0;
            query->getTimeSpan(first, last);
        }
    }
    void loadOrUnload(const QString &name)
    {
        const Entry &known = model[name];
        if (!known.persistent || known.values.isEmpty()) // what is volatile would be lost
            return;
        const QString uuid = known.values.at(random.bounded(known.values.size())).uuid;
        const EntryPtr entry = find(name);
        const auto element = entry ? entry->getQueryInterface()->getElementById(uuid) : nullptr;
        const auto command = random.bounded(2) == 0 ? ElementCommand::Load : ElementCommand::Unload;
        if (!element || !element->getManipulationInterface()->performCommand(command))
            fail("%1: an element was not loaded or unloaded"_s.arg(name));
    }
    void changeStrategy(const QString &name)
    {
        const EntryPtr entry = model.value(name).persistent ? find(name) : nullptr;
        if (!entry)
            return;
        const auto memory = entry->getMemoryStrategyInterface();
        switch (random.bounded(4)) {
        case 0:
            memory->installMemoryStrategy("last", "{\"limit\":2}");
            break;
        case 1:
            memory->installMemoryStrategy("timespan"_s,
                                          "{\"from\":{\"value\":5,\"type\":\"relative_from_end\"}}"_s);
            break;
        case 2:
            memory->configureMemoryStrategy("{\"limit\":1}");
            break;
        default:
            memory->removeMemoryStrategy();
        }
    }
    void removeAndAdd(const QString &name)
    {
        if (!data->getDataEntryInterface()->removeDataEntry(model.value(name).uuid) || !addEntry(name))
            fail("%1 was not removed and added again"_s.arg(name));
    }
    void removeAndAddStorage(const QString &)
    {
        const auto storages = data->getStorageInterface();
        Storages::StorageCreateDataDetails details;
        details.implementation = medium;
        bool ok = storages->removeStorage(storageName())
            && storages->addStorage("twin", storageName(), details, CreatePoint::Done, QString());
        for (const Entry &entry : qAsConst(model))
            ok = ok && (!entry.persistent || loadEntry(entry.uuid));
        if (!ok)
            fail("the storage was not removed and added again");
    }
    void unloadAndLoadEntry(const QString &name)
    {
        const Entry &known = model[name];
        const auto storage = data->getStorageInterface()->getStorage(storageName());
        if (!known.persistent || !storage)
            return;
        if (!storage->getManipulationInterface()->unloadDataEntry(known.uuid) || !loadEntry(known.uuid))
            fail("%1 was not unloaded and loaded again"_s.arg(name));
    }
    void useConfiguration(const QString &)
    {
        Core::CoreInterface *const core = getCoreInterface();
        const auto configuration = core ? core->getAppConfigRepository() : nullptr;
        if (configuration)
            configuration->getManipulationInterface()->updateAttribute("stressed.w%1"_s.arg(number),
                                                                       operations, UpdatePoint::Done);
    }
    bool addEntry(const QString &name)
    {
        Entry &entry = model[name];
        entry.values.clear();
        const auto added = data->getDataEntryInterface()->addDataEntryExtended(
            entry.persistent ? storageName() : QString(),
            {{Property::Classification(), classification()},
             {Property::Name(), name},
             {Property::CategoryType(), quint32(CategoryType::Float)},
             {Property::Persistence(),
              quint32(entry.persistent ? PersistenceType::Persistent : PersistenceType::Volatile)},
             {Property::Capacity(), entry.capacity}});
        entry.uuid = added ? added->getUuid() : QString();
        return added != nullptr;
    }
    bool loadEntry(const QString &uuid) const
    {
        const auto storage = data->getStorageInterface()->getStorage(storageName());
        if (!storage || !storage->getManipulationInterface()->loadDataEntry(uuid, LoadDataHint::OnDemand))
            return false;
        constexpr int longestMs = 60000;
        return WaitUntilLoaded(data->getDataEntryInterface()->getDataEntry(uuid), QDeadlineTimer(longestMs));
    }
    EntryPtr find(const QString &name) const
    {
        const EntryPtr entry = data->getDataEntryInterface()->getDataEntry(model.value(name).uuid);
        if (!entry)
            fail("the entry %1 is not there"_s.arg(name));
        return entry;
    }
    QString classification() const { return "stress%1"_s.arg(number); }
    QString storageName() const { return "medium%1"_s.arg(number); }
    QString differenceOf(const QString &name, const Entry &expected) const
    {
        const auto entries = data->getDataEntryInterface();
        const auto pair = entries->getDataEntry(classification(), name);
        const auto entry = entries->getDataEntry(expected.uuid);
        if (!pair || !entry)
            return "%1 or its pair is missing"_s.arg(name);
        const auto linked = entries->getDataEntries(classification() + QLatin1Char('.') + name);
        if (linked.size() != 1 || linked.first()->getUuid() != expected.uuid)
            return "%1: the pair links to %2 entries"_s.arg(name).arg(linked.size());
        const auto found
            = entry->getQueryInterface()->getElements(ActivationMask::All, Interfaces::PassThroughFilter());
        const auto references = pair->getQueryInterface()->countElements(ActivationMask::All);
        if (found.size() != expected.values.size() || references != quint64(found.size())) {
            return "%1: %2 elements and %3 references in place of %4"_s.arg(name)
                .arg(found.size())
                .arg(references)
                .arg(expected.values.size());
        }
        for (int i = 0; i < found.size(); ++i) {
            const Value &value = expected.values.at(i);
            const auto query = found.at(i)->getQueryInterface();
            const QVariant parsed = *query->getParsedData();
            if (found.at(i)->getUuid() != value.uuid || query->getTimestamp() != value.timestamp
                || parsed.toDouble() != value.value) {
                return "%1: element %2 is %3 at %4 in place of %5 at %6"_s.arg(name)
                    .arg(i)
                    .arg(parsed.toString())
                    .arg(query->getTimestamp())
                    .arg(value.value)
                    .arg(value.timestamp);
            }
            if (!expected.persistent)
                continue;
            Data::Elements::ElementUpdateData stored;
            quint64 timestamp = 0;
            QByteArray raw;
            if (!medium->deserializeElement(expected.uuid, value.uuid, stored, LoadDataHint::LoadAtOnce)
                || !stored.getTimestamp(timestamp) || timestamp != value.timestamp || !stored.getRawData(raw)
                || raw != query->getRawData()) {
                return "%1: the medium differs in element %2"_s.arg(name).arg(i);
            }
        }
        return {};
    }
    void fail(const QString &text) const
    {
        if (!stopping && failure.isEmpty())
            failure = "worker %1: %2"_s.arg(number).arg(text);
    }

    const int number;
    StressGate &gate;
    QRandomGenerator random;
    // Of this run; anew for each operation, as a stop may have begun.
    std::shared_ptr<Interfaces::RepositoryInterface> data;
    std::shared_ptr<StorageTwin> medium;
    QMap<QString, Entry> model;
    bool valid = false; // false once an operation may have been cut by a stop
    int operations = 0;
    mutable QString failure;
};

} // namespace

/*! Eight threads record, read and remove at once, with starts and stops in between: tree, links, media and
 * what was acknowledged agree. */
class DataStressTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void everythingAtOnce()
    {
        StressGate gate(stressWorkerCount);
        QVector<std::shared_ptr<DataStressWorker>> workers;
        for (int i = 0; i < stressWorkerCount; ++i)
            workers.append(std::make_shared<DataStressWorker>(i, gate));
        int operations = 0;
        RunStress(
            gate, workers,
            [&workers] {
                return std::all_of(workers.begin(), workers.end(),
                                   [](const auto &worker) { return worker->beginRun(); });
            },
            [&] {
                for (const auto &worker : qAsConst(workers))
                    operations += worker->operationCount();
            });
        QVERIFY(operations > 0);
    }
};

QTEST_GUILESS_MAIN(DataStressTest)
#include "DataStressTest.moc"
