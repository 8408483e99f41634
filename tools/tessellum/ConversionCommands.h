#pragma once

#include <QStringList>
#include <QTextStream>

namespace Tessellum::Tool {

/*!
 * Runs "format", "parse", "duration" and "validate", with the arguments behind the command. False if these
 * are no arguments of such a command; fails the command for what cannot be read.
 */
bool RunConversionCommand(const QString &command, const QStringList &arguments, QTextStream &out);

} // namespace Tessellum::Tool
