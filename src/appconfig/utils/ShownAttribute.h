#pragma once

#include <shared/TessellumExport.h>

#include <QString>
#include <QVariant>

namespace Tessellum::AppConfig::utils {

/*!
 * An attribute that shows how something stands, for as long as this object lives. Where several show the same
 * path, the last value holds, and the attribute goes with the last of them.
 *
 * Nothing waits: the tasks are started one after the other for each path, so that the attribute ends at the
 * last value or is gone, whatever the order of tasks. While the configuration is stopped nothing is shown.
 * Threads: any; no lock may be held.
 */
class TESSELLUM_EXPORT ShownAttribute
{
public:
    ShownAttribute(const QString &attributePath, const QVariant &value);
    ~ShownAttribute();
    Q_DISABLE_COPY_MOVE(ShownAttribute)

    void show(const QVariant &value) const;
    QString getPath() const { return path; }

private:
    const QString path;
};

} // namespace Tessellum::AppConfig::utils
