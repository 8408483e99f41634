#include "JsonLines.h"
#include "ShellCommand.h"

#include <cstdio>

namespace Tessellum::Tool {

void JsonLines::write(const QVariantMap &object)
{
    const QByteArray line = JsonText(object).toUtf8().append('\n');
    const QMutexLocker locker(&mutex);
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

} // namespace Tessellum::Tool
