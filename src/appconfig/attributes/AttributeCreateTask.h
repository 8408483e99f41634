#pragma once

#include <appconfig/attributes/AttributeCreateData.h>
#include <notification/CreateTask.h>
#include <notification/ExaminerRegistration.h>

namespace Tessellum::AppConfig::Attributes {

/*! Creates one attribute or a list of them beneath a node. See CreateTask for threads and reports. */
class AttributeCreateTask : public Notification::CreateTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::CreatePoint>>;

    /*! \a data holds AttributeCreateData or AttributesCreateData; \a examiner may be empty. */
    AttributeCreateTask(const Examiners &examiner,
                        const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &parent, const QString &path,
                        const QVariant &data, const Notification::CreatePoint &waitPoint);

    Notification::CreateObserver::ResultType runCreate() override;
    std::shared_ptr<Notification::CreateObserver> getObserver() override;

private:
    bool createAttributesInHierarchy(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent) const;
    void handleCreateNotification(const Notification::CreateObserver::ResultType &result) const;

    Examiners examiner;
    bool isSingle = false;
    std::shared_ptr<Notification::CreateObserver> observer;
};

/*!
 * The payload of a create that leaves an existing attribute alone: an update that creates what is missing
 * must not wipe what another thread has created meanwhile.
 */
class AttributeEnsureData : public AttributeCreateData
{
public:
    using AttributeCreateData::AttributeCreateData;
};

} // namespace Tessellum::AppConfig::Attributes

Q_DECLARE_METATYPE(Tessellum::AppConfig::Attributes::AttributeEnsureData)
