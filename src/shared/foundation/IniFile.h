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

/*!
 * Writes content as UTF-8, section by section in the order of their names, each value in double quotes. The
 * pattern of the separator stands between key and value, so it must be a plain text. Without replace the
 * content is laid over what the file holds already.
 *
 * The file is replaced as a whole or stays as it was; written directly is only what is no regular file, or
 * lies in a folder where no file can be made. A line break in a value becomes a blank, with a warning; a key
 * or a section with one is left out, with a warning, and the result is false. A key with the separator in it
 * reads back as a shorter one. False also if the file cannot be written, or is to be added to and cannot be
 * read. Any thread.
 */
TESSELLUM_EXPORT bool WriteIniFile(QFile &file, const IniContent &content, bool replace,
                                   const QRegExp &separator);

} // namespace Shared
