// The text of an entry's category: what is taken has a text, which means the same category.
#include "FuzzInput.h"

#include <appdata/DataTypeStrings.h>
#include <shared/logging/LogHandler.h>

using namespace Tessellum::AppData;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    bool ok = false;
    const auto category = ParseDataEntryCategoryFromString(
        QString::fromUtf8(reinterpret_cast<const char *>(bytes), int(size)), &ok);
    Fuzz::Require(ok == (category.getType() != CategoryType::Unknown));
    if (!ok)
        return 0;
    const QString text = ConvertDataEntryCategoryToString(category);
    Fuzz::Require(ParseDataEntryCategoryFromString(text, &ok).getType() == category.getType() && ok);
    return 0;
}
