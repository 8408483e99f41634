#pragma once

#include <shared/logging/LogFilterRepository.h>
#include <shared/logging/LogSinkRepository.h>

#include <QList>
#include <QString>

namespace Shared::Logging::utils {

/*! Asks the filters until one returns true. One that throws has said false. */
bool AnyVote(const QList<LogFilter> &filters, const LogMessageContext &context, const LogLevel &level,
             const QString &message, const QString &line);

/*!
 * Calls every sink, whatever the others throw: messages also come from destructors, which nothing may leave.
 */
void CallSinks(const QList<LogSink> &sinks, const LogMessageContext &context, const LogLevel &level,
               const QString &message);

} // namespace Shared::Logging::utils
