#pragma once

#include <appdata/utils/RepositoryDataEntryProvider.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! The entries as an application gets them. */
class WrappedRepositoryDataEntryProvider : public Interfaces::RepositoryDataEntryInterface,
                                           private WrappedFront<RepositoryDataEntryProvider>
{
public:
    using WrappedFront::WrappedFront;

    ConstEntryPtr getDataEntry(const QString &classification, const QString &name) const override;
    EntryPtr getDataEntry(const QString &classification, const QString &name) override;
    ConstEntryPtr getDataEntry(const QString &uuid) const override;
    EntryPtr getDataEntry(const QString &uuid) override;
    QList<EntryPtr> getDataEntries(const QString &pattern) const override;
    EntryPtr addDataEntry(const QString &storage, const QString &classification, const QString &name,
                          const CategoryType &categoryType, const QString &categoryDetail,
                          const PersistenceType &persistence, const bool &singleElement) override;
    EntryPtr addDataEntryExtended(const QString &storage,
                                  const QHash<QString, QVariant> &properties) override;
    int removeDataEntries(const QString &pattern) override;
    bool removeDataEntry(const QString &uuid) override;
    bool removeDataEntryFromStorage(const QString &storageName, const QString &uuid) override;
};

} // namespace Tessellum::AppData::utils
