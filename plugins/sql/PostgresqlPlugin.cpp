#include "PostgresqlDialect.h"
#include "SqlStorage.h"

#include <appdata/storages/StoragePlugin.h>
#include <appdata/storages/StorageTypes.h>

using Shared::VersionInformation::VersionInformation;

namespace {

class PostgresqlStorage : public Tessellum::Plugins::Sql::SqlStorage
{
public:
    explicit PostgresqlStorage(const StorageCreateData &data)
        : SqlStorage(data, Tessellum::AppData::Storages::StorageTypes::PostgreSql(),
                     std::make_unique<Tessellum::Plugins::Sql::PostgresqlDialect>())
    { }
};

} // namespace

int registerStorageInstance(QList<VersionInformation> *versions,
                            Tessellum::AppData::Storages::StorageFactory *factory, const QString &)
{
    versions->append(VersionInformation(QStringLiteral("PostgresqlStorage"),
                                        QStringLiteral(":/PostgresqlStorage.vft"), QString()));
    return Tessellum::AppData::Storages::RegisterStorage<PostgresqlStorage>(
        *factory, Tessellum::AppData::Storages::StorageTypes::PostgreSql());
}
