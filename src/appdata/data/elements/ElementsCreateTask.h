#pragma once

#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementUpdateData.h>
#include <appdata/data/elements/PendingCreateCounterTracker.h>
#include <appdata/data/entries/EntryData.h>
#include <notification/CreateTask.h>
#include <notification/ExaminerRegistration.h>

#include <functional>

namespace Tessellum::AppData::Data::Entries {
class Entry;
} // namespace Tessellum::AppData::Data::Entries

namespace Tessellum::AppData::Data::Elements {

/*! Elements to create, with a function that is called once, when that is over: with whether it succeeded,
 * false also for a task that is discarded. It must not throw and not wait. */
struct ElementsCreateRequest
{
    QVariant elements;
    std::function<void(bool)> completion;
};

/*!
 * Adds one element or a list of them to an entry: new values, which it also writes to the storage, or what a
 * storage holds.
 *
 * A list succeeds if it is empty or at least one of its elements was created. See CreateTask for threads and
 * reports.
 */
class ElementsCreateTask : public Notification::CreateTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::CreatePoint>>;

    /*! Whether \a data is for this task: ElementUpdateData or ElementDeserializeInformation, alone or as a
     * list, or an ElementsCreateRequest with these. */
    static bool Accepts(const QVariant &data);

    /*! \a parent is the entry; \a examiner may be empty. */
    ElementsCreateTask(const Examiners &examiner,
                       const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &parent, const QString &path,
                       const QVariant &data, const Notification::CreatePoint &waitPoint);
    ~ElementsCreateTask() override;

    Notification::CreateObserver::ResultType runCreate() override;
    std::shared_ptr<Notification::CreateObserver> getObserver() override;

private:
    using EntryPtr = std::shared_ptr<Entries::Entry>;
    using ElementPtr = std::shared_ptr<Element>;

    bool createElementInHierarchy(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent);
    bool createElementsInHierarchy(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent);
    EntryPtr takeEntry(const char *caller, const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent);
    bool createAndSerializeElementInHierarchy(const EntryPtr &entry, ElementUpdateData updateData);
    bool createAndDeserializeElementInHierarchy(const EntryPtr &entry,
                                                const ElementDeserializeInformation &information);
    ElementPtr makeElement(const ElementData &elementData) const;
    bool addElementToEntryAsChild(const EntryPtr &entry, const ElementPtr &element, quint64 *position,
                                  const std::function<void()> &write);
    void complete(bool success);
    void report(Notification::CreatePoint point, bool success);
    void handleCreateNotification(const ResultType &result) const;

    Examiners examiner;
    std::function<void(bool)> completion;
    const bool singleCreate;
    PendingCreateCounterTracker tracker;
    std::shared_ptr<Notification::CreateObserver> observer;
    QStringList createdIds;
    Entries::EntryData entryFacts; // what all elements of this task copy
};

} // namespace Tessellum::AppData::Data::Elements

Q_DECLARE_METATYPE(Tessellum::AppData::Data::Elements::ElementsCreateRequest)
