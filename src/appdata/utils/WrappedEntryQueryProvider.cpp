#include <appdata/utils/WrappedElement.h>
#include <appdata/utils/WrappedEntryQueryProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::ConstDataElementList;
using Interfaces::ConstDataElementPtr;
using Interfaces::ConstElementListFilter;
using Interfaces::DataElementList;
using Interfaces::DataElementPtr;
using Interfaces::DataEntryQueryInterface;
using Interfaces::ElementListFilter;
using Interfaces::PassThroughFilter;

ConstDataElementList WrappedEntryQueryProvider::getElements(const ActivationMask &mask,
                                                            const ConstElementListFilter &listFilter) const
{
    return Interfaces::Filtered(wrapAll<ConstDataElementList>(elementsOf(mask)), listFilter);
}

DataElementList WrappedEntryQueryProvider::getElements(const ActivationMask &mask,
                                                       const ElementListFilter &listFilter)
{
    return Interfaces::Filtered(wrapAll<DataElementList>(elementsOf(mask)), listFilter);
}

ConstDataElementList
WrappedEntryQueryProvider::getElementsInRange(const quint64 &first, const quint64 &last,
                                              const ActivationMask &mask,
                                              const ConstElementListFilter &listFilter) const
{
    return Interfaces::Filtered(wrapAll<ConstDataElementList>(elementsInRange(first, last, mask)),
                                listFilter);
}

DataElementList WrappedEntryQueryProvider::getElementsInRange(const quint64 &first, const quint64 &last,
                                                              const ActivationMask &mask,
                                                              const ElementListFilter &listFilter)
{
    return Interfaces::Filtered(wrapAll<DataElementList>(elementsInRange(first, last, mask)), listFilter);
}

quint64 WrappedEntryQueryProvider::countElements(const ActivationMask &mask) const
{
    return reading([&](const DataEntryQueryInterface &entry) { return entry.countElements(mask); });
}

ConstDataElementPtr WrappedEntryQueryProvider::getElementByIndex(const quint64 &index) const
{
    return wrapped<WrappedElement>(
        [&](DataEntryQueryInterface &entry) { return entry.getElementByIndex(index); });
}

DataElementPtr WrappedEntryQueryProvider::getElementByIndex(const quint64 &index)
{
    return wrapped<WrappedElement>(
        [&](DataEntryQueryInterface &entry) { return entry.getElementByIndex(index); });
}

ConstDataElementPtr WrappedEntryQueryProvider::getElementById(const QString &uuid) const
{
    return wrapped<WrappedElement>(
        [&](DataEntryQueryInterface &entry) { return entry.getElementById(uuid); });
}

DataElementPtr WrappedEntryQueryProvider::getElementById(const QString &uuid)
{
    return wrapped<WrappedElement>(
        [&](DataEntryQueryInterface &entry) { return entry.getElementById(uuid); });
}

bool WrappedEntryQueryProvider::getTimeSpan(quint64 &first, quint64 &last) const
{
    return reading([&](const DataEntryQueryInterface &entry) { return entry.getTimeSpan(first, last); });
}

template <class List>
List WrappedEntryQueryProvider::wrapAll(const DataElementList &elements) const
{
    List handles;
    handles.reserve(elements.size());
    for (const DataElementPtr &element : elements)
        handles.append(std::make_shared<WrappedElement>(element, lock()));
    return handles;
}

DataElementList WrappedEntryQueryProvider::elementsOf(const ActivationMask &mask) const
{
    return reading(
        [&](DataEntryQueryInterface &entry) { return entry.getElements(mask, PassThroughFilter()); });
}

DataElementList WrappedEntryQueryProvider::elementsInRange(quint64 first, quint64 last,
                                                           const ActivationMask &mask) const
{
    return reading([&](DataEntryQueryInterface &entry) {
        return entry.getElementsInRange(first, last, mask, PassThroughFilter());
    });
}

} // namespace Tessellum::AppData::utils
