#include <shared/hierarchy/HierarchyStringPathLink.h>

namespace Shared::Hierarchy {

namespace {

using Target = HierarchyStringPathLink::Target;

bool registerMetaType()
{
    qRegisterMetaType<HierarchyStringPathLink>("Shared::Hierarchy::HierarchyStringPathLink");
    if (!QMetaType::hasRegisteredConverterFunction<HierarchyStringPathLink, QString>())
        QMetaType::registerConverter<HierarchyStringPathLink, QString>(
            [](const HierarchyStringPathLink &link) { return QString(link); });
    return true;
}

bool isSamePath(const Target &left, const Target &right)
{
    const auto first = left.lock();
    const auto second = right.lock();
    return first && second && first->getFullPath() == second->getFullPath();
}

template <class Predicate>
int removeIf(QList<Target> &targets, const Predicate &isUnwanted)
{
    const auto end = std::remove_if(targets.begin(), targets.end(), isUnwanted);
    const auto count = int(std::distance(end, targets.end()));
    targets.erase(end, targets.end());
    return count;
}

} // namespace

HierarchyStringPathLink::HierarchyStringPathLink(const Target &target)
{
    static const bool registered = registerMetaType();
    Q_UNUSED(registered)
    targets.append(target);
}

HierarchyStringPathLink::HierarchyStringPathLink(const HierarchyStringPathLink &other) = default;
HierarchyStringPathLink &HierarchyStringPathLink::operator=(const HierarchyStringPathLink &other) = default;
HierarchyStringPathLink::~HierarchyStringPathLink() = default;

HierarchyStringPathLink::operator QString() const
{
    const auto first = targets.isEmpty() ? nullptr : targets.first().lock();
    return first ? first->getFullPath() : QString();
}

bool HierarchyStringPathLink::add(const Target &target)
{
    if (contains(target))
        return false;
    targets.append(target);
    return true;
}

bool HierarchyStringPathLink::contains(const Target &target) const
{
    return std::any_of(targets.begin(), targets.end(),
                       [&target](const Target &entry) { return isSamePath(entry, target); });
}

bool HierarchyStringPathLink::remove(const Target &target)
{
    return removeIf(targets, [&target](const Target &entry) { return isSamePath(entry, target); }) > 0;
}

HierarchyStringPathLink::Target HierarchyStringPathLink::pop()
{
    return targets.isEmpty() ? Target() : targets.takeFirst();
}

int HierarchyStringPathLink::cleanup()
{
    return removeIf(targets, [](const Target &entry) { return entry.expired(); });
}

void HierarchyStringPathLink::clear()
{
    targets.clear();
}

bool HierarchyStringPathLink::isEmpty() const
{
    return targets.isEmpty();
}

} // namespace Shared::Hierarchy
