#include "SqliteDialect.h"
#include "SqlStorage.h"

#include <appdata/storages/StorageFactory.h>
#include <appdata/storages/StorageTypes.h>

namespace Shared::VersionInformation {
class VersionInformation;
}

namespace {

using Tessellum::AppData::Storages::StorageFactory;

class SqliteStorage : public Tessellum::Plugins::Sql::SqlStorage
{
public:
    explicit SqliteStorage(const StorageCreateData &data)
        : SqlStorage(data, Tessellum::AppData::Storages::StorageTypes::Sqlite(),
                     std::make_unique<Tessellum::Plugins::Sql::SqliteDialect>())
    { }
};

} // namespace

/*! The one function that the library looks for; returns the number of keys entered. */
extern "C" Q_DECL_EXPORT int
registerStorageInstance(QList<Shared::VersionInformation::VersionInformation> *versions,
                        StorageFactory *factory, const QString &libraryHash)
{
    Q_UNUSED(versions)
    Q_UNUSED(libraryHash)
    return Tessellum::AppData::Storages::RegisterStorage<SqliteStorage>(
        *factory, Tessellum::AppData::Storages::StorageTypes::Sqlite());
}
