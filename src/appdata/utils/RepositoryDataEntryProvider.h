#pragma once

#include <appdata/data/entries/EntryInfo.h>
#include <appdata/interfaces/RepositoryDataEntryInterface.h>
#include <notification/Observer.h>
#include <notification/ThreadPool.h>

namespace Tessellum::AppData::utils {

/*! The work behind RepositoryDataEntryInterface; holds no lock. */
class RepositoryDataEntryProvider : public Interfaces::RepositoryDataEntryInterface
{
public:
    using Properties = QHash<QString, QVariant>;

    RepositoryDataEntryProvider(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &root,
                                Notification::ThreadPool *pool);

    ConstEntryPtr getDataEntry(const QString &classification, const QString &name) const override;
    EntryPtr getDataEntry(const QString &classification, const QString &name) override;
    ConstEntryPtr getDataEntry(const QString &uuid) const override;
    EntryPtr getDataEntry(const QString &uuid) override;
    QList<EntryPtr> getDataEntries(const QString &pattern) const override;
    EntryPtr addDataEntry(const QString &storage, const QString &classification, const QString &name,
                          const CategoryType &categoryType, const QString &categoryDetail,
                          const PersistenceType &persistence, const bool &singleElement) override;
    EntryPtr addDataEntryExtended(const QString &storage, const Properties &properties) override;
    int removeDataEntries(const QString &pattern) override;
    bool removeDataEntry(const QString &uuid) override;
    bool removeDataEntryFromStorage(const QString &storageName, const QString &uuid) override;

    /*! Starts the create that \a properties describe and does not wait; \a info, not null, becomes the
     * request, which the task completes. Null where something is missing or the task cannot start. */
    std::shared_ptr<Notification::CreateObserver>
    addDataEntryAsynchronous(const Properties &properties, const Data::Entries::EntryInfoContainer &info,
                             const QString &storage, const Notification::CreatePoint &point);
    Notification::ThreadPool *getThreadPool() const { return pool; }

    /*! What addDataEntry() is given, as properties. */
    static Properties MakeProperties(const QString &classification, const QString &name,
                                     const CategoryType &categoryType, const QString &categoryDetail,
                                     const PersistenceType &persistence, bool singleElement);

private:
    const std::shared_ptr<Shared::Hierarchy::HierarchyNode> root;
    Notification::ThreadPool *const pool;
};

} // namespace Tessellum::AppData::utils
