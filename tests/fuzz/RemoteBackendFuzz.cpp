// Both layers of the configuration protocol: a frame, and the bytes of a value. What is read can be written
// again, and is then the same.
#include "FuzzInput.h"

#include <appconfig/backends/utils/RemoteMessage.h>
#include <shared/logging/LogHandler.h>

using namespace Tessellum::AppConfig::Backends::utils;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    const QByteArray input(reinterpret_cast<const char *>(bytes), int(size));
    const QVariant value = DeserializeValue(input);
    const QByteArray again = SerializeValue(value);
    Fuzz::Require(DeserializeValue(again).userType() == value.userType());
    Fuzz::Require(DecodeSerialized(EncodeSerialized(again)) == again);

    const QString frame = QString::fromUtf8(input);
    const RemoteMessage message = ParseRemoteMessage(frame);
    if (message.isValid())
        Fuzz::Require(ParseRemoteMessage(ComposeRemoteMessage(message)).data == message.data);
    const RemoteSubtree subtree = ParseRemoteSubtree(frame);
    Fuzz::Require(ParseRemoteSubtree(ComposeRemoteSubtree(subtree)).size() == subtree.size());
    return 0;
}
