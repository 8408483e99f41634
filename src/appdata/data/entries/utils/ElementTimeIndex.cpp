#include <appdata/data/elements/Element.h>
#include <appdata/data/entries/utils/ElementTimeIndex.h>

#include <QVector>

#include <algorithm>

namespace Tessellum::AppData::Data::Entries::utils {

bool ElementTimeIndex::insert(const ElementPtr &element, quint64 timestamp)
{
    const QMutexLocker locker(&mutex);
    if (keys.contains(element.get()))
        return false;
    const Key key(timestamp, nextOrder++);
    // Most come in the order of their time stamps.
    byTime.emplace_hint(byTime.cend(), key, element);
    keys.insert(element.get(), key);
    ++changeCount;
    return true;
}

void ElementTimeIndex::remove(const Elements::Element *element)
{
    const QMutexLocker locker(&mutex);
    const auto found = keys.constFind(element);
    if (found == keys.cend())
        return;
    byTime.erase(*found);
    keys.erase(found);
    ++changeCount;
}

void ElementTimeIndex::move(const Elements::Element *element, quint64 timestamp)
{
    const QMutexLocker locker(&mutex);
    const auto found = keys.find(element);
    if (found == keys.end() || found->first == timestamp)
        return;
    auto node = byTime.extract(*found);
    node.key() = *found = Key(timestamp, found->second);
    byTime.insert(byTime.cend(), std::move(node));
    ++changeCount;
}

QList<ElementTimeIndex::ElementPtr> ElementTimeIndex::range(quint64 first, quint64 last) const
{
    QVector<std::pair<quint64, ElementPtr>> found;
    {
        const QMutexLocker locker(&mutex);
        const auto end = byTime.upper_bound(Key(last, ~0ULL));
        for (auto place = byTime.lower_bound(Key(first, 0)); first <= last && place != end; ++place) {
            if (ElementPtr element = place->second.lock())
                found.append({place->first.second, std::move(element)});
        }
    }
    const auto isEarlier = [](const auto &left, const auto &right) { return left.first < right.first; };
    if (!std::is_sorted(found.cbegin(), found.cend(), isEarlier))
        std::sort(found.begin(), found.end(), isEarlier);
    QList<ElementPtr> elements;
    elements.reserve(found.size());
    for (const auto &[order, element] : qAsConst(found))
        elements.append(element);
    return elements;
}

bool ElementTimeIndex::span(quint64 &first, quint64 &last) const
{
    const QMutexLocker locker(&mutex);
    if (byTime.empty())
        return false;
    first = byTime.cbegin()->first.first;
    last = byTime.crbegin()->first.first;
    return true;
}

} // namespace Tessellum::AppData::Data::Entries::utils
