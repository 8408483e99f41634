#pragma once

#include <appdata/interfaces/StorageManipulationInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle for attaching the entries of a storage. */
class WrappedStorageManipulationProvider : public Interfaces::StorageManipulationInterface,
                                           private WrappedFront<Interfaces::StorageManipulationInterface>
{
public:
    using WrappedFront::WrappedFront;

    bool loadDataEntry(const QString &uuid, const LoadDataHint &hint) override;
    bool unloadDataEntry(const QString &uuid) override;
};

} // namespace Tessellum::AppData::utils
