#pragma once

#include <shared/TessellumExport.h>

#include <QFuture>
#include <QString>
#include <QTemporaryFile>

#include <memory>

namespace Shared {

/*!
 * A file in the folder for temporary files that goes with the pointer. Its name begins with a text by which
 * CleanTemporaryFiles() knows it and ends with \a name, as far as a file may be called so. It is made when it
 * is opened. Any thread.
 */
TESSELLUM_EXPORT std::shared_ptr<QTemporaryFile> CreateTemporaryFile(const QString &name);

/*!
 * Removes what CreateTemporaryFile() made under this name, or all of it with an empty name, in processes that
 * did not live to remove it. Files that a process has open stay. Works on a thread of Qt's global pool. Any
 * thread.
 */
TESSELLUM_EXPORT QFuture<void> CleanTemporaryFiles(const QString &name);

} // namespace Shared
