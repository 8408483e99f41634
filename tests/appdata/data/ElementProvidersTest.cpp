#include "../../support/LogCapture.h"
#include "../support/RunningDataRepository.h"

#include <appdata/data/elements/ElementManipulationProvider.h>
#include <appdata/memory_strategy/MemoryStrategyWrapper.h>

#include <QtTest>

using namespace TestSupport;
using namespace Data::Elements;
using Data::Entries::Entry;
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

class ElementProvidersTest : public QObject, private DiskFixture
{
    Q_OBJECT

private:
    std::shared_ptr<Element> add(const QString &storageName, CategoryType category = CategoryType::Float)
    {
        const auto entry = run->addEntry(run->record("series" + storageName, storageName, 0, category));
        auto data = run->value(10, 1.5);
        data.remove(DataElementUpdateType::ParsedData);
        data.setRawData(QByteArray::fromHex("3ff8000000000000"));
        return entry && run->create(entry, data) ? run->element(entry, 0) : nullptr;
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
    void init() { begin(); }
    void cleanup() { end(); }

    void readLoadsAgain()
    {
        const auto element = add("disk");
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
        const auto element = add("disk", CategoryType::Custom);
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
    }

    void mediumThatFails()
    {
        const auto element = add("disk");
        QVERIFY(element && perform(element, ElementCommand::Unload));
        twin->arrange(Operation::GetElementRawData, Fault::Throw);
        QCOMPARE(valueOf(element), QVariant(0.0)); // what no bytes are
        QVERIFY(perform(element, ElementCommand::Unload));
        QCOMPARE(valueOf(element), QVariant(1.5));

        const auto fleeting = add(QString());
        QVERIFY(fleeting && isLoaded(fleeting) && perform(fleeting, ElementCommand::Unload));
        QCOMPARE(valueOf(fleeting), QVariant(0.0));
    }

    void strategyReachesWhatIsLoadedAlone()
    {
        const auto element = add("disk");
        QVERIFY(element && perform(element, ElementCommand::Load));
        const auto entry = std::dynamic_pointer_cast<Entry>(element->getParent());
        const auto strategy = MakeEventThreadObject<ToldStrategy>();
        // As an installation does it.
        QVERIFY(entry->getMemoryStrategyWrapper()->expectStrategy());
        QVERIFY(element->setMemoryStrategyWrapper(entry->getMemoryStrategyWrapper()));
        QVERIFY(entry->getMemoryStrategyWrapper()->setStrategy(strategy));
        QTRY_VERIFY(!isLoaded(element));
        QCOMPARE(strategy->asked.load(), 1);

        // Connected once, however often it has been loaded, written and given the same wrapper.
        strategy->decision = MemoryStrategy::Keep;
        valueOf(element);
        QVERIFY(run->update(element, run->value(11, 2)));
        QVERIFY(element->setMemoryStrategyWrapper(entry->getMemoryStrategyWrapper()));
        Tessellum::Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
        QTRY_VERIFY(strategy->asked > 1); // by the new time stamp
        strategy->asked = 0;
        strategy->decision = MemoryStrategy::Unload;
        Q_EMIT entry->getMemoryStrategyWrapper()->invalidated();
        QTRY_VERIFY(!isLoaded(element));
        QCOMPARE(strategy->asked.load(), 1);

        Q_EMIT entry->getMemoryStrategyWrapper()->invalidated();
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
        auto element = add("disk");
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

QTEST_GUILESS_MAIN(ElementProvidersTest)
#include "ElementProvidersTest.moc"
