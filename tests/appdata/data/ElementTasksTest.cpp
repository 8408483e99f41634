#include "../../support/AttributeTree.h"
#include "../support/RunningDataRepository.h"

#include <appdata/data/elements/ElementReference.h>
#include <appdata/data/elements/ElementsCreateTask.h>
#include <appdata/data/elements/ElementsDeleteTask.h>
#include <appdata/data/elements/ElementUpdateTask.h>
#include <appdata/data/utils/ElementRegistrationProvider.h>

#include <QtTest>

using namespace TestSupport;
using namespace Tessellum::AppData::Data::Elements;
using Data::Entries::Entry;

namespace {

/*! Knows only texts that are not "bad", and throws at "worse". */
class PickyParser : public Tessellum::AppData::Interfaces::DataElementParserInterface
{
public:
    QByteArray toRaw(const std::shared_ptr<QVariant> &value) const override
    {
        if (value->toString() == "worse")
            throw std::runtime_error("worse");
        return value->toByteArray();
    }
    std::shared_ptr<QVariant> parse(const QByteArray &raw) const override
    {
        if (raw == "worse")
            throw std::runtime_error("worse");
        return raw == "bad" ? nullptr : std::make_shared<QVariant>(QString::fromUtf8(raw));
    }
};

} // namespace

class ElementTasksTest : public QObject, private DiskFixture
{
    Q_OBJECT

private:
    using Reports = QList<ElementUpdateTask::ResultType>;

    std::shared_ptr<Entry> stored; // an entry on the twin
    std::shared_ptr<Entry> fleeting; // a volatile one

    auto pair(const std::shared_ptr<Entry> &entry)
    {
        return Data::Entries::utils::FindPair(entry->getPairPath());
    }
    ElementDeserializeInformation stubOf(const QString &uuid, LoadDataHint hint)
    {
        return {uuid, Data::Entries::EntryDeserializeInformation{stored->getId(), hint, storage}};
    }
    Reports updates(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &node, const QVariant &data)
    {
        ElementUpdateTask task({}, node, data, UpdatePoint::Done);
        return RunAndRecord(task);
    }
    Reports updates(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &node,
                    const ElementUpdateData &data)
    {
        return updates(node, QVariant::fromValue(data));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(Data::utils::ElementRegistrationProvider().registerElement(
            CategoryType::Text, "picky", [] { return std::make_shared<PickyParser>(); }));
    }
    void init()
    {
        begin();
        stored = run->addEntry(run->record("stored", "disk"));
        fleeting = run->addEntry(run->record("fleeting"));
        QVERIFY(stored && fleeting);
    }
    void cleanup()
    {
        stored.reset();
        fleeting.reset();
        end();
    }

    void failingMediumLeavesTheValueInMemory()
    {
        for (const Fault fault : {Fault::Fail, Fault::Throw, Fault::ThrowInt}) {
            twin->arrange(Operation::SerializeElement, fault);
            QVERIFY(run->create(stored, run->value(1, 2.5)));
            QCOMPARE(run->parsed(stored, stored->getNumberOfChildren() - 1), 2.5);
        }
    }

    void listGoesOnAfterAFailedMember()
    {
        ElementUpdateData incomplete;
        incomplete.setParsedData(1.0);
        LogCapture log;
        QVERIFY(run->create(stored, ElementUpdateDataList{run->value(1, 1), incomplete, run->value(2, 2)}));
        QVERIFY(log.lines().contains(
            "WARNING ElementsCreateTask::createAndSerializeElementInHierarchy() entry uuid=" + stored->getId()
            + " called with invalid or missing element data values"));
        QVERIFY(!run->create(stored, ElementUpdateDataList{incomplete}));
        QVERIFY(run->create(stored, ElementUpdateDataList()));
        QVERIFY(!run->create(run->provider().getRoot(), run->value(1, 1)));
        QCOMPARE(stored->getNumberOfChildren(), 2u);
        QCOMPARE(stored->copyData().serialize.pendingCreates.load(), 0u);
    }

    void storedValuesAreLoadedAsTheHintSays()
    {
        ElementUpdateData values = run->value(3, 0);
        values.setRawData(run->raw(4.5));
        for (const char *uuid : {"a", "b"})
            QVERIFY(twin->serializeElement(stored->getId(), uuid, values));
        const int reads = twin->calls(Operation::GetElementRawData);
        QVERIFY(run->create(stored, stubOf("a", LoadDataHint::AttachOnly)));
        QCOMPARE(run->element(stored, 0)->getLoadStatus(), LoadStatus::NotLoaded);
        QCOMPARE(twin->calls(Operation::GetElementRawData), reads);
        QCOMPARE(run->parsed(stored, 0), 4.5);
        QVERIFY(run->create(stored, stubOf("b", LoadDataHint::LoadAtOnce)));
        QCOMPARE(run->element(stored, 1)->getLoadStatus(), LoadStatus::Loaded);
        QVERIFY(pair(stored)->hasChild(QStringLiteral("b")));

        // Bad ones among a list: unknown, empty, without a storage, without a value, thrown at.
        values.remove(DataElementUpdateType::RawData);
        twin->serializeElement(stored->getId(), "valueless", values);
        twin->serializeElement(stored->getId(), "good", run->value(1, 1));
        ElementsDeserializeInformation list{stubOf("unknown", LoadDataHint::AttachOnly),
                                            stubOf("", LoadDataHint::AttachOnly),
                                            {"c", {}},
                                            stubOf("valueless", LoadDataHint::LoadAtOnce)};
        QVERIFY(!run->create(stored, list));
        list.append(stubOf("good", LoadDataHint::AttachOnly));
        twin->arrange(Operation::DeserializeElement, Fault::Throw);
        QVERIFY(run->create(stored, list));
        QCOMPARE(stored->getNumberOfChildren(), 3u);
        QCOMPARE(twin->calls(Operation::SerializeElement), 4);
    }

    void queuedElementsAreCounted()
    {
        const auto pending = [this] { return stored->copyData().serialize.pendingCreates.load(); };
        QList<bool> outcomes;
        const ElementsCreateRequest request{
            QVariant::fromValue(ElementUpdateDataList{run->value(1, 1), run->value(2, 2)}),
            [&outcomes](bool success) { outcomes.append(success); }};
        {
            ElementsCreateTask unfinished({}, stored, {}, QVariant::fromValue(request), CreatePoint::Done);
            QCOMPARE(pending(), 2u);
        }
        QCOMPARE(pending(), 0u);
        QVERIFY(run->create(stored, request));
        QCOMPARE(pending(), 0u);
        QCOMPARE(outcomes, QList<bool>({false, true}));

        ElementsCreateTask orphan({}, stored, {}, QVariant::fromValue(run->value(1, 1)), CreatePoint::Done);
        run->remove(stored);
        QCOMPARE(RunAndRecord(orphan), QList<ElementsCreateTask::ResultType>({{CreatePoint::Begin, false}}));
    }

    void failedUpdateEndsAtTheFirstFault()
    {
        auto record = run->record("picky", "disk");
        record.category = {CategoryType::Text, "picky"};
        const auto entry = run->addEntry(record);
        ElementUpdateData data = run->value(1, 0);
        data.setParsedData("good");
        QVERIFY(run->create(entry, data));
        const int writes = twin->calls(Operation::SerializeElement);
        data.setParsedData("worse");
        QVERIFY(!run->create(entry, data)); // or it would be stored without a value
        QCOMPARE(twin->calls(Operation::SerializeElement), writes);
        QCOMPARE(entry->getNumberOfChildren(), 1u);
        const auto element = run->element(entry, 0);
        const Reports failed{{UpdatePoint::Check, UpdateResult::Ok},
                             {UpdatePoint::Apply, UpdateResult::ApplyFailed}};
        for (const char *text : {"bad", "worse"}) {
            ElementUpdateData bad;
            bad.setActive(false);
            bad.setRawData(text);
            QCOMPARE(updates(element, bad), failed);
            QCOMPARE(element->getLoadStatus(), LoadStatus::NotLoaded);
        }
        QVERIFY(!element->isActive());
        ElementUpdateData worse;
        worse.setParsedData("worse");
        QCOMPARE(updates(element, worse), failed);
        QCOMPARE(twin->calls(Operation::UpdateElement), 0);
        QCOMPARE(element->getQueryInterface()->getParsedData()->toString(), QString("good")); // read again

        ElementUpdateData unknown;
        unknown.insert(DataElementUpdateType(5), 1);
        LogCapture log;
        QCOMPARE(updates(element, unknown), failed);
        QVERIFY(log.lines().contains(
            "WARNING ElementUpdateTask::runUpdate() requested unkown update type for data element="
            + element->getId()));
        ElementUpdateData empty;
        empty.setParsedData(QVariant());
        QCOMPARE(updates(element, empty), failed);

        ElementUpdateData stamp;
        stamp.setTimestamp(5);
        for (const Fault fault : {Fault::Fail, Fault::Throw}) {
            twin->arrange(Operation::UpdateElement, fault);
            QCOMPARE(updates(element, stamp),
                     (Reports{{UpdatePoint::Check, UpdateResult::Ok},
                              {UpdatePoint::Done, UpdateResult::ApplyFailed}}));
        }
        QCOMPARE(updates(element, QVariant(1)), (Reports{{UpdatePoint::Check, UpdateResult::CheckFailed}}));
        QCOMPARE(
            updates(stored, stamp),
            (Reports{{UpdatePoint::Check, UpdateResult::Ok}, {UpdatePoint::Apply, UpdateResult::NodeGone}}));
        const Reports gone{{UpdatePoint::Check, UpdateResult::Ok},
                           {UpdatePoint::Check, UpdateResult::NodeGone}};
        element->setDeleteFlag();
        QCOMPARE(updates(element, stamp), gone);

        // Held after its entry was unloaded, of which the next attachment could not know.
        QVERIFY(run->create(stored, run->value(1, 1)));
        const auto held = run->element(stored, 0);
        const int changes = twin->calls(Operation::UpdateElement);
        QVERIFY(storage->getManipulationInterface()->unloadDataEntry(stored->getId()));
        QCOMPARE(updates(held, stamp), gone);
        stored.reset();
        QCOMPARE(updates(held, stamp), gone);
        QCOMPARE(twin->calls(Operation::UpdateElement), changes);
    }

    void deletedElementGivesPlaceToItsNamesake()
    {
        const auto info = std::make_shared<ElementInfo>();
        info->uuid = "twice";
        run->addStorage("second", StorageTwin::Make());
        run->addEntry(run->record("stored", "second"));
        const auto copy = Data::Entries::utils::EntriesOfPair(stored->getPairPath()).value(1);
        QVERIFY(copy);
        auto data = run->value(1, 1);
        data.setInfo(info);
        QVERIFY(run->create(stored, data) && run->create(copy, data));
        const auto target = [&] {
            const auto child
                = std::dynamic_pointer_cast<ElementReference>(pair(stored)->getChildById("twice"));
            return child ? child->getTarget() : nullptr;
        };
        const auto element = run->element(stored, 0);
        QCOMPARE(target(), element);
        ElementsDeleteTask task({}, element, "key", QVariant::fromValue(element->copyData()),
                                DeletePoint::Done);
        QCOMPARE(
            RunAndRecord(task),
            QList<ElementsDeleteTask::ResultType>({{DeletePoint::Begin, true}, {DeletePoint::Done, true}}));
        QCOMPARE(stored->getNumberOfChildren(), 0u);
        QCOMPARE(target(), run->element(copy, 0));
        QVERIFY(run->remove(run->element(copy, 0)));
        QVERIFY(!target());
    }

    void handlersHearOfEachPathOnce()
    {
        const auto notifications = run->provider().getNotificationProvider();
        QMutex mutex;
        QStringList heard;
        const auto note = [&](const QString &path) {
            const QMutexLocker lock(&mutex);
            heard.append(path);
        };
        const auto created = notifications->registerCreateHandler(
            "*", [&](const QString &path, const CreatePoint &, bool) { note("+" + path); }, CreatePoint::All);
        const auto deleted = notifications->registerDeleteHandler(
            "*", [&](const QString &path, const DeletePoint &, bool) { note("-" + path); },
            DeletePoint::Done);
        const auto updated = notifications->registerUpdateHandler(
            "*",
            [&](const QString &path, const UpdatePoint &, const UpdateResult &, const QVariant &before,
                const QVariant &after) {
                quint64 old = 0;
                quint64 now = 0;
                before.value<ElementUpdateData>().getTimestamp(old);
                after.value<ElementUpdateData>().getTimestamp(now);
                note(QStringLiteral("=%1 %2 %3").arg(path).arg(old).arg(now));
            },
            UpdatePoint::Done);
        const auto expect = [&](const std::shared_ptr<Entry> &entry, const QString &sign, const QString &uuid,
                                const QString &tail) {
            QStringList paths{entry->getNodePath()->getFullPath(), entry->getId(), entry->getPairPath()};
            paths.removeDuplicates();
            for (QString &path : paths)
                path = sign + path + '.' + uuid + tail;
            paths.sort();
            const auto ofElement = [&] {
                const QMutexLocker lock(&mutex);
                QStringList all = heard.filter(uuid).filter(QRegularExpression("^\\" + sign));
                all.sort();
                return all;
            };
            QTRY_COMPARE_WITH_TIMEOUT(ofElement(), paths, 30000);
        };
        for (const auto &entry : {stored, fleeting}) {
            QVERIFY(run->create(entry, run->value(1, 1)));
            const auto element = run->element(entry, 0);
            expect(entry, "+", element->getId(), "");
            QVERIFY(run->update(element, run->value(2, 2)));
            expect(entry, "=", element->getId(), " 1 2");
            QVERIFY(run->remove(element));
            expect(entry, "-", element->getId(), "");
        }
    }
};

QTEST_GUILESS_MAIN(ElementTasksTest)
#include "ElementTasksTest.moc"
