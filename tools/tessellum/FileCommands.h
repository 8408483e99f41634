#pragma once

#include <QString>
#include <QTextStream>

namespace Tessellum::Tool {

/*!
 * The commands on a JSON file, each with a start and a stop of the library around it. Paths and patterns are
 * those of the file's own values. All throw ToolError.
 */

/*! Prints the matching nodes, one a line: "path = value", or the path alone where there is no value. */
void PrintTree(const QString &file, const QString &pattern, QTextStream &out);
/*! Prints the value at \a path as JSON. */
void PrintValue(const QString &file, const QString &path, QTextStream &out);
/*! Sets the value at \a path, which is created if it is missing, and saves; a missing file is created. */
void SetValue(const QString &file, const QString &path, const QString &json);

} // namespace Tessellum::Tool
