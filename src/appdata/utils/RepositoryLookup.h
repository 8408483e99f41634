#pragma once

#include <QStringList>

#include <memory>

namespace Tessellum::AppData::Storages {
class Storage;
}

namespace Tessellum::AppData::Data::Entries {
class Entry;
}

namespace Tessellum::AppData::utils {

/*! The storage of a name, by the configuration list "names.storages"; null for an unknown name. */
std::shared_ptr<Storages::Storage> FindStorage(const QString &name);
/*! All storages of the tree. */
QList<std::shared_ptr<Storages::Storage>> FindStorages();
/*! The names of the storages, in the order of their adding. */
QStringList StorageNames();
/*! The volatile entry, the pair or the entry of a storage that has the uuid, or that lies at it as a path
 * below the root; null where there is none. */
std::shared_ptr<Data::Entries::Entry> FindEntry(const QString &uuid);

} // namespace Tessellum::AppData::utils
