#include "../../support/RunningDataRepository.h"

#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appdata/storages/remote/RemoteStorageNode.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryStorageProvider.h>

#include <QtTest>
#include <QWebSocket>
#include <QWebSocketServer>

#include <support/LogCapture.h>
#include <thread>

using namespace Tessellum::AppData;
using namespace Tessellum::AppData::Storages::utils;
using Data::Entries::Entry;
using Tessellum::AppConfig::Attributes::Attribute;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::UpdatePoint;
using TestSupport::LogCapture;
using TestSupport::RunningDataRepository;
using Values = Data::Elements::ElementUpdateData;

namespace {

constexpr auto text = RemoteStorageMode::Text;

// A server that somebody else has written, with one client at a time.
class Server
{
public:
    Server()
        : server(QStringLiteral("theirs"), QWebSocketServer::NonSecureMode)
    {
        QObject::connect(&server, &QWebSocketServer::newConnection, [this] {
            socket.reset(server.nextPendingConnection());
            ++connections;
            QObject::connect(socket.get(), &QWebSocket::textMessageReceived,
                             [this](const QString &frame) { received.append(frame); });
            QObject::connect(socket.get(), &QWebSocket::binaryMessageReceived, [this] { ++binaries; });
        });
    }
    bool listen() { return server.listen(QHostAddress::LocalHost); }
    QString url(const QString &query) const
    {
        return QStringLiteral("ws://127.0.0.1:%1/?%2").arg(server.serverPort()).arg(query);
    }
    void send(const QString &path, RemoteStorageCommand command, const QVariant &data,
              const QVariantHash &options = {})
    {
        socket->sendTextMessage(RemoteStorageNode::ComposeText(path, command, data, options));
    }
    void answer(const QList<QPair<QString, QString>> &documents, const QVariantHash &options = {})
    {
        send(QStringLiteral("served"), RemoteStorageCommand::Init, EncodeContents(documents, text), options);
    }
    RemoteStorageMessage request(int index) const { return ParseRemoteStorageText(received.value(index)); }

    std::unique_ptr<QWebSocket> socket;
    QStringList received;
    int binaries = 0;
    int connections = 0;

private:
    QWebSocketServer server;
};

} // namespace

class RemoteStorageClientTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RunningDataRepository> run;
    std::unique_ptr<Server> server;

    static QString clientPath(const QString &name)
    {
        return QStringLiteral("appdata.storages.remote_clients.watcher") + name;
    }
    static std::shared_ptr<Attribute> attribute(const QString &path)
    {
        return std::dynamic_pointer_cast<Attribute>(
            RunningRepository::provider().getRoot()->findChildByRelativePath(path));
    }
    static QString status()
    {
        QVariant value;
        const auto shown = attribute(clientPath(".status"));
        return shown && shown->getValue(value, QMetaType::QString) ? value.toString() : QString();
    }
    static void control(const QString &command)
    {
        RunningRepository::provider().getManipulationProvider()->updateAttribute(clientPath(".control"),
                                                                                 command, UpdatePoint::Done);
    }
    bool addClient(const QString &query = QStringLiteral("id=watcher&path=served"),
                   const QString &name = QStringLiteral("mirror")) const
    {
        Tessellum::AppData::Storages::StorageCreateDataDetails details;
        details.location = QUrl(server->url(query));
        return run->provider().getStorageProvider()->addStorage(QStringLiteral("remote-storage-client"), name,
                                                                details, CreatePoint::Done, name);
    }
    static QList<std::shared_ptr<Entry>> entries()
    {
        QList<std::shared_ptr<Entry>> found;
        for (const auto &child : Tessellum::AppData::utils::FindStorage("mirror")->getChildren(false))
            found.append(std::dynamic_pointer_cast<Entry>(child));
        return found;
    }
    Values values(quint64 timestamp, double number) const
    {
        Values result;
        result.setActive(true);
        result.setTimestamp(timestamp);
        result.setRawData(run->raw(number));
        return result;
    }
    QPair<QString, QString> document(const QString &uuid, int elements) const
    {
        RemoteDocuments documents;
        for (int element = 0; element < elements; ++element)
            documents.append({uuid + QString::number(element),
                              EncodeElementDocument(values(quint64(element), element), text)});
        return {uuid, EncodeEntryDocument(run->record("load", "served"), documents, text)};
    }

private Q_SLOTS:
    void init()
    {
        run = std::make_unique<RunningDataRepository>();
        server = std::make_unique<Server>();
        QVERIFY(server->listen());
    }
    void cleanup()
    {
        run.reset();
        server.reset();
    }

    void theServerIsAskedWhenTheTreeHasTheStorage();
    void theModeIsThatOfTheAnswer();
    void theConnectionObeysTheControlAttribute();
    void anEndLeavesNothing();
    void oddIdsHaveNoAttributes();
    void badFramesAreSurvived();
    void localChangesStayHere();
    void aStopDoesNotWaitForTheRest();
};

void RemoteStorageClientTest::theServerIsAskedWhenTheTreeHasTheStorage()
{
    QMutex &entering = run->provider().pairMutex(); // the last step of the storage's task takes it
    entering.lock();
    std::thread adding([this] { addClient(); });
    const bool isEarly = QTest::qWaitFor([this] { return server->connections > 0; }, 300);
    entering.unlock();
    adding.join();
    QVERIFY(!isEarly);
    QTRY_COMPARE(server->received.size(), 1);
    server->answer({document("e", 1)});
    QTRY_COMPARE(entries().size(), 1);
}

void RemoteStorageClientTest::theModeIsThatOfTheAnswer()
{
    QVERIFY(addClient());
    QTRY_COMPARE(server->received.size(), 1);
    QCOMPARE(server->received.first(),
             QStringLiteral("{\"command\":\"init\",\"data\":\"00000017"
                            "7801011700e8ff0000000a000000000e007700610074006300680065007216590307\","
                            "\"options\":{\"supportsBinaryData\":true},\"path\":\"served\"}"));
    QTRY_COMPARE(status(), QStringLiteral("established"));
    server->answer({document("e", 3)}); // without the option
    QTRY_COMPARE(entries().size(), 1);
    QTRY_COMPARE(entries().first()->getNumberOfChildren(), quint64(3));

    control(QStringLiteral("connect"));
    QTRY_COMPARE(server->received.size(), 2);
    QCOMPARE(server->request(1).options, (QVariantHash{{"supportsBinaryData", false}}));
    server->answer({document("e", 4)}, {{"supportsBinaryData", true}});
    QTRY_COMPARE(entries().first()->getNumberOfChildren(), quint64(4));
    QCOMPARE(entries().size(), 1);
    control(QStringLiteral("connect"));
    QTRY_COMPARE(server->received.size(), 3);
    QCOMPARE(server->request(2).options, (QVariantHash{{"supportsBinaryData", true}}));
    QCOMPARE(server->binaries, 0);
}

void RemoteStorageClientTest::theConnectionObeysTheControlAttribute()
{
    QVERIFY(addClient());
    QTRY_COMPARE(status(), QStringLiteral("established"));
    QTRY_COMPARE(server->received.size(), 1);
    server->answer({document("e", 1)});
    QTRY_COMPARE(entries().size(), 1);
    for (const char *const odd : {"Close", "close ", "", "reconnect"})
        control(odd);
    control(QStringLiteral("close"));
    QTRY_COMPARE(status(), QStringLiteral("disconnected"));
    QTRY_VERIFY(server->socket->state() == QAbstractSocket::UnconnectedState);
    QCOMPARE(server->socket->closeCode(), QWebSocketProtocol::CloseCodeNormal);
    QCOMPARE(entries().size(), 1); // the mirror stays as it is
    control(QStringLiteral("connect"));
    QTRY_COMPARE(status(), QStringLiteral("established"));
    QTRY_COMPARE(server->received.size(), 2);
    // Lost by the other side: it stays lost.
    server->socket->close();
    QTRY_COMPARE(status(), QStringLiteral("disconnected"));
    QCOMPARE(server->connections, 2);
    control(QStringLiteral("connect"));
    QTRY_COMPARE(server->received.size(), 3);
}

void RemoteStorageClientTest::anEndLeavesNothing()
{
    QVERIFY(addClient());
    QTRY_COMPARE(status(), QStringLiteral("established"));
    QTRY_COMPARE(server->connections, 1);
    QVERIFY(run->provider().getStorageProvider()->removeStorage("mirror"));
    QTRY_VERIFY(server->socket->state() == QAbstractSocket::UnconnectedState);
    QCOMPARE(server->socket->closeCode(), QWebSocketProtocol::CloseCodeNormal);
    QTRY_VERIFY(!attribute(clientPath(QString())));
}

void RemoteStorageClientTest::oddIdsHaveNoAttributes()
{
    const LogCapture log;
    QVERIFY(addClient());
    QTRY_COMPARE(status(), QStringLiteral("established"));
    QTRY_COMPARE(server->received.size(), 1);
    QVERIFY(addClient(QStringLiteral("path=served"), QStringLiteral("nameless")));
    QTRY_COMPARE(server->received.size(), 2);
    QVERIFY(addClient(QStringLiteral("id=watcher.status&path=served"), QStringLiteral("dotted")));
    QTRY_COMPARE(server->received.size(), 3);
    QCOMPARE(server->request(1).data, QVariant(QString("")));
    QCOMPARE(server->request(2).data, QVariant("watcher.status"));
    QCOMPARE(log.lines().filter("RemoteStorageClient::initialize() no status attribute for id=").size(), 2);
    QVERIFY(run->provider().getStorageProvider()->removeStorage("dotted"));
    QVERIFY(run->provider().getStorageProvider()->removeStorage("nameless"));
    QVERIFY(attribute(clientPath(".status")) && attribute(clientPath(".control")));
}

void RemoteStorageClientTest::badFramesAreSurvived()
{
    QVERIFY(addClient());
    QTRY_COMPARE(server->received.size(), 1);
    const QString junk(1 << 20, QChar('x'));
    for (const QString &frame :
         {QString(), QString("{"), QString("[]"), QString("{\"command\":7}"),
          QString("{\"command\":\"none\"}"),
          QString("{\"command\":\"init\",\"path\":[],\"data\":{},\"options\":3}"),
          QString("{\"command\":\"init\",\"path\":\"served\",\"data\":\"0g\"}"),
          QString("{\"command\":\"create-entry\",\"path\":\"served.e\",\"data\":\"ffffffff789c\"}"),
          QString("{\"command\":\"create-element\",\"path\":\"\",\"data\":\"00\"}"),
          QString("{\"command\":\"delete-entry\",\"path\":\"\"}"), junk}) {
        server->socket->sendTextMessage(frame);
        server->socket->sendBinaryMessage(frame.toUtf8());
    }
    server->socket->sendBinaryMessage(QByteArray("qbjs\1\0\0\0\xff\xff\xff\xff\1\0\0\0", 16));
    server->answer({{"broken", "{"}, document("e", 1), {"", document("e", 1).second}});
    QTRY_COMPARE(entries().size(), 1);
    server->send("e.one", RemoteStorageCommand::CreateElement, EncodeElement(values(7, 2.5), text));
    QTRY_COMPARE(entries().first()->getNumberOfChildren(), quint64(2));
    QCOMPARE(run->parsed(entries().first(), 1), 2.5);
    QCOMPARE(status(), QStringLiteral("established"));
}

void RemoteStorageClientTest::localChangesStayHere()
{
    QVERIFY(addClient());
    QTRY_COMPARE(server->received.size(), 1);
    const auto own = run->addEntry(run->record("own", "mirror"));
    QVERIFY(own);
    own->getManipulationInterface()->addDataElementValue(1, ElementValueKind::ParsedValue, 2.5,
                                                         CreatePoint::Done);
    QCOMPARE(run->parsed(own, 0), 2.5);
    server->answer({document("e", 1)});
    QTRY_COMPARE(entries().size(), 2);
    QCOMPARE(own->getNumberOfChildren(), quint64(1));
    QCOMPARE(server->received.size() + server->binaries, 1);
}

void RemoteStorageClientTest::aStopDoesNotWaitForTheRest()
{
    QVERIFY(addClient());
    QTRY_COMPARE(server->received.size(), 1);
    server->answer({document("e", 20000)});
    for (int element = 0; element < 20000; ++element)
        server->send("e.new" + QString::number(element), RemoteStorageCommand::CreateElement,
                     EncodeElement(values(1, 1), text));
    QTRY_VERIFY_WITH_TIMEOUT(!entries().isEmpty() && entries().first()->getNumberOfChildren() > 0, 60000);
    QElapsedTimer stop;
    stop.start();
    run.reset();
    QVERIFY(stop.elapsed() < 20000);
}

QTEST_GUILESS_MAIN(RemoteStorageClientTest)
#include "RemoteStorageClientTest.moc"
