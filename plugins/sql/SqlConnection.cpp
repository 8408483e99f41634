#include "SqlConnection.h"
#include "SqlDialect.h"

#include <QSqlError>
#include <QUuid>

#include <algorithm>

namespace Tessellum::Plugins::Sql {

namespace {

std::unique_ptr<AnswerWatch> MakeWatch(int seconds)
{
    return seconds > 0 ? std::make_unique<AnswerWatch>(std::chrono::seconds(seconds)) : nullptr;
}

} // namespace

SqlConnection::SqlConnection(const SqlDialect &sqlDialect, const QVariant &mediumLocation)
    : dialect(sqlDialect)
    , location(mediumLocation)
    , name(QStringLiteral("tessellum-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
    , watch(MakeWatch(sqlDialect.patience(mediumLocation)))
{ }

SqlConnection::~SqlConnection()
{
    close();
}

bool SqlConnection::open()
{
    close();
    error = MediumError();
    QSqlDatabase connection = QSqlDatabase::addDatabase(dialect.driver(), name);
    if (!connection.isValid())
        return fail(QStringLiteral("the driver %1 of Qt is missing").arg(dialect.driver()));
    QString reason;
    if (!dialect.configure(connection, location, reason))
        return fail(reason);
    if (!connection.open())
        return failWith(connection.lastError());
    if (watch)
        watch->setSocket(dialect.socket(connection));
    opened = true;
    return true;
}

void SqlConnection::close()
{
    const Waiting waiting(*this); // the server hears of each statement that goes
    statements.clear();
    opened = false;
    if (QSqlDatabase::contains(name)) {
        QSqlDatabase::database(name, false).close();
        QSqlDatabase::removeDatabase(name);
    }
    if (watch)
        watch->setSocket(-1);
}

QSqlQuery *SqlConnection::run(const QString &statement, const QVariant *values, int count)
{
    error = MediumError();
    auto query = statements.find(statement);
    if (query == statements.end()) {
        if (!database().isOpen()) {
            fail(QStringLiteral("the connection is lost"));
            return nullptr;
        }
        QSqlQuery fresh(database());
        fresh.setForwardOnly(true);
        if (!fresh.prepare(statement)) {
            failWith(fresh.lastError());
            return nullptr;
        }
        query = statements.insert(statement, fresh);
    }
    for (int position = 0; position < count; ++position)
        query->bindValue(position, values[position]);
    if (query->exec()) {
        answered();
        return &query.value();
    }
    failWith(query->lastError());
    query->finish();
    return nullptr;
}

bool SqlConnection::finish(QSqlQuery *query)
{
    if (!query)
        return false;
    const QSqlError queryError = query->lastError();
    query->finish();
    return !queryError.isValid() || failWith(queryError);
}

int SqlConnection::runOnce(const QString &statement)
{
    error = MediumError();
    if (!database().isOpen()) {
        fail(QStringLiteral("the connection is lost"));
        return -1;
    }
    QSqlQuery query(database());
    query.setForwardOnly(true);
    if (query.exec(statement)) {
        answered();
        return std::max(0, query.numRowsAffected());
    }
    failWith(query.lastError());
    return -1;
}

QVariant SqlConnection::value(const QString &statement, std::initializer_list<QVariant> values)
{
    QVariant result;
    QSqlQuery *query = run(statement, values);
    if (query && query->next())
        result = query->value(0);
    return finish(query) ? result : QVariant();
}

bool SqlConnection::begin()
{
    return runOnce(dialect.beginStatement()) != -1;
}

bool SqlConnection::commit()
{
    return runOnce(QStringLiteral("COMMIT")) != -1;
}

void SqlConnection::rollback()
{
    for (QSqlQuery &query : statements)
        query.finish();
    const MediumError cause = error;
    runOnce(QStringLiteral("ROLLBACK"));
    error = cause;
}

QSqlDatabase SqlConnection::database() const
{
    return QSqlDatabase::database(name, false);
}

bool SqlConnection::fail(const QString &text, bool isOutage)
{
    error = {text, isOutage};
    return false;
}

void SqlConnection::answered()
{
    if (watch)
        watch->renew();
}

bool SqlConnection::failWith(const QSqlError &sqlError)
{
    QString text = sqlError.databaseText().simplified();
    if (text.isEmpty())
        text = sqlError.text().simplified();
    if (text.isEmpty())
        text = QStringLiteral("unknown error");
    return fail(text, dialect.isOutage(sqlError));
}

} // namespace Tessellum::Plugins::Sql
