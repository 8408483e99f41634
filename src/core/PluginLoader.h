#pragma once

#include <core/VersionRecords.h>

#include <QStringList>

#include <functional>

namespace Tessellum::Core {

namespace utils {

/*! Calls the entry function of one plug-in, which may throw; the number of products that it tells of. */
using EntryCall = std::function<int(QFunctionPointer entry, VersionInformationList &records)>;

/*!
 * Loads the files of \a directory that match one of \a patterns and makes \a call for each that has the
 * function \a entryName; the others are passed over. The number of products told of. No lock may be held.
 */
qint64 LoadPluginFiles(const QString &directory, const QStringList &patterns, const char *entryName,
                       VersionInformationList &versions, const EntryCall &call);

} // namespace utils

/*!
 * Has the plug-ins of \a directory enter their products into \a factory and their records into \a versions.
 * What a plug-in entered before it threw stays. See utils::LoadPluginFiles().
 */
template <class Factory>
qint64 loadPluginFiles(const QString &directory, const QStringList &patterns, const char *entryName,
                       VersionInformationList &versions, Factory &factory, const QString &hash)
{
    using Entry = int (*)(VersionInformationList *, Factory *, const QString &);
    return utils::LoadPluginFiles(directory, patterns, entryName, versions,
                                  [&](QFunctionPointer entry, VersionInformationList &records) {
                                      return reinterpret_cast<Entry>(entry)(&records, &factory, hash);
                                  });
}

/*!
 * Loads the plug-ins of \a path, publishes their types and records. They stay loaded to the end of the
 * process. What registerVersionInformation() says; any thread may call, no lock may be held.
 */
bool loadPluginsFrom(const QString &path);

/*! What addPluginSearchPath() does. */
int AddPluginSearchPath(const QString &path);

} // namespace Tessellum::Core
