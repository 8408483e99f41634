#include "RepositoryFixture.h"

#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/backends/utils/RemoteMessage.h>

#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>
#include <QUrl>
#include <QWebSocket>

using namespace Tessellum::AppConfig::Backends::utils;
using Tessellum::Notification::UpdatePoint;

namespace {

constexpr int Patience = 20000;
const auto PortPath = QStringLiteral("appconfig.backends.remote_server_ports.net");

/*! A client that knows nothing but the wire. */
class Peer
{
public:
    explicit Peer(int port)
    {
        QObject::connect(&socket, &QWebSocket::textMessageReceived, &socket,
                         [this](const QString &frame) { received.append(ParseRemoteMessage(frame)); });
        socket.open(QUrl("ws://127.0.0.1:%1"_s.arg(port)));
    }

    bool isConnected()
    {
        return QTest::qWaitFor([this] { return socket.state() == QAbstractSocket::ConnectedState; },
                               Patience);
    }
    bool isClosed(QWebSocketProtocol::CloseCode code)
    {
        return QTest::qWaitFor([this] { return socket.state() == QAbstractSocket::UnconnectedState; },
                               Patience)
            && socket.closeCode() == code;
    }
    void tell(RemoteCommand command, const QString &path, const QVariant &value = QVariant())
    {
        RemoteMessage message;
        message.command = command;
        message.path = path;
        message.data = value.isValid() ? SerializeValue(value) : QByteArray();
        socket.sendTextMessage(ComposeRemoteMessage(message));
    }
    /*! Whether such a message comes; those before it are dropped. */
    bool hears(RemoteCommand command, const QString &path)
    {
        return QTest::qWaitFor(
            [&] {
                while (!received.isEmpty()) {
                    last = received.takeFirst();
                    if (last.command == command && last.path == path)
                        return true;
                }
                return false;
            },
            Patience);
    }
    QVariant value() const { return DeserializeValue(last.data); }

    QWebSocket socket;
    QList<RemoteMessage> received;
    RemoteMessage last;
};

QByteArray Handshake()
{
    return "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
           "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n";
}

} // namespace

class RemoteBackendServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        fixture = std::make_unique<RepositoryFixture>();
        QVERIFY(fixture->createAttribute("plant"_s, 0));
        QVERIFY(fixture->createAttribute("plant.speed"_s, 5));
    }
    void cleanup() { fixture.reset(); }

    void servesAPeer()
    {
        Peer peer(serve());
        QVERIFY(peer.isConnected());
        peer.tell(RemoteCommand::Init, "plant"_s, "a"_s);
        QVERIFY(peer.hears(RemoteCommand::Init, "plant"_s));
        QCOMPARE(DeserializeValue(ParseRemoteSubtree(peer.value().toString()).value("speed"_s)), QVariant(5));
        set("plant.speed"_s, 6);
        QVERIFY(peer.hears(RemoteCommand::Update, "speed"_s));
        QCOMPARE(peer.value(), QVariant(6));
        peer.tell(RemoteCommand::Write, "speed"_s, 7);
        QVERIFY(peer.hears(RemoteCommand::Write, "speed"_s));
        QCOMPARE(value("plant.speed"_s), QVariant(7));

        int parts = 0;
        connect(&peer.socket, &QWebSocket::textFrameReceived, this,
                [&parts](const QString &, bool isLast) { parts += !isLast; });
        QByteArray large(2000000, Qt::Uninitialized);
        for (char &byte : large)
            byte = char(QRandomGenerator::global()->generate());
        set("plant.speed"_s, large);
        while (peer.value() != large)
            QVERIFY(peer.hears(RemoteCommand::Update, "speed"_s));
        QCOMPARE(parts, 0); // a message is one frame

        // What a peer has sent is done, although it has gone.
        Peer hasty(value(PortPath).toInt());
        QVERIFY(hasty.isConnected());
        hasty.tell(RemoteCommand::Init, "plant"_s);
        for (int i = 100; i < 200; ++i)
            hasty.tell(RemoteCommand::Write, "speed"_s, i);
        hasty.socket.close();
        QTRY_COMPARE_WITH_TIMEOUT(value("plant.speed"_s), QVariant(199), Patience);

        // Its end takes the server with it, and the port is free again.
        const int port = value(PortPath).toInt();
        fixture->node("net"_s)->setDeleteFlag();
        QVERIFY(peer.isClosed(QWebSocketProtocol::CloseCodeNormal));
        QTRY_VERIFY_WITH_TIMEOUT(!fixture->node(PortPath), Patience);
        QCOMPARE(serve("port"_s, port), port);
    }

    void showsItsClients()
    {
        setAutomaticCreate(true);
        const auto off = qScopeGuard([] { setAutomaticCreate(false); });
        const QString status = "appconfig.backends.remote_server.a"_s;
        const int port = serve();
        Peer first(port);
        auto second = std::make_unique<Peer>(port);
        Peer odd(port);
        QVERIFY(first.isConnected() && second->isConnected() && odd.isConnected());
        first.tell(RemoteCommand::Init, "plant"_s, "a"_s);
        second->tell(RemoteCommand::Init, "plant"_s, "a"_s);
        odd.tell(RemoteCommand::Init, "plant"_s, "a."_s + QString(100000, QLatin1Char('x')));
        QVERIFY(second->hears(RemoteCommand::Init, "plant"_s) && odd.hears(RemoteCommand::Init, "plant"_s));
        QTRY_VERIFY_WITH_TIMEOUT(value(status).toString().contains("127.0.0.1"_s), Patience);
        const QStringList warnings = fixture->takeLog(Shared::Logging::LogMessageType::warning);
        QVERIFY(warnings.size() == 1 && warnings.first().size() < 500);
        // What a peer without a proper id leaves takes nothing of others with it.
        odd.socket.abort();
        second.reset();
        QStringList lines;
        QVERIFY(QTest::qWaitFor(
            [&] {
                lines += fixture->takeLog(Shared::Logging::LogMessageType::log);
                return lines.filter("onSocketDisconnected() id=net"_s).size() == 2;
            },
            Patience));
        QVERIFY(fixture->node(status));
        first.socket.close();
        QTRY_VERIFY_WITH_TIMEOUT(!fixture->node(status), Patience);
    }

    void survivesWhatPeersSend()
    {
        const int port = serve("limit"_s, 100000);
        Peer healthy(port);
        QVERIFY(healthy.isConnected());
        healthy.tell(RemoteCommand::Init, "plant"_s);

        Peer bad(port);
        QVERIFY(bad.isConnected());
        const QString deep = QString(40000, QLatin1Char('['));
        const QStringList frames{""_s,
                                 "{"_s,
                                 deep,
                                 QString(90000, QLatin1Char('j')),
                                 "{\"command\":{},\"path\":[],\"data\":1}"_s,
                                 "{\"command\":\"init\",\"path\":\"\"}"_s,
                                 "{\"command\":\"init\",\"path\":\"plant\",\"data\":\"xyz\"}"_s,
                                 "{\"command\":\"write\",\"path\":\"speed\",\"data\":\"ffffffff789c\"}"_s,
                                 "{\"command\":\"write\",\"path\":\"...\",\"data\":\"00\"}"_s};
        for (const QString &frame : frames)
            bad.socket.sendTextMessage(frame);
        bad.socket.sendBinaryMessage(QByteArray(50000, '\xff'));
        bad.tell(RemoteCommand::Read, "speed"_s);
        bad.socket.sendTextMessage(QString(100001, QLatin1Char('x')));
        QVERIFY(bad.isClosed(QWebSocketProtocol::CloseCodeTooMuchData));

        // A peer that leaves at each byte of its handshake and of a frame, and one that talks no protocol.
        const QByteArray talk = Handshake() + QByteArray("\x81\x85\x01\x02\x03\x04hello", 11);
        for (int bytes = 0; bytes <= talk.size(); ++bytes) {
            QTcpSocket socket;
            socket.connectToHost("127.0.0.1"_s, quint16(port));
            QVERIFY(socket.waitForConnected(Patience));
            socket.write(talk.left(bytes));
            socket.flush();
        }
        QTcpSocket junk;
        junk.connectToHost("127.0.0.1"_s, quint16(port));
        junk.write(QByteArray(1 << 20, 'j'));
        QVERIFY(junk.waitForConnected(Patience));

        set("plant.speed"_s, 11);
        QVERIFY(healthy.hears(RemoteCommand::Update, "speed"_s));
    }

    void closesAPeerThatStopsReading()
    {
        const int port = serve("limit"_s, 100000);
        QTcpSocket deaf;
        deaf.setReadBufferSize(1);
        deaf.connectToHost("127.0.0.1"_s, quint16(port));
        QVERIFY(deaf.waitForConnected(Patience));
        deaf.write(Handshake());
        const QByteArray text = ComposeRemoteMessage({RemoteCommand::Init, "plant"_s, QByteArray()}).toUtf8();
        // A masked text frame whose mask is zero; the text is short.
        deaf.write(QByteArray("\x81").append(char(0x80 | text.size())).append(4, '\0') + text);
        deaf.flush();
        fixture->takeLog(Shared::Logging::LogMessageType::warning);
        QStringList warnings;
        const QDeadlineTimer deadline(Patience);
        for (int i = 0; warnings.isEmpty() && !deadline.hasExpired(); ++i) {
            QByteArray noise(100000, Qt::Uninitialized);
            for (char &byte : noise)
                byte = char(QRandomGenerator::global()->generate());
            set("plant.speed"_s, noise);
            QTest::qWait(0);
            warnings = fixture->takeLog(Shared::Logging::LogMessageType::warning).filter("unsent bytes"_s);
        }
        QCOMPARE(warnings.size(), 1);

        // It hears why once it reads again.
        QByteArray tail;
        deaf.setReadBufferSize(0);
        QVERIFY(QTest::qWaitFor(
            [&] {
                tail = (tail + deaf.readAll()).right(4);
                return deaf.state() == QAbstractSocket::UnconnectedState;
            },
            Patience));
        QVERIFY(tail.startsWith(QByteArray("\x88\x02\x03\xf1", 4)));
        Peer other(port);
        QVERIFY(other.isConnected());
    }

    void waitsForNobodyWhoSaysNothing()
    {
        const int port = serve();
        std::vector<std::unique_ptr<QTcpSocket>> silent;
        for (int i = 0; i < 300; ++i) {
            silent.push_back(std::make_unique<QTcpSocket>());
            silent.back()->connectToHost("127.0.0.1"_s, quint16(port));
        }
        for (const auto &socket : silent)
            QVERIFY(socket->waitForConnected(Patience));
        Peer peer(port);
        QVERIFY(peer.isConnected());
        peer.tell(RemoteCommand::Init, "plant"_s);
        QVERIFY(peer.hears(RemoteCommand::Init, "plant"_s));
        // None is kept for ever. The last ones the system may have dropped, without a word, where more came
        // than it lets wait.
        QTRY_COMPARE_WITH_TIMEOUT(silent.front()->state(), QAbstractSocket::UnconnectedState, 30000);
    }

    void aPortThatIsTakenIsAWarning()
    {
        QTcpServer other;
        QVERIFY(other.listen(QHostAddress::LocalHost));
        QVERIFY(fixture->create("remote-backend-server"_s, "net"_s,
                                QUrl("ws://any:%1?bind=127.0.0.1"_s.arg(other.serverPort()))));
        QTRY_VERIFY_WITH_TIMEOUT(fixture->node(PortPath), Patience);
        QCOMPARE(value(PortPath), QVariant(0));
        const QStringList warnings = fixture->takeLog(Shared::Logging::LogMessageType::warning);
        QCOMPARE(warnings.filter("failed to listen id=net"_s).size(), 1);
        QVERIFY(fixture->createAttribute("net.usable"_s, 1));
        QCOMPARE(value("net.usable"_s), QVariant(1));
    }

    void refusesUrls_data()
    {
        QTest::addColumn<QVariant>("data");
        QTest::addColumn<QString>("line");
        const QString none = "RemoteBackend::loadAttributesServerInternal() no url instance found in backend "
                             "data, loading aborted"_s;
        const QString invalid
            = "RemoteBackend::loadAttributesCreateDataInternal() found invalid remote server "
              "url in backend data, loading aborted"_s;
        QTest::newRow("no url") << QVariant(QVariantList()) << none;
        QTest::newRow("invalid") << QVariant(QUrl("ws://a b:1"_s)) << invalid;
        QTest::newRow("no port") << QVariant(QUrl("ws://any"_s)) << invalid;
        QTest::newRow("bind") << QVariant(QUrl("ws://any:0?bind=nowhere"_s)) << invalid;
        QTest::newRow("limit") << QVariant(QUrl("ws://any:0?limit=-1"_s)) << invalid;
    }
    void refusesUrls()
    {
        QFETCH(QVariant, data);
        QFETCH(QString, line);
        QVERIFY(!fixture->create("remote-backend-server"_s, "net"_s, data));
        QVERIFY(fixture->takeLog(Shared::Logging::LogMessageType::warning).contains(line));
    }

    void stopsUnderLoadAndStartsAgain()
    {
        int port = 0;
        for (int round = 0; round < 5; ++round) {
            const int served = serve("port"_s, port);
            QVERIFY(served > 0 && (round == 0 || served == port));
            port = served;
            Peer peer(port);
            QVERIFY(peer.isConnected());
            peer.tell(RemoteCommand::Init, "plant"_s, "a"_s);
            QVERIFY(peer.hears(RemoteCommand::Init, "plant"_s));
            for (int i = 0; i < 200; ++i)
                peer.tell(RemoteCommand::Write, "speed"_s, i);
            QVERIFY(peer.hears(RemoteCommand::Write, "speed"_s));
            fixture.reset();
            QVERIFY(peer.isClosed(QWebSocketProtocol::CloseCodeNormal));
            init();
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

    /*! Makes the server "net", with a query item or at a "port", and gives its port. */
    int serve(const QString &item = QString(), int number = 0)
    {
        const bool hasPort = item == "port"_s;
        QUrl url("ws://any:%1?bind=127.0.0.1"_s.arg(hasPort ? number : 0));
        if (!item.isEmpty() && !hasPort)
            url.setQuery(url.query() + "&%1=%2"_s.arg(item).arg(number));
        if (!fixture->create("remote-backend-server"_s, "net"_s, url)
            || !QTest::qWaitFor([this] { return fixture->node(PortPath) != nullptr; }, Patience))
            return -1;
        return value(PortPath).toInt();
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
};

QTEST_GUILESS_MAIN(RemoteBackendServerTest)
#include "RemoteBackendServerTest.moc"
