#pragma once

#include <shared/TessellumExport.h>

#include <QString>
#include <QVariant>

#include <functional>

namespace Tessellum::AppConfig::utils {

/*!
 * An attribute, or a few beneath one path, that show how something stands, for as long as this object lives.
 * Where several show the same path, the last value holds, and all of it goes with the last of them.
 *
 * Nothing waits: the tasks are started one after the other for each path, so that the attribute ends at the
 * last value or is gone, whatever the order of tasks. While the configuration is stopped nothing is shown.
 * Threads: any; no lock may be held.
 */
class TESSELLUM_EXPORT ShownAttribute
{
public:
    /*! Whether what is shown is there, asked before and after each task without a lock. */
    using Presence = std::function<bool()>;

    ShownAttribute(const QString &attributePath, const QVariant &value);
    /*! Shows nothing yet. */
    explicit ShownAttribute(const QString &rootPath);
    /*! What is shown stays when this object goes, and somebody else takes it away with what it stands for.
     * Only what a task brings back after that, as \a isPresent tells, is taken away here. */
    ShownAttribute(const Presence &isPresent, const QString &rootPath);
    ~ShownAttribute();
    Q_DISABLE_COPY_MOVE(ShownAttribute)

    void show(const QVariant &value) const;
    /*! Shows the attribute \a child beneath the path. One that is missing is made with the value \a first, if
     * that is valid, and then changed. */
    void showChild(const QString &child, const QVariant &value, const QVariant &first = QVariant()) const;
    QString getPath() const { return path; }
    QString getChildPath(const QString &child) const;

private:
    const QString path;
};

} // namespace Tessellum::AppConfig::utils
