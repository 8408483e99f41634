#pragma once

#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementUpdateData.h>
#include <notification/ExaminerRegistration.h>
#include <notification/UpdateTask.h>

namespace Tessellum::AppData::Data::Entries {
class Entry;
}

namespace Tessellum::AppData::Data::Elements {

/*!
 * Changes active flag, time stamp and value of one element, in memory and on its medium in one hold of the
 * element's lock, so that both keep the same last value. The first step that fails ends the task: the steps
 * before it stay, and the medium is not told. See UpdateTask for threads and reports.
 */
class ElementUpdateTask : public Notification::UpdateTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::UpdatePoint>>;

    /*! \a value holds ElementUpdateData; \a examiner may be empty. */
    ElementUpdateTask(const Examiners &examiner,
                      const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &element, const QVariant &value,
                      const Notification::UpdatePoint &waitPoint);

    Notification::UpdateObserver::ResultType runUpdate() override;
    std::shared_ptr<Notification::UpdateObserver> getObserver() override;

private:
    using ElementPtr = std::shared_ptr<Element>;
    struct Change;

    void apply(Change &change);
    bool applyType(Change &change, const DataElementUpdateType &type);
    bool activeUpdate(const Change &change);
    bool timestampUpdate(Change &change);
    bool rawDataUpdate(Change &change);
    bool parsedDataUpdate(Change &change);
    bool unload(Change &change) const;
    void setParsed(const Change &change, const std::shared_ptr<QVariant> &parsed) const;
    bool writeToMedium(const Change &change) const;
    void fillInfo(const Change &change) const;
    void handleUpdateNotification(const ResultType &result) const;

    Examiners examiner;
    std::shared_ptr<Notification::UpdateObserver> observer;
    ElementUpdateData updateData;
    ElementUpdateData previous; // of the keys that change, for the handlers
    std::weak_ptr<Entries::Entry> owner;
};

} // namespace Tessellum::AppData::Data::Elements
