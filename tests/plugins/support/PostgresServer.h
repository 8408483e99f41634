#pragma once

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>

#include <csignal>
#include <pwd.h>
#include <unistd.h>

namespace TestSupport {

// A PostgreSQL server of the test's own, in a temporary folder and reached by a socket alone. It ends with
// the object, or with the test.
class PostgresServer
{
public:
    PostgresServer() = default;
    ~PostgresServer() { stop(); }

    // Makes the folder at the first start. Ends when the server takes connections; true also where it runs.
    bool start()
    {
        if (server.state() != QProcess::NotRunning)
            return true;
        if (!directory.isValid() || (!initialized && !initialize()))
            return false;
        server.setWorkingDirectory(folder());
        server.setStandardOutputFile(folder() + "/log");
        server.setProcessChannelMode(QProcess::MergedChannels);
        server.start("setpriv",
                     AsServersUser({Program("postgres"), "-D", folder() + "/data", "-k", folder(), "-c",
                                    "listen_addresses="}));
        const QDeadlineTimer deadline(Patience);
        while (!isReady()) {
            if (deadline.hasExpired() || server.state() == QProcess::NotRunning)
                return false;
            QThread::msleep(20);
        }
        return true;
    }
    // \a hard: as a crash of the machine would.
    void stop(bool hard = false)
    {
        if (server.state() == QProcess::NotRunning)
            return;
        // Without waiting for the clients to leave.
        kill(pid_t(server.processId()), hard ? SIGQUIT : SIGINT);
        if (!server.waitForFinished(Patience))
            server.kill();
        server.waitForFinished();
    }
    // Lets the server hang, or go on.
    void freeze(bool hang = true)
    {
        const QString process = QString::number(server.processId());
        QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(process));
        children.open(QIODevice::ReadOnly);
        const QList<QByteArray> all = children.readAll().simplified().split(' ') << process.toLatin1();
        for (const QByteArray &each : all)
            kill(each.toInt(), hang ? SIGSTOP : SIGCONT);
    }
    QUrl url(const QString &schema, const QString &more = QString()) const
    {
        return QUrl(QStringLiteral("postgresql://recorder:secret@/postgres?host=%1&schema=%2%3")
                        .arg(folder(), schema, more));
    }
    QString folder() const { return directory.path(); }

private:
    static constexpr int Patience = 60000; // milliseconds

    static QString Program(const QString &name)
    {
        const QDir versions("/usr/lib/postgresql");
        const QStringList found = versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        return found.isEmpty() ? name : versions.filePath(found.last() + "/bin/" + name);
    }
    // The server refuses to run as root. Whatever becomes of the test, its server ends too.
    static QStringList AsServersUser(const QStringList &command)
    {
        QStringList arguments{"--pdeathsig", "INT"};
        if (geteuid() == 0)
            arguments += QStringList{"--reuid=postgres", "--regid=postgres", "--clear-groups"};
        return arguments + command;
    }
    bool initialize()
    {
        if (geteuid() == 0) {
            const passwd *user = getpwnam("postgres");
            if (!user || chown(QFile::encodeName(folder()).constData(), user->pw_uid, user->pw_gid) != 0)
                return false;
        }
        QProcess init;
        init.setWorkingDirectory(folder());
        init.start("setpriv",
                   AsServersUser({Program("initdb"), "-D", folder() + "/data", "-U", "recorder",
                                  "--auth=trust", "-E", "UTF8", "--no-locale", "--no-sync"}));
        initialized = init.waitForFinished(Patience) && init.exitCode() == 0;
        if (!initialized)
            qWarning("%s", init.readAllStandardError().constData());
        return initialized;
    }
    bool isReady() const
    {
        return QProcess::execute(Program("pg_isready"), {"-q", "-h", folder(), "-d", "postgres"}) == 0;
    }

    QTemporaryDir directory;
    QProcess server;
    bool initialized = false;
};

} // namespace TestSupport
