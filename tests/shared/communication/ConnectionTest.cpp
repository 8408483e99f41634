#include <shared/communication/connections/MakeConnection.h>
#include <shared/communication/connections/TcpConnection.h>
#include <shared/communication/connections/UdpConnection.h>

#include <QNetworkDatagram>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>
#include <QUdpSocket>

#include <limits>
#include <netinet/in.h>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace Shared::Communication::Connections;

namespace {

const QString Loopback = "127.0.0.1"_s;

std::shared_ptr<TcpConnection> tcpTo(quint16 port, unsigned int timeout = 0)
{
    return MakeConnection<TcpConnection>(Loopback, port, timeout, QAbstractSocket::AnyIPProtocol);
}

std::shared_ptr<UdpConnection> udpTo(quint16 port)
{
    return MakeConnection<UdpConnection>(Loopback, port, 0U, QAbstractSocket::AnyIPProtocol);
}

/*! What a connection tells, in its order; also, whether its lock was free each time. */
class Told
{
public:
    explicit Told(const std::shared_ptr<Connection> &connection)
    {
        const auto *const sender = connection.get();
        const auto note = [this, sender](const QString &what) {
            wasFree = wasFree && !sender->isLocked();
            signalNames.append(what);
        };
        QObject::connect(sender, &Connection::connectionEstablished, &context, [note] { note("up"_s); });
        QObject::connect(sender, &Connection::connectionClosed, &context, [note] { note("down"_s); });
        QObject::connect(sender, &Connection::connectionFailed, &context, [note] { note("failed"_s); });
        QObject::connect(sender, &Connection::dataReceived, &context, [this, note](const QByteArray &data) {
            note("data"_s);
            blocks.append(data);
        });
    }

    QStringList signalNames;
    QList<QByteArray> blocks;
    bool wasFree = true;

private:
    QObject context;
};

/*! A place at which a connect is never answered: the queue of the listening socket is full. */
class SilentPlace
{
public:
    SilentPlace()
        : listener(::socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto *const plain = reinterpret_cast<sockaddr *>(&address);
        if (::bind(listener, plain, size) != 0 || ::listen(listener, 0) != 0
            || ::getsockname(listener, plain, &size) != 0)
            qFatal("no listening socket");
        port = ntohs(address.sin_port);
        while (connectFiller()) { }
    }
    ~SilentPlace() { ::close(listener); }
    Q_DISABLE_COPY_MOVE(SilentPlace)

    quint16 port = 0;

private:
    bool connectFiller()
    {
        auto filler = std::make_unique<QTcpSocket>();
        filler->connectToHost(Loopback, port);
        fillers.push_back(std::move(filler));
        return fillers.back()->waitForConnected(300);
    }

    const int listener;
    std::vector<std::unique_ptr<QTcpSocket>> fillers;
};

/*! A connection whose device never is there. */
class NoConnection : public Connection
{
public:
    bool isConnected() const override { return false; }
    std::weak_ptr<QIODevice> getRawDevice() const override { return {}; }

protected:
    bool internalOpenReqest() override { return true; }
    bool internalConnect(bool &connected) override { return connected = true; }
};

} // namespace

class ConnectionTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        server = std::make_unique<QTcpServer>();
        QVERIFY(server->listen(QHostAddress::LocalHost));
    }

    void opensSendsAndCloses();
    void takesWhateverThePeerDoes();
    void failsOnce_data();
    void failsOnce();
    void givesUpInTime();
    void closesWhileConnecting();
    void isUsedFromOtherThreads();
    void diesWhereverItIsDropped();
    void keepsDatagramsApart();
    void outlivesAPeerWithoutAConnection();
    void hearsOnAfterAWaitWithinADatagram();
    void answersWithoutADevice();

private:
    /*! The server's end of a connection that has been opened. */
    std::unique_ptr<QTcpSocket> accept() const
    {
        if (!QTest::qWaitFor([this] { return server->hasPendingConnections(); }))
            return nullptr;
        return std::unique_ptr<QTcpSocket>(server->nextPendingConnection());
    }

    std::unique_ptr<QTcpServer> server;
};

void ConnectionTest::opensSendsAndCloses()
{
    const auto connection = tcpTo(server->serverPort(), 5);
    Told told(connection);
    QVERIFY(!connection->getId().isEmpty() && connection->getId() != tcpTo(1)->getId());
    QVERIFY(!connection->isValid() && !connection->close("early"_s) && !connection->onDataSend("x"));
    QVERIFY(!connection->closeReason().isValid());
    QStringList expected;
    for (int round = 0; round < 2; ++round) { // the second on the same socket
        QVERIFY(connection->open());
        QVERIFY(!connection->closeReason().isValid());
        const auto peer = accept();
        expected << "up"_s;
        QTRY_COMPARE(told.signalNames, expected);
        QVERIFY(connection->isConnected() && !connection->open());
        QVERIFY(connection->onDataSend("ping"));
        QTRY_COMPARE(peer->bytesAvailable(), qint64(4));
        peer->write("pong");
        expected << "data"_s;
        QTRY_COMPARE(told.signalNames, expected);
        QVERIFY(connection->close(round));
        QCOMPARE(connection->closeReason(), QVariant(round));
        expected << "down"_s;
        QTRY_COMPARE(told.signalNames, expected);
        QVERIFY(connection->isValid() && !connection->isConnected() && !connection->onDataSend("x"));
    }
    QCOMPARE(told.blocks, QList<QByteArray>({"pong", "pong"}));
    QVERIFY(told.wasFree);
}

void ConnectionTest::takesWhateverThePeerDoes()
{
    const TestSupport::LogCapture log;
    const auto connection = tcpTo(server->serverPort());
    Told told(connection);
    QVERIFY(connection->open());
    const auto peer = accept();
    QByteArray sent(1 << 20, 'm');
    for (const char byte : {'a', 'b', 'c'}) {
        sent.prepend(byte);
        peer->write(&byte, 1);
        QTRY_VERIFY(told.blocks.join().endsWith(byte));
    }
    peer->write(sent.constData() + 3, sent.size() - 3);
    peer->disconnectFromHost(); // in the middle of whatever it meant
    QTRY_COMPARE(told.signalNames.last(), "down"_s);
    QCOMPARE(told.signalNames.count("down"_s), 1);
    QVERIFY(!told.signalNames.contains("failed"_s)); // it was connected
    QByteArray all = told.blocks.join();
    std::reverse(all.begin(), all.begin() + 3);
    QVERIFY(all == sent);
    QVERIFY(!told.blocks.contains(QByteArray()));
    QCOMPARE(log.lines(),
             QStringList("LOG Connection::onSocketError() received socket error="
                         "The remote host closed the connection"));
}

void ConnectionTest::failsOnce_data()
{
    QTest::addColumn<unsigned int>("timeout");
    for (const unsigned int timeout : {0U, 1U, std::numeric_limits<unsigned int>::max()})
        QTest::addRow("%u", timeout) << timeout;
}

void ConnectionTest::failsOnce()
{
    QFETCH(const unsigned int, timeout);
    const TestSupport::LogCapture log;
    const quint16 port = server->serverPort();
    server->close();
    const auto connection = tcpTo(port, timeout);
    Told told(connection);
    QVERIFY(connection->open());
    QTRY_COMPARE(told.signalNames, QStringList("failed"));
    const auto socket = connection->getRawDevice().lock();
    QVERIFY(server->listen(QHostAddress::LocalHost, port));
    QVERIFY(connection->open());
    QTRY_COMPARE(told.signalNames, (QStringList{"failed", "up"}));
    QCOMPARE(connection->getRawDevice().lock(), socket);
    // One that still ran would end the connection later.
    const auto *const timer = connection->findChild<QTimer *>();
    QVERIFY(timeout == 0 ? !timer : timer && !timer->isActive());
    QVERIFY(connection->isConnected());
    QCOMPARE(log.lines(),
             QStringList("LOG Connection::onSocketError() received socket error=Connection refused"));
    QVERIFY(told.wasFree);
}

void ConnectionTest::givesUpInTime()
{
    const SilentPlace place;
    const auto connection = tcpTo(place.port, 1);
    Told told(connection);
    for (int round = 1; round <= 2; ++round) {
        QVERIFY(connection->open());
        QTRY_COMPARE(told.signalNames.size(), round);
    }
    QCOMPARE(told.signalNames, (QStringList{"failed", "failed"}));
}

void ConnectionTest::closesWhileConnecting()
{
    const SilentPlace place;
    const auto connection = tcpTo(place.port, std::numeric_limits<unsigned int>::max());
    const auto socket = [&connection] {
        return std::static_pointer_cast<QAbstractSocket>(connection->getRawDevice().lock());
    };
    Told told(connection);
    QVERIFY(connection->open());
    QCOMPARE(socket()->state(), QAbstractSocket::ConnectingState);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("already .*connecting"_s));
    QVERIFY(connection->open()); // refused, and the first one goes on
    QCOMPARE(told.signalNames, QStringList("failed"));
    QCOMPARE(socket()->state(), QAbstractSocket::ConnectingState);
    QVERIFY(connection->close("changed my mind"_s));
    QCOMPARE(socket()->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(told.signalNames, QStringList("failed"));
}

void ConnectionTest::isUsedFromOtherThreads()
{
    const auto connection = tcpTo(server->serverPort(), 5);
    Told told(connection);
    const auto elsewhere = [](const std::function<bool()> &call) {
        bool result = false;
        std::thread([&] { result = call(); }).join();
        return result;
    };
    QVERIFY(!elsewhere([&] { return connection->onDataSend("early") || connection->close(1); }));
    QVERIFY(elsewhere([&] { return connection->open(); }));
    QTRY_COMPARE(told.signalNames, QStringList("up"));
    const auto peer = accept();
    QVERIFY(elsewhere([&] { return connection->isConnected() && !connection->open(); }));
    QVERIFY(elsewhere([&] { return connection->onDataSend("one ") && connection->onDataSend("two"); }));
    QTRY_COMPARE(peer->bytesAvailable(), qint64(7));
    QCOMPARE(peer->readAll(), QByteArray("one two"));
    QVERIFY(elsewhere([&] { return connection->close("from afar"_s); }));
    QTRY_COMPARE(told.signalNames.last(), "down"_s);
    QCOMPARE(connection->closeReason(), QVariant("from afar"));
    QVERIFY(!elsewhere([&] { return connection->isConnected(); }));
    // Both wait for this thread: the reason of the later one stays.
    QVERIFY(elsewhere([&] { return connection->open() && connection->close("at once"_s); }));
    QCoreApplication::processEvents();
    QCOMPARE(connection->closeReason(), QVariant("at once"));
}

void ConnectionTest::diesWhereverItIsDropped()
{
    auto connection = tcpTo(server->serverPort());
    QPointer<Connection> watched(connection.get());
    QVERIFY(connection->open());
    const auto peer = accept();
    QObject::connect(connection.get(), &Connection::dataReceived, this, [&] { connection.reset(); });
    QTRY_VERIFY(watched->isConnected());
    peer->write("the end");
    QTRY_VERIFY(!watched);
    QTRY_COMPARE(peer->state(), QAbstractSocket::UnconnectedState);
    connection = tcpTo(server->serverPort(), 5);
    watched = connection.get();
    QVERIFY(connection->open());
    const auto other = accept();
    std::thread([last = std::move(connection)]() mutable { last.reset(); }).join();
    QTRY_VERIFY(!watched);
    QTRY_COMPARE(other->state(), QAbstractSocket::UnconnectedState);
}

void ConnectionTest::keepsDatagramsApart()
{
    QUdpSocket peer;
    QVERIFY(peer.bind(QHostAddress(QHostAddress::LocalHost)));
    const auto connection = udpTo(peer.localPort());
    Told told(connection);
    QVERIFY(connection->open());
    QVERIFY(connection->isConnected() && !connection->open());
    QCOMPARE(told.signalNames, QStringList("up"));
    QVERIFY(connection->onDataSend("hello"));
    QTRY_VERIFY(peer.hasPendingDatagrams());
    const QNetworkDatagram hello = peer.receiveDatagram();
    QCOMPARE(hello.data(), QByteArray("hello"));
    const QList<QByteArray> sent{"1", QByteArray(40000, 'b'), QByteArray(), "last"};
    for (const QByteArray &datagram : sent)
        peer.writeDatagram(hello.makeReply(datagram));
    QTRY_COMPARE(told.blocks.size(), 3);
    QCOMPARE(told.blocks, (QList<QByteArray>{sent[0], sent[1], sent[3]}));
    QVERIFY(connection->close({}));
    QTRY_COMPARE(told.signalNames.last(), "down"_s);
    QVERIFY(connection->open() && connection->isConnected());
    QVERIFY(told.wasFree);
}

void ConnectionTest::outlivesAPeerWithoutAConnection()
{
    QUdpSocket peer;
    QVERIFY(peer.bind(QHostAddress(QHostAddress::LocalHost)));
    const quint16 port = peer.localPort();
    peer.close();
    const TestSupport::LogCapture log;
    const auto connection = udpTo(port);
    Told told(connection);
    QVERIFY(connection->open() && connection->onDataSend("into the void"));
    QTRY_COMPARE(log.lines(),
                 QStringList("LOG Connection::onSocketError() received socket error=Connection refused"));
    QVERIFY(peer.bind(QHostAddress(QHostAddress::LocalHost), port));
    QVERIFY(connection->isConnected());
    QTRY_VERIFY(connection->onDataSend("anybody?") && peer.hasPendingDatagrams());
    peer.writeDatagram(peer.receiveDatagram().makeReply("me"));
    QTRY_COMPARE(told.blocks, QList<QByteArray>{"me"});
    QCOMPARE(told.signalNames, (QStringList{"up", "data"}));
}

void ConnectionTest::hearsOnAfterAWaitWithinADatagram()
{
    QUdpSocket peer;
    QVERIFY(peer.bind(QHostAddress(QHostAddress::LocalHost)));
    const quint16 port = peer.localPort();
    const auto connection = udpTo(port);
    Told told(connection);
    QVERIFY(connection->open() && connection->onDataSend("hello"));
    QTRY_VERIFY(peer.hasPendingDatagrams());
    const QNetworkDatagram hello = peer.receiveDatagram();
    bool hasWaited = false;
    QObject::connect(connection.get(), &Connection::dataReceived, this, [&](const QByteArray &data) {
        if (data != "leaving")
            return;
        // That nobody is there comes back while this waits.
        connection->onDataSend("anybody?");
        QTest::qWait(100);
        hasWaited = true;
    });
    peer.writeDatagram("leaving", hello.senderAddress(), quint16(hello.senderPort()));
    peer.close();
    QTRY_VERIFY(hasWaited);
    QVERIFY(peer.bind(QHostAddress(QHostAddress::LocalHost), port));
    peer.writeDatagram("back", hello.senderAddress(), quint16(hello.senderPort()));
    QTRY_COMPARE(told.blocks, (QList<QByteArray>{"leaving", "back"}));
}

void ConnectionTest::answersWithoutADevice()
{
    const TestSupport::LogCapture log;
    const auto connection = MakeConnection<NoConnection>();
    Told told(connection);
    QVERIFY(!connection->open());
    QCOMPARE(told.signalNames, QStringList("failed"));
    QVERIFY(!connection->onClose() && !connection->close(1));
    connection->onSocketError(QAbstractSocket::NetworkError);
    QCOMPARE(told.signalNames, (QStringList{"failed", "failed"}));
    QCOMPARE(log.lines(),
             QStringList("LOG Connection::onSocketError() received socket error=<invalid socket instance>"));
}

QTEST_GUILESS_MAIN(ConnectionTest)
#include "ConnectionTest.moc"
