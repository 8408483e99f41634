#include <shared/hierarchy/HierarchyStringPath.h>

#include <fuzz/FuzzInput.h>

using Shared::Hierarchy::HierarchyStringPath;

namespace {

void RemoveFromBothEnds(const HierarchyStringPath &path)
{
    const QStringList elements = path.split();
    for (const int count : {-1, 0, 1, 2, elements.size(), elements.size() + 1}) {
        const QString front = HierarchyStringPath::RemoveFront(path, count);
        const QString back = HierarchyStringPath::RemoveBack(path, count);
        if (count >= elements.size())
            Fuzz::Require(front.isEmpty() && back.isEmpty());
    }
}

} // namespace

// Input: a separator, a path with it, and an index on one line each.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Fuzz::Lines lines(data, size);
    const QString separator = lines.next();
    const QString text = lines.next();
    const int index = lines.next().toInt();

    const QStringList elements = HierarchyStringPath::SplitPath(text, separator);
    const bool empty = HierarchyStringPath::IsEmptyPath(text, separator);
    const bool valid = HierarchyStringPath::IsValidPath(text, separator);
    Fuzz::Require(!(empty && valid));
    if (!separator.isEmpty())
        Fuzz::Require(HierarchyStringPath::JoinPath(elements, separator) == text);

    const HierarchyStringPath path(nullptr, separator, text);
    Fuzz::Require(path.split() == elements && path.size() == elements.size());
    Fuzz::Require(path.isEmpty() == empty && path.isValid() == valid);
    const bool inside = index >= 0 && index < elements.size();
    Fuzz::Require(path.at(index) == (inside ? elements.at(index) : QString()));
    RemoveFromBothEnds(path);

    QString last;
    QString parent;
    path.getPathElementsFromPath(last, parent);
    Fuzz::Require(elements.isEmpty() || last == elements.last());
    return 0;
}
