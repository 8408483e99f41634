#pragma once

#include <appdata/storages/StorageCreateData.h>
#include <notification/CreateTask.h>
#include <notification/ExaminerRegistration.h>

#include <QStringList>

namespace Tessellum::AppData::Storages {

class Storage;

/*!
 * Makes a storage beneath a node and connects it. See CreateTask for threads and reports; handlers are told
 * of the outcome alone, for the path of the node and for that of the name.
 *
 * A failed storage leaves nothing behind: no node, no name in the list, no attribute at the name's path. Its
 * medium is let go of without a disconnect.
 */
class StorageCreateTask : public Notification::CreateTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::CreatePoint>>;

    /*! \a path is the name, \a data holds StorageCreateData; \a examiner may be empty. */
    StorageCreateTask(const Examiners &examiner,
                      const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &parent, const QString &name,
                      const QVariant &data, const Notification::CreatePoint &waitPoint);

    Notification::CreateObserver::ResultType runCreate() override;
    std::shared_ptr<Notification::CreateObserver> getObserver() override;

private:
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

    bool createStorageInHierarchy(const NodePtr &parent);
    bool publish(const NodePtr &parent, const std::shared_ptr<Storage> &storage);
    void handleCreateNotification(const Notification::CreateObserver::ResultType &result) const;

    const Examiners examiner;
    const std::shared_ptr<Notification::CreateObserver> observer;
    QStringList resultPaths;
};

} // namespace Tessellum::AppData::Storages
