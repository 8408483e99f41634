#pragma once

#include <appconfig/utils/ShownAttribute.h>
#include <appdata/DataTypes.h>
#include <notification/Observer.h>
#include <shared/hierarchy/HierarchyNode.h>

#include <QMutex>

#include <memory>

namespace Tessellum::AppData::utils {

/*!
 * Shows the load status of one node in the configuration, as the attribute "appdata.FULL PATH.loaded", which
 * ends at the last status whatever the order of tasks. The node's removal takes it away.
 *
 * Threads: any; a caller never waits and must hold no lock. Lock: guards the pointer to what is shown.
 */
class LoadStatusMirror
{
public:
    explicit LoadStatusMirror(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node);
    ~LoadStatusMirror();

    /*! Shows \a current from now on; \a old is what a fresh attribute begins with. Nothing for a node that is
     * off the tree. */
    void publish(const LoadStatus &old, const LoadStatus &current);

    /*! Starts the removal of the attributes beneath "appdata.PATH", the node and its children together. Null
     * where there is nothing to remove. */
    static std::shared_ptr<Notification::DeleteObserver> StartRemoval(const QString &fullPath);

private:
    using ShownPtr = std::shared_ptr<AppConfig::utils::ShownAttribute>;

    ShownPtr shownAt(const QString &fullPath);

    const std::weak_ptr<Shared::Hierarchy::HierarchyNode> node;
    QMutex mutex;
    ShownPtr shown;
};

} // namespace Tessellum::AppData::utils
