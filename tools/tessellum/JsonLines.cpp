#include "JsonLines.h"

#include <QJsonDocument>

#include <cstdio>

namespace Tessellum::Tool {

void JsonLines::write(const QJsonObject &object)
{
    const QByteArray line = QJsonDocument(object).toJson(QJsonDocument::Compact).append('\n');
    const QMutexLocker locker(&mutex);
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

} // namespace Tessellum::Tool
