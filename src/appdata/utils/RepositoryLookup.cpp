#include <appdata/data/entries/Entry.h>
#include <appdata/InternalSettingsProvider.h>
#include <appdata/storages/Storage.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryProvider.h>

namespace Tessellum::AppData::utils {

using Data::Entries::Entry;
using Storages::Storage;

namespace {

std::shared_ptr<Core::HierarchyListPattern> storageList()
{
    return InternalSettingsProvider().getList(QStringLiteral("names"), QStringLiteral("storages"));
}

} // namespace

std::shared_ptr<Storage> FindStorage(const QString &name)
{
    const auto list = storageList();
    const auto element = list ? list->getElement(name) : nullptr;
    QVariant path;
    if (!element || !element->getValue(path, QMetaType::QString) || path.toString().isEmpty())
        return nullptr;
    return std::dynamic_pointer_cast<Storage>(
        RepositoryProvider::getInstance()->getRoot()->findChildByRelativePath(path.toString()));
}

QList<std::shared_ptr<Storage>> FindStorages()
{
    QList<std::shared_ptr<Storage>> storages;
    for (const QString &name : StorageNames()) {
        if (const auto storage = FindStorage(name))
            storages.append(storage);
    }
    return storages;
}

QStringList StorageNames()
{
    const auto list = storageList();
    return list ? list->getElements() : QStringList();
}

std::shared_ptr<Entry> FindEntry(const QString &uuid)
{
    const auto root = RepositoryProvider::getInstance()->getRoot();
    if (const auto entry = std::dynamic_pointer_cast<Entry>(root->findChildByRelativePath(uuid)))
        return entry;
    // The uuid is the application's to choose, and may have what separates paths.
    if (const auto entry = std::dynamic_pointer_cast<Entry>(root->getChildById(uuid)))
        return entry;
    for (const auto &storage : FindStorages()) {
        if (const auto entry = std::dynamic_pointer_cast<Entry>(storage->getChildById(uuid)))
            return entry;
    }
    return nullptr;
}

} // namespace Tessellum::AppData::utils
