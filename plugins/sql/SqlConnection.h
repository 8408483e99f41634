#pragma once

#include "AnswerWatch.h"
#include "Write.h"

#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <initializer_list>
#include <memory>

namespace Tessellum::Plugins::Sql {

class SqlDialect;

/*!
 * A connection to the medium and its prepared statements. It is opened, used and destroyed on one thread.
 *
 * A failure is a false or a null pointer; lastError() tells of it.
 */
class SqlConnection
{
public:
    SqlConnection(const SqlDialect &sqlDialect, const QVariant &mediumLocation);
    ~SqlConnection();
    SqlConnection(const SqlConnection &) = delete;
    SqlConnection &operator=(const SqlConnection &) = delete;

    /*! While it lives the server is expected to answer in time; what does not come fails. */
    class Waiting
    {
    public:
        explicit Waiting(const SqlConnection &connection)
            : watch(connection.watch.get())
        {
            if (watch)
                watch->begin();
        }
        ~Waiting()
        {
            if (watch)
                watch->end();
        }
        Waiting(const Waiting &) = delete;
        Waiting &operator=(const Waiting &) = delete;

    private:
        AnswerWatch *const watch;
    };

    bool open();
    void close();
    bool isOpen() const { return opened; }

    /*! Runs the statement, which is prepared at its first use; the query is valid until its next use. */
    QSqlQuery *run(const QString &statement, const QVariant *values, int count);
    QSqlQuery *run(const QString &statement, std::initializer_list<QVariant> values = {})
    {
        return run(statement, values.begin(), int(values.size()));
    }
    /*! Ends the reading of \a query: whether all rows came. Null, for one that failed at once, is false. */
    bool finish(QSqlQuery *query);
    /*! Runs a statement that comes but once. Returns the number of rows, or -1 for a failure. */
    int runOnce(const QString &statement);
    /*! The first column of the first row; not valid without a row or for a failure. */
    QVariant value(const QString &statement, std::initializer_list<QVariant> values = {});

    bool begin();
    bool commit();
    /*! lastError() still tells why. */
    void rollback();

    QSqlDatabase database() const;
    const MediumError &lastError() const { return error; }
    /*! Remembers an error that is none of the engine's. False, always. */
    bool fail(const QString &text, bool isOutage = true);

private:
    bool failWith(const QSqlError &sqlError);
    void answered();

    const SqlDialect &dialect;
    const QVariant location;
    const QString name;
    const std::unique_ptr<AnswerWatch> watch; // null where the medium is no server
    bool opened = false;
    QHash<QString, QSqlQuery> statements;
    MediumError error;
};

} // namespace Tessellum::Plugins::Sql
