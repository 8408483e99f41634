#pragma once

#include <QMutex>
#include <QVariantMap>

namespace Tessellum::Tool {

/*! Writes one JSON object a line to standard output, whole and at once, from any thread. */
class JsonLines
{
public:
    void write(const QVariantMap &object);

private:
    QMutex mutex; ///< keeps the lines of several threads apart
};

} // namespace Tessellum::Tool
