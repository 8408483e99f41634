#include "ToolRunner.h"

#include <appconfig/backends/utils/RemoteMessage.h>

#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>
#include <QWebSocket>

using namespace Tessellum::AppConfig::Backends::utils;
using namespace ToolSupport;

namespace {

constexpr int Patience = 20000;

} // namespace

/*! A process that holds values, and the commands that work on it. */
class HostToolTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(folder->isValid());
        QFile file(folder->filePath("plant.json"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write("{\"speed\":5,\"motor\":{\"on\":true}}") > 0);
    }
    void cleanup()
    {
        if (host)
            host->endBy(SIGTERM);
        host.reset();
    }

    void servesUntilToldToEnd_data();
    void servesUntilToldToEnd();
    void offersStorages();
    void failsIfItCannotServe();
    void readsAndSetsValuesOfAProcess();
    void watchesAProcess();
    void tellsThatNobodyAnswers();
    void theShellMirrors();

private:
    /*! Starts a host and returns its first line. */
    QJsonObject start(const QStringList &arguments)
    {
        host = std::make_unique<ShellProcess>(
            QStringList{"host", "--log", "warning", "--config", folder->filePath("plant.json")} + arguments);
        return host->next();
    }
    /*! The URL of the subtree \a path of a host that serves. */
    QString startedUrl(const QString &path)
    {
        const int port = start({"--serve", "ws://127.0.0.1:0"}).value("port").toInt();
        return QString("ws://127.0.0.1:%1/?path=%2").arg(port).arg(path);
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<ShellProcess> host;
};

void HostToolTest::servesUntilToldToEnd_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("quit") << 0;
}

void HostToolTest::servesUntilToldToEnd()
{
    QFETCH(int, signal);
    const QJsonObject ready = start({"--serve", "ws://localhost:0"});
    const int port = ready.value("port").toInt();
    QCOMPARE(ready, QJsonObject({{"ready", true}, {"path", QString("host")}, {"port", port}}));
    QVERIFY(port > 0);

    QWebSocket socket;
    QList<RemoteMessage> received;
    connect(&socket, &QWebSocket::textMessageReceived, &socket,
            [&received](const QString &frame) { received.append(ParseRemoteMessage(frame)); });
    socket.open(QUrl(QString("ws://127.0.0.1:%1").arg(port)));
    QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::ConnectedState, Patience);
    socket.sendTextMessage(ComposeRemoteMessage({RemoteCommand::Init, "host", SerializeValue(QString("x"))}));
    QTRY_COMPARE_WITH_TIMEOUT(received.size(), 1, Patience);
    const RemoteSubtree subtree = ParseRemoteSubtree(DeserializeValue(received.at(0).data).toString());
    QCOMPARE(DeserializeValue(subtree.value("plant.speed")), QVariant(5.0));

    QVERIFY(host->succeeds("update host.plant.speed 6"));
    QTRY_COMPARE_WITH_TIMEOUT(received.size(), 2, Patience);
    QCOMPARE(DeserializeValue(received.at(1).data), QVariant(6.0));
    QTRY_COMPARE_WITH_TIMEOUT(
        host->ask("status").value("configuration").toObject().value("peers").toObject().value("x"),
        QJsonValue("127.0.0.1"), Patience);
    if (signal == 0) {
        QCOMPARE(host->ask("quit"), QJsonObject({{"error", QString("no line came")}}));
        QCOMPARE(host->waitForExit(), 0);
    } else {
        // Neither the end of the input nor a command that failed is the end of the host.
        QVERIFY(host->ask("get nonsense").contains("error"));
        host->closeInput();
        socket.sendTextMessage(ComposeRemoteMessage({RemoteCommand::Read, "plant.speed", {}}));
        QTRY_COMPARE_WITH_TIMEOUT(received.size(), 3, Patience);
        QCOMPARE(host->endBy(signal), 0);
    }
    QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::UnconnectedState, Patience);
    QCOMPARE(socket.closeCode(), QWebSocketProtocol::CloseCodeNormal);
}

void HostToolTest::offersStorages()
{
    const QString url = "ws://127.0.0.1:0?bind=127.0.0.1";
    const QJsonObject ready
        = start({"--storage", "remote-storage-server", "more", url, "--serve-storage", "live", url});
    const QJsonObject ports = ready.value("storage_ports").toObject();
    QVERIFY(ports.value("live").toInt() > 0 && ports.value("more").toInt() > 0);
    QVERIFY(!ready.contains("port"));
    QCOMPARE(host->ask("status").value("storages").toObject().value("ports"), QJsonValue(ports));
    QCOMPARE(host->ask("storages").value("storages").toArray().size(), 2);
    QVERIFY(host->succeeds("entry live plant speed float"));
}

void HostToolTest::failsIfItCannotServe()
{
    QTcpServer taken;
    QVERIFY(taken.listen(QHostAddress::LocalHost));
    const QString file = folder->filePath("plant.json");
    const QString url = QString("ws://127.0.0.1:%1").arg(taken.serverPort());
    for (const QStringList &failing : {QStringList{"--config", file + "x"},
                                       {"--config", file, "--serve", url},
                                       {"--config", file, "--serve-storage", "a", url},
                                       {"--config", file, "--storage", "nonsense", "a", "b"}}) {
        const Outcome outcome = runTool(QStringList("host") + failing);
        QVERIFY2(outcome.exitCode == 1 && outcome.output.isEmpty(), qPrintable(failing.join(' ')));
    }
    for (const QStringList &wrong : {QStringList{},
                                     {"--config"},
                                     {"--config", file, "--serve", "ws://127.0.0.1"},
                                     {"--config", file, "--serve", "ws://nonsense.invalid:0"},
                                     {"--config", file, "--storage", "volatile", "a"},
                                     {"--config", file, "--log", "nonsense"},
                                     {"--config", file, "nonsense"}}) {
        QVERIFY2(runTool(QStringList("host") + wrong).exitCode == 2, qPrintable(wrong.join(' ')));
    }
}

void HostToolTest::readsAndSetsValuesOfAProcess()
{
    const QString url = startedUrl("host");
    QCOMPARE(runTool({"tree", url}).output,
             QString("plant\nplant.motor\nplant.speed = 5\nplant.motor.on = true\n"));
    QCOMPARE(runTool({"get", url, "plant.motor.on"}).output, QString("true\n"));
    QCOMPARE(runTool({"set", url, "plant.speed", "7"}).exitCode, 0);
    QCOMPARE(host->ask("get host.plant.speed").value("value"), QJsonValue(7));
    QCOMPARE(runTool({"set", url, "plant.speed", "7"}).exitCode, 0);
    QCOMPARE(runTool({"get", url + ".plant.motor", "on"}).output, QString("true\n"));

    QFile limits(folder->filePath("limits.ini"));
    QVERIFY(limits.open(QIODevice::WriteOnly));
    QVERIFY(limits.write("[small]\nType=limit_int\nMinimum=0\nMaximum=9\n") > 0);
    limits.close();
    QVERIFY(host->succeeds("backend constraints limits " + limits.fileName().toUtf8()));
    QVERIFY(host->succeeds("assign host.plant.speed small"));
    const Outcome refused = runTool({"set", url, "plant.speed", "10"});
    QCOMPARE(refused.exitCode, 1);
    QVERIFY2(refused.errors.contains("plant.speed was refused, it is 7"), qPrintable(refused.errors));
    for (const QStringList &failing :
         {QStringList{"get", url, "nonsense"}, {"set", url, "nonsense", "1"}, {"tree", url, "nonsense*"}}) {
        const Outcome outcome = runTool(failing);
        QVERIFY2(outcome.exitCode == 1 && outcome.output.isEmpty(), qPrintable(failing.join(' ')));
    }
}

void HostToolTest::watchesAProcess()
{
    const QString url = startedUrl("host");
    const QJsonObject established{{"notify", QString("status")}, {"value", QString("established")}};
    const auto changed = [](const char *path, const QJsonValue &value) {
        return QJsonObject{{"notify", QString("update")}, {"path", QString(path)}, {"value", value}};
    };
    ShellProcess counting({"watch", url, "plant.sp*", "--count", "2"});
    ShellProcess endless({"watch", url});
    QCOMPARE(counting.next(), established);
    QCOMPARE(endless.next(), established);

    QVERIFY(host->succeeds("update host.plant.motor.on false"));
    QCOMPARE(endless.next(), changed("plant.motor.on", false));
    for (const int value : {6, 7}) {
        QVERIFY(host->succeeds("update host.plant.speed " + QByteArray::number(value)));
        QCOMPARE(counting.next(), changed("plant.speed", value));
        QCOMPARE(endless.next(), changed("plant.speed", value));
    }
    QCOMPARE(counting.waitForExit(), 0);
    QVERIFY(host->succeeds("create host.plant.load 1"));
    QCOMPARE(endless.next(),
             QJsonObject({{"notify", QString("create")}, {"path", QString("plant.load")}, {"value", 1}}));
    QVERIFY(host->succeeds("delete host.plant.load"));
    QCOMPARE(endless.next(), QJsonObject({{"notify", QString("delete")}, {"path", QString("plant.load")}}));
    QCOMPARE(endless.endBy(SIGINT), 0);

    ShellProcess left({"watch", url});
    QCOMPARE(left.next(), established);
    QCOMPARE(host->endBy(SIGTERM), 0);
    QCOMPARE(left.waitForExit(), 1);
}

void HostToolTest::tellsThatNobodyAnswers()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    QTcpServer gone;
    QVERIFY(gone.listen(QHostAddress::LocalHost));
    const int gonePort = gone.serverPort();
    gone.close();
    const auto fails = [](const QStringList &arguments, const QString &reason) {
        const Outcome outcome = runTool(arguments + QStringList{"--timeout", "0.5"});
        return outcome.exitCode == 1 && outcome.output.isEmpty() && outcome.errors.contains(reason);
    };
    for (const int port : {int(silent.serverPort()), gonePort}) {
        const QString url = QString("ws://127.0.0.1:%1/?path=plant").arg(port);
        const QString reason = QString("nobody answers at 127.0.0.1:%1").arg(port);
        QVERIFY(fails({"tree", url}, reason));
        QVERIFY(fails({"set", url, "plant.speed", "1"}, reason));
        QVERIFY(fails({"watch", url}, reason));
    }
    const QString url = startedUrl("nonsense");
    QVERIFY(fails({"get", url, "plant.speed"}, "did not answer for the subtree nonsense within 0.5 s"));
    QCOMPARE(runTool({"get", QString(url).remove("?path=nonsense"), "plant.speed"}).exitCode, 2);
    QCOMPARE(runTool({"watch", folder->filePath("plant.json")}).exitCode, 2);
}

void HostToolTest::theShellMirrors()
{
    const QByteArray url = startedUrl("host").toUtf8();
    const auto clientStatus = [](ShellProcess &shell) {
        return shell.ask("status").value("configuration").toObject().value("clients").toObject().value("far");
    };
    const auto hostKnows = [this] {
        const QJsonObject configuration = host->ask("status").value("configuration").toObject();
        return configuration.value("peers").toObject().contains("far");
    };
    ShellProcess shell;
    QVERIFY(shell.succeeds("start"));
    QCOMPARE(shell.ask("remote far " + url).value("attributes"), QJsonValue(4));
    QTRY_COMPARE_WITH_TIMEOUT(clientStatus(shell), QJsonValue("established"), Patience);
    QVERIFY(shell.succeeds("update far.plant.speed 8"));
    QTRY_COMPARE_WITH_TIMEOUT(host->ask("get host.plant.speed").value("value"), QJsonValue(8), Patience);

    QVERIFY(shell.ask("control you close").contains("error"));
    QVERIFY(shell.succeeds("control far close"));
    QTRY_COMPARE_WITH_TIMEOUT(clientStatus(shell), QJsonValue("disconnected"), Patience);
    QTRY_VERIFY_WITH_TIMEOUT(!hostKnows(), Patience);
    QCOMPARE(shell.ask("get far.plant.speed").value("value"), QJsonValue(8));
    QVERIFY(shell.succeeds("control far connect"));
    QTRY_COMPARE_WITH_TIMEOUT(clientStatus(shell), QJsonValue("established"), Patience);
    // A mirror keeps its value where another comes before it has asked for the subtree.
    QTRY_VERIFY_WITH_TIMEOUT(hostKnows(), Patience);
    QVERIFY(host->succeeds("update host.plant.speed 9"));
    QTRY_COMPARE_WITH_TIMEOUT(shell.ask("get far.plant.speed").value("value"), QJsonValue(9), Patience);
}

QTEST_GUILESS_MAIN(HostToolTest)
#include "HostToolTest.moc"
