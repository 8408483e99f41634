#include "StorageMirror.h"

#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <support/ProcessFigures.h>
#include <support/Watchdog.h>

using namespace ToolSupport;

namespace {

constexpr int Patience = 60000;
constexpr int Values = 5;
constexpr int Batch = 100; // of changes; one is due each millisecond
constexpr int Round = 1000; // after so many all clients have to have followed
// Of a process, in bytes. A sanitizer keeps books on each allocation.
#ifdef __SANITIZE_ADDRESS__
constexpr qint64 MostGrowth = 64 << 20;
#else
constexpr qint64 MostGrowth = 4 << 20;
#endif
constexpr int MostNewThreads = 16; // those of the pools come and go

} // namespace

/*! A host whose values change all the time, and four clients that mirror its configuration and a ring of
 * data.
 */
class SoakTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void nothingGrows()
    {
        QVERIFY(start());
        const int seconds = TestSupport::StressSeconds();
        const qint64 warmUp = qMax(3, seconds / 10) * 1000;
        QVector<Figures> before;
        QElapsedTimer passed;
        passed.start();
        while (before.isEmpty() || passed.elapsed() < warmUp + seconds * 1000) {
            // The pace, not a wait for a condition.
            QTest::qWait(int(qMax<qint64>(0, changes - passed.elapsed())));
            QVERIFY(change());
            if (changes % Round != 0)
                continue;
            for (StorageMirror &client : clients)
                QVERIFY(QTest::qWaitFor([&] { return hasFollowed(client); }, Patience));
            if (before.isEmpty() && passed.elapsed() >= warmUp)
                before = figures();
        }
        qInfo("%.0f changes a second", changes * 1000.0 / double(passed.elapsed()));
        const QVector<Figures> after = figures();
        for (int i = 0; i < after.size(); ++i) {
            qInfo("%s: %lld kB and %d threads, before %lld kB and %d", i == 0 ? "host" : "client",
                  after.at(i).bytes / 1024, after.at(i).threads, before.at(i).bytes / 1024,
                  before.at(i).threads);
            QVERIFY(after.at(i).bytes <= before.at(i).bytes + MostGrowth);
            QVERIFY(after.at(i).threads <= before.at(i).threads + MostNewThreads);
        }
        for (StorageMirror &client : clients) {
            QTRY_COMPARE_WITH_TIMEOUT(contents(client, "live"), contents(*host, "live"), Patience);
            for (int i = 0; i < Values; ++i)
                QTRY_COMPARE_WITH_TIMEOUT(client.ask(numbered("get far.plant.a#", i)),
                                          host->ask(numbered("get host.plant.a#", i)), Patience);
        }
    }
    void cleanup() { QCOMPARE(host ? host->endBy(SIGTERM) : 0, 0); }

private:
    struct Figures
    {
        qint64 bytes;
        int threads;
    };

    bool start()
    {
        QFile file(folder.filePath("plant.json"));
        if (!file.open(QIODevice::WriteOnly))
            return false;
        file.write("{\"a0\":0,\"a1\":0,\"a2\":0,\"a3\":0,\"a4\":0}");
        file.close();
        const QString any = "ws://127.0.0.1:0";
        host = std::make_unique<ShellProcess>(QStringList{"host", "--log", "warning", "--config",
                                                          file.fileName(), "--serve", any, "--serve-storage",
                                                          "live", any});
        const QJsonObject ready = host->next();
        const int port = ready.value("storage_ports").toObject().value("live").toInt();
        const QByteArray url
            = numbered("remote far ws://127.0.0.1:#/?path=host", ready.value("port").toInt());
        bool ok = host->succeeds("entry live plant live float 200");
        for (StorageMirror &client : clients) {
            const QByteArray id = numbered("c#", int(&client - clients.data()));
            ok = ok && client.succeeds(url + "&id=" + id) && client.add("live", port, id);
        }
        return ok;
    }
    /*! A batch of changes, half of them of configuration; false where one is refused. */
    bool change()
    {
        QByteArray commands;
        for (const int last = changes + Batch; changes < last; changes += 2) {
            commands += QString("update host.plant.a%1 %2\nadd plant.live %2 %2\n")
                            .arg(changes / 2 % Values)
                            .arg(changes)
                            .toUtf8();
        }
        return host->succeedAll(commands);
    }
    /*! Whether \a client has the last change of either kind. */
    bool hasFollowed(ShellProcess &client) const
    {
        const int last = changes - 2;
        return client.ask(numbered("get far.plant.a#", last / 2 % Values)).value("value") == last
            && client.ask(numbered("range plant.live # #", last)).value("elements").toArray().size() == 1;
    }
    QVector<Figures> figures() const
    {
        QVector<qint64> ids{host->processId()};
        for (const StorageMirror &client : clients)
            ids.append(client.processId());
        QVector<Figures> found;
        for (const qint64 id : qAsConst(ids))
            found.append({TestSupport::ResidentBytes(id), TestSupport::ThreadCount(id)});
        return found;
    }

    QTemporaryDir folder;
    std::unique_ptr<ShellProcess> host;
    std::array<StorageMirror, 4> clients;
    int changes = 0;
};

QTEST_GUILESS_MAIN(SoakTest)
#include "SoakTest.moc"
