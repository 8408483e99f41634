#pragma once

#include <core/CoreInterface.h>
#include <shared/localization/CoreLocalizationInterface.h>
#include <shared/TessellumExport.h>

#include <QString>

#include <memory>

/*!
 * The way into the library. An application calls initializeLibrary() once, works with getCoreInterface(), and
 * ends with uninitializeLibrary(); it may start again after that. Any thread may call any of these; nothing
 * throws.
 */
extern "C" {

/*!
 * Starts the library. 0: started. 1: it runs already or is shutting down, nothing was done. -1: the start
 * failed, as the log says, and may be tried again.
 */
TESSELLUM_EXPORT int initializeLibrary();

/*!
 * Shuts down: waits for running handlers and tasks, takes the trees down. 1: shut down. 0: was not started.
 * 2: another thread is shutting down, or the caller is a handler or a task, or a log sink within a start or
 * a shut-down, which this one would wait for; nothing was done.
 */
TESSELLUM_EXPORT int uninitializeLibrary();

/*! The main interface, owned by the library; null unless the library runs. */
TESSELLUM_EXPORT Tessellum::Core::CoreInterface *getCoreInterface();

/*! Gives the locale registry; false, with \a out untouched, unless the library runs. */
TESSELLUM_EXPORT bool
getLocalizationInterface(std::weak_ptr<Tessellum::Core::CoreLocalizationInterface> &out);

/*! The constant text that identifies this line of the library to its plug-ins; false for a null \a out. */
TESSELLUM_EXPORT bool getLibraryHash(QString *out);

/*!
 * Reads the version record that the library published at its start: \a value gets the text of the entry \a
 * index (from 0), \a identifier its name, \a count how many entries there are; each may be null. Outside of
 * the entries, and while the library does not run, the texts are empty. False if both \a value and \a count
 * are null.
 */
TESSELLUM_EXPORT bool getVersionInformation(const int &index, QString *value, QString *identifier,
                                            unsigned int *count);

/*!
 * Loads the plug-ins of the folder \a path; they stay in the process, also over a stop. 0: the path is new,
 * and its plug-ins are loaded (or there are none). -1: the path was given before, or another thread is at it,
 * and nothing was done. -2: it is empty. A plug-in that cannot be loaded, or throws, is passed over. The
 * library need not run.
 */
TESSELLUM_EXPORT int addPluginSearchPath(const QString &path);
}
