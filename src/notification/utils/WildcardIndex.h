#pragma once

#include <QHash>
#include <QMap>
#include <QStringList>

namespace Tessellum::Notification::utils {

/*!
 * Finds the wildcard patterns that match a path. Patterns are grouped by the literal text before their first
 * wildcard, so that a search compares only those whose beginning fits. No lock of its own.
 */
class WildcardIndex
{
public:
    /*! Adds a pattern that is not there yet. */
    void add(const QString &pattern);
    /*! Removes a pattern that is there. */
    void remove(const QString &pattern);
    /*! All patterns that match the whole of \a path, in ascending order. */
    QStringList findMatching(const QString &path) const;

private:
    QHash<QString, QStringList> patternsByPrefix; // each list in ascending order
    QMap<int, int> prefixLengths; // with the number of patterns that have it
};

} // namespace Tessellum::Notification::utils
