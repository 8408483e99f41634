#pragma once

#include "ValueSource.h"

#include <QTextStream>

namespace Tessellum::Tool {

/*!
 * The commands on the values of a JSON file or a running process, each with a start and a stop of the library
 * around it. Paths and patterns are those of the source's own values. All throw ToolError.
 */

/*! Prints the matching nodes, one a line: "path = value", or the path alone where there is no value. */
void PrintTree(const ValueSource &source, const QString &pattern, QTextStream &out);
/*! Prints the value at \a path as JSON. */
void PrintValue(const ValueSource &source, const QString &path, QTextStream &out);
/*! Sets the value at \a path. In a file it is created if it is missing, as the file is, and saved; in a
 * process it must be there, and this returns when the process has taken it. */
void SetValue(const ValueSource &source, const QString &path, const QString &json);
/*!
 * Writes what happens to the matching values of a process, one object a line, until \a count of them (0: no
 * limit) or until the program is told to end. Fails the command if the connection is lost.
 */
void WatchValues(const ValueSource &source, const QString &pattern, int count);

} // namespace Tessellum::Tool
