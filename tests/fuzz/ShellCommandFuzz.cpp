#include "../../tools/tessellum/ShellCommand.h"

#include <QtGlobal>

#include <cstdint>
#include <cstdlib>

// Whatever a line holds: it is read to its end or refused, and what is accepted as JSON reads back the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace Tessellum::Tool;
    const ShellCommand command
        = ParseShellCommand(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    if (!command.error.isEmpty() && command.error.size() > 100)
        std::abort();
    for (const ShellArgument &argument : command.arguments) {
        if (!argument.value.isUndefined() && ParseJsonValue(JsonText(argument.value)) != argument.value)
            std::abort();
    }
    return 0;
}
