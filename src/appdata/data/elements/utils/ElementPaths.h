#pragma once

#include <notification/utils/NotifyExaminers.h>

#include <QStringList>

#include <memory>

namespace Tessellum::AppData::Data::Entries {
class Entry;
}

namespace Tessellum::AppData::Data::Elements::utils {

/*! The paths by which handlers know the element \a uuid of \a entry: that of its node, that below its entry
 * and that below the pair; equal ones once. Empty for a null entry. */
QStringList ElementPaths(const std::shared_ptr<Entries::Entry> &entry, const QString &uuid);

/*! Tells the handlers of each path. */
template <class Point, class... Arguments>
void NotifyPaths(const std::shared_ptr<Notification::ExaminerRegistration<Point>> &examiner,
                 const QStringList &paths, const Point &point, const Arguments &...arguments)
{
    for (const QString &path : paths)
        Notification::utils::NotifyExaminers(examiner, path, point, arguments...);
}

} // namespace Tessellum::AppData::Data::Elements::utils
