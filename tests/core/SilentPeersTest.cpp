#include "support/RemotePeerProcess.h"

#include <core/Library.h>

#include <QtTest>
#include <QUrl>

#include <netinet/in.h>
#include <support/Literals.h>
#include <support/ProcessFigures.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Tessellum;
using Notification::CreatePoint;
using Notification::UpdatePoint;

namespace {

constexpr int Patience = 60000;
constexpr int MostPeers = 10000;
constexpr rlim_t MostDescriptors = 2 * MostPeers;
constexpr int OwnDescriptors = 200; // what this process needs beside its silent sockets
constexpr qint64 MostBytes = 100 * 1024; // of memory for each of them; Qt's buffers are the most of it
constexpr int Waiting = 40; // that the system holds for the server without letting more wait a second
const QByteArray Handshake
    = "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n";

/*! The soft limit of descriptors of this process, which those that it starts inherit. */
int setDescriptorLimit(rlim_t wanted)
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = qMin(wanted, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);
    return int(limit.rlim_cur);
}

/*! Connections that say nothing; they end with this. */
class SilentPeers
{
public:
    ~SilentPeers()
    {
        for (const int socket : sockets)
            ::close(socket);
    }
    SilentPeers() = default;
    Q_DISABLE_COPY_MOVE(SilentPeers)

    /*! False where it \a awaits the server's answer and none comes. */
    bool add(quint16 port, bool hasHandshake, bool awaits)
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval patience{Patience / 1000, 0};
        sockets.push_back(::socket(AF_INET, SOCK_STREAM, 0));
        const int socket = sockets.back();
        ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
        ::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address));
        if (hasHandshake || awaits)
            ::send(socket, Handshake.constData(), size_t(Handshake.size()), MSG_NOSIGNAL);
        char answer = 0;
        return !awaits || ::recv(socket, &answer, 1, 0) == 1;
    }

private:
    std::vector<int> sockets;
};

} // namespace

/*! A server in another process, and as many connections as it can have that say nothing. */
class SilentPeersTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { descriptors = setDescriptorLimit(MostDescriptors); }

    void aServerLivesOn_data()
    {
        QTest::addColumn<int>("limit"); // of the server's descriptors
        QTest::addColumn<bool>("hasHandshake");
        QTest::newRow("most, silent at once") << descriptors << false;
        QTest::newRow("most, after the handshake") << descriptors << true;
        QTest::newRow("few descriptors, silent at once") << 512 << false;
        QTest::newRow("few descriptors, after the handshake") << 512 << true;
    }
    void aServerLivesOn()
    {
        QFETCH(int, limit);
        QFETCH(bool, hasHandshake);
        const bool isFull = limit < descriptors; // the server, before this process
        const int count = isFull ? limit : qMin(MostPeers - 1, descriptors - OwnDescriptors);
        QCOMPARE(initializeLibrary(), 0);
        const auto end = qScopeGuard([] { uninitializeLibrary(); });
        setDescriptorLimit(rlim_t(limit));
        TestSupport::RemotePeerProcess server({"server"_s, "0"_s, "0"_s});
        const QByteArray port = server.readLine();
        setDescriptorLimit(MostDescriptors);
        QVERIFY(port.toInt() > 0);
        QVERIFY(mirrors("honest"_s, port));
        const qint64 before = TestSupport::ResidentBytes(server.processId());

        auto silent = std::make_unique<SilentPeers>();
        int taken = 0;
        for (int i = 0; i < count && silent->add(quint16(port.toInt()), hasHandshake, i % Waiting == 0); ++i)
            ++taken;
        QVERIFY(isFull || taken == count);
        QVERIFY(echoes("honest"_s, taken));
        const qint64 bytes = (TestSupport::ResidentBytes(server.processId()) - before) / taken;
        qInfo("%d silent connections of %lld bytes each, with %d descriptors", taken, bytes, limit);
        QVERIFY(bytes < MostBytes);
        // The pools of the server end threads that rest, and start others.
        for (int i = 0; i < 20; ++i)
            QVERIFY(echoes("honest"_s, 1000000 + i));

        silent.reset();
        // It takes others as soon as it has seen that those have gone.
        int late = 0;
        QVERIFY(QTest::qWaitFor([&] { return mirrors(QString::number(++late), port); }, Patience));
        QVERIFY(echoes(QString::number(late), -1));
        QCOMPARE(server.finish(), 0);
    }

private:
    static std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> repository()
    {
        return getCoreInterface()->getAppConfigRepository();
    }
    static bool mirrors(const QString &name, const QByteArray &port)
    {
        const QUrl url("ws://127.0.0.1:%1?path=plant&timeout=10000&id=%2"_s.arg(QString(port), name));
        repository()->getBackendInterface()->createBackend("remote-backend-client"_s, name,
                                                           {url, QString(), 3}, CreatePoint::Done);
        return repository()->getQueryInterface()->getAttribute(name + ".speed"_s) != nullptr;
    }
    /*! Whether the server still does what it is for. */
    static bool echoes(const QString &name, int value)
    {
        repository()->getManipulationInterface()->updateAttribute(name + ".speed"_s, value,
                                                                  UpdatePoint::Done);
        return QTest::qWaitFor(
            [&] {
                QVariant echo;
                repository()->getQueryInterface()->getValue(name + ".echo"_s, echo, 0);
                return echo == QVariant(value);
            },
            Patience);
    }

    int descriptors = 0;
};

QTEST_GUILESS_MAIN(SilentPeersTest)
#include "SilentPeersTest.moc"
