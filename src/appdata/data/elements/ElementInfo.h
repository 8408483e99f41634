#pragma once

#include <QString>

namespace Tessellum::AppData::Data::Elements {

/*! Shared between a caller and the task that fills it in; the caller reads it after the task's last report.
 */
struct ElementInfo
{
    bool reportIndex = false; /*!< Whether the caller asks for the index. */
    QString uuid;
    qint64 index = -1;
};

} // namespace Tessellum::AppData::Data::Elements
