#include "RepositoryFixture.h"

#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/backends/utils/RemoteBackendClient.h>
#include <appconfig/backends/utils/RemoteBackendToAttributeMapper.h>

#include <QTcpServer>
#include <QThread>
#include <QtTest>
#include <QUrl>

#include <atomic>
#include <future>
#include <vector>

using namespace Tessellum::AppConfig::Backends::utils;
using Shared::Logging::LogMessageType;
using Tessellum::Notification::DeletePoint;
using Tessellum::Notification::UpdatePoint;

namespace {

constexpr int Patience = 20000;
const auto PortPath = QStringLiteral("appconfig.backends.remote_server_ports.net");
const auto Control = QStringLiteral("appconfig.backends.remote_clients.a.control");
const auto Status = QStringLiteral("appconfig.backends.remote_clients.a.status");
const auto ServerStatus = QStringLiteral("appconfig.backends.remote_server.a");

} // namespace

/*! A server of "plant" and clients of it in one tree. */
class RemoteBackendClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        fixture = std::make_unique<RepositoryFixture>();
        setAutomaticCreate(true);
        QVERIFY(fixture->createAttribute("plant"_s, 0));
        QVERIFY(fixture->createAttribute("plant.speed"_s, 5));
        QVERIFY(fixture->createAttribute("plant.motor.name"_s, "m1"_s));
        port = 0;
        serve();
    }
    void cleanup() { fixture.reset(); }

    void mirrorsBothWays()
    {
        QVERIFY(mirror("path=plant"_s));
        QCOMPARE(fixture->values("panel"_s), fixture->values("plant"_s));
        set("plant.speed"_s, 6);
        QTRY_COMPARE_WITH_TIMEOUT(value("panel.speed"_s), QVariant(6), Patience);
        set("panel.speed"_s, "fast"_s);
        QTRY_COMPARE_WITH_TIMEOUT(value("plant.speed"_s), QVariant("fast"_s), Patience);
        QTRY_COMPARE_WITH_TIMEOUT(value("panel.speed"_s), QVariant("fast"_s), Patience);
        set("panel.speed"_s, "fast"_s); // asks for the value in force alone

        QVERIFY(fixture->createAttribute("plant.new.one"_s, 1));
        QTRY_COMPARE_WITH_TIMEOUT(value("panel.new.one"_s), QVariant(1), Patience);
        remove("plant.motor"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!fixture->node("panel.motor"_s), Patience);

        // What the server does not take comes back.
        QVERIFY(fixture->createAttribute("plant.fixed"_s, 7, 1));
        QVERIFY(fixture->create("remote-backend-client"_s, "second"_s, url("path=plant"_s)));
        set("second.fixed"_s, 8);
        QTRY_COMPARE_WITH_TIMEOUT(value("second.fixed"_s), QVariant(7), Patience);
        QCOMPARE(value("plant.fixed"_s), QVariant(7));
    }

    void closesAndConnects()
    {
        QVERIFY(mirror("path=plant&id=a"_s));
        QTRY_COMPARE_WITH_TIMEOUT(value(Status), QVariant("established"_s), Patience);
        QTRY_VERIFY_WITH_TIMEOUT(value(ServerStatus).toString().contains("127.0.0.1"_s), Patience);
        control("CLOSE"_s);
        control("close"_s);
        QTRY_COMPARE_WITH_TIMEOUT(value(Status), QVariant("disconnected"_s), Patience);
        QTRY_VERIFY_WITH_TIMEOUT(!fixture->node(ServerStatus), Patience);

        set("plant.speed"_s, 6);
        remove("plant.motor"_s);
        QVERIFY(fixture->createAttribute("plant.lamp"_s, "on"_s));
        set("panel.speed"_s, 50); // lost
        QCOMPARE(value("panel.speed"_s), QVariant(50));

        control("connect"_s);
        QTRY_COMPARE_WITH_TIMEOUT(value("panel.lamp"_s), QVariant("on"_s), Patience);
        QCOMPARE(value(Status), QVariant("established"_s));
        QVERIFY(!fixture->node("panel.motor"_s));
        QCOMPARE(value("panel.speed"_s), QVariant(50));
        QCOMPARE(value("plant.speed"_s), QVariant(6));
        set("panel.lamp"_s, "off"_s); // a mirror
        QTRY_COMPARE_WITH_TIMEOUT(value("plant.lamp"_s), QVariant("off"_s), Patience);

        // A "connect" of one that is connected takes its place.
        fixture->takeLog(LogMessageType::log);
        control("connect"_s);
        QVERIFY(logs(LogMessageType::log, "created status_path="_s + ServerStatus));
        set("plant.speed"_s, 7);
        QTRY_COMPARE_WITH_TIMEOUT(value("panel.speed"_s), QVariant(7), Patience);
        QTRY_VERIFY_WITH_TIMEOUT(fixture->node(ServerStatus), Patience);
    }

    void survivesTheServersEnds()
    {
        QVERIFY(mirror("path=plant&id=a"_s));
        for (int round = 0; round < 5; ++round) {
            fixture->takeLog(LogMessageType::log);
            fixture->node("net"_s)->setDeleteFlag();
            QTRY_COMPARE_WITH_TIMEOUT(value(Status), QVariant("disconnected"_s), Patience);
            QTRY_VERIFY_WITH_TIMEOUT(!fixture->node(ServerStatus) && !fixture->node(PortPath), Patience);
            const QStringList told = fixture->takeLog(LogMessageType::log);
            QCOMPARE(told.filter("RemoteBackendClient::onDisconnected() id="_s).size(), 1);
            control("connect"_s); // to nobody
            QVERIFY(logs(LogMessageType::warning, "onDisconnected() error: Connection refused"_s));
            const QString name = "plant.n%1"_s.arg(round);
            QVERIFY(fixture->createAttribute(name, round));
            serve();
            control("connect"_s);
            QTRY_COMPARE_WITH_TIMEOUT(fixture->values("panel"_s), fixture->values("plant"_s), Patience);
            QTRY_COMPARE_WITH_TIMEOUT(value(Status), QVariant("established"_s), Patience);
            set("panel.n%1"_s.arg(round), "back"_s);
            QTRY_COMPARE_WITH_TIMEOUT(value(name), QVariant("back"_s), Patience);
        }
    }

    void loadsThatEndWithoutASubtree_data()
    {
        QTest::addColumn<QString>("query");
        QTest::newRow("no path") << "id=a";
        QTest::newRow("no wait") << "id=a&path=plant&timeout=0";
        QTest::newRow("no such subtree") << "id=a&path=nowhere&timeout=20";
        QTest::newRow("too much for it") << "id=a&path=plant&limit=100";
        QTest::newRow("no server") << "";
    }
    void loadsThatEndWithoutASubtree()
    {
        QFETCH(QString, query);
        QUrl target = url(query);
        if (query.isEmpty()) {
            QTcpServer free;
            QVERIFY(free.listen(QHostAddress::LocalHost));
            target = QUrl("ws://127.0.0.1:%1?id=a&path=plant"_s.arg(free.serverPort()));
        }
        QVERIFY(fixture->create("remote-backend-client"_s, "panel"_s, target));
        QVERIFY(fixture->node("panel"_s));
        QVERIFY(fixture->node(Control));
        if (query.contains("timeout=0"_s)) // comes later
            QTRY_COMPARE_WITH_TIMEOUT(fixture->values("panel"_s), fixture->values("plant"_s), Patience);
        else
            QVERIFY(fixture->values("panel"_s).isEmpty());
        if (query.isEmpty() || query.contains("limit"_s))
            QTRY_COMPARE_WITH_TIMEOUT(value(Status), QVariant("disconnected"_s), Patience);
    }

    void aConnectEndsTheLoadThatWaits()
    {
        auto loaded = std::async(std::launch::async, [this] { return mirror("id=a&path=later"_s); });
        QTRY_COMPARE_WITH_TIMEOUT(value(Status), QVariant("established"_s), Patience);
        QVERIFY(loaded.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout);
        control("connect"_s);
        QVERIFY(loaded.wait_for(std::chrono::milliseconds(Patience)) == std::future_status::ready);
        QVERIFY(loaded.get());
        QVERIFY(fixture->createAttribute("later"_s, 0));
        QVERIFY(fixture->createAttribute("later.x"_s, 1));
        control("connect"_s);
        QTRY_COMPARE_WITH_TIMEOUT(value("panel.x"_s), QVariant(1), Patience);
    }

    void moreLoadsThanThreads()
    {
        auto &pool = fixture->repository().getThreadPool();
        std::vector<std::future<bool>> loads;
        const int number = 2 * Tessellum::Notification::ThreadPool::MaximumThreadCount();
        for (int i = 0; i < number; ++i) {
            loads.push_back(std::async(std::launch::async, [this, i] {
                return fixture->create("remote-backend-client"_s, "p%1"_s.arg(i),
                                       url("path=plant&id=c%1"_s.arg(i)));
            }));
        }
        for (auto &load : loads)
            QVERIFY(load.get());
        for (int i = 0; i < number; ++i)
            QCOMPARE(fixture->values("p%1"_s.arg(i)), fixture->values("plant"_s));
        QVERIFY(pool.isRunning());

        // The stop ends those that would wait for ever.
        for (int i = 0; i < number; ++i) {
            fixture->backends().createBackend("remote-backend-client"_s, "w%1"_s.arg(i),
                                              {url("path=nowhere&id=w%1"_s.arg(i)), QString(), 3},
                                              Tessellum::Notification::CreatePoint::Begin);
        }
        fixture.reset();
    }

    void missesNothingThatChangesWhileItLoads()
    {
        std::atomic<bool> enough = false;
        auto changes = std::async(std::launch::async, [&] {
            for (int i = 0; !enough; ++i) {
                const QString path = "plant.t%1"_s.arg(i % 7);
                if (fixture->node(path))
                    remove(path);
                else
                    fixture->createAttribute(path, i);
                set("plant.speed"_s, i);
            }
        });
        for (int i = 0; i < 10; ++i) {
            const QString name = "p%1"_s.arg(i);
            QVERIFY(fixture->create("remote-backend-client"_s, name, url("path=plant&id=%1"_s.arg(name))));
        }
        enough = true;
        changes.get();
        for (int i = 0; i < 10; ++i)
            QTRY_COMPARE_WITH_TIMEOUT(fixture->values("p%1"_s.arg(i)), fixture->values("plant"_s), Patience);
    }

    void diesOnTheEventThread()
    {
        QVERIFY(mirror("path=plant&id=a"_s));
        QTRY_VERIFY_WITH_TIMEOUT(fixture->node(ServerStatus), Patience);
        fixture->node("panel"_s)->setDeleteFlag();
        QTRY_VERIFY_WITH_TIMEOUT(!fixture->node(ServerStatus), Patience);
        QTRY_COMPARE_WITH_TIMEOUT(value(Status), QVariant("disconnected"_s), Patience);

        auto client = RemoteBackendClient::Make(fixture->node("plant"_s), url("path=plant&id=b"_s));
        QVERIFY(client);
        const QThread *const home = client->thread();
        QVERIFY(home != QThread::currentThread());
        std::atomic<const QThread *> diedOn = nullptr;
        connect(
            client.get(), &QObject::destroyed, this, [&] { diedOn = QThread::currentThread(); },
            Qt::DirectConnection);
        QVariant held = QVariant::fromValue(client);
        QCOMPARE(QByteArray(held.typeName()),
                 QByteArray("Tessellum::AppConfig::Backends::utils::RemoteBackendClientPtr"));
        client.reset();
        QVERIFY(!diedOn.load());
        held.clear();
        QTRY_VERIFY_WITH_TIMEOUT(diedOn.load(), Patience);
        QCOMPARE(diedOn.load(), home);
    }

    void refusesWhatItCannotUse()
    {
        const QString none
            = "RemoteBackend::loadAttributesCreateDataInternal() no url instance found in backend "
              "data, loading aborted"_s;
        const QString invalid
            = "RemoteBackend::loadAttributesCreateDataInternal() found invalid remote server "
              "url in backend data, loading aborted"_s;
        QVERIFY(!fixture->create("remote-backend-client"_s, "x"_s, QVariantList()));
        QVERIFY(fixture->takeLog(LogMessageType::warning).contains(none));
        for (const QString &bad : {"ws://a b:1"_s, "ws://127.0.0.1:1?limit=much"_s}) {
            QVERIFY(!fixture->create("remote-backend-client"_s, "x"_s, QUrl(bad)));
            QVERIFY(fixture->takeLog(LogMessageType::warning).contains(invalid));
        }
        QVERIFY(mirror("path=plant&id=a.b"_s)); // works without control and status
        QCOMPARE(fixture->values("panel"_s), fixture->values("plant"_s));
        QVERIFY(!fixture->node("appconfig.backends.remote_clients"_s));

        QVariant out = 5;
        QVERIFY(!ReadProperty("speed"_s, 1, 7, out));
        QVERIFY(!WriteProperty("speed"_s, out, 7));
        const QStringList warnings = fixture->takeLog(LogMessageType::warning);
        for (const auto &name : {"ReadProperty"_s, "WriteProperty"_s}) {
            const QString line
                = "RemoteBackendToAttributeMapper::%1() called with incompatible attribute value "
                  "metaType=%2 attribute=2"_s;
            QVERIFY(warnings.contains(line.arg(name).arg(qMetaTypeId<RemoteBackendClientPtr>())));
        }
    }

private:
    static void setAutomaticCreate(bool enabled)
    {
        Tessellum::AppConfig::Attributes::AttributeCreateData data;
        data.name = "repository.automatic_create_through_updates"_s;
        data.details.value = enabled;
        Tessellum::AppConfig::Attributes::CreateAttributeInHierarchy(
            Tessellum::AppConfig::utils::RepositoryProvider::getInstance()->getInternalRoot(), data);
    }

    void serve()
    {
        QVERIFY(fixture->create("remote-backend-server"_s, "net"_s,
                                QUrl("ws://any:%1?bind=127.0.0.1"_s.arg(port))));
        QTRY_VERIFY_WITH_TIMEOUT(fixture->node(PortPath) && value(PortPath).toInt() > 0, Patience);
        port = value(PortPath).toInt();
    }
    QUrl url(const QString &query) const { return QUrl("ws://127.0.0.1:%1?%2"_s.arg(port).arg(query)); }
    bool mirror(const QString &query)
    {
        return fixture->create("remote-backend-client"_s, "panel"_s, url(query));
    }
    /*! Whether such a line comes; forgets those before it. */
    bool logs(LogMessageType level, const QString &part)
    {
        return QTest::qWaitFor([&] { return !fixture->takeLog(level).filter(part).isEmpty(); }, Patience);
    }
    void control(const QString &command) { set(Control, command); }
    void remove(const QString &path)
    {
        fixture->repository().getManipulationProvider()->deleteAttribute(path, DeletePoint::Done);
    }
    void set(const QString &path, const QVariant &to)
    {
        fixture->repository().getManipulationProvider()->updateAttribute(path, to, UpdatePoint::Done);
    }
    QVariant value(const QString &path)
    {
        QVariant found;
        fixture->repository().getQueryProvider()->getValue(path, found, 0);
        return found;
    }

    std::unique_ptr<RepositoryFixture> fixture;
    int port = 0;
};

QTEST_GUILESS_MAIN(RemoteBackendClientTest)
#include "RemoteBackendClientTest.moc"
