#pragma once

#include <appdata/data/elements/ElementData.h>
#include <notification/DeleteTask.h>
#include <notification/ExaminerRegistration.h>

namespace Tessellum::AppData::Data::Elements {

class Element;

/*! Takes an element and the reference to it off the tree; the medium is not told. See DeleteTask for threads
 * and reports. */
class ElementsDeleteTask : public Notification::DeleteTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::DeletePoint>>;

    /*! \a data holds the ElementData of the element; \a examiner may be empty. */
    ElementsDeleteTask(const Examiners &examiner,
                       const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &element, const QString &path,
                       const QVariant &data, const Notification::DeletePoint &waitPoint);

    Notification::DeleteObserver::ResultType runDelete() override;
    std::shared_ptr<Notification::DeleteObserver> getObserver() override;

private:
    void remove(const std::shared_ptr<Element> &element) const;
    void handleDeleteNotification(const ResultType &result) const;

    Examiners examiner;
    std::shared_ptr<Notification::DeleteObserver> observer;
    QStringList paths; // of the element while it was in the tree
};

} // namespace Tessellum::AppData::Data::Elements
