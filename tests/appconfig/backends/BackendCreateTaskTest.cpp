#include "RepositoryFixture.h"

#include <appconfig/backends/BackendCreateTask.h>
#include <appconfig/backends/BackendRegistration.h>
#include <appconfig/backends/MemoryBackend.h>

#include <QtTest>

#include <atomic>
#include <stdexcept>
#include <support/Literals.h>

using namespace Tessellum::AppConfig::Backends;
using Shared::Logging::LogMessageType;
using Tessellum::AppConfig::Attributes::AttributeCreateData;
using Tessellum::AppConfig::Attributes::AttributesCreateData;
using Tessellum::AppConfig::Attributes::AttributeValueSource;
using Tessellum::Notification::CreateObserver;
using Tessellum::Notification::CreatePoint;

namespace {

AttributeCreateData Element(const QString &name, const QVariant &value)
{
    AttributeCreateData data;
    data.name = name;
    data.details.value = value;
    return data;
}

} // namespace

class BackendCreateTaskTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { fixture = std::make_unique<RepositoryFixture>(); }
    void cleanup()
    {
        factory().unregisterProduct(scripted);
        fixture.reset();
    }

    void refusesWhatItCannotCreate()
    {
        const QString unknown = "cannot create backend with unknown type: '%1' or empty name: '%2'";
        const std::tuple<QString, QString, QString> cases[]
            = {{"xml", "a.b", unknown.arg("xml", "a.b")},
               {"Memory", "a", unknown.arg("Memory", "a")},
               {"", "a", "supplied creation data is empty, no backend created"},
               {memory, "a..b", "failed to create backend 'b'"},
               {memory, "a.", "failed to create backend ''"}};
        for (const auto &[type, name, message] : cases) {
            const auto observer = fixture->backends().startCreateBackend(type, name, {}, CreatePoint::Done);
            observer->wait();
            QCOMPARE(observer->getResult(), CreateObserver::ResultType(CreatePoint::Done, false));
            QCOMPARE(fixture->takeLog(LogMessageType::warning),
                     QStringList("BackendCreateTask::createBackendForHierarchy() " + message));
            QVERIFY(!fixture->node("a"));
        }
    }

    void refusesWithoutPayloadOrPlace()
    {
        const auto run = [](const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent,
                            const QString &path, const QVariant &data) {
            return BackendCreateTask({}, {}, parent, path, data, CreatePoint::Done).runCreate();
        };
        const CreateObserver::ResultType refused(CreatePoint::Begin, false);
        const auto root = fixture->repository().getRoot();
        const QVariant data = QVariant::fromValue(BackendCreateData(memory, QString(), {}));
        QCOMPARE(run({}, "m", data), refused);
        QCOMPARE(run(root, QString(), data), refused);
        QVERIFY(fixture->takeLog(LogMessageType::warning).isEmpty());
        QCOMPARE(run(root, "m", 1), refused);
        QCOMPARE(fixture->takeLog(LogMessageType::warning),
                 QStringList("BackendCreateTask::runCreate() failed to convert the create data into "
                             "BackendCreateData, no backend created"));
        // A name that is empty in the data alone gets further.
        QCOMPARE(run(root, "m", data), CreateObserver::ResultType(CreatePoint::Done, false));
    }

    void keepsTheFirstOfAName()
    {
        for (const QString &name : {"m"_s, "a.b.m"_s}) {
            QVERIFY(fixture->create(memory, name));
            const auto first = fixture->node(name);
            const auto observer = fixture->backends().startCreateBackend(memory, name, {}, CreatePoint::Done);
            observer->wait();
            QCOMPARE(observer->getResult(), CreateObserver::ResultType(CreatePoint::Begin, false));
            QCOMPARE(fixture->node(name), first);
        }
        // Two of one id at different places are both listed.
        QCOMPARE(fixture->backends().getBackendNames(), QStringList({"m", "m1"}));
    }

    void makesAndRemovesPlainParents()
    {
        registerScript([this](AttributesCreateData &) {
            // Meanwhile the upper one of the two parents gets another child.
            return fixture->create(memory, "a.other") && false;
        });
        QVERIFY(!fixture->create(scripted, "a.b.m"));
        QVERIFY(!fixture->node("a.b"));
        QVERIFY(fixture->node("a.other"));
        QVERIFY(!fixture->create(scripted, "c.d.m"));
        QVERIFY(fixture->node("c") == nullptr);
    }

    void slotMayWaitForAnotherBackend()
    {
        std::atomic<bool> created{false};
        const auto root = std::dynamic_pointer_cast<Shared::Hierarchy::HierarchyNodeInstance>(
            fixture->repository().getRoot());
        const auto connection = connect(
            root.get(), &Shared::Hierarchy::HierarchyNodeInstance::notifyChildAdded, root.get(),
            [&](const QString &id) {
                if (id == QLatin1String("outer"))
                    created = fixture->create(memory, "inner");
            },
            Qt::DirectConnection);
        QVERIFY(fixture->create(memory, "outer"));
        QVERIFY(created);
        disconnect(connection);
    }

    // One backend after the other fails in a parent of its own making while another settles there.
    void staysInParentsThatAnotherTaskRemoves()
    {
        registerScript([](AttributesCreateData &) { return false; });
        fixture->repository().getThreadPool().setMaxThreadCount(4);
        for (int round = 0; round < 500; ++round) {
            const QString parent = "p%1.q."_s.arg(round);
            const auto start = [&](const QString &type, const char *id) {
                return fixture->backends().startCreateBackend(type, parent + QLatin1String(id), {},
                                                              CreatePoint::Done);
            };
            const auto failing = start(scripted, "failing");
            const auto staying = start(memory, "staying");
            const auto failingToo = start(scripted, "too");
            for (const auto &observer : {failing, staying, failingToo})
                observer->wait();
            QCOMPARE(staying->getResult(), CreateObserver::ResultType(CreatePoint::Done, true));
            QVERIFY(fixture->node(parent + "staying"_s));
        }
    }

    void leavesNoTraceOfAFailure()
    {
        const auto fails = [this] {
            const auto observer
                = fixture->backends().startCreateBackend(scripted, "p.m", {}, CreatePoint::Done);
            observer->wait();
            factory().unregisterProduct(scripted);
            return observer->getResult() == CreateObserver::ResultType(CreatePoint::Done, false)
                && !fixture->node("p") && fixture->backends().getBackendNames().isEmpty();
        };
        TestBackend::registerType(scripted, [](TestBackend &backend) {
            backend.onLoad = [&backend](AttributesCreateData &out) {
                return backend.Backend::loadAttributesCreateDataInternal(out, CreatePoint::Done);
            };
        });
        QVERIFY(fails());
        QCOMPARE(fixture->takeLog(LogMessageType::warning),
                 QStringList("Backend::loadAttributesCreateDataInternal() default implementation called for "
                             "backend=m no attribute create data elments created"));
        factory().registerProduct(scripted, [](const BackendCreateData &) { return nullptr; });
        QVERIFY(fails());
        QCOMPARE(fixture->takeLog(LogMessageType::warning),
                 QStringList("BackendCreateTask::createBackendForHierarchy() failed to create backend 'm'"));
        registerScript([](AttributesCreateData &out) {
            out.append(Element(QString(), 1)); // comes to no attribute
            return true;
        });
        QVERIFY(fails());

        fixture->takeLog(LogMessageType::critical);
        registerScript([](AttributesCreateData &) -> bool { throw std::runtime_error("source"); });
        QVERIFY(fails());
        factory().registerProduct(scripted, [](const BackendCreateData &) -> std::shared_ptr<Backend> {
            throw std::runtime_error("product");
        });
        QVERIFY(fails());
        QStringList critical;
        const auto logged = [&] { return (critical += fixture->takeLog(LogMessageType::critical)).size(); };
        QTRY_COMPARE_WITH_TIMEOUT(logged(), 2, 30000);
        const QString line = "CreateTask::run() catched exception";
        QCOMPARE(critical, QStringList({line, line}));
    }

    void overridesAccess()
    {
        registerScript([](AttributesCreateData &out) {
            AttributeCreateData readable = Element("readable", {});
            readable.details.valueSource = AttributeValueSource::Functions;
            readable.details.access = 1;
            readable.details.reader = [](const QVariant &, QVariant &) { return true; };
            AttributeCreateData both = readable;
            both.name = "both";
            both.details.writer = [](QVariant &, const QVariant &) { return true; };
            out << Element("stored", 1) << readable << both;
            return true;
        });
        QVERIFY(fixture->create(scripted, "s", {}, 3) && fixture->create(scripted, "r", {}, 0));
        const QPair<const char *, quint32> expected[]
            = {{"s.stored", 3}, {"s.readable", 1}, {"s.both", 3}, {"r.stored", 1}, {"r.both", 1}};
        for (const auto &[path, access] : expected)
            QCOMPARE(fixture->repository().getQueryInterface()->getAttribute(path)->getAccess(), access);
        QCOMPARE(BackendCreateData(memory, "m", {{}, {}, 2}).access, 3u); // always readable
    }

    void finishesManyAtOnce()
    {
        constexpr int Count = 10000;
        auto &pool = fixture->repository().getThreadPool();
        pool.setMaxThreadCount(2);
        // Every second one waits on a thread of the pool for a task of the pool.
        const BackendCreateDataDetails json{QByteArray("{\"a\":1}"), QString(), 3};
        QList<std::shared_ptr<CreateObserver>> observers;
        for (int i = 0; i < Count; ++i) {
            observers.append(fixture->backends().startCreateBackend(i % 2 ? "json" : "memory", "b%1"_s.arg(i),
                                                                    json, CreatePoint::Done));
        }
        for (const auto &observer : qAsConst(observers)) {
            observer->wait();
            QCOMPARE(observer->getResult(), CreateObserver::ResultType(CreatePoint::Done, true));
        }
        QVERIFY(pool.maxThreadCount() <= Tessellum::Notification::ThreadPool::MaximumThreadCount());
        QCOMPARE(fixture->backends().getBackendNames().size(), Count);
        QCOMPARE(fixture->repository().getRoot()->getNumberOfChildren(), quint64(Count));
        QVERIFY(fixture->node("b9999.a"));
    }

private:
    BackendFactory &factory() { return fixture->repository(); }
    void registerScript(const std::function<bool(AttributesCreateData &)> &script)
    {
        TestBackend::registerType(scripted, [script](TestBackend &backend) { backend.onLoad = script; });
    }

    std::unique_ptr<RepositoryFixture> fixture;
    const QString scripted = "scripted"_s;
    const QString memory = "memory"_s;
};

QTEST_GUILESS_MAIN(BackendCreateTaskTest)
#include "BackendCreateTaskTest.moc"
