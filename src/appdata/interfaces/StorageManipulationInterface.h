#pragma once

#include <appdata/DataTypes.h>
#include <shared/TessellumExport.h>

#include <QString>

namespace Tessellum::AppData::Interfaces {

/*! Attaches entries of a storage to the tree and takes them off it. Threads: any; no lock may be held. */
class TESSELLUM_EXPORT StorageManipulationInterface
{
public:
    /*! Attaches an entry and waits for that; true also if it is attached. */
    virtual bool loadDataEntry(const QString &uuid, const LoadDataHint &hint) = 0;
    /*! Takes an entry off the tree and leaves the medium alone; false if it is not attached. */
    virtual bool unloadDataEntry(const QString &uuid) = 0;
    virtual ~StorageManipulationInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
