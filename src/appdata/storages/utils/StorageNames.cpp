#include <appconfig/attributes/Attribute.h>
#include <appdata/InternalSettingsProvider.h>
#include <appdata/storages/utils/StorageNames.h>

namespace Tessellum::AppData::Storages::utils {

std::shared_ptr<Core::HierarchyListPattern> NameList()
{
    return InternalSettingsProvider().getList(QStringLiteral("names"), QStringLiteral("storages"));
}

bool IsNameFree(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent, const QString &name)
{
    const auto present = parent->findChildByRelativePath(name);
    const auto attribute = std::dynamic_pointer_cast<AppConfig::Attributes::Attribute>(present);
    return !present || (attribute && !attribute->hasValue());
}

} // namespace Tessellum::AppData::Storages::utils
