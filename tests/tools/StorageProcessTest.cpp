#include "StorageMirror.h"

#include <appdata/storages/remote/RemoteStorageCodec.h>
#include <appdata/storages/remote/RemoteStorageNode.h>
#include <appdata/storages/remote/RemoteStorageSource.h>

#include <QTemporaryDir>
#include <QtTest>
#include <QWebSocket>

using namespace Tessellum::AppData;
using namespace Tessellum::AppData::Storages::utils;
using namespace ToolSupport;

namespace {

constexpr int Patience = 60000;
constexpr int Rounds = 20;

QJsonObject storageStatus(ShellProcess &shell, const char *group)
{
    return shell.ask("status").value("storages").toObject().value(group).toObject();
}

} // namespace

/*! The storages of a host and their mirrors in other processes, some of which end hard. */
class StorageProcessTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        QFile configuration(folder->filePath("plant.json"));
        QVERIFY(configuration.open(QIODevice::WriteOnly) && configuration.write("{\"a\":1}") > 0);
        port = 0;
    }
    void cleanup()
    {
        if (host)
            host->endBy(SIGKILL);
        host.reset();
    }

    void theServerIsKilled();
    void clientsAreKilled();
    void everyCommandInBothEncodings_data();
    void everyCommandInBothEncodings();
    void aLargeStorageStaysUnattached();

private:
    QString file() const { return folder->filePath("disk.sqlite"); }
    /*! A host at the port of the last one, with the storages "live", its own, and "disk", whose writes are in
     * the file when they return. */
    bool start()
    {
        host = std::make_unique<ShellProcess>(QStringList{"host", "--log", "warning", "--plugins",
                                                          STORAGE_PLUGINS, "--config",
                                                          folder->filePath("plant.json"), "--serve-storage",
                                                          "live", QString("ws://127.0.0.1:%1").arg(port)});
        port = host->next().value("storage_ports").toObject().value("live").toInt();
        return port > 0 && host->succeeds("storage sqlite disk " + file().toUtf8() + " 1");
    }
    /*! What the file holds. */
    QStringList stored() const
    {
        QStringList lines
            = runTool({"export", file(), "--csv", "--plugins", STORAGE_PLUGINS}).output.split('\n').mid(1);
        lines.removeAll(QString());
        lines.sort();
        return lines;
    }
    QStringList peers() { return storageStatus(*host, "peers").keys(); }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<ShellProcess> host;
    int port = 0;
};

void StorageProcessTest::theServerIsKilled()
{
    QVERIFY(start());
    StorageMirror mirror;
    QVERIFY(mirror.add("disk", port, "a") && mirror.add("live", port, "b"));
    const auto status = [&mirror](const QString &both) {
        return storageStatus(mirror, "clients") == QJsonObject{{"a", both}, {"b", both}};
    };
    for (int round = 1; round <= Rounds; ++round) {
        host->endBy(SIGKILL);
        QTRY_VERIFY_WITH_TIMEOUT(status("disconnected"), Patience);
        QVERIFY(start());
        for (const char *command : {"entry disk plant kept float", "add plant.kept # #",
                                    "entry disk plant e# float", "add plant.e# # #"})
            QVERIFY(host->succeeds(numbered(command, round)));
        QVERIFY(mirror.succeeds("control a connect") && mirror.succeeds("control b connect"));
        QTRY_VERIFY_WITH_TIMEOUT(status("established"), Patience);
        QTRY_COMPARE_WITH_TIMEOUT(contents(mirror, "disk"), stored(), Patience);
        QCOMPARE(stored().size(), 2 * round);
        QTRY_COMPARE_WITH_TIMEOUT(peers(), QStringList({"a", "b"}), Patience);

        QVERIFY(host->succeeds(numbered("entry live plant live# float", round)));
        const QByteArray element
            = host->ask(numbered("add plant.live# # #", round)).value("uuid").toString().toUtf8();
        QVERIFY(host->succeeds(numbered("element set plant.live# ", round) + element + " -1"));
        QTRY_COMPARE_WITH_TIMEOUT(contents(mirror, "live"),
                                  QStringList(QString("\"plant.live%1\",%1,true,-1").arg(round)), Patience);
        QVERIFY(host->succeeds(numbered("remove entry plant.live#", round)));
        QTRY_COMPARE_WITH_TIMEOUT(contents(mirror, "live"), QStringList(), Patience);
        // A host tells all its peers of "live": who follows "disk" would keep it, if the host ended now.
        QTRY_COMPARE_WITH_TIMEOUT(contents(mirror, "disk"), stored(), Patience);
    }
}

void StorageProcessTest::clientsAreKilled()
{
    QVERIFY(start() && host->succeeds("entry live plant live float"));
    StorageMirror survivor;
    QVERIFY(survivor.add("live", port, "survivor"));
    QTRY_COMPARE_WITH_TIMEOUT(peers(), QStringList("survivor"), Patience);
    for (int round = 1; round <= Rounds; ++round) {
        QVERIFY(host->succeeds(numbered("add plant.live # #", round)));
        StorageMirror mirror;
        QVERIFY(mirror.add("live", port, numbered("c#", round)));
        QTRY_COMPARE_WITH_TIMEOUT(contents(mirror, "live"), contents(*host, "live"), Patience);
        QTRY_COMPARE_WITH_TIMEOUT(peers(), QStringList({QString(numbered("c#", round)), "survivor"}),
                                  Patience);
        mirror.endBy(SIGKILL);
        QVERIFY(host->succeeds(numbered("add plant.live 0 100#", round)));
        QTRY_COMPARE_WITH_TIMEOUT(peers(), QStringList("survivor"), Patience);
    }
    QTRY_COMPARE_WITH_TIMEOUT(contents(survivor, "live"), contents(*host, "live"), Patience);
    QCOMPARE(contents(survivor, "live").size(), 2 * Rounds);
}

void StorageProcessTest::everyCommandInBothEncodings_data()
{
    QTest::addColumn<bool>("binary");
    QTest::newRow("text") << false;
    QTest::newRow("binary") << true;
}

/*! A peer that somebody else has written, first as one that hears and then as one that tells. */
void StorageProcessTest::everyCommandInBothEncodings()
{
    QFETCH(bool, binary);
    const auto mode = binary ? RemoteStorageMode::Binary : RemoteStorageMode::Text;
    QVERIFY(start());
    QWebSocket socket;
    QList<RemoteStorageMessage> heard;
    connect(&socket, &QWebSocket::textMessageReceived, &socket, [&](const QString &frame) {
        heard.append(binary ? RemoteStorageMessage() : ParseRemoteStorageText(frame));
    });
    connect(&socket, &QWebSocket::binaryMessageReceived, &socket, [&](const QByteArray &frame) {
        heard.append(binary ? ParseRemoteStorageBinary(frame) : RemoteStorageMessage());
    });
    socket.open(QUrl(QString("ws://127.0.0.1:%1").arg(port)));
    QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::ConnectedState, Patience);
    socket.sendTextMessage(RemoteStorageNode::ComposeText("live", RemoteStorageCommand::Init, QString("peer"),
                                                          {{QString(SupportsBinaryData), binary}}));
    QTRY_COMPARE_WITH_TIMEOUT(peers(), QStringList("peer"), Patience);

    QVERIFY(host->succeeds("entry live plant load float"));
    const QByteArray element = host->ask("add plant.load 1 5").value("uuid").toString().toUtf8();
    QVERIFY(host->succeeds("element set plant.load " + element + " 2"));
    QVERIFY(host->succeeds("remove entry plant.load"));
    QTRY_COMPARE_WITH_TIMEOUT(heard.size(), 5, Patience);
    const QStringList words{"init", "create-entry", "create-element", "update-element", "delete-entry"};
    for (int i = 0; i < words.size(); ++i)
        QCOMPARE(heard.at(i).command, words.at(i));
    QCOMPARE(DecodeEntryInfo(heard.at(1).data, mode)->name, QString("load"));
    QByteArray before;
    QByteArray after;
    QVERIFY(DecodeElement(heard.at(2).data, mode)->getRawData(before));
    QVERIFY(DecodeElement(heard.at(3).data, mode)->getRawData(after));
    QVERIFY(before.size() == after.size() && before != after);

    const auto tell = [&](RemoteStorageCommand command, const QString &path,
                          const RemoteStorageSource::Payload &payload) {
        const auto push = RemoteStorageSource::MakePush(command, path, payload, !binary, binary);
        return binary ? socket.sendBinaryMessage(push.binary) : socket.sendTextMessage(push.text);
    };
    const auto value = [&](const QByteArray &raw) {
        Data::Elements::ElementUpdateData values;
        values.setTimestamp(7);
        values.setRawData(raw);
        return [values](RemoteStorageMode wire) { return EncodeElement(values, wire); };
    };
    const Data::Entries::EntrySerializeInformation info(
        "told", "plant", Data::Entries::EntryCategory(CategoryType::Float, QString()), "live",
        PersistenceType::Persistent, 0);
    tell(RemoteStorageCommand::CreateEntry, "live.e",
         [&info](RemoteStorageMode wire) { return EncodeEntryInfo(info, wire); });
    tell(RemoteStorageCommand::CreateElement, "e.1", value(before));
    QTRY_COMPARE_WITH_TIMEOUT(contents(*host, "live"), QStringList("\"plant.told\",7,true,1"), Patience);
    tell(RemoteStorageCommand::UpdateElement, "e.1", value(after));
    QTRY_COMPARE_WITH_TIMEOUT(contents(*host, "live"), QStringList("\"plant.told\",7,true,2"), Patience);
    tell(RemoteStorageCommand::DeleteEntry, "e", nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(contents(*host, "live"), QStringList(), Patience);
}

void StorageProcessTest::aLargeStorageStaysUnattached()
{
    constexpr int count = 100000;
    QByteArray commands = "plugins " STORAGE_PLUGINS "\nstart\nstorage sqlite disk " + file().toUtf8()
        + "\nentry disk plant load float\n";
    for (int i = 1; i <= count; ++i)
        commands += numbered("add plant.load # #\n", i);
    QCOMPARE(runTool({"shell"}, commands).exitCode, 0);
    const QStringList source = stored();
    QCOMPARE(source.size(), count);

    QVERIFY(start());
    StorageMirror mirror;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(mirror.add("disk", port, "large"));
    QTRY_COMPARE_WITH_TIMEOUT(
        mirror.ask("entries").value("entries").toArray().first().toObject().value("count"), QJsonValue(count),
        Patience);
    qInfo("%d elements came within %lld ms", count, timer.elapsed());
    QVERIFY(contents(mirror, "disk") == source);
    QVERIFY(host->ask("entries").value("entries").toArray().isEmpty());
}

QTEST_GUILESS_MAIN(StorageProcessTest)
#include "StorageProcessTest.moc"
