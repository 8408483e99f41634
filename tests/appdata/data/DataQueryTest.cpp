#include "../support/RunningDataRepository.h"

#include <appdata/data/elements/ElementManipulationProvider.h>
#include <appdata/data/entries/utils/ElementTimeIndex.h>
#include <appdata/memory_strategy/MemoryStrategyWrapper.h>

#include <QtTest>

#include <random>

using namespace TestSupport;
using Data::Entries::Entry;
using Interfaces::DataElementList;
using Interfaces::PassThroughFilter;
using namespace Data::Elements;
using MemoryStrategies::MemoryStrategy;
using Tessellum::Notification::utils::MakeEventThreadObject;

namespace {

/*! Decides as it is told and counts how often it is asked. */
class ToldStrategy : public MemoryStrategy
{
public:
    ToldStrategy()
        : MemoryStrategy(QStringLiteral("told"), QStringLiteral("id"))
    { }
    qint32 evaluate(const QString &) override
    {
        ++asked;
        return decision;
    }

    std::atomic<int> asked{0};
    std::atomic<int> decision{Unload};
};

} // namespace

/*! What entries tell of their elements, and elements of their values. */
class DataQueryTest : public QObject, private DiskFixture
{
    Q_OBJECT

private:
    std::shared_ptr<Entry> entry;

    auto query() { return entry->getQueryInterface(); }
    void add(const QList<quint64> &timestamps)
    {
        Data::Elements::ElementUpdateDataList values;
        for (const quint64 timestamp : timestamps)
            values.append(run->value(timestamp, double(timestamp)));
        QVERIFY(run->create(entry, values));
        QCOMPARE(query()->countElements(ActivationMask::All), quint64(timestamps.size()));
    }
    void deactivate(quint64 index)
    {
        Data::Elements::ElementUpdateData data;
        data.setActive(false);
        QVERIFY(run->update(run->element(entry, index), data));
    }
    static QList<quint64> timestamps(const DataElementList &elements)
    {
        QList<quint64> list;
        for (const auto &element : elements)
            list.append(element->getQueryInterface()->getTimestamp());
        return list;
    }
    QPair<quint64, quint64> span()
    {
        QPair<quint64, quint64> ends;
        return query()->getTimeSpan(ends.first, ends.second) ? ends : QPair<quint64, quint64>(1, 0);
    }
    QList<quint64> range(quint64 first, quint64 last, ActivationMask mask = ActivationMask::All)
    {
        return timestamps(query()->getElementsInRange(first, last, mask, PassThroughFilter()));
    }

    std::shared_ptr<Element> addElement(const QString &storageName,
                                        CategoryType category = CategoryType::Float)
    {
        const auto made = run->addEntry(run->record("series" + storageName, storageName, 0, category));
        auto data = run->value(10, 1.5);
        data.remove(DataElementUpdateType::ParsedData);
        data.setRawData(QByteArray::fromHex("3ff8000000000000"));
        return made && run->create(made, data) ? run->element(made, 0) : nullptr;
    }
    static bool isLoaded(const std::shared_ptr<Element> &element)
    {
        return element->getQueryInterface()->performQueryCommand(ElementQueryCommand::IsLoaded);
    }
    static bool perform(const std::shared_ptr<Element> &element, ElementCommand command)
    {
        return element->getManipulationInterface()->performCommand(command);
    }
    static QVariant valueOf(const std::shared_ptr<Element> &element)
    {
        return *element->getQueryInterface()->getParsedData();
    }

private Q_SLOTS:
    void init()
    {
        begin();
        entry = run->addEntry(run->record("series"));
        QVERIFY(entry);
    }
    void cleanup()
    {
        entry.reset();
        end();
    }

    void childOrderAndBothEnds()
    {
        add({30, 10, ~0ULL, 20, 10, 0});
        QCOMPARE(range(10, 30), QList<quint64>({30, 10, 20, 10}));
        QCOMPARE(range(21, ~0ULL), QList<quint64>({30, ~0ULL}));
        QVERIFY(range(30, 10).isEmpty());
        QCOMPARE(span(), qMakePair(quint64(0), ~quint64(0)));
        const auto element = query()->getElementByIndex(3);
        QCOMPARE(element->getQueryInterface()->getTimestamp(), quint64(20));
        QCOMPARE(query()->getElementById(element->getUuid()), element);
    }

    void masksAndFilters()
    {
        add({1, 2, 3});
        QCOMPARE(query()->countElements(ActivationMask::Inactive), quint64(0));
        deactivate(1);
        QCOMPARE(query()->countElements(ActivationMask::Inactive), quint64(1));
        QCOMPARE(range(0, 9, ActivationMask::Active), QList<quint64>({1, 3}));
        QCOMPARE(timestamps(query()->getElements(ActivationMask::Inactive, PassThroughFilter())),
                 QList<quint64>({2}));
        // The filter may change what it looks at: no lock is held.
        const auto last = query()->getElements(ActivationMask::All, [](const DataElementList &elements) {
            elements.constLast()->getManipulationInterface()->setTimestamp(4, UpdatePoint::Done);
            return elements.mid(2);
        });
        QCOMPARE(timestamps(last), QList<quint64>({4}));
        const LogCapture log;
        QCOMPARE(query()->countElements(ActivationMask(4)), quint64(0));
        QCOMPARE(log.lines().value(0),
                 QString("WARNING Entry::applyMaskedFilter() called with unknown mask: 4"));
    }

    void indexFollowsEachChange()
    {
        add({10, 20, 30});
        Data::Elements::ElementUpdateData data;
        data.setTimestamp(25);
        QVERIFY(run->update(run->element(entry, 0), data));
        QVERIFY(range(0, 15).isEmpty());
        QCOMPARE(range(20, 25),
                 QList<quint64>({25, 20})); // in the order of the children, not of their time stamps
        QCOMPARE(span().first, quint64(20));
        run->element(entry, 2)->setDeleteFlag();
        QVERIFY(run->remove(run->element(entry, 0)));
        QCOMPARE(range(0, ~0ULL), QList<quint64>({20}));
    }

    void pairShowsAllItsEntries()
    {
        add({30, 10});
        const auto pair = Data::Entries::utils::FindPair(entry->getPairPath());
        entry.reset();
        const auto second = run->addEntry(run->record("series", "disk"), "second");
        QVERIFY(second);
        const auto stored = std::dynamic_pointer_cast<Entry>(storage->getChildById("second"));
        QVERIFY(run->create(stored, run->value(20, 2)));
        entry = pair;
        QCOMPARE(query()->countElements(ActivationMask::All), quint64(3));
        QCOMPARE(range(10, 20), QList<quint64>({10, 20}));
        QCOMPARE(span(), qMakePair(quint64(10), quint64(30)));
        // What has gone from under its reference gives empty results.
        const auto reference = query()->getElementByIndex(2);
        QCOMPARE(reference->getUuid(), run->element(stored, 0)->getUuid());
        QVERIFY(run->remove(run->element(stored, 0)));
        QCOMPARE(query()->countElements(ActivationMask::All), quint64(2));
        QTRY_VERIFY(reference->getUuid().isEmpty());
        QVERIFY(!reference->getQueryInterface());
        QVERIFY(!reference->getManipulationInterface());
    }

    // Random changes of the index alone, compared to the simplest thing that does the same.
    void indexAgreesWithAScan()
    {
        Data::Entries::utils::ElementTimeIndex index;
        QList<std::pair<std::shared_ptr<Element>, quint64>> model;
        std::mt19937 random(1);
        for (int step = 0; step < 2000; ++step) {
            const quint64 timestamp = random() % 50;
            const int place = model.isEmpty() ? 0 : int(random() % uint(model.size()));
            if (model.size() < 5 || random() % 2 == 0) {
                const auto element = Tessellum::Notification::utils::MakeNode<Element>(
                    Data::Elements::ElementData(), nullptr);
                model.append({element, timestamp});
                QVERIFY(index.insert(element, timestamp));
                QVERIFY(!index.insert(element, timestamp));
            } else if (random() % 2 == 0) {
                model[place].second = timestamp;
                index.move(model[place].first.get(), timestamp);
            } else {
                index.remove(model[place].first.get());
                index.move(model[place].first.get(), timestamp); // no longer here
                model.removeAt(place);
            }
            const quint64 first = random() % 50;
            const quint64 last = random() % 60;
            QList<std::shared_ptr<Element>> expected;
            for (const auto &[element, stamp] : qAsConst(model)) {
                if (stamp >= first && stamp <= last)
                    expected.append(element);
            }
            QVERIFY(index.range(first, last) == expected);
        }
    }

    void readLoadsAgain()
    {
        const auto element = addElement("disk");
        QVERIFY(element);
        const auto provider = element->getManipulationProvider();
        std::atomic<int> loaded{0};
        std::atomic<int> unloaded{0};
        // Slots that read the element: no lock is held over them.
        connect(
            provider.get(), &ElementManipulationProvider::dataLoaded, provider.get(),
            [&] { loaded += isLoaded(element); }, Qt::DirectConnection);
        connect(
            provider.get(), &ElementManipulationProvider::dataUnloaded, provider.get(),
            [&] { unloaded += !isLoaded(element); }, Qt::DirectConnection);
        QVERIFY(perform(element, ElementCommand::Load)); // it may be loaded
        QVERIFY(perform(element, ElementCommand::Unload));
        QVERIFY(perform(element, ElementCommand::Unload));
        QCOMPARE(unloaded.load(), 1);
        QVERIFY(element->getQueryInterface()->performQueryCommand(ElementQueryCommand::IsParsedDataNull));
        const int before = loaded;
        const int reads = twin->calls(Operation::GetElementRawData);
        QCOMPARE(valueOf(element), QVariant(1.5));
        QCOMPARE(valueOf(element), QVariant(1.5));
        QVERIFY(perform(element, ElementCommand::Load));
        QCOMPARE(loaded - before, 1);
        QCOMPARE(twin->calls(Operation::GetElementRawData) - reads, 1);
        QCOMPARE(element->getQueryInterface()->getRawData(), QByteArray::fromHex("3ff8000000000000"));
    }

    void withoutAParserItIsStuck()
    {
        const auto element = addElement("disk", CategoryType::Custom);
        QVERIFY(element);
        const LogCapture log;
        QVERIFY(!valueOf(element).isValid());
        QCOMPARE(element->getLoadStatus(), LoadStatus::CurrentlyLoading);
        QVERIFY(!perform(element, ElementCommand::Load));
        QVERIFY(!perform(element, ElementCommand::Unload));
        QVERIFY(element->getQueryInterface()->getRawData().isEmpty());
        QVERIFY(!perform(element, ElementCommand(3)));
        QVERIFY(!element->getQueryInterface()->performQueryCommand(ElementQueryCommand(3)));
        const auto set = [&element](ElementValueKind kind, const QVariant &value) {
            return element->getManipulationInterface()->setData(kind, value, UpdatePoint::Done);
        };
        QVERIFY(!set(ElementValueKind::ParsedValue, 2.5));
        QVERIFY(!set(ElementValueKind::RawData, QVariant::fromValue(QPoint(1, 2))));
        QCOMPARE(log.lines(),
                 QStringList(
                     {"WARNING ElementManipulationProvider::performCommand() no parser set, cannot perform "
                      "load command",
                      "WARNING ElementRawDataProvider::getRawData() no parser set, cannot obtain raw data",
                      "WARNING Element::performCommand() called with unsupported command=3",
                      "WARNING ElementQueryProvider::performQueryCommand() called with unsupported "
                      "command=3",
                      "WARNING ElementManipulationProvider::setData() no parser set, cannot set raw data",
                      "WARNING ElementManipulationProvider::setData() could not retrieve raw data from "
                      "given variant with type name=QPoint"}));
        QVERIFY(!set(ElementValueKind::RawData, QVariant()));
    }

    void mediumThatFails()
    {
        const auto element = addElement("disk");
        QVERIFY(element && perform(element, ElementCommand::Unload));
        twin->arrange(Operation::GetElementRawData, Fault::Throw);
        QCOMPARE(valueOf(element), QVariant(0.0)); // what no bytes are
        QVERIFY(perform(element, ElementCommand::Unload));
        QCOMPARE(valueOf(element), QVariant(1.5));

        const auto fleeting = addElement(QString());
        QVERIFY(fleeting && isLoaded(fleeting) && perform(fleeting, ElementCommand::Unload));
        QCOMPARE(valueOf(fleeting), QVariant(0.0));
    }

    void strategyReachesWhatIsLoadedAlone()
    {
        const auto element = addElement("disk");
        QVERIFY(element && perform(element, ElementCommand::Load));
        const auto wrapper
            = std::dynamic_pointer_cast<Entry>(element->getParent())->getMemoryStrategyWrapper();
        const auto strategy = MakeEventThreadObject<ToldStrategy>();
        // As an installation does it.
        QVERIFY(wrapper->expectStrategy());
        QVERIFY(element->setMemoryStrategyWrapper(wrapper));
        QVERIFY(wrapper->setStrategy(strategy));
        QTRY_VERIFY(!isLoaded(element));
        QCOMPARE(strategy->asked.load(), 1);

        // Connected once, however often it has been loaded, written and given the same wrapper.
        strategy->decision = MemoryStrategy::Keep;
        valueOf(element);
        QVERIFY(run->update(element, run->value(11, 2)));
        QVERIFY(element->setMemoryStrategyWrapper(wrapper));
        Tessellum::Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
        QTRY_VERIFY(strategy->asked > 1); // by the new time stamp
        strategy->asked = 0;
        strategy->decision = MemoryStrategy::Unload;
        Q_EMIT wrapper->invalidated();
        QTRY_VERIFY(!isLoaded(element));
        QCOMPARE(strategy->asked.load(), 1);

        Q_EMIT wrapper->invalidated();
        Tessellum::Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
        QCOMPARE(strategy->asked.load(), 1);
        const LogCapture log;
        QVERIFY(element->setMemoryStrategyWrapper(nullptr));
        QCOMPARE(log.lines(),
                 QStringList("WARNING Element::setMemoryStrategyWrapper() invalid memory strategy wrapper "
                             "provided, no strategy set"));
        QCOMPARE(valueOf(element), QVariant(2.0));
    }

    void interfacesKeepTheElement()
    {
        auto element = addElement("disk");
        QVERIFY(element);
        const std::weak_ptr<Element> watched = element;
        auto query = element->getQueryInterface();
        auto change = element->getManipulationInterface();
        element->setDeleteFlag();
        element.reset();
        QCOMPARE(query->getTimestamp(), quint64(10));
        query.reset();
        QVERIFY(!watched.expired());
        QVERIFY(!change->setActive(false, UpdatePoint::Done)); // it is off the tree
        change.reset();
        QTRY_VERIFY(watched.expired());
    }
};

QTEST_GUILESS_MAIN(DataQueryTest)
#include "DataQueryTest.moc"
