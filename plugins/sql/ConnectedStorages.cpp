#include "ConnectedStorages.h"
#include "SqlStorage.h"

#include <QMutexLocker>
#include <QSet>
#include <QSqlDatabase>

namespace Tessellum::Plugins::Sql::ConnectedStorages {

namespace {

struct Connected
{
    QMutex mutex;
    QSet<SqlStorage *> storages;
    bool over = false;
};

// Outlives every static object: storages are removed by whoever dies last.
Connected &All()
{
    static auto *const all = new Connected;
    return *all;
}

class EndOfProcess
{
public:
    EndOfProcess() = default;
    Q_DISABLE_COPY_MOVE(EndOfProcess)
    ~EndOfProcess()
    {
        const QMutexLocker lock(&All().mutex);
        All().over = true;
        for (SqlStorage *storage : qAsConst(All().storages))
            storage->disconnectStorage();
    }
};

} // namespace

bool Add(SqlStorage *storage)
{
    // Made after Qt's list of connections, hence ended before it.
    QSqlDatabase::contains(QString());
    static const EndOfProcess endOfProcess;
    const QMutexLocker lock(&All().mutex);
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
