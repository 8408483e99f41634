#pragma once

#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

namespace TestSupport {

// A PostgreSQL server of the test's own, in a temporary folder and reached by a socket alone. It ends with
// the object, or with the test.
class PostgresServer
{
public:
    PostgresServer() = default;
    ~PostgresServer() { stop(); }

    // Makes the folder at the first start. Ends when the server takes connections; true also where it runs.
    bool start();
    // \a hard: as a crash of the machine would.
    void stop(bool hard = false);
    // Lets the server hang, or go on.
    void freeze(bool hang = true);
    QUrl url(const QString &schema, const QString &more = QString()) const;
    QString folder() const { return directory.path(); }

private:
    bool initialize();
    bool isReady() const;

    QTemporaryDir directory;
    QProcess server;
    bool initialized = false;
};

} // namespace TestSupport
