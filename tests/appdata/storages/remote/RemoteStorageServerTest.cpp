#include "../../support/RunningDataRepository.h"

#include <appdata/storages/remote/RemoteStorage.h>
#include <appdata/storages/remote/RemoteStorageCodec.h>
#include <appdata/storages/remote/RemoteStorageNode.h>
#include <appdata/utils/RepositoryLookup.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>
#include <QWebSocket>

#include <support/LogCapture.h>

using namespace Tessellum::AppData;
using namespace Tessellum::AppData::Storages;
using namespace Tessellum::AppData::Storages::utils;
using Tessellum::AppConfig::Attributes::Attribute;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::utils::MakeNode;
using Tessellum::Notification::utils::WaitForSuccess;
using TestSupport::LogCapture;
using TestSupport::RunningDataRepository;
using Values = Data::Elements::ElementUpdateData;

namespace {

QVariant shown(const QString &path)
{
    const auto attribute = std::dynamic_pointer_cast<Attribute>(
        RunningRepository::provider().getRoot()->findChildByRelativePath(path));
    QVariant value;
    if (attribute)
        attribute->getValue(value, QMetaType::UnknownType);
    return value;
}

// A peer that somebody else has written.
struct Peer
{
    explicit Peer(quint16 port)
    {
        QObject::connect(&socket, &QWebSocket::textMessageReceived,
                         [this](const QString &frame) { texts.append(ParseRemoteStorageText(frame)); });
        QObject::connect(&socket, &QWebSocket::binaryMessageReceived, [this](const QByteArray &frame) {
            binaries.append(ParseRemoteStorageBinary(frame));
        });
        socket.open(QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(port)));
    }
    void init(const QString &path, const QString &id, const QVariantHash &options = {})
    {
        socket.sendTextMessage(RemoteStorageNode::ComposeText(path, RemoteStorageCommand::Init, id, options));
    }
    bool isOpen() const { return socket.state() == QAbstractSocket::ConnectedState; }

    QWebSocket socket;
    QList<RemoteStorageMessage> texts;
    QList<RemoteStorageMessage> binaries;
};

const QVariantHash binaryOption{{QStringLiteral("supportsBinaryData"), true}};

} // namespace

class RemoteStorageServerTest : public QObject
{
    Q_OBJECT

private:
    static std::shared_ptr<StorageImplementation> serve(const QString &name, const QString &url)
    {
        StorageCreateDataDetails details;
        details.location = QUrl(url);
        StorageCreateData data(name, QStringLiteral("remote-storage-server"), QString(), details);
        data.implementation = MakeNode<RemoteStorage>(data);
        const auto observer = RunningDataRepository::pool().startCreateTask(
            RunningDataRepository::provider().getRoot(), name, QVariant::fromValue(data), CreatePoint::Done);
        return WaitForSuccess(RunningDataRepository::pool(), observer) ? data.implementation : nullptr;
    }
    static Values values(quint64 stamp, const QByteArray &raw)
    {
        Values result;
        result.setActive(true);
        result.setTimestamp(stamp);
        result.setRawData(raw);
        return result;
    }
    // What a peer sends first, byte by byte.
    static QByteArray handshake()
    {
        return "GET / HTTP/1.1\r\nHost: x\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
               "Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: MDEyMzQ1Njc4OWFiY2RlZg==\r\n\r\n";
    }
    static QByteArray initFrame(const QString &id)
    {
        const QByteArray payload
            = RemoteStorageNode::ComposeText("served", RemoteStorageCommand::Init, id, {}).toUtf8();
        // Masked with zeroes; short enough for a length of one byte.
        return QByteArray("\x81") + char(0x80 | payload.size()) + QByteArray(4, '\0') + payload;
    }
    quint16 port() const
    {
        return quint16(shown(QStringLiteral("appdata.storages.remote_server_ports.served")).toUInt());
    }
    static QString status(const QString &id)
    {
        return shown(QStringLiteral("appdata.storages.remote_server.") + id).toString();
    }

    std::unique_ptr<RunningDataRepository> run;
    std::shared_ptr<StorageImplementation> storage;

private Q_SLOTS:
    void init()
    {
        run = std::make_unique<RunningDataRepository>();
        storage = serve(QStringLiteral("served"), QStringLiteral("ws://x:0/?bind=127.0.0.1"));
        QVERIFY(storage);
        QTRY_VERIFY(port() != 0);
    }
    void cleanup()
    {
        storage.reset();
        run.reset();
    }

    void theContentsAreAnsweredInTheModeOfThePeer_data();
    void theContentsAreAnsweredInTheModeOfThePeer();
    void eachPeerGetsAChangeOnceInItsMode();
    void badFramesLeaveThePeerConnected();
    void anUnknownStorageLeavesThePeerConnected();
    void onlyIdsOfOneElementAreShown();
    void aPeerThatStopsReadingIsClosed();
    void aPeerMayLeaveAtAnyByte();
    void aHandshakeHasItsTimeAndSize();
    void aPeerCreatesWhatItMayChange();
    void aTakenPortIsTold();
};

void RemoteStorageServerTest::theContentsAreAnsweredInTheModeOfThePeer_data()
{
    QTest::addColumn<QVariantHash>("options");
    QTest::addColumn<bool>("isBinary");
    QTest::newRow("binary") << binaryOption << true;
    QTest::newRow("text") << QVariantHash{{QStringLiteral("supportsBinaryData"), false}} << false;
    QTest::newRow("no option") << QVariantHash() << false;
}

void RemoteStorageServerTest::theContentsAreAnsweredInTheModeOfThePeer()
{
    QFETCH(QVariantHash, options);
    QFETCH(bool, isBinary);
    QVERIFY(storage->serializeEntry("e", run->record("load", "served", 7)));
    QVERIFY(storage->serializeElement("e", "one", values(~quint64(0), "1")));
    QVERIFY(storage->serializeElement("e", "two", values(2, QByteArray("\0x", 2))));
    Peer peer(port());
    QTRY_VERIFY(peer.isOpen());
    peer.init("served", "watcher", options);
    QTRY_COMPARE(isBinary ? peer.binaries.size() : peer.texts.size(), 1);
    const RemoteStorageMessage answer = isBinary ? peer.binaries.first() : peer.texts.first();
    QCOMPARE(answer.command, QStringLiteral("init"));
    QCOMPARE(answer.path, QStringLiteral("served"));
    QCOMPARE(answer.options, (QVariantHash{{QStringLiteral("supportsBinaryData"), isBinary}}));
    const auto mode = isBinary ? RemoteStorageMode::Binary : RemoteStorageMode::Text;
    const auto documents = DecodeContents(answer.data, mode);
    QCOMPARE(documents.size(), 1);
    QCOMPARE(documents.first().first, QStringLiteral("e"));
    const auto entry = DecodeEntryDocument(documents.first().second, mode);
    QVERIFY(entry);
    QCOMPARE(entry->info.name, QStringLiteral("load"));
    QCOMPARE(entry->elements.size(), 2);
    QTRY_COMPARE(status("watcher"), QStringLiteral("127.0.0.1"));
    peer.socket.close();
    QTRY_COMPARE(status("watcher"), QString());
}

void RemoteStorageServerTest::eachPeerGetsAChangeOnceInItsMode()
{
    Peer binary(port());
    Peer silent(port());
    QTRY_VERIFY(binary.isOpen() && silent.isOpen());
    binary.init("served", "binary", binaryOption);
    QTRY_COMPARE(binary.binaries.size(), 1);
    QVERIFY(storage->serializeEntry("e", run->record("load", "served")));
    QVERIFY(storage->serializeElement("e", "one", values(1, "1")));
    QVERIFY(storage->updateElementValue("e", "one", DataElementUpdateType::Active, false));
    QVERIFY(storage->removeEntry("e"));
    QTRY_COMPARE(binary.binaries.size(), 5);
    QTRY_COMPARE(silent.texts.size(), 4);
    QCOMPARE(binary.texts.size() + silent.binaries.size(), 0);
    const QStringList commands{"create-entry", "create-element", "update-element", "delete-entry"};
    const QStringList paths{"served.e", "e.one", "e.one", "e"};
    for (int index = 0; index < 4; ++index) {
        for (const auto &message : {binary.binaries.at(index + 1), silent.texts.at(index)}) {
            QCOMPARE(message.command, commands.at(index));
            QCOMPARE(message.path, paths.at(index));
            QVERIFY(message.options.isEmpty());
        }
    }
    QVERIFY(!silent.texts.last().data.isValid());
    for (const auto &[message, mode] : {qMakePair(binary.binaries.at(3), RemoteStorageMode::Binary),
                                        qMakePair(silent.texts.at(2), RemoteStorageMode::Text)}) {
        const auto update = DecodeElement(message.data, mode);
        QVERIFY(update);
        QCOMPARE(update->getUpdateTypes(), QList<DataElementUpdateType>{DataElementUpdateType::Active});
    }
}

void RemoteStorageServerTest::badFramesLeaveThePeerConnected()
{
    Peer peer(port());
    QTRY_VERIFY(peer.isOpen());
    for (const QString &frame :
         {QString(), QString("{"), QString("[]"), QString("{\"command\":7}"),
          QString("{\"command\":\"none\"}"),
          QString("{\"command\":\"init\",\"path\":[],\"data\":{},\"options\":3}"),
          QString("{\"command\":\"create-element\",\"path\":\"\",\"data\":\"0g\"}"),
          QString("{\"command\":\"create-element\",\"path\":\"a.b\",\"data\":\"ffffffff\"}"),
          QString("{\"command\":\"create-entry\",\"path\":\"a..\",\"data\":\"00\"}"),
          QString(1 << 20, QChar('x'))}) {
        peer.socket.sendTextMessage(frame);
        peer.socket.sendBinaryMessage(frame.toUtf8());
    }
    peer.socket.sendBinaryMessage(QByteArray("qbjs\1\0\0\0\xff\xff\xff\xff\1\0\0\0", 16));
    peer.init("served", "watcher");
    QTRY_COMPARE(peer.texts.size(), 1);
    QVERIFY(peer.isOpen());
    QVERIFY(storage->serializeEntry("e", run->record("load", "served")));
    QTRY_COMPARE(peer.texts.size(), 2);
}

void RemoteStorageServerTest::anUnknownStorageLeavesThePeerConnected()
{
    Peer peer(port());
    QTRY_VERIFY(peer.isOpen());
    peer.init("nowhere", "watcher", binaryOption);
    peer.init("served", "watcher"); // a storage later, and the unknown one has changed no mode
    QTRY_COMPARE(peer.texts.size(), 1);
    QCOMPARE(peer.texts.first().path, QStringLiteral("served"));
}

void RemoteStorageServerTest::onlyIdsOfOneElementAreShown()
{
    Peer shownPeer(port());
    QTRY_VERIFY(shownPeer.isOpen());
    shownPeer.init("served", "shown");
    QTRY_COMPARE(status("shown"), QStringLiteral("127.0.0.1"));
    {
        Peer early(port()); // leaves before "init"
        Peer empty(port());
        Peer dotted(port());
        QTRY_VERIFY(early.isOpen() && empty.isOpen() && dotted.isOpen());
        empty.init("served", "");
        dotted.init("served", "shown.b");
        QTRY_VERIFY(!empty.texts.isEmpty() && !dotted.texts.isEmpty());
    }
    // As they leave, nothing else goes.
    Peer twin(port());
    QTRY_VERIFY(twin.isOpen());
    twin.init("served", "shown");
    QTRY_COMPARE(twin.texts.size(), 1);
    QCOMPARE(status("shown"), QStringLiteral("127.0.0.1"));
    QVERIFY(!shown("appdata.storages.remote_server.shown.b").isValid());
    shownPeer.socket.close();
    twin.socket.close();
    QTRY_COMPARE(status("shown"), QString());
}

void RemoteStorageServerTest::aPeerThatStopsReadingIsClosed()
{
    QTcpSocket raw; // reads no more behind the handshake
    raw.setReadBufferSize(1);
    raw.connectToHost(QHostAddress(QHostAddress::LocalHost), port());
    QVERIFY(raw.waitForConnected());
    raw.write(handshake());
    QVERIFY(raw.waitForReadyRead());
    raw.write(initFrame("stuck"));
    QTRY_COMPARE(status("stuck"), QStringLiteral("127.0.0.1"));
    Peer reader(port());
    QTRY_VERIFY(reader.isOpen());
    QVERIFY(storage->serializeEntry("e", run->record("load", "served")));
    const QByteArray large(1 << 20, 'x');
    QElapsedTimer patience;
    patience.start();
    // Changes go on until the server has given it up.
    for (int sent = 0; !status("stuck").isEmpty() && patience.elapsed() < 30000; ++sent) {
        QVERIFY(storage->serializeElement("e", QString::number(sent), values(1, large)));
        QTest::qWait(200);
    }
    QCOMPARE(status("stuck"), QString());
    QVERIFY(reader.isOpen());
}

void RemoteStorageServerTest::aPeerMayLeaveAtAnyByte()
{
    const QByteArray bytes = handshake() + initFrame("brief");
    for (int count = 0; count <= bytes.size(); ++count) {
        QTcpSocket raw;
        raw.connectToHost(QHostAddress(QHostAddress::LocalHost), port());
        QVERIFY(raw.waitForConnected());
        raw.write(bytes.left(count));
        raw.waitForBytesWritten();
        raw.abort();
    }
    Peer peer(port());
    QTRY_VERIFY(peer.isOpen());
    peer.init("served", "watcher");
    QTRY_COMPARE(peer.texts.size(), 1);
    QTRY_COMPARE(status("brief"), QString());
}

void RemoteStorageServerTest::aHandshakeHasItsTimeAndSize()
{
    const auto small = serve("small", "ws://x:0/?bind=127.0.0.1&limit=65536");
    const auto smallPort
        = [] { return quint16(shown("appdata.storages.remote_server_ports.small").toUInt()); };
    QTRY_VERIFY(smallPort() != 0);
    QTcpSocket raw;
    raw.connectToHost(QHostAddress(QHostAddress::LocalHost), smallPort());
    QVERIFY(raw.waitForConnected());
    constexpr int much = 64 << 20;
    raw.write(QByteArray(much, 'x'));
    Peer peer(smallPort());
    QTRY_VERIFY(peer.isOpen());
    QTRY_VERIFY_WITH_TIMEOUT(raw.state() == QAbstractSocket::UnconnectedState, 30000);
    QVERIFY(peer.isOpen());
    // A message beyond the limit ends its connection alone.
    Peer large(smallPort());
    QTRY_VERIFY(large.isOpen());
    large.socket.sendTextMessage(QString(70000, QChar('x')));
    QTRY_VERIFY(!large.isOpen());
    peer.init("small", "watcher");
    QTRY_COMPARE(peer.texts.size(), 1);
}

void RemoteStorageServerTest::aPeerCreatesWhatItMayChange()
{
    Peer peer(port());
    QTRY_VERIFY(peer.isOpen());
    const auto send = [&](const QString &path, RemoteStorageCommand command, const QVariant &data) {
        peer.socket.sendTextMessage(RemoteStorageNode::ComposeText(path, command, data, {}));
    };
    const auto count = [&] {
        QHash<QString, StorageImplementation::EntryRecord> entries;
        return storage->getEntries(entries);
    };
    QVERIFY(storage->serializeEntry("own", run->record("own", "served")));
    send("own", RemoteStorageCommand::DeleteEntry, QVariant()); // of ours it reaches nothing
    send("there.theirs", RemoteStorageCommand::CreateEntry,
         EncodeEntryInfo(run->record("load", "there"), RemoteStorageMode::Text));
    QTRY_COMPARE(count(), quint64(2));
    send("theirs.one", RemoteStorageCommand::CreateElement,
         EncodeElement(values(5, run->raw(2.5)), RemoteStorageMode::Text));
    QHash<QString, StorageImplementation::EntryRecord> entries;
    storage->getEntries(entries);
    entries.remove("own");
    QStringList elements;
    QTRY_COMPARE(storage->getElementIds(entries.constBegin().key(), elements), quint64(1));
    send("theirs", RemoteStorageCommand::DeleteEntry, QVariant());
    QTRY_COMPARE(count(), quint64(1));
}

void RemoteStorageServerTest::aTakenPortIsTold()
{
    QTcpServer taken;
    QVERIFY(taken.listen(QHostAddress::LocalHost));
    const LogCapture log;
    const auto second = serve("second", QStringLiteral("ws://x:%1/?bind=127.0.0.1").arg(taken.serverPort()));
    QVERIFY(second); // the storage stays usable
    QTRY_COMPARE(shown("appdata.storages.remote_server_ports.second"), QVariant(0));
    QVERIFY(!log.lines().filter("RemoteStorageServer::listen()").isEmpty());
    QVERIFY(!second->isConnected());
    QVERIFY(second->serializeEntry("e", run->record("load", "second")));
    QVERIFY(!serve("third", QStringLiteral("ws://x/")));
}

QTEST_GUILESS_MAIN(RemoteStorageServerTest)
#include "RemoteStorageServerTest.moc"
