#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementReference.h>
#include <appdata/data/entries/ClassificationNameEntry.h>
#include <appdata/data/entries/EntryQueryProvider.h>
#include <appdata/data/entries/utils/ElementTimeIndex.h>
#include <appdata/data/entries/utils/PairLinks.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/ScopedLock.h>

#include <QVector>

#include <algorithm>

namespace Tessellum::AppData::Data::Entries {

using Interfaces::ConstDataElementList;
using Interfaces::ConstDataElementPtr;
using Interfaces::DataElementInterface;
using Interfaces::DataElementList;
using Interfaces::DataElementPtr;
using Shared::Hierarchy::HierarchyNode;
using Shared::Synchronization::ScopedLock;

namespace {

DataElementPtr toElement(const std::shared_ptr<HierarchyNode> &node)
{
    return std::dynamic_pointer_cast<DataElementInterface>(node);
}

ConstDataElementList toConst(const DataElementList &elements)
{
    ConstDataElementList list;
    list.reserve(elements.size());
    std::copy(elements.cbegin(), elements.cend(), std::back_inserter(list));
    return list;
}

/*! Whether \a element is there and has that activation. An element tells it without a query provider, which
 * each that is asked would have to make. */
bool hasActivation(const ConstDataElementPtr &element, bool active)
{
    if (const auto *const node = dynamic_cast<const Elements::Element *>(element.get()))
        return node->isActive() == active;
    if (const auto *const reference = dynamic_cast<const Elements::ElementReference *>(element.get())) {
        const auto target = reference->getTarget();
        return target && hasActivation(target, active);
    }
    const auto query = element ? element->getQueryInterface() : nullptr;
    return query && query->isActive() == active;
}

// Under the lock of the entry, which an element that is being added holds until it is in the index as well. A
// strategy that hears of the element before that would judge it by the ends of yesterday.
bool spanOf(const Entry &entry, quint64 &first, quint64 &last)
{
    const ScopedLock lock(&entry);
    return entry.timeIndex().span(first, last);
}

QList<utils::ElementTimeIndex::ElementPtr> rangeOf(const Entry &entry, quint64 first, quint64 last)
{
    const ScopedLock lock(&entry);
    return entry.timeIndex().range(first, last);
}

} // namespace

bool applyMaskedFilter(const ConstDataElementPtr &element, const ActivationMask &mask,
                       const EntryQueryProvider::ElementFilter &filter)
{
    switch (mask) {
    case ActivationMask::All:
        return filter(element);
    case ActivationMask::Active:
    case ActivationMask::Inactive:
        return hasActivation(element, mask == ActivationMask::Active) && filter(element);
    case ActivationMask::Unknown:
        break;
    }
    Shared::Logging::FrameworkLog().warning()
        << "Entry::applyMaskedFilter() called with unknown mask: " << static_cast<quint32>(mask);
    return false;
}

EntryQueryProvider::EntryQueryProvider(Entry *queriedEntry)
    : entry(queriedEntry)
    , filter([](const ConstDataElementPtr &element) { return element != nullptr; })
{ }

ConstDataElementList
EntryQueryProvider::getElements(const ActivationMask &mask,
                                const Interfaces::ConstElementListFilter &listFilter) const
{
    return Interfaces::Filtered(toConst(elements(mask)), listFilter);
}

DataElementList EntryQueryProvider::getElements(const ActivationMask &mask,
                                                const Interfaces::ElementListFilter &listFilter)
{
    return Interfaces::Filtered(elements(mask), listFilter);
}

ConstDataElementList
EntryQueryProvider::getElementsInRange(const quint64 &first, const quint64 &last, const ActivationMask &mask,
                                       const Interfaces::ConstElementListFilter &listFilter) const
{
    return Interfaces::Filtered(toConst(elementsInRange(first, last, mask)), listFilter);
}

DataElementList EntryQueryProvider::getElementsInRange(const quint64 &first, const quint64 &last,
                                                       const ActivationMask &mask,
                                                       const Interfaces::ElementListFilter &listFilter)
{
    return Interfaces::Filtered(elementsInRange(first, last, mask), listFilter);
}

quint64 EntryQueryProvider::countElements(const ActivationMask &mask) const
{
    return mask == ActivationMask::All ? entry->getNumberOfChildren()
                                       : static_cast<quint64>(elements(mask).size());
}

ConstDataElementPtr EntryQueryProvider::getElementByIndex(const quint64 &index) const
{
    return toElement(entry->getChildByIndex(index));
}

DataElementPtr EntryQueryProvider::getElementByIndex(const quint64 &index)
{
    return toElement(entry->getChildByIndex(index));
}

ConstDataElementPtr EntryQueryProvider::getElementById(const QString &uuid) const
{
    return toElement(entry->getChildById(uuid));
}

DataElementPtr EntryQueryProvider::getElementById(const QString &uuid)
{
    return toElement(entry->getChildById(uuid));
}

bool EntryQueryProvider::getTimeSpan(quint64 &first, quint64 &last) const
{
    const auto *const pair = qobject_cast<const ClassificationNameEntry *>(entry);
    if (!pair)
        return spanOf(*entry, first, last);
    bool any = false;
    for (const auto &member : utils::EntriesOfPair(pair->getLinkPath())) {
        quint64 begin = 0;
        quint64 end = 0;
        if (!spanOf(*member, begin, end))
            continue;
        first = any ? std::min(first, begin) : begin;
        last = any ? std::max(last, end) : end;
        any = true;
    }
    return any;
}

DataElementList EntryQueryProvider::elements(const ActivationMask &mask) const
{
    const auto nodes = entry->getChildren(false);
    DataElementList all;
    all.reserve(nodes.size());
    for (const auto &node : nodes)
        all.append(toElement(node));
    return masked(all, mask);
}

DataElementList EntryQueryProvider::elementsInRange(quint64 first, quint64 last,
                                                    const ActivationMask &mask) const
{
    if (qobject_cast<const ClassificationNameEntry *>(entry))
        return masked(pairElementsInRange(first, last), mask);
    DataElementList found;
    for (const auto &element : rangeOf(*entry, first, last))
        found.append(element);
    return masked(found, mask);
}

DataElementList EntryQueryProvider::pairElementsInRange(quint64 first, quint64 last) const
{
    const auto *const pair = qobject_cast<const ClassificationNameEntry *>(entry);
    QVector<std::pair<quint64, DataElementPtr>> found;
    for (const auto &member : utils::EntriesOfPair(pair->getLinkPath())) {
        for (const auto &element : rangeOf(*member, first, last)) {
            quint64 position = 0;
            const auto reference = entry->getChildById(element->getId());
            if (reference && entry->hasChild(reference, &position))
                found.append({position, toElement(reference)});
        }
    }
    std::sort(found.begin(), found.end(),
              [](const auto &left, const auto &right) { return left.first < right.first; });
    DataElementList list;
    for (const auto &[position, element] : qAsConst(found))
        list.append(element);
    return list;
}

DataElementList EntryQueryProvider::masked(const DataElementList &elements, const ActivationMask &mask) const
{
    DataElementList kept;
    kept.reserve(elements.size());
    for (const DataElementPtr &element : elements) {
        if (applyMaskedFilter(element, mask, filter))
            kept.append(element);
    }
    return kept;
}

} // namespace Tessellum::AppData::Data::Entries
