#pragma once

#include <notification/DeleteTask.h>
#include <notification/ExaminerRegistration.h>
#include <notification/ThreadPool.h>

namespace Tessellum::AppData::Data::Entries {

class Entry;

/*!
 * Takes an entry with its elements off the tree and out of its pair; the medium is not told. On the node of a
 * pair: all entries of the pair, and the pair with the last. See DeleteTask for threads and reports.
 */
class EntryDeleteTask : public Notification::DeleteTask
{
public:
    using Examiners = std::shared_ptr<Notification::ExaminerRegistration<Notification::DeletePoint>>;

    /*! \a pool takes the tasks of the elements; \a examiner may be empty. */
    EntryDeleteTask(Notification::ThreadPool &pool, const Examiners &examiner,
                    const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &entry, const QString &path,
                    const QVariant &data, const Notification::DeletePoint &waitPoint);

    Notification::DeleteObserver::ResultType runDelete() override;
    std::shared_ptr<Notification::DeleteObserver> getObserver() override;

private:
    void removeEntriesOfPair(const QString &pairPath) const;
    void removeElements(Entry &entry) const;
    void removeEntry(const std::shared_ptr<Entry> &entry, const QString &fullPath) const;
    void handleDeleteNotification(const ResultType &result) const;

    Notification::ThreadPool &pool;
    Examiners examiner;
    std::shared_ptr<Notification::DeleteObserver> observer;
    QStringList paths; // of the entry while it was in the tree
};

} // namespace Tessellum::AppData::Data::Entries
