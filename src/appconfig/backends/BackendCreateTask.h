#pragma once

#include <appconfig/backends/Backend.h>
#include <appconfig/HierarchyListPattern.h>
#include <notification/CreateTask.h>
#include <notification/ExaminerRegistration.h>

namespace Tessellum::AppConfig::Backends {

/*!
 * Makes a backend beneath a node and loads it. See CreateTask for threads and reports.
 *
 * A failed backend leaves nothing behind: not itself, not its name in the list, not the plain parents that
 * were made for it and stay empty.
 */
class BackendCreateTask : public Notification::CreateTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::CreatePoint>>;

    /*! \a names is the list of backend names; \a examiner may be empty. */
    BackendCreateTask(const Examiners &examiner, const std::weak_ptr<Core::HierarchyListPattern> &names,
                      const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &parent, const QString &path,
                      const QVariant &data, const Notification::CreatePoint &waitPoint);

    Notification::CreateObserver::ResultType runCreate() override;
    std::shared_ptr<Notification::CreateObserver> getObserver() override;

private:
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;
    class Traces;

    bool createBackend(const NodePtr &parent) const;
    std::shared_ptr<Backend> createBackendForHierarchy(const QStringList &elements) const;
    void addToNames(const std::shared_ptr<Backend> &backend) const;
    void handleCreateNotification(const Notification::CreateObserver::ResultType &result) const;

    Examiners examiner;
    std::weak_ptr<Core::HierarchyListPattern> names;
    const Notification::CreatePoint waitPoint;
    std::shared_ptr<Notification::CreateObserver> observer;
};

} // namespace Tessellum::AppConfig::Backends
