#pragma once

#include <notification/DeleteTask.h>
#include <notification/ExaminerRegistration.h>

#include <QStringList>

namespace Tessellum::AppData::Storages {

class Storage;

/*!
 * Takes a storage with its entries off the tree, its name out of the list, the entries out of their pairs and
 * what shows their status out of the configuration. The medium is disconnected and keeps what it holds. See
 * DeleteTask for threads and reports; handlers are told for the path of the node and for that of the name.
 */
class StorageDeleteTask : public Notification::DeleteTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::DeletePoint>>;

    /*! \a node is the storage; \a examiner may be empty. */
    StorageDeleteTask(const Examiners &examiner, const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node,
                      const QString &path, const QVariant &data, const Notification::DeletePoint &waitPoint);

    Notification::DeleteObserver::ResultType runDelete() override;
    std::shared_ptr<Notification::DeleteObserver> getObserver() override;

private:
    void handleDeleteNotification(const Notification::DeleteObserver::ResultType &result) const;

    const Examiners examiner;
    const std::shared_ptr<Notification::DeleteObserver> observer;
    QStringList resultPaths;
};

} // namespace Tessellum::AppData::Storages
