#pragma once

#include <appdata/interfaces/DataElementInterface.h>

#include <QList>

#include <functional>

namespace Tessellum::AppData::Interfaces {

using DataElementPtr = std::shared_ptr<DataElementInterface>;
using ConstDataElementPtr = std::shared_ptr<const DataElementInterface>;
using DataElementList = QList<DataElementPtr>;
using ConstDataElementList = QList<ConstDataElementPtr>;
/*! Gets the elements that passed the mask and returns those to keep. Runs with no lock held. */
using ElementListFilter = std::function<DataElementList(const DataElementList &)>;
using ConstElementListFilter = std::function<ConstDataElementList(const ConstDataElementList &)>;

/*! The list filter that keeps all. */
struct PassThroughFilter
{
    template <class List>
    List operator()(const List &elements) const
    {
        return elements;
    }
};

/*! What \a filter keeps of \a elements; all without a filter. No lock may be held: it is the application's.
 */
template <class List>
List Filtered(const List &elements, const std::function<List(const List &)> &filter)
{
    return filter ? filter(elements) : elements;
}

/*!
 * Reads the elements of one entry, always in the order in which they were added. Threads: any.
 *
 * A range and the ends of the time span come from an index by time stamp and cost no scan of the entry.
 */
class TESSELLUM_EXPORT DataEntryQueryInterface
{
public:
    virtual ConstDataElementList getElements(const ActivationMask &mask,
                                             const ConstElementListFilter &listFilter) const = 0;
    virtual DataElementList getElements(const ActivationMask &mask, const ElementListFilter &listFilter) = 0;
    /*! As getElements(), with a time stamp from \a first to \a last, both included. */
    virtual ConstDataElementList getElementsInRange(const quint64 &first, const quint64 &last,
                                                    const ActivationMask &mask,
                                                    const ConstElementListFilter &listFilter) const = 0;
    virtual DataElementList getElementsInRange(const quint64 &first, const quint64 &last,
                                               const ActivationMask &mask,
                                               const ElementListFilter &listFilter)
        = 0;
    virtual quint64 countElements(const ActivationMask &mask) const = 0;
    /*! The element at a position from 0; null outside. */
    virtual ConstDataElementPtr getElementByIndex(const quint64 &index) const = 0;
    virtual DataElementPtr getElementByIndex(const quint64 &index) = 0;
    virtual ConstDataElementPtr getElementById(const QString &uuid) const = 0;
    virtual DataElementPtr getElementById(const QString &uuid) = 0;
    /*! The smallest and the largest time stamp; false, with nothing changed, without elements. */
    virtual bool getTimeSpan(quint64 &first, quint64 &last) const = 0;
    virtual ~DataEntryQueryInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
