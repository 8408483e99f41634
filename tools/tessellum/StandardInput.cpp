#include "StandardInput.h"

#include <array>
#include <cerrno>
#include <unistd.h>

namespace Tessellum::Tool {

StandardInput::StandardInput(const StopSignals &stopSignals)
    : stop(stopSignals)
{ }

bool StandardInput::readLine(std::string &line)
{
    std::size_t searched = 0;
    std::size_t end = std::string::npos;
    while ((end = rest.find('\n', searched)) == std::string::npos && !hasEnded) {
        searched = rest.size();
        if (!stop.waitForInput(STDIN_FILENO))
            return false;
        std::array<char, 4096> bytes;
        const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count > 0)
            rest.append(bytes.data(), static_cast<std::size_t>(count));
        else
            hasEnded = count == 0 || (errno != EINTR && errno != EAGAIN);
    }
    if (end == std::string::npos && rest.empty())
        return false;
    line = rest.substr(0, end);
    rest.erase(0, end == std::string::npos ? end : end + 1);
    return true;
}

} // namespace Tessellum::Tool
