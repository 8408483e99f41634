#pragma once

#include <appdata/data/entries/EntryCategory.h>
#include <appdata/DataTypes.h>
#include <shared/TessellumExport.h>

#include <QString>

/*! The texts of the kinds of recorded data. Threads: any. A number or a text without a counterpart leaves a
 * WARNING. */
namespace Tessellum::AppData {

/*! "type" or "type:detail" in lower case; empty for a type that does not exist. */
TESSELLUM_EXPORT QString ConvertDataEntryCategoryToString(const Data::Entries::EntryCategory &category);
/*! The category of "type" or "type:detail" in any case. \a ok (may be null) tells whether the type exists;
 * the detail is there in any case. */
TESSELLUM_EXPORT Data::Entries::EntryCategory ParseDataEntryCategoryFromString(const QString &text,
                                                                               bool *ok = nullptr);
/*! Empty for a status that does not exist. */
TESSELLUM_EXPORT QString ConvertDataEntryLoadStatusToString(const LoadStatus &status);
/*! Empty for a type that does not exist. */
TESSELLUM_EXPORT QString ConvertPersistenceTypeToString(const PersistenceType &type);
/*! "persistent" or "volatile" in any case; Unknown for any other text, "unknown" included. */
TESSELLUM_EXPORT PersistenceType ParseStringToPersistenceType(const QString &text);

} // namespace Tessellum::AppData
