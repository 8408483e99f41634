#include "ConnectedStorages.h"
#include "SqlStorage.h"

#include <QCoreApplication>
#include <QMutexLocker>
#include <QSet>
#include <QSqlDatabase>

namespace Tessellum::Plugins::Sql::ConnectedStorages {

namespace {

struct Connected
{
    QMutex mutex;
    QSet<SqlStorage *> storages;
    bool hasRoutine = false;
    bool over = false;
};

// Outlives every static object: storages are removed by whoever dies last.
Connected &All()
{
    static auto *const all = new Connected;
    return *all;
}

void DisconnectAll()
{
    const QMutexLocker lock(&All().mutex);
    All().hasRoutine = false;
    for (SqlStorage *storage : qAsConst(All().storages))
        storage->disconnectStorage();
}

// Without an application object Qt's list of connections goes with the other static objects.
class EndOfProcess
{
public:
    EndOfProcess() = default;
    Q_DISABLE_COPY_MOVE(EndOfProcess)
    ~EndOfProcess()
    {
        DisconnectAll();
        const QMutexLocker lock(&All().mutex);
        All().over = true;
    }
};

} // namespace

bool Add(SqlStorage *storage)
{
    // Both after Qt has made its own, hence called before those.
    QSqlDatabase::drivers();
    QSqlDatabase::contains(QString());
    static const EndOfProcess endOfProcess;
    const QMutexLocker lock(&All().mutex);
    if (!All().hasRoutine)
        qAddPostRoutine(DisconnectAll);
    All().hasRoutine = true;
    if (!All().over)
        All().storages.insert(storage);
    return !All().over;
}

void Remove(SqlStorage *storage)
{
    const QMutexLocker lock(&All().mutex);
    All().storages.remove(storage);
}

} // namespace Tessellum::Plugins::Sql::ConnectedStorages
