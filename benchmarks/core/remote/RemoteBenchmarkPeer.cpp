// The process at the other end of RemoteBenchmark. It tells numbers of eight bytes on standard output, 0 when
// it is ready, and ends with its standard input:
//   mirror URL EVERY             mirrors a subtree; the time after each EVERY-th update of it
//   load URL                     the nanoseconds until the subtree stood
//   storages URL COUNT EVERY     mirrors a storage COUNT times; the time when all have EVERY more elements
//   loadStorage URL ELEMENTS     the nanoseconds until the storage stood
//   echo URL                     sends the texts back that it gets
//   values URL EVERY             reads values and answers; the time after each EVERY-th that is through
//   elements URL COUNT EVERY     reads elements on COUNT sockets; the time when all have EVERY more
//   replica URL EVERY            the time after each EVERY-th change of a remote object

#include "OtherProcess.h"
#include "RemoteFrames.h"
#include "RemoteValue.h"

#include <appdata/data/entries/Entry.h>
#include <appdata/storages/Storage.h>
#include <appdata/utils/RepositoryLookup.h>
#include <core/Library.h>
#include <notification/utils/SendWithoutDelay.h>
#include <shared/logging/LogHandler.h>

#include <QCoreApplication>
#include <QRemoteObjectDynamicReplica>
#include <QRemoteObjectNode>
#include <QSocketNotifier>
#include <QThread>
#include <QUrl>
#include <QWebSocket>

#include <atomic>
#include <memory>
#include <unistd.h>
#include <vector>

using namespace Tessellum;
using AppConfig::Backends::utils::DeserializeValue;
using AppConfig::Backends::utils::ParseRemoteMessage;
using Notification::CreatePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;
using RemoteFrames::RemoteCommand;

namespace {

void tell(qint64 number)
{
    if (write(STDOUT_FILENO, &number, sizeof number) != sizeof number)
        _exit(1);
}

/*! Tells the time after each so many. */
class Counter
{
public:
    explicit Counter(qint64 tellEvery)
        : every(tellEvery)
    { }
    void count()
    {
        if (++number % every == 0)
            tell(monotonicTime());
    }

private:
    const qint64 every;
    std::atomic<qint64> number = 0;
};

bool hasEnded()
{
    char end = 0;
    return read(STDIN_FILENO, &end, 1) <= 0;
}

void waitForEnd()
{
    while (!hasEnded()) { }
}

void addBackend(const QString &url)
{
    if (!getCoreInterface()->getAppConfigRepository()->getBackendInterface()->createBackend(
            QStringLiteral("remote-backend-client"), QStringLiteral("mirror"), {QUrl(url), QString(), 3},
            CreatePoint::Done))
        qFatal("the backend is not made");
}

void mirror(const QString &url, qint64 every)
{
    Counter counter(every);
    addBackend(url + QStringLiteral("mirror"));
    const auto handle
        = getCoreInterface()->getAppConfigRepository()->getNotificationInterface()->registerUpdateHandler(
            QStringLiteral("mirror.*"),
            [&counter](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
                       const QVariant &) {
                if (result == UpdateResult::Ok)
                    counter.count();
            },
            UpdatePoint::Done);
    tell(0);
    waitForEnd();
}

void load(const QString &url)
{
    tell(0);
    const qint64 begin = monotonicTime();
    addBackend(url + QStringLiteral("mirror"));
    tell(monotonicTime() - begin);
    waitForEnd();
}

void addStorage(const QString &name, const QString &url)
{
    AppData::Storages::StorageCreateDataDetails details;
    details.location = QUrl(url + name);
    if (!getCoreInterface()->getAppDataRepository()->getStorageInterface()->addStorage(
            QStringLiteral("remote-storage-client"), name, details, CreatePoint::Done, name))
        qFatal("the storage is not made");
}

/*! Waits until the one entry of the storage has so many elements. */
void waitForElements(const QString &name, qint64 elements)
{
    const auto storage = AppData::utils::FindStorage(name);
    while (storage->getNumberOfChildren() == 0)
        QThread::usleep(100);
    const auto entry = storage->getChildren(false).constFirst();
    while (qint64(entry->getNumberOfChildren()) < elements)
        QThread::usleep(100);
}

/*! Ends this process with its input, while the main thread waits for something else. */
class EndWatch : public QThread
{
    void run() override
    {
        waitForEnd();
        _exit(0);
    }
};

void mirrorStorages(const QString &url, int count, qint64 every)
{
    QStringList names;
    for (int i = 0; i < count; ++i)
        names.append(QStringLiteral("mirror%1").arg(i));
    for (const QString &name : qAsConst(names))
        addStorage(name, url);
    for (const QString &name : qAsConst(names))
        waitForElements(name, 1); // there before the first push
    auto *const watch = new EndWatch;
    watch->start();
    tell(0);
    for (qint64 elements = 1 + every;; elements += every) {
        for (const QString &name : qAsConst(names))
            waitForElements(name, elements);
        tell(monotonicTime());
    }
}

void loadStorage(const QString &url, qint64 elements)
{
    tell(0);
    const qint64 begin = monotonicTime();
    addStorage(QStringLiteral("mirror"), url);
    waitForElements(QStringLiteral("mirror"), elements);
    tell(monotonicTime() - begin);
    waitForEnd();
}

/*! Tells of itself when it is connected. */
std::unique_ptr<QWebSocket> openSocket(const QString &url)
{
    auto socket = std::make_unique<QWebSocket>();
    QObject::connect(socket.get(), &QWebSocket::connected, [found = socket.get()] {
        Notification::utils::SendWithoutDelay(*found);
        tell(0);
    });
    socket->open(QUrl(url));
    return socket;
}

void runUntilEnd()
{
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [] { QCoreApplication::quit(); });
    QCoreApplication::exec();
}

void echo(const QString &url)
{
    const auto socket = openSocket(url);
    QObject::connect(socket.get(), &QWebSocket::textMessageReceived,
                     [&socket](const QString &text) { socket->sendTextMessage(text); });
    runUntilEnd();
}

/*! As much as a mirror says about a change, without a tree. */
void takeValues(const QString &url, qint64 every)
{
    Counter counter(every);
    const auto socket = openSocket(url);
    QObject::connect(socket.get(), &QWebSocket::textMessageReceived, [&](const QString &text) {
        const auto message = ParseRemoteMessage(text);
        if (!DeserializeValue(message.data).isValid())
            qFatal("a frame has no value");
        if (message.command == RemoteCommand::Update)
            socket->sendTextMessage(RemoteFrames::ofValue(RemoteCommand::Rewrite, message.path, QVariant()));
        else
            counter.count();
    });
    runUntilEnd();
}

void takeElements(const QString &url, int count, qint64 every)
{
    Counter counter(every * count);
    std::vector<std::unique_ptr<QWebSocket>> sockets;
    for (int i = 0; i < count; ++i) {
        sockets.push_back(openSocket(url));
        QObject::connect(sockets.back().get(), &QWebSocket::binaryMessageReceived,
                         [&counter](const QByteArray &frame) {
                             if (RemoteFrames::readElement(frame))
                                 counter.count();
                         });
    }
    runUntilEnd();
}

void replicate(const QString &url, qint64 every)
{
    Counter counter(every);
    QRemoteObjectNode node;
    node.connectToNode(QUrl(url));
    const std::unique_ptr<QRemoteObjectDynamicReplica> replica(node.acquireDynamic(QStringLiteral("value")));
    if (!replica->waitForSource())
        qFatal("the remote object is not there");
    RemoteValue received;
    QObject::connect(replica.get(), SIGNAL(valueChanged(double)), &received, SLOT(setValue(double)));
    QObject::connect(&received, &RemoteValue::valueChanged, [&counter] { counter.count(); });
    tell(0);
    runUntilEnd();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    initializeLibrary();
    // Every change is worth a line, and the lines would be what is measured.
    Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::warning);
    const QString role = application.arguments().value(1);
    const QString url = application.arguments().value(2);
    const qint64 first = application.arguments().value(3).toLongLong();
    const qint64 second = application.arguments().value(4).toLongLong();
    if (role == QLatin1String("mirror"))
        mirror(url, first);
    else if (role == QLatin1String("load"))
        load(url);
    else if (role == QLatin1String("storages"))
        mirrorStorages(url, int(first), second);
    else if (role == QLatin1String("loadStorage"))
        loadStorage(url, first);
    else if (role == QLatin1String("echo"))
        echo(url);
    else if (role == QLatin1String("values"))
        takeValues(url, first);
    else if (role == QLatin1String("elements"))
        takeElements(url, int(first), second);
    else if (role == QLatin1String("replica"))
        replicate(url, first);
    uninitializeLibrary();
    return 0;
}
