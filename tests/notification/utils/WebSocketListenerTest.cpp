#include <notification/utils/ClientSocketGuard.h>
#include <notification/utils/SendWithoutDelay.h>
#include <notification/utils/WebSocketListener.h>

#include <QTcpSocket>
#include <QtTest>
#include <QWebSocket>

#include <support/LogCapture.h>
#include <sys/resource.h>
#include <unistd.h>

using Tessellum::Notification::utils::ClientSocketGuard;
using Tessellum::Notification::utils::SendWithoutDelay;
using Tessellum::Notification::utils::WebSocketListener;

class WebSocketListenerTest : public QObject
{
    Q_OBJECT

private:
    static QUrl urlOf(const WebSocketListener &listener)
    {
        return QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(listener.getPort()));
    }
    static int socketsOf(const WebSocketListener &listener)
    {
        return listener.findChildren<QTcpSocket *>().size();
    }

private Q_SLOTS:
    void nothingIsLeftOfPeersThatHaveGone();
    void anEndTakesWhoeverIsThere();
    void aReserveOfDescriptorsIsKept();
    void aPeerThatTakesNothingIsClosed_data();
    void aPeerThatTakesNothingIsClosed();
    void aTakenPortIsTold();
    void neitherEndHoldsMessagesBack();
};

void WebSocketListenerTest::nothingIsLeftOfPeersThatHaveGone()
{
    WebSocketListener listener(1000, nullptr);
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    int accepted = 0;
    connect(&listener, &WebSocketListener::connected, this, [&accepted](QWebSocket *socket) {
        ++accepted;
        connect(socket, &QWebSocket::disconnected, socket, &QObject::deleteLater);
    });
    {
        std::vector<std::unique_ptr<QWebSocket>> peers;
        std::vector<std::unique_ptr<QTcpSocket>> strangers;
        for (int number = 0; number < 20; ++number) {
            peers.push_back(std::make_unique<QWebSocket>());
            peers.back()->open(urlOf(listener));
            strangers.push_back(std::make_unique<QTcpSocket>());
            strangers.back()->connectToHost(QHostAddress(QHostAddress::LocalHost), listener.getPort());
            strangers.back()->write("GET / HT");
        }
        QTRY_COMPARE(accepted, 20);
        QTRY_VERIFY(socketsOf(listener) >= 20);
    }
    QTRY_COMPARE(socketsOf(listener), 0);
    QCOMPARE(listener.findChildren<QWebSocket *>().size(), 0);
}

void WebSocketListenerTest::anEndTakesWhoeverIsThere()
{
    for (int round = 0; round < 30; ++round) {
        auto listener = std::make_unique<WebSocketListener>(1000, nullptr);
        QVERIFY(listener->listen(QHostAddress::LocalHost, 0));
        int accepted = 0;
        connect(listener.get(), &WebSocketListener::connected, this, [&accepted](QWebSocket *socket) {
            if (++accepted % 2 == 1)
                socket->deleteLater();
        });
        std::vector<std::unique_ptr<QWebSocket>> peers;
        for (int number = 0; number < 4; ++number) {
            peers.push_back(std::make_unique<QWebSocket>());
            peers.back()->open(urlOf(*listener));
        }
        // At every moment between the first socket and the last handshake.
        QTRY_VERIFY(accepted >= round % 4);
        listener.reset();
    }
}

void WebSocketListenerTest::aReserveOfDescriptorsIsKept()
{
    WebSocketListener listener(1000, nullptr);
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit small{256, before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &small), 0);
    std::vector<int> taken;
    const auto giveBack = [&] {
        while (!taken.empty()) {
            ::close(taken.back());
            taken.pop_back();
        }
        setrlimit(RLIMIT_NOFILE, &before);
    };
    const auto end = qScopeGuard(giveBack);
    for (int number = dup(0); number >= 0; number = dup(0))
        taken.push_back(number);
    for (int i = 0; i < 50; ++i) {
        ::close(taken.back());
        taken.pop_back();
    }

    TestSupport::LogCapture log;
    for (int i = 0; i < 3; ++i) {
        QTcpSocket refused;
        QSignalSpy gone(&refused, &QTcpSocket::disconnected);
        refused.connectToHost(QHostAddress(QHostAddress::LocalHost), listener.getPort());
        QTRY_COMPARE(gone.size(), 1);
    }
    QCOMPARE(socketsOf(listener), 0);
    QCOMPARE(log.lines().filter("cannot accept").size(), 1);
    giveBack();
    QWebSocket served;
    served.open(urlOf(listener));
    QTRY_COMPARE(served.state(), QAbstractSocket::ConnectedState);
}

void WebSocketListenerTest::aTakenPortIsTold()
{
    WebSocketListener first(1000, nullptr);
    WebSocketListener second(1000, nullptr);
    QCOMPARE(first.getPort(), quint16(0));
    QVERIFY(first.listen(QHostAddress::LocalHost, 0));
    QVERIFY(!second.listen(QHostAddress::LocalHost, first.getPort()));
    QCOMPARE(second.getPort(), quint16(0));
    QVERIFY(!second.getError().isEmpty());
}

/*! Qt's sockets show their TCP socket to nobody, so a new version may hide it better. */
void WebSocketListenerTest::neitherEndHoldsMessagesBack()
{
    WebSocketListener listener(1000, nullptr);
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    QPointer<QWebSocket> accepted;
    connect(&listener, &WebSocketListener::connected, this, [&](QWebSocket *socket) { accepted = socket; });
    const auto isWithoutDelay = [](const QWebSocket &socket) {
        auto *const tcp = socket.findChild<QTcpSocket *>();
        return tcp && tcp->socketOption(QAbstractSocket::LowDelayOption) == 1;
    };
    QWebSocket peer;
    QVERIFY(!SendWithoutDelay(peer));
    for (int round = 0; round < 2; ++round) {
        peer.open(urlOf(listener));
        QTRY_VERIFY(accepted && peer.state() == QAbstractSocket::ConnectedState);
        QVERIFY(isWithoutDelay(*accepted));
        QVERIFY(!isWithoutDelay(peer));
        QVERIFY(SendWithoutDelay(peer));
        QVERIFY(isWithoutDelay(peer));
        const QPointer guard(new ClientSocketGuard(&peer, 1000, ClientSocketGuard::End::Client));
        accepted->close();
        delete accepted;
        QTRY_COMPARE(peer.state(), QAbstractSocket::UnconnectedState);
        QTRY_VERIFY(!guard); // the next connection is not ended by it
    }
}

void WebSocketListenerTest::aPeerThatTakesNothingIsClosed_data()
{
    QTest::addColumn<bool>("asks");
    QTest::newRow("answers to a server's pings") << true;
    QTest::newRow("a message to a client") << false;
}

void WebSocketListenerTest::aPeerThatTakesNothingIsClosed()
{
    QFETCH(bool, asks);
    const TestSupport::LogCapture log;
    QWebSocketServer server("test", QWebSocketServer::NonSecureMode);
    QVERIFY(server.listen(QHostAddress::LocalHost));
    std::vector<std::unique_ptr<QWebSocket>> accepted;
    connect(&server, &QWebSocketServer::newConnection, this, [&] {
        accepted.emplace_back(server.nextPendingConnection());
        new ClientSocketGuard(accepted.back().get(), 1000,
                              asks ? ClientSocketGuard::End::Client : ClientSocketGuard::End::Server, 300);
        if (!asks)
            accepted.back()->sendBinaryMessage(QByteArray(50 << 20, 'm'));
    });

    // One that reads is not.
    QWebSocket healthy;
    int heard = 0;
    connect(&healthy, &QWebSocket::binaryMessageReceived, this, [&heard] { ++heard; });
    connect(&healthy, &QWebSocket::pong, this, [&heard] { ++heard; });
    healthy.open(QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(server.serverPort())));
    QTRY_COMPARE(healthy.state(), QAbstractSocket::ConnectedState);
    for (int ping = 0; asks && ping < 1000; ++ping)
        healthy.ping("hello");
    QTRY_COMPARE_WITH_TIMEOUT(heard, asks ? 1000 : 1, 20000);

    QTcpSocket deaf;
    deaf.setReadBufferSize(1);
    deaf.connectToHost(QHostAddress(QHostAddress::LocalHost), server.serverPort());
    deaf.write("GET / HTTP/1.1\r\nHost: a\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
               "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n");
    QTRY_COMPARE(accepted.size(), std::size_t(2));
    const QByteArray ping = QByteArray("\x89\xfd").append(4, '\0') + QByteArray(125, 'p');
    const auto isTold
        = [&log] { return log.lines().filter("ClientSocketGuard::close() peer=127.0.0.1:").size(); };
    for (int i = 0; asks && !isTold() && i < 10000; ++i) {
        deaf.write(ping.repeated(1000));
        QTest::qWait(0);
    }
    QTRY_COMPARE(isTold(), 1);
    QCOMPARE(accepted[1]->closeCode(), QWebSocketProtocol::CloseCodeTooMuchData);
    QTRY_COMPARE(accepted[1]->state(), QAbstractSocket::UnconnectedState); // it is cut then
    QCOMPARE(accepted[0]->state(), QAbstractSocket::ConnectedState);
}

QTEST_GUILESS_MAIN(WebSocketListenerTest)
#include "WebSocketListenerTest.moc"
