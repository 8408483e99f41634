#include <appdata/data/elements/utils/ElementPaths.h>
#include <appdata/data/entries/Entry.h>

namespace Tessellum::AppData::Data::Elements::utils {

QStringList ElementPaths(const std::shared_ptr<Entries::Entry> &entry, const QString &uuid)
{
    if (!entry)
        return {};
    const QString separator = Shared::Hierarchy::HierarchyNode::GetHierarchyNodePathSeparator();
    QStringList paths{entry->getNodePath()->getFullPath() + separator + uuid,
                      entry->getId() + separator + uuid, entry->getPairPath() + separator + uuid};
    paths.removeDuplicates();
    return paths;
}

} // namespace Tessellum::AppData::Data::Elements::utils
