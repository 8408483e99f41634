#pragma once

#include <shared/TessellumExport.h>

#include <QStandardPaths>
#include <QString>

namespace Shared {

/*! The user's folder of documents. All of these need not exist, and are empty where there is none. Any
 * thread. */
TESSELLUM_EXPORT QString GetDocumentsDirectory();
/*! Where this application keeps what its user has set. */
TESSELLUM_EXPORT QString GetConfigurationDirectory();
/*! Where this application keeps its data for its user. */
TESSELLUM_EXPORT QString GetDataDirectory();
/*! The documents that users share; the user's own on a system that knows no such folder. */
TESSELLUM_EXPORT QString GetPublicDocumentsDirectory();
/*! Where files of a kind are written to. */
TESSELLUM_EXPORT QString GetStandardLocationForType(const QStandardPaths::StandardLocation &type);

} // namespace Shared
