// One end of a remote configuration in a process of its own, busy until it is killed or its standard input
// ends:
//   RemotePeer server PORT ROUND   serves "plant"; "plant.echo" follows "plant.speed", "plant.count" never
//   rests RemotePeer client URL          mirrors as "panel" and never stops to write "panel.speed"

#include <core/Library.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTimer>
#include <QUrl>

#include <cstdio>
#include <support/Literals.h>
#include <unistd.h>

using namespace Tessellum;
using Notification::CreatePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

using Repository = std::shared_ptr<AppConfig::Interfaces::RepositoryInterface>;

void write(const QString &path, const QVariant &value)
{
    if (const Repository repository = getCoreInterface()->getAppConfigRepository())
        repository->getManipulationInterface()->updateAttribute(path, value, UpdatePoint::All);
}

bool add(const Repository &repository, const QString &type, const QString &name, const QString &url)
{
    return repository->getBackendInterface()->createBackend(type, name, {QUrl(url), QString(), 3},
                                                            CreatePoint::Done);
}

/*! The port once the server listens, 0 if it does not. */
int portOf(const Repository &repository)
{
    QVariant port;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 60000
           && !repository->getQueryInterface()->getValue("appconfig.backends.remote_server_ports.net"_s, port,
                                                         0))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return port.toInt();
}

bool serve(const Repository &repository, const QString &port, const QString &round)
{
    const auto manipulation = repository->getManipulationInterface();
    for (const char *name : {"plant", "plant.speed", "plant.echo", "plant.count"})
        manipulation->createAttribute(QString::fromLatin1(name), 0, CreatePoint::Done, 3);
    for (int i = 0; i < 100; ++i)
        manipulation->createAttribute("plant.list.a%1"_s.arg(i), i, CreatePoint::Done, 3);
    manipulation->createAttribute("plant.only"_s + round, round.toInt(), CreatePoint::Done, 3);
    static const auto handle = repository->getNotificationInterface()->registerUpdateHandler(
        "plant.speed"_s,
        [](const QString &, const UpdatePoint &, const UpdateResult &, const QVariant &,
           const QVariant &value) { write("plant.echo"_s, value); },
        UpdatePoint::Done);
    const int bound
        = add(repository, "remote-backend-server"_s, "net"_s, "ws://any:%1?bind=127.0.0.1"_s.arg(port))
        ? portOf(repository)
        : 0;
    std::printf("%d\n", bound);
    return bound > 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 3 || initializeLibrary() != 0)
        return 2;
    const bool isServer = arguments.at(1) == "server"_s;
    const Repository repository = getCoreInterface()->getAppConfigRepository();
    const bool stands = isServer ? serve(repository, arguments.at(2), arguments.value(3))
                                 : add(repository, "remote-backend-client"_s, "panel"_s, arguments.at(2));
    std::fflush(stdout);
    QSocketNotifier end(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&end, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    QTimer work;
    int number = 0;
    QObject::connect(&work, &QTimer::timeout,
                     [&] { write(isServer ? "plant.count"_s : "panel.speed"_s, ++number); });
    work.start(10);
    const int result = stands ? QCoreApplication::exec() : 1;
    uninitializeLibrary();
    return result;
}
