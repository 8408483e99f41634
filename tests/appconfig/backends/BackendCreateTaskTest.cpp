#include "RepositoryFixture.h"

#include <appconfig/backends/BackendCreateTask.h>
#include <appconfig/backends/BackendReference.h>
#include <appconfig/backends/BackendRegistration.h>
#include <appconfig/backends/MemoryBackend.h>
#include <notification/utils/MakeNode.h>
#include <notification/utils/PoolWait.h>

#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <stdexcept>

using namespace Tessellum::AppConfig::Backends;
using Shared::Logging::LogMessageType;
using Tessellum::AppConfig::Attributes::AttributeCreateData;
using Tessellum::AppConfig::Attributes::AttributesCreateData;
using Tessellum::AppConfig::Attributes::AttributeValueSource;
using Tessellum::Notification::CreateObserver;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::utils::MakeNode;

namespace {

/// A backend whose source is a function of the test.
class ScriptedBackend : public Backend
{
public:
    using Script = std::function<bool(AttributesCreateData &)>;

    ScriptedBackend(const BackendCreateData &data, const Script &loadScript)
        : Backend(data)
        , script(loadScript)
    { }
    QStringList getTypeKeys() const override { return {QStringLiteral("scripted")}; }
    bool saveAttributes() override { return false; }
    bool loadAttributesCreateDataInternal(AttributesCreateData &out, const CreatePoint &waitPoint) override
    {
        return script ? script(out) : Backend::loadAttributesCreateDataInternal(out, waitPoint);
    }

private:
    const Script script;
};

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

    void isAlwaysReadable();
    void registersEachKeyOnce();
    void refusesWhatItCannotCreate_data();
    void refusesWhatItCannotCreate();
    void refusesWithoutPayloadOrPlace();
    void keepsTheFirstOfAName();
    void makesAndRemovesPlainParents();
    void slotMayWaitForAnotherBackend();
    void staysInParentsThatAnotherTaskRemoves();
    void leavesNoTraceOfAFailure_data();
    void leavesNoTraceOfAFailure();
    void overridesAccess();
    void notifiesOfItsFullPath();
    void referenceOutlivesTheBackend();
    void finishesManyAtOnce();

private:
    BackendFactory &factory() { return fixture->repository(); }
    void registerScript(const ScriptedBackend::Script &script)
    {
        factory().registerProduct(scripted, [script](const BackendCreateData &data) {
            return MakeNode<ScriptedBackend>(data, script);
        });
    }

    std::unique_ptr<RepositoryFixture> fixture;
    const QString scripted = QStringLiteral("scripted");
    const QString memory = QStringLiteral("memory");
};

void BackendCreateTaskTest::isAlwaysReadable()
{
    const QMap<quint32, quint32> expected{{0, 1}, {1, 1}, {2, 3}, {3, 3}};
    for (auto access = expected.constBegin(); access != expected.constEnd(); ++access)
        QCOMPARE(BackendCreateData(memory, "m", {{}, {}, access.key()}).access, access.value());
    QCOMPARE(BackendCreateData().access, 3u);
}

void BackendCreateTaskTest::registersEachKeyOnce()
{
    BackendFactory empty;
    QCOMPARE(RegisterBackend<MemoryBackend>(empty), 2);
    QCOMPARE(RegisterBackend<MemoryBackend>(empty), 0);
    for (const char *key : {"memory", "volatile", "json", "json_file", "jsonfile"})
        QVERIFY2(fixture->repository().getBackendTypes().contains(key), key);
    QVERIFY(fixture->create(memory, "m"));
    const auto backend = fixture->backends().getBackend("m");
    QCOMPARE(backend->getType(), memory);
    QCOMPARE(backend->getId(), QString("m"));
    QCOMPARE(backend->getTypeKeys(), QStringList({"memory", "volatile"}));
    QVERIFY(!backend->setDescription(QString()));
    QVERIFY(backend->setDescription("text"));
    QCOMPARE(fixture->backends().getBackendDescription("m"), QString("text"));
    QVERIFY(!fixture->backends().saveBackend("m"));
}

void BackendCreateTaskTest::refusesWhatItCannotCreate_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("message");
    const QString prefix = QStringLiteral("BackendCreateTask::createBackendForHierarchy() ");
    const QString unknown
        = prefix + QStringLiteral("cannot create backend with unknown type: '%1' or empty name: '%2'");
    QTest::newRow("unregistered") << "xml"
                                  << "a.b" << unknown.arg("xml", "a.b");
    QTest::newRow("exact look-up") << "Memory"
                                   << "a" << unknown.arg("Memory", "a");
    QTest::newRow("no type") << ""
                             << "a" << prefix + "supplied creation data is empty, no backend created";
    QTest::newRow("empty element") << "memory"
                                   << "a..b" << prefix + "failed to create backend 'b'";
    QTest::newRow("empty last element") << "memory"
                                        << "a." << prefix + "failed to create backend ''";
}

void BackendCreateTaskTest::refusesWhatItCannotCreate()
{
    QFETCH(QString, type);
    QFETCH(QString, name);
    QFETCH(QString, message);
    const auto observer = fixture->backends().startCreateBackend(type, name, {}, CreatePoint::Done);
    QVERIFY(!Tessellum::Notification::utils::WaitForSuccess(fixture->repository().getThreadPool(), observer));
    QCOMPARE(observer->getResult(), CreateObserver::ResultType(CreatePoint::Done, false));
    QCOMPARE(fixture->takeLog(LogMessageType::warning), QStringList(message));
    QVERIFY(!fixture->node("a"));
}

void BackendCreateTaskTest::refusesWithoutPayloadOrPlace()
{
    const auto run = [](const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent, const QString &path,
                        const QVariant &data) {
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

void BackendCreateTaskTest::keepsTheFirstOfAName()
{
    for (const QString &name : {QStringLiteral("m"), QStringLiteral("a.b.m")}) {
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

void BackendCreateTaskTest::makesAndRemovesPlainParents()
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

void BackendCreateTaskTest::slotMayWaitForAnotherBackend()
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
void BackendCreateTaskTest::staysInParentsThatAnotherTaskRemoves()
{
    registerScript([](AttributesCreateData &) { return false; });
    fixture->repository().getThreadPool().setMaxThreadCount(4);
    for (int round = 0; round < 500; ++round) {
        const QString parent = QStringLiteral("p%1.q.").arg(round);
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
        QVERIFY(fixture->node(parent + QStringLiteral("staying")));
    }
}

void BackendCreateTaskTest::leavesNoTraceOfAFailure_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("default implementation") << 0;
    QTest::newRow("exception while loading") << 1;
    QTest::newRow("exception while it is made") << 2;
    QTest::newRow("no attribute came of it") << 3;
    QTest::newRow("factory without a product") << 4;
}

void BackendCreateTaskTest::leavesNoTraceOfAFailure()
{
    QFETCH(int, kind);
    if (kind == 0)
        registerScript({});
    if (kind == 1)
        registerScript([](AttributesCreateData &) -> bool { throw std::runtime_error("source"); });
    if (kind == 2)
        factory().registerProduct(scripted, [](const BackendCreateData &) -> std::shared_ptr<Backend> {
            throw std::runtime_error("product");
        });
    if (kind == 3)
        registerScript([](AttributesCreateData &out) {
            out.append(Element(QString(), 1));
            return true;
        });
    if (kind == 4)
        factory().registerProduct(scripted, [](const BackendCreateData &) { return nullptr; });

    const auto observer = fixture->backends().startCreateBackend(scripted, "p.m", {}, CreatePoint::Done);
    observer->wait();
    QCOMPARE(observer->getResult(), CreateObserver::ResultType(CreatePoint::Done, false));
    QVERIFY(!fixture->node("p"));
    QVERIFY(fixture->backends().getBackendNames().isEmpty());
    if (kind == 0) {
        QCOMPARE(fixture->takeLog(LogMessageType::warning),
                 QStringList("Backend::loadAttributesCreateDataInternal() default implementation called for "
                             "backend=m no attribute create data elments created"));
    }
    if (kind == 4) {
        QCOMPARE(fixture->takeLog(LogMessageType::warning),
                 QStringList("BackendCreateTask::createBackendForHierarchy() failed to create backend 'm'"));
    }
    if (kind == 1 || kind == 2) {
        QStringList critical;
        const auto logged = [&] {
            critical += fixture->takeLog(LogMessageType::critical);
            return !critical.isEmpty();
        };
        QTRY_VERIFY_WITH_TIMEOUT(logged(), 30000);
        QCOMPARE(critical, QStringList("CreateTask::run() catched exception"));
    }
}

void BackendCreateTaskTest::overridesAccess()
{
    registerScript([](AttributesCreateData &out) {
        out.append(Element("stored", 1));
        AttributeCreateData readable = Element("readable", {});
        readable.details.valueSource = AttributeValueSource::Functions;
        readable.details.access = 1;
        readable.details.reader = [](const QVariant &, QVariant &value) {
            value = 2;
            return true;
        };
        AttributeCreateData both = readable;
        both.name = "both";
        both.details.writer = [](QVariant &, const QVariant &) { return true; };
        out << readable << both;
        return true;
    });
    QVERIFY(fixture->create(scripted, "s", {}, 3));
    const auto access = [this](const QString &path) {
        return fixture->repository().getQueryInterface()->getAttribute(path)->getAccess();
    };
    QCOMPARE(access("s.stored"), 3u);
    QCOMPARE(access("s.readable"), 1u);
    QCOMPARE(access("s.both"), 3u);
    QVERIFY(fixture->create(scripted, "r", {}, 0));
    QCOMPARE(access("r.stored"), 1u);
    QCOMPARE(access("r.both"), 1u);
}

void BackendCreateTaskTest::notifiesOfItsFullPath()
{
    QMutex mutex;
    QList<CreateObserver::ResultType> heard;
    QSemaphore calls;
    const auto handle = fixture->repository().getNotificationProvider()->registerCreateHandler(
        "a.m",
        [&](const QString &, const CreatePoint &point, const bool &result) {
            const QMutexLocker lock(&mutex);
            heard.append({point, result});
            calls.release();
        },
        CreatePoint::All);
    QVERIFY(handle);
    QVERIFY(fixture->create(memory, "a.m"));
    QVERIFY(calls.tryAcquire(2, 30000));
    const QMutexLocker lock(&mutex);
    QVERIFY(heard.contains({CreatePoint::Begin, true}));
    QVERIFY(heard.contains({CreatePoint::Done, true}));
}

void BackendCreateTaskTest::referenceOutlivesTheBackend()
{
    auto backend
        = std::shared_ptr<Backend>(MakeNode<MemoryBackend>(BackendCreateData(memory, "m", {{}, "text", 3})));
    BackendReference reference(backend);
    QCOMPARE(reference.getDescription(), QString("text"));
    QVERIFY(reference.setDescription("other"));
    backend.reset();
    QVERIFY(reference.getType().isEmpty() && reference.getId().isEmpty()
            && reference.getDescription().isEmpty() && reference.getTypeKeys().isEmpty());
    QVERIFY(!reference.setDescription("third"));
}

void BackendCreateTaskTest::finishesManyAtOnce()
{
    constexpr int Count = 10000;
    auto &pool = fixture->repository().getThreadPool();
    pool.setMaxThreadCount(2);
    // Every second one waits on a thread of the pool for a task of the pool.
    const BackendCreateDataDetails json{QByteArray("{\"a\":1}"), QString(), 3};
    QList<std::shared_ptr<CreateObserver>> observers;
    for (int i = 0; i < Count; ++i) {
        observers.append(fixture->backends().startCreateBackend(
            i % 2 ? "json" : "memory", QStringLiteral("b%1").arg(i), json, CreatePoint::Done));
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

QTEST_GUILESS_MAIN(BackendCreateTaskTest)
#include "BackendCreateTaskTest.moc"
