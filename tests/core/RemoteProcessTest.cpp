#include "support/RemotePeerProcess.h"

#include <core/Library.h>

#include <QtTest>
#include <QUrl>

#include <support/Literals.h>

using namespace Tessellum;
using Notification::CreatePoint;
using Notification::UpdatePoint;

namespace {

using Peer = TestSupport::RemotePeerProcess;
constexpr int Patience = Peer::Patience;
constexpr int Rounds = 20;

} // namespace

/*! A remote configuration whose other end is killed hard, again and again. */
class RemoteProcessTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        QCOMPARE(initializeLibrary(), 0);
        repository = getCoreInterface()->getAppConfigRepository();
    }
    void cleanup()
    {
        repository.reset();
        QCOMPARE(uninitializeLibrary(), 1);
    }

    void theServerIsKilled()
    {
        auto server = std::make_unique<Peer>(QStringList{"server"_s, "0"_s, "0"_s});
        const QString port = QString::fromLatin1(server->readLine());
        QVERIFY(port.toInt() > 0);
        QVERIFY(add("remote-backend-client"_s, "panel"_s, "ws://127.0.0.1:%1?path=plant&id=a"_s.arg(port)));
        const QString base = "appconfig.backends.remote_clients.a."_s;
        QTRY_COMPARE_WITH_TIMEOUT(value(base + "status"_s), QVariant("established"_s), Patience);
        const int attributes = count("panel"_s);
        QVERIFY(attributes > 100);
        for (int round = 1; round <= Rounds; ++round) {
            server->kill();
            QTRY_COMPARE_WITH_TIMEOUT(value(base + "status"_s), QVariant("disconnected"_s), Patience);
            server = std::make_unique<Peer>(QStringList{"server"_s, port, QString::number(round)});
            QCOMPARE(QString::fromLatin1(server->readLine()), port);
            set(base + "control"_s, "connect"_s);
            QTRY_COMPARE_WITH_TIMEOUT(value("panel.only%1"_s.arg(round)), QVariant(round), Patience);
            QCOMPARE(value(base + "status"_s), QVariant("established"_s));
            QVERIFY(!exists("panel.only%1"_s.arg(round - 1)));
            QCOMPARE(count("panel"_s), attributes);
            set("panel.speed"_s, 1000 + round);
            QTRY_COMPARE_WITH_TIMEOUT(value("panel.echo"_s), QVariant(1000 + round), Patience);
        }
        const QVariant before = value("panel.count"_s);
        QTRY_VERIFY_WITH_TIMEOUT(value("panel.count"_s) != before, Patience);
        QCOMPARE(server->finish(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(value(base + "status"_s), QVariant("disconnected"_s), Patience);
    }

    void clientsAreKilled()
    {
        for (const auto &name : {"plant"_s, "plant.speed"_s})
            QVERIFY(repository->getManipulationInterface()->createAttribute(name, 0, CreatePoint::Done, 3));
        QVERIFY(add("remote-backend-server"_s, "net"_s, "ws://any:0?bind=127.0.0.1"_s));
        const QString ports = "appconfig.backends.remote_server_ports.net"_s;
        QTRY_VERIFY_WITH_TIMEOUT(value(ports).toInt() > 0, Patience);
        const QString url = "ws://127.0.0.1:%1?path=plant&id="_s.arg(value(ports).toInt());
        const QString base = "appconfig.backends.remote_server"_s;
        Peer survivor({"client"_s, url + "survivor"_s});
        QTRY_VERIFY_WITH_TIMEOUT(exists(base + ".survivor"_s), Patience);
        for (int round = 0; round < Rounds; ++round) {
            Peer client({"client"_s, url + "c%1"_s.arg(round)});
            QTRY_COMPARE_WITH_TIMEOUT(count(base), 2, Patience);
            const QVariant before = value("plant.speed"_s);
            QTRY_VERIFY_WITH_TIMEOUT(value("plant.speed"_s) != before, Patience);
            client.kill();
            QTRY_COMPARE_WITH_TIMEOUT(count(base), 1, Patience);
        }
        QVERIFY(exists(base + ".survivor"_s));
        QCOMPARE(count("plant"_s), 1);
        QCOMPARE(survivor.finish(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(count(base), 0, Patience);
    }

private:
    bool add(const QString &type, const QString &name, const QString &url)
    {
        return repository->getBackendInterface()->createBackend(type, name, {QUrl(url), QString(), 3},
                                                                CreatePoint::Done);
    }
    void set(const QString &path, const QVariant &to)
    {
        repository->getManipulationInterface()->updateAttribute(path, to, UpdatePoint::Done);
    }
    QVariant value(const QString &path) const
    {
        QVariant found;
        repository->getQueryInterface()->getValue(path, found, 0);
        return found;
    }
    bool exists(const QString &path) const { return value(path).isValid(); }
    /*! The attributes beneath \a path. */
    int count(const QString &path) const
    {
        return repository->getQueryInterface()->queryAttributes(path + ".*"_s).size();
    }

    std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> repository;
};

QTEST_GUILESS_MAIN(RemoteProcessTest)
#include "RemoteProcessTest.moc"
