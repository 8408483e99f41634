#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/LiveNode.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/DataTypeStrings.h>
#include <appdata/utils/LoadStatusMirror.h>
#include <appdata/utils/RepositoryProvider.h>

#include <QMutexLocker>

namespace Tessellum::AppData::utils {

using AppConfig::utils::LockLiveNode;
using AppConfig::utils::ShownAttribute;
using Shared::Hierarchy::HierarchyNode;

namespace {

QString RootOf(const QString &fullPath)
{
    return QStringLiteral("appdata") + HierarchyNode::GetHierarchyNodePathSeparator() + fullPath;
}

/*! Empty where the node is off the tree. */
QString PathOf(const std::weak_ptr<HierarchyNode> &node)
{
    const auto living = LockLiveNode(node);
    return living ? living->getNodePath()->getFullPath() : QString();
}

/*! Another node may stand in the place of one that has gone. */
bool IsInTree(const QString &fullPath)
{
    return RepositoryProvider::getInstance()->getRoot()->findChildByRelativePath(fullPath) != nullptr;
}

} // namespace

LoadStatusMirror::LoadStatusMirror(const std::weak_ptr<HierarchyNode> &shownNode)
    : node(shownNode)
{ }

LoadStatusMirror::~LoadStatusMirror() = default;

void LoadStatusMirror::publish(const LoadStatus &old, const LoadStatus &current)
{
    const QString fullPath = PathOf(node);
    if (!fullPath.isEmpty()) {
        shownAt(fullPath)->showChild(QStringLiteral("loaded"), ConvertDataEntryLoadStatusToString(current),
                                     ConvertDataEntryLoadStatusToString(old));
    }
}

LoadStatusMirror::ShownPtr LoadStatusMirror::shownAt(const QString &fullPath)
{
    const QString root = RootOf(fullPath);
    {
        const QMutexLocker locker(&mutex);
        if (shown && shown->getPath() == root)
            return shown;
    }
    // A node that is removed while its attribute is still on its way has nothing to remove then.
    auto made = std::make_shared<ShownAttribute>(
        [weak = node, fullPath] { return PathOf(weak) == fullPath || IsInTree(fullPath); }, root);
    const QMutexLocker locker(&mutex);
    shown.swap(made); // the one before goes behind the lock, being older than it
    return shown;
}

std::shared_ptr<Notification::DeleteObserver> LoadStatusMirror::StartRemoval(const QString &fullPath)
{
    const auto provider = AppConfig::utils::RepositoryProvider::getInstance()->getManipulationProvider();
    return provider ? provider->startDeleteAttribute(RootOf(fullPath), Notification::DeletePoint::Done)
                    : nullptr;
}

} // namespace Tessellum::AppData::utils
