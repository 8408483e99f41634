#include "SqliteDialect.h"
#include "SqlStorage.h"

#include <appdata/storages/StoragePlugin.h>
#include <appdata/storages/StorageTypes.h>

using Shared::VersionInformation::VersionInformation;

namespace {

class SqliteStorage : public Tessellum::Plugins::Sql::SqlStorage
{
public:
    explicit SqliteStorage(const StorageCreateData &data)
        : SqlStorage(data, Tessellum::AppData::Storages::StorageTypes::Sqlite(),
                     std::make_unique<Tessellum::Plugins::Sql::SqliteDialect>())
    { }
};

} // namespace

int registerStorageInstance(QList<VersionInformation> *versions,
                            Tessellum::AppData::Storages::StorageFactory *factory, const QString &)
{
    versions->append(VersionInformation(QStringLiteral("SqliteStorage"),
                                        QStringLiteral(":/SqliteStorage.vft"), QString()));
    return Tessellum::AppData::Storages::RegisterStorage<SqliteStorage>(
        *factory, Tessellum::AppData::Storages::StorageTypes::Sqlite());
}
