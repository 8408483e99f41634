#pragma once

#include <shared/TessellumExport.h>

#include <QReadWriteLock>

namespace Tessellum::Core {

/*!
 * The locks of the repositories and of the plug-in paths, in their order: pluginPathLock() before the other
 * two, which are never held together. They live for the whole process.
 *
 * They are held to look something up, to copy a shared pointer and to start a task: never across a wait,
 * never while foreign code runs, and never entered twice by one thread (they do not recurse).
 */
TESSELLUM_EXPORT QReadWriteLock &appConfigLock();
/*! \copydoc appConfigLock() */
TESSELLUM_EXPORT QReadWriteLock &appDataLock();
/*! \copydoc appConfigLock() */
TESSELLUM_EXPORT QReadWriteLock &pluginPathLock();

} // namespace Tessellum::Core
