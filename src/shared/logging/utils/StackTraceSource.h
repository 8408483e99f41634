#pragma once

#include <QStringList>

namespace Shared::Logging::utils {

/*! Yields the stack of the calling thread, one line a frame. */
using StackTraceFunction = QStringList (*)();

/*! Replaces the source of stack lines; null: there are none. Any thread. */
void SetStackTraceFunction(StackTraceFunction function);
QStringList StackTrace();

} // namespace Shared::Logging::utils
