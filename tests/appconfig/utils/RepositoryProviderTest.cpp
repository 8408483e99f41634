#include "RunningRepository.h"

#include <appconfig/attributes/Attribute.h>
#include <appconfig/ManagedRepository.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/AttributesQueryProvider.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/ShownAttribute.h>
#include <notification/RepositoryLocks.h>

#include <QtTest>

#include <memory>
#include <support/Literals.h>
#include <support/Threads.h>
#include <thread>

using namespace Tessellum;
using namespace Tessellum::AppConfig;
using Attributes::AttributeCreateData;
using Notification::CreatePoint;
using Notification::UpdatePoint;
using Shared::Hierarchy::HierarchyNode;
using PlainNode = Shared::Hierarchy::HierarchyNodeInstance;
using Tessellum::AppConfig::utils::ShownAttribute;

namespace {

AttributeCreateData::AttributeCreateDataDetails holding(const QVariant &value)
{
    AttributeCreateData::AttributeCreateDataDetails details;
    details.value = value;
    return details;
}

} // namespace

class RepositoryProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestBackend::registerType("one value", [](TestBackend &backend) {
            backend.values = {AttributeCreateData("value", holding(1))};
        });
    }
    void aStopEndsWhatIsQueuedAndNested()
    {
        RunningRepository run;
        const auto backends = run.provider().getBackendProvider();
        QList<std::shared_ptr<Notification::CreateObserver>> observers;
        for (int number = 0; number < 2000; ++number) {
            observers.append(
                backends->startCreateBackend("one value", "store%1"_s.arg(number), {}, CreatePoint::Done));
            QVERIFY(observers.last());
        }
        run.stop();
        int done = 0;
        for (const auto &observer : observers) {
            const auto report = observer->waitForResult();
            done += report && report->second ? 1 : 0;
        }
        QVERIFY2(done < observers.size(), "the stop came too late to discard anything");
        QCOMPARE(RunningRepository::provider().getRoot()->getNumberOfChildren(), 0ULL);
        QCOMPARE(RunningRepository::provider().getThreadPool().activeThreadCount(), 0);
    }

    void aStopWaitsForNobodyWhoLocks()
    {
        RunningRepository run;
        ManagedRepository repository(nullptr, &Core::appConfigLock());
        QSemaphore reading;
        QSemaphore goOn;
        auto details = holding(0);
        details.reader = [&](const QVariant &, QVariant &out) {
            reading.release();
            goOn.acquire();
            QVariant unused;
            repository.getQueryInterface()->getValue("other", unused,
                                                     0); // takes the lock while the stop waits
            out = 1;
            return true;
        };
        QVERIFY(Attributes::CreateAttributeInHierarchy(run.provider().getRoot(),
                                                       AttributeCreateData("custom", details)));
        const auto observer
            = run.provider().getManipulationProvider()->startUpdateAttribute("custom", 1, UpdatePoint::Done);
        reading.acquire();
        std::thread stopper([&run] { run.stop(); });
        QTRY_VERIFY(!run.provider().getThreadPool().isRunning());
        goOn.release(2); // the task reads once before and once after the write
        stopper.join();
        QVERIFY(observer.observer->isEnded());
        QVERIFY(!run.provider().isActive());
    }

    void theKeeperTakesWhatHangsInTheTrees()
    {
        RunningRepository run;
        auto &provider = run.provider();
        const auto manipulation = provider.getManipulationProvider();
        for (const char *path : {"a.b", "names"}) // a name of the internal tree too
            QVERIFY(manipulation->createAttribute(path, 1, CreatePoint::Done, 3));
        QVERIFY(provider.getBackendProvider()->createBackend("one value", "store", {}, CreatePoint::Done));
        const auto list = provider.getListPattern("names", "backends");
        std::shared_ptr<HierarchyNode> keeper;
        provider.setRepositoryActive(keeper, true);
        QVERIFY(keeper);
        for (const char *path : {"a.b", "names"}) {
            const auto kept
                = std::dynamic_pointer_cast<Attributes::Attribute>(keeper->findChildByRelativePath(path));
            QVERIFY(kept && kept->hasValue());
        }
        QVERIFY(keeper->hasChild("metatypes") && !keeper->hasChild("store"));
        QVERIFY(!provider.getInternalRoot()->hasChild("names"));
        QVERIFY(!provider.getListPattern("names", "backends"));
        QVERIFY(!provider.getQueryInterface());
        QVERIFY(!manipulation->createAttribute("late", 1, CreatePoint::Done, 3));
    }

    void aStartKeepsARunningRepository()
    {
        RunningRepository run;
        const auto query = run.provider().getQueryProvider();
        const auto list = run.provider().getListPattern("types", "validations");
        std::shared_ptr<HierarchyNode> noKeeper;
        run.provider().setRepositoryActive(noKeeper, false);
        QCOMPARE(run.provider().getQueryProvider(), query);
        QCOMPARE(run.provider().getListPattern("types", "validations"), list);
    }

    void linksNeedAPathATargetAndNoCycle()
    {
        RunningRepository run;
        auto &provider = run.provider();
        const auto root = provider.getRoot();
        const auto target = Notification::utils::MakeNode<PlainNode>("target");
        QVERIFY(!provider.linkNode({}, target, "link") && !provider.linkNode("a", nullptr, "link"));
        QVERIFY(!provider.addRootLink({}, target, false) && !provider.addRootLink("a.link", nullptr, false));
        QVERIFY(!provider.linkNode("a", root, "link") && !provider.addRootLink("a.", target, false));
        QVERIFY(!root->hasChild("a")); // nothing stays of what was refused

        QVERIFY(provider.linkNode("a.b", target, "link"));
        QVERIFY(provider.addRootLink("a.link", target, true)
                && !provider.addRootLink("a.link", target, true));
        QVERIFY(!provider.linkNode("internal.x", target, "link"));
        const auto child = Notification::utils::MakeNode<PlainNode>("child"_s);
        QVERIFY(!root->findChildByRelativePath("a.link")->addChild(child)); // read-only
        QVERIFY(root->findChildByRelativePath("a.b.link")->addChild(child));
        QVERIFY(target->hasChild("child"));
    }

    void theLastValueHoldsUntilTheLastHolderGoes()
    {
        const RunningRepository run;
        const QString path = QStringLiteral("a.peers.one");
        auto first = std::make_unique<ShownAttribute>(path, 1);
        QTRY_COMPARE(RunningRepository::value(path), QVariant(1));
        auto second = std::make_unique<ShownAttribute>(path, 2);
        QTRY_COMPARE(RunningRepository::value(path), QVariant(2));
        first.reset();
        second->show(3);
        QTRY_COMPARE(RunningRepository::value(path), QVariant(3));
        second.reset();
        QTRY_VERIFY(!RunningRepository::value(path).isValid());
    }

    void nothingStaysBehindWhateverTheOrderOfTasks()
    {
        const RunningRepository run;
        const QString kept = QStringLiteral("a.kept");
        const ShownAttribute last(kept, 0);
        TestSupport::InThreads(4, [&kept](int thread) {
            for (int round = 0; round < 200; ++round) {
                const ShownAttribute gone(QStringLiteral("a.gone%1").arg(round % 3), thread);
                const ShownAttribute also(kept, round);
            }
        });
        last.show(QStringLiteral("end"));
        QTRY_COMPARE(RunningRepository::value(kept), QVariant(QStringLiteral("end")));
        for (int number = 0; number < 3; ++number)
            QTRY_VERIFY(!RunningRepository::value(QStringLiteral("a.gone%1").arg(number)).isValid());
    }

    void aStoppedConfigurationShowsNothing()
    {
        const QString path = QStringLiteral("a.stopped");
        auto early = std::make_unique<ShownAttribute>(path, 1);
        const RunningRepository run;
        early->show(2);
        QTRY_COMPARE(RunningRepository::value(path), QVariant(2));
        early.reset();
        QTRY_VERIFY(!RunningRepository::value(path).isValid());
    }
};

QTEST_GUILESS_MAIN(RepositoryProviderTest)
#include "RepositoryProviderTest.moc"
