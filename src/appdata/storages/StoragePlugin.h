#pragma once

#include <appdata/storages/StorageFactory.h>
#include <shared/foundation/VersionInformation.h>

#include <QList>

extern "C" {

/*!
 * The function that a storage plug-in defines; addPluginSearchPath() calls it once, with no lock held. It
 * enters the plug-in's storages into \a factory, see RegisterStorage(), and its version record into \a
 * versions. \a libraryHash tells the line of the library (getLibraryHash()), and a plug-in may refuse others
 * by it. It gives the number of entered type keys. An exception is caught, and what the factory got until
 * then stays.
 */
Q_DECL_EXPORT int registerStorageInstance(QList<Shared::VersionInformation::VersionInformation> *versions,
                                          Tessellum::AppData::Storages::StorageFactory *factory,
                                          const QString &libraryHash);
}
