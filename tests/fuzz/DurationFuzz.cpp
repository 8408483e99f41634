// A duration: what is read is neither negative nor anything else than what its seconds say.
#include "FuzzInput.h"

#include <shared/conversion/TimeStringConversion.h>
#include <shared/logging/LogHandler.h>

using Shared::Conversion::TimeStringConversion;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(bytes), int(size));
    const TimeStringConversion duration(text);
    const double seconds = duration.toSeconds();
    Fuzz::Require(seconds >= 0 && (duration.isValid() || seconds == 0));
    Fuzz::Require(duration.toHours() == seconds / 3600);
    if (duration.isValid())
        Fuzz::Require(text.at(0).isDigit());
    return 0;
}
