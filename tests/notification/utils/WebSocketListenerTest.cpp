#include <notification/utils/SendWithoutDelay.h>
#include <notification/utils/WebSocketListener.h>

#include <QTcpSocket>
#include <QtTest>
#include <QWebSocket>

#include <support/LogCapture.h>
#include <sys/resource.h>
#include <unistd.h>

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
        accepted->close();
        delete accepted;
        QTRY_COMPARE(peer.state(), QAbstractSocket::UnconnectedState);
    }
}

QTEST_GUILESS_MAIN(WebSocketListenerTest)
#include "WebSocketListenerTest.moc"
