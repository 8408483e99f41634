#pragma once

#include <shared/TessellumExport.h>

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QRegExp>
#include <QString>
#include <QTextStream>
#include <QVariant>

namespace Shared {

/*! The content of an INI file: section to key to value. What stands before the first section has the section
 * "". */
using IniContent = QHash<QString, QHash<QString, QVariant>>;

/*!
 * Reads INI lines to the end of the stream. "[name]" opens a section; any other line is divided at the first
 * place where the separator matches, and skipped where it does not match. All values are texts; one pair of
 * surrounding double quotes is taken off. There are no comments. Of a key that comes twice the first value
 * stays, also against what result held before, and a warning is logged.
 *
 * Any thread. The separator is copied, since a QRegExp must not be matched by two threads. False if the
 * stream has nothing to read from.
 */
TESSELLUM_EXPORT bool ParseIniFile(QTextStream &stream, IniContent &result, const QRegExp &separator);

/*! As above, for UTF-8. A file that is not open is opened and closed again; false if it cannot be read. */
TESSELLUM_EXPORT bool ParseIniFile(QFile &file, IniContent &result, const QRegExp &separator);

/*! As above, for UTF-8. */
TESSELLUM_EXPORT bool ParseIniFile(const QByteArray &bytes, IniContent &result, const QRegExp &separator);

} // namespace Shared
