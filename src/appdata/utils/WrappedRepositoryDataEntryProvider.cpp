#include <appdata/utils/WrappedEntry.h>
#include <appdata/utils/WrappedRepositoryDataEntryProvider.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppData::utils {

using Provider = RepositoryDataEntryProvider;
using EntryPtr = WrappedRepositoryDataEntryProvider::EntryPtr;
using ConstEntryPtr = WrappedRepositoryDataEntryProvider::ConstEntryPtr;

ConstEntryPtr WrappedRepositoryDataEntryProvider::getDataEntry(const QString &classification,
                                                               const QString &name) const
{
    return wrapped<WrappedEntry>(
        [&](Provider &provider) { return provider.getDataEntry(classification, name); });
}

EntryPtr WrappedRepositoryDataEntryProvider::getDataEntry(const QString &classification, const QString &name)
{
    return wrapped<WrappedEntry>(
        [&](Provider &provider) { return provider.getDataEntry(classification, name); });
}

ConstEntryPtr WrappedRepositoryDataEntryProvider::getDataEntry(const QString &uuid) const
{
    return wrapped<WrappedEntry>([&](Provider &provider) { return provider.getDataEntry(uuid); });
}

EntryPtr WrappedRepositoryDataEntryProvider::getDataEntry(const QString &uuid)
{
    return wrapped<WrappedEntry>([&](Provider &provider) { return provider.getDataEntry(uuid); });
}

QList<EntryPtr> WrappedRepositoryDataEntryProvider::getDataEntries(const QString &pattern) const
{
    QList<EntryPtr> handles;
    for (const EntryPtr &entry :
         reading([&](const Provider &provider) { return provider.getDataEntries(pattern); })) {
        handles.append(std::make_shared<WrappedEntry>(entry, lock()));
    }
    return handles;
}

EntryPtr WrappedRepositoryDataEntryProvider::addDataEntry(const QString &storage,
                                                          const QString &classification, const QString &name,
                                                          const CategoryType &categoryType,
                                                          const QString &categoryDetail,
                                                          const PersistenceType &persistence,
                                                          const bool &singleElement)
{
    return addDataEntryExtended(storage,
                                Provider::MakeProperties(classification, name, categoryType, categoryDetail,
                                                         persistence, singleElement));
}

EntryPtr WrappedRepositoryDataEntryProvider::addDataEntryExtended(const QString &storage,
                                                                  const QHash<QString, QVariant> &properties)
{
    if (properties.isEmpty()) {
        Shared::Logging::FrameworkLog().warning()
            << "WrappedRepositoryDataEntryProvider::addDataEntryExtended()"
               "failed to parse empty entry specification";
        return nullptr;
    }
    const EntryPtr entry
        = writing([&](Provider &provider) { return provider.addDataEntryExtended(storage, properties); });
    return entry ? std::make_shared<WrappedEntry>(entry, lock()) : nullptr;
}

int WrappedRepositoryDataEntryProvider::removeDataEntries(const QString &pattern)
{
    return writing([&](Provider &provider) { return provider.removeDataEntries(pattern); });
}

bool WrappedRepositoryDataEntryProvider::removeDataEntry(const QString &uuid)
{
    return writing([&](Provider &provider) { return provider.removeDataEntry(uuid); });
}

bool WrappedRepositoryDataEntryProvider::removeDataEntryFromStorage(const QString &storageName,
                                                                    const QString &uuid)
{
    return writing(
        [&](Provider &provider) { return provider.removeDataEntryFromStorage(storageName, uuid); });
}

} // namespace Tessellum::AppData::utils
