#pragma once

#include <shared/TessellumExport.h>

#include <QHash>
#include <QList>
#include <QMutex>

#include <atomic>
#include <map>
#include <memory>
#include <utility>

namespace Tessellum::AppData::Data::Elements {
class Element;
}

namespace Tessellum::AppData::Data::Entries::utils {

/*!
 * The elements of an entry by time stamp, so that a range or a time span costs no scan. Threads: any.
 *
 * Lock: its own mutex, the last of all; nothing is called under it.
 */
class TESSELLUM_EXPORT ElementTimeIndex
{
public:
    using ElementPtr = std::shared_ptr<Elements::Element>;

    /*! Enters \a element as the last in the order of adding; false where it is there. */
    bool insert(const ElementPtr &element, quint64 timestamp);
    void remove(const Elements::Element *element);
    /*! Follows a changed time stamp; nothing where the element is not here. */
    void move(const Elements::Element *element, quint64 timestamp);
    /*! The living elements from \a first to \a last, both included, in the order of adding. */
    QList<ElementPtr> range(quint64 first, quint64 last) const;
    /*! False, with nothing changed, without elements. */
    bool span(quint64 &first, quint64 &last) const;

    /*! Grows with each change, so that who keeps what it found here knows when to ask again. */
    quint64 changes() const { return changeCount.load(std::memory_order_acquire); }

private:
    using Key = std::pair<quint64, quint64>; // time stamp, order of adding
    using Table = std::map<Key, std::weak_ptr<Elements::Element>>;

    mutable QMutex mutex;
    Table byTime;
    QHash<const Elements::Element *, Key> keys;
    quint64 nextOrder = 0;
    std::atomic<quint64> changeCount{0};
};

} // namespace Tessellum::AppData::Data::Entries::utils
