#include "../../support/LogCapture.h"
#include "../support/RunningDataRepository.h"

#include <appdata/data/entries/utils/ElementTimeIndex.h>

#include <QtTest>

#include <random>

using namespace TestSupport;
using Data::Elements::Element;
using Data::Entries::Entry;
using Interfaces::DataElementList;
using Interfaces::PassThroughFilter;

class EntryQueryTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RunningDataRepository> run;
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

private Q_SLOTS:
    void init()
    {
        run = std::make_unique<RunningDataRepository>();
        entry = run->addEntry(run->record("series"));
        QVERIFY(entry);
    }
    void cleanup()
    {
        entry.reset();
        run.reset();
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
        const auto twin = StorageTwin::Make();
        const auto storage = run->addStorage("disk", twin);
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
};

QTEST_GUILESS_MAIN(EntryQueryTest)
#include "EntryQueryTest.moc"
