#pragma once

#include <shared/logging/LogLevel.h>
#include <shared/logging/LogMessageContext.h>

#include <QString>

namespace Shared::Logging::utils {

/*! "[NAME LEVEL] message", where the name is the context's category or else the identification. */
QString FormatLine(const LogMessageContext &context, const LogLevel &level, const QString &message,
                   const QString &identification);

/*!
 * What a line gets behind it when its context asks for a stack trace, otherwise an empty text.
 * To be called with no lock held: the walk may need the program loader.
 */
QString StackTraceText(const LogMessageContext &context);

} // namespace Shared::Logging::utils
