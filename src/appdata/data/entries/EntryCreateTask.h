#pragma once

#include <appdata/data/entries/EntryDeserializeInformation.h>
#include <appdata/data/entries/EntryInfo.h>
#include <notification/CreateTask.h>
#include <notification/ExaminerRegistration.h>

namespace Tessellum::AppData::Data::Entries {

class ClassificationNameEntry;
class Entry;

/*!
 * Adds entries: a new one, which it also writes to its storage, or what a storage holds.
 *
 * The elements of a stored entry follow in a task of their own; the entry is loading until then. A list
 * succeeds if one of its entries did. See CreateTask for threads and reports.
 */
class EntryCreateTask : public Notification::CreateTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::CreatePoint>>;

    /*! Whether \a data is for this task: EntryInfoContainer, EntrySerializeInformation,
     * EntryDeserializeInformation or a list of the last. */
    static bool Accepts(const QVariant &data);

    /*! \a parent is the root for new entries, a storage for stored ones; \a examiner may be empty. */
    EntryCreateTask(const Examiners &examiner, const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &parent,
                    const QString &path, const QVariant &data, const Notification::CreatePoint &waitPoint);

    Notification::CreateObserver::ResultType runCreate() override;
    std::shared_ptr<Notification::CreateObserver> getObserver() override;

private:
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;
    using EntryPtr = std::shared_ptr<Entry>;

    bool createEntriesInHierarchy(const NodePtr &parent);
    bool createFromInfo(const NodePtr &parent, const EntryInfoContainer &info);
    bool createAndSerializeEntryInHierarchy(const NodePtr &parent, EntrySerializeInformation record,
                                            QString &uuid);
    bool createPersistent(const EntrySerializeInformation &record, const QString &uuid);
    bool createAndDeserializeEntryInHierarchy(const EntryDeserializeInformation &information);
    bool createEntryInHierarchy(const NodePtr &parent, const EntryPtr &entry);
    bool finishNew(const EntryPtr &entry);
    std::shared_ptr<ClassificationNameEntry> createEntryForClassificationAndName(const EntryPtr &entry);
    bool deserializeEntry(const EntryPtr &entry, const EntryDeserializeInformation &information) const;
    bool copyElementsFromSource(const EntryInfo &info) const;

    void handleCreateNotification(const ResultType &result) const;

    Examiners examiner;
    std::shared_ptr<Notification::CreateObserver> observer;
    QStringList createdPaths;
};

} // namespace Tessellum::AppData::Data::Entries
