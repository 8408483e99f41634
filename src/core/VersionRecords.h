#pragma once

#include <shared/foundation/VersionInformation.h>

#include <QList>

namespace Tessellum::Core {

using VersionInformationList = QList<Shared::VersionInformation::VersionInformation>;

/*! The record of the library itself, whose file is \a libraryFile (may be empty). */
Shared::VersionInformation::VersionInformation LibraryVersionRecord(const QString &libraryFile);

/*!
 * Publishes each record as a read-only backend at "modules.information" of the internal settings, and in the
 * list "names.modules". Records without an identifier, and whose identifier is published already, are
 * skipped; while the repository is stopped all are. Always true. Any thread may call; no lock may be held,
 * since each record is waited for.
 */
bool registerVersionInformation(const VersionInformationList &records);

/*! Keeps the records of plug-ins, which stay loaded, for all later starts. Any thread may call. */
void rememberPluginRecords(const VersionInformationList &records);
/*! What was kept so far. Any thread may call. */
VersionInformationList rememberedPluginRecords();

} // namespace Tessellum::Core
