#pragma once

#include <appdata/interfaces/StorageManipulationInterface.h>

namespace Tessellum::AppData::Storages {

class Storage;

/*! Attaches and detaches entries of a storage, which owns it. Waits with no lock held. */
class TESSELLUM_EXPORT StorageManipulationProvider : public Interfaces::StorageManipulationInterface
{
public:
    explicit StorageManipulationProvider(Storage *changedStorage)
        : storage(changedStorage)
    { }

    bool loadDataEntry(const QString &uuid, const LoadDataHint &hint) override;
    /*! Its references in the pair, its link and the attribute of its status go with the entry; whoever still
     * holds it can no longer add to it. */
    bool unloadDataEntry(const QString &uuid) override;

private:
    Storage *const storage;
};

} // namespace Tessellum::AppData::Storages
