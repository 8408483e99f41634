// Input: a schema, and in the last line a document. Either may be anything.
#include <shared/foundation/RapidJsonValidator.h>
#include <shared/logging/LogHandler.h>

#include <fuzz/FuzzInput.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    const QByteArray input(reinterpret_cast<const char *>(data), int(size));
    const int last = input.lastIndexOf('\n');
    Shared::JsonValidation::RapidJsonValidator validator;
    const bool valid = validator.validate(input.mid(last + 1), input.left(qMax(last, 0)));
    Fuzz::Require(valid == validator.getErrors().isEmpty());
    return 0;
}
