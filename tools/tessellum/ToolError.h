#pragma once

#include <QString>
#include <QVariantMap>

namespace Tessellum::Tool {

enum ExitCode : int { Success = 0, OperationFailed = 1, WrongUsage = 2 };

/*! What ends a command; caught where its result is written. */
struct ToolError
{
    ExitCode code;
    QString text;
    QVariantMap details = {}; ///< what goes beside the text into a line of JSON
};

/*! Ends the command as failed. */
[[noreturn]] inline void Fail(const QString &text, const QVariantMap &details = {})
{
    throw ToolError{OperationFailed, text, details};
}

/*! Ends the command as not understood. */
[[noreturn]] inline void FailUsage(const QString &text)
{
    throw ToolError{WrongUsage, text};
}

} // namespace Tessellum::Tool
