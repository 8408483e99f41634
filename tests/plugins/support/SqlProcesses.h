#pragma once

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <csignal>

namespace TestSupport {

// One column of what a connection of the test's own reads, or does, with one statement after the other.
inline QVariantList RunSql(const QString &driver, const QString &host, const QString &name,
                           const QStringList &statements)
{
    QVariantList values;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(driver, "test");
        database.setHostName(host);
        database.setDatabaseName(name);
        database.setUserName("recorder");
        database.open();
        QSqlQuery query(database);
        for (const QString &statement : statements) {
            if (!query.exec(statement))
                qWarning("%s", qPrintable(query.lastError().text()));
        }
        while (query.next())
            values.append(query.value(0));
    }
    QSqlDatabase::removeDatabase("test");
    return values;
}

// Kills a StorageWriter once it has said so many bytes; all that it said.
inline QByteArray KillWriter(QProcess &writer, int bytes)
{
    QByteArray said;
    while (said.size() < bytes && writer.waitForReadyRead(60000))
        said += writer.readAllStandardOutput();
    kill(pid_t(writer.processId()), SIGKILL);
    writer.waitForFinished(60000);
    return said + writer.readAllStandardOutput();
}

} // namespace TestSupport
