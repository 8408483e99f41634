#pragma once

#include <appdata/DataTypes.h>
#include <notification/Observer.h>
#include <shared/hierarchy/HierarchyNode.h>

#include <memory>

namespace Tessellum::AppData::utils {

/*!
 * Shows the load status of one node in the configuration, as the attribute "appdata.FULL PATH.loaded".
 *
 * One step is on its way at a time; its end starts the next where the status has changed meanwhile, with the
 * status of that moment. So the attribute ends at the last status whatever the order of tasks. Threads: any;
 * a caller never waits and must hold no lock. Lock: guards what is on its way.
 */
class LoadStatusMirror
{
public:
    explicit LoadStatusMirror(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node);
    ~LoadStatusMirror();

    /*! Shows \a current from now on; \a old is what a fresh attribute begins with. */
    void publish(const LoadStatus &old, const LoadStatus &current);

    /*! Starts the removal of the attributes beneath "appdata.PATH", the node and its children together. Null
     * where there is nothing to remove. */
    static std::shared_ptr<Notification::DeleteObserver> StartRemoval(const QString &fullPath);

private:
    struct State;
    const std::shared_ptr<State> state;
};

} // namespace Tessellum::AppData::utils
