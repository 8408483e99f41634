#pragma once

#include <appconfig/interfaces/AttributesManipulationInterface.h>
#include <appconfig/InternalSettingsProvider.h>
#include <appconfig/utils/SynchronousResult.h>
#include <notification/Observer.h>
#include <notification/ThreadPool.h>
#include <shared/hierarchy/HierarchyNode.h>

namespace Tessellum::AppConfig::utils {

/*!
 * The work behind AttributesManipulationInterface. The start operations neither wait nor lock, so that a
 * front can hold the repository's lock around each of them and around nothing else.
 */
class AttributesManipulationProvider : public Interfaces::AttributesManipulationInterface,
                                       public InternalSettingsProvider
{
public:
    using CustomData = std::shared_ptr<Interfaces::CustomAttributeDataInterface>;

    AttributesManipulationProvider(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &root,
                                   Notification::ThreadPool *pool);

    bool createAttribute(const QString &path, const QVariant &value,
                         const Notification::CreatePoint &waitPoint, const int &access) override;
    bool createAttribute(const QString &path, const QVariant &value, const CustomData &data,
                         const Notification::CreatePoint &waitPoint, const int &access) override;
    Notification::UpdateResult updateAttribute(const QString &path, const QVariant &value,
                                               const Notification::UpdatePoint &waitPoint) override;
    bool deleteAttribute(const QString &path, const Notification::DeletePoint &waitPoint) override;

    /*! Null: the task cannot be started, or \a data is missing. */
    std::shared_ptr<Notification::CreateObserver>
    startCreateAttribute(const QString &path, const QVariant &value,
                         const Notification::CreatePoint &waitPoint, int access);
    std::shared_ptr<Notification::CreateObserver>
    startCreateAttribute(const QString &path, const QVariant &value, const CustomData &data,
                         const Notification::CreatePoint &waitPoint, int access);
    /*! Starts the create of what an update found missing, if the settings ask for it; null otherwise. */
    std::shared_ptr<Notification::CreateObserver> startAutomaticCreate(const QString &path);
    StartedUpdate startUpdateAttribute(const QString &path, const QVariant &value,
                                       const Notification::UpdatePoint &waitPoint);
    std::shared_ptr<Notification::DeleteObserver>
    startDeleteAttribute(const QString &path, const Notification::DeletePoint &waitPoint);
    Notification::ThreadPool *getThreadPool() const { return pool; }

private:
    std::shared_ptr<Shared::Hierarchy::HierarchyNode> root;
    Notification::ThreadPool *pool;
};

} // namespace Tessellum::AppConfig::utils
