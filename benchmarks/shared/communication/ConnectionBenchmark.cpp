#include <shared/communication/connections/MakeConnection.h>
#include <shared/communication/connections/TcpConnection.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <benchmark/benchmark.h>
#include <functional>

using namespace Shared::Communication::Connections;

namespace {

QCoreApplication &application()
{
    static int count = 1;
    static char name[] = "ConnectionBenchmark";
    static char *arguments[] = {name, nullptr};
    static QCoreApplication instance(count, arguments);
    return instance;
}

/*! Sends back what it gets, on a thread of its own. */
class EchoServer
{
public:
    EchoServer()
    {
        thread.start();
        context.moveToThread(&thread);
        QMetaObject::invokeMethod(
            &context, [this] { listen(); }, Qt::BlockingQueuedConnection);
    }
    ~EchoServer()
    {
        QMetaObject::invokeMethod(
            &context, [this] { server.reset(); }, Qt::BlockingQueuedConnection);
        thread.quit();
        thread.wait();
    }
    Q_DISABLE_COPY_MOVE(EchoServer)

    quint16 port = 0;

private:
    void listen()
    {
        server = std::make_unique<QTcpServer>();
        QObject::connect(server.get(), &QTcpServer::newConnection, &context, [this] {
            auto *const socket = server->nextPendingConnection();
            socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
            QObject::connect(socket, &QTcpSocket::readyRead, socket,
                             [socket] { socket->write(socket->readAll()); });
        });
        if (!server->listen(QHostAddress::LocalHost))
            qFatal("cannot listen");
        port = server->serverPort();
    }

    QThread thread;
    QObject context;
    std::unique_ptr<QTcpServer> server;
};

void waitUntil(const std::function<bool()> &holds)
{
    while (!holds())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/*! One block of a size there and back in each iteration. */
void echo(benchmark::State &state, const std::function<void(const QByteArray &)> &send,
          const qint64 &received)
{
    const QByteArray block(static_cast<int>(state.range(0)), 'e');
    qint64 expected = received;
    for (auto _ : state) {
        expected += block.size();
        send(block);
        waitUntil([&] { return received >= expected; });
    }
}

void TcpEcho(benchmark::State &state)
{
    application();
    const EchoServer server;
    const auto connection = MakeConnection<TcpConnection>(QStringLiteral("127.0.0.1"), server.port, 5U,
                                                          QAbstractSocket::AnyIPProtocol);
    qint64 received = 0;
    QObject::connect(connection.get(), &Connection::dataReceived,
                     [&received](const QByteArray &data) { received += data.size(); });
    connection->open();
    waitUntil([&] { return connection->isConnected(); });
    std::static_pointer_cast<QTcpSocket>(connection->getRawDevice().lock())
        ->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    echo(
        state, [&](const QByteArray &block) { connection->onDataSend(block); }, received);
    state.counters["aim"] = 1.3;
}

void TcpEcho_Floor(benchmark::State &state)
{
    application();
    const EchoServer server;
    QTcpSocket socket;
    qint64 received = 0;
    QObject::connect(&socket, &QTcpSocket::readyRead, [&] { received += socket.readAll().size(); });
    socket.connectToHost(QStringLiteral("127.0.0.1"), server.port);
    waitUntil([&] { return socket.state() == QAbstractSocket::ConnectedState; });
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    echo(
        state, [&](const QByteArray &block) { socket.write(block); }, received);
}

} // namespace

BENCHMARK(TcpEcho)->Arg(64)->Arg(65536)->UseRealTime();
BENCHMARK(TcpEcho_Floor)->Arg(64)->Arg(65536)->UseRealTime();
