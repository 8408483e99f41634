#pragma once

#include <QString>

namespace Shared::Foundation::Platform {

/*! Writes text to the standard error stream as UTF-8, as far as the stream takes it. Failures are silent. */
void WriteDebugOutput(const QString &text);

} // namespace Shared::Foundation::Platform
