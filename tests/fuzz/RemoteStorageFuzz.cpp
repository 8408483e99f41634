// The frames and payloads of the storage protocol in both modes: what is read can be written and read again.
#include "FuzzInput.h"

#include <appdata/storages/remote/RemoteStorageCodec.h>
#include <shared/logging/LogHandler.h>

using namespace Tessellum::AppData::Storages::utils;

namespace {

void decode(const QVariant &payload, RemoteStorageMode mode)
{
    const auto element = DecodeElement(payload, mode);
    if (element)
        Fuzz::Require(DecodeElement(EncodeElement(*element, mode), mode).has_value());
    const auto info = DecodeEntryInfo(payload, mode);
    if (info)
        Fuzz::Require(DecodeEntryInfo(EncodeEntryInfo(*info, mode), mode).has_value());
    DecodePathMap(payload, mode);
    for (const auto &document : DecodeContents(payload, mode))
        DecodeEntryDocument(document.second, mode);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    const QByteArray input(reinterpret_cast<const char *>(bytes), int(size));
    const auto text = ParseRemoteStorageText(QString::fromUtf8(input));
    if (text.isValid())
        Fuzz::Require(ParseRemoteStorageText(ComposeRemoteStorageText(text)).data == text.data);
    const auto binary = ParseRemoteStorageBinary(input);
    if (binary.isValid())
        Fuzz::Require(ParseRemoteStorageBinary(ComposeRemoteStorageBinary(binary)).data == binary.data);
    decode(text.data, RemoteStorageMode::Text);
    decode(binary.data, RemoteStorageMode::Binary);
    decode(input, RemoteStorageMode::Text);
    decode(input, RemoteStorageMode::Binary);
    return 0;
}
