// The parameters of a time range: what is refused changes nothing, and a range that is taken can be asked.
#include "FuzzInput.h"

#include <appdata/memory_strategy/TimeRangeProvider.h>
#include <shared/logging/LogHandler.h>

#include <sanitizer/lsan_interface.h>

using Tessellum::AppData::MemoryStrategies::TimeRangeProvider;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    // Qt's parser loses the earlier value of a key that stands twice in an object.
    const __lsan::ScopedDisabler untracked;
    constexpr quint64 first = 1000;
    constexpr quint64 last = 5000;
    TimeRangeProvider provider([](quint64 &from, quint64 &to) {
        from = first;
        to = last;
        return true;
    });
    Fuzz::Require(provider.configure(QStringLiteral(R"({"from":{"value":7},"to":{"value":9}})")));
    const bool taken
        = provider.configure(QString::fromUtf8(reinterpret_cast<const char *>(bytes), int(size)));
    provider.setDirty();
    provider.recompute();
    const auto range = provider.getRange();
    if (!taken)
        Fuzz::Require(range.fromResolved == 7 && range.toResolved == 9 && !range.contains(6)
                      && !range.contains(10));
    // Ends that are both set and not 0 stand in their order, so the range holds them.
    if (range.rangeType == TimeRangeProvider::RangeType::Both && range.fromResolved != 0
        && range.toResolved != 0)
        Fuzz::Require(range.contains(range.fromResolved) && range.contains(range.toResolved));
    return 0;
}
