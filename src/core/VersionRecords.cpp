#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/backends/VersionInformationBackend.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <core/VersionRecords.h>
#include <notification/RepositoryLocks.h>
#include <notification/utils/PoolWait.h>
#include <shared/hierarchy/HierarchyStringPathLink.h>

namespace Tessellum::Core {

namespace {

using AppConfig::utils::RepositoryProvider;
using Shared::VersionInformation::VersionInformation;

/*! Guards the records of plug-ins; taken last. */
QBasicMutex pluginRecordsMutex;

VersionInformationList &pluginRecords()
{
    static auto *const records = new VersionInformationList;
    return *records;
}

QString recordPath(const VersionInformation &record)
{
    return RepositoryProvider::getInstance()->getPathFromPathElements(
        {QStringLiteral("modules"), QStringLiteral("information"), record.getVersionIdentifier()});
}

std::shared_ptr<Notification::CreateObserver> startRecord(const VersionInformation &record)
{
    RepositoryProvider *const repository = RepositoryProvider::getInstance();
    const QWriteLocker locker(&appConfigLock());
    const auto backends = repository->getBackendProvider();
    if (!backends)
        return nullptr;
    AppConfig::Backends::BackendCreateDataDetails details;
    details.data = QVariant::fromValue(record);
    details.description = QStringLiteral("Created version information");
    details.access = AppConfig::Attributes::AttributeAccess::Read;
    return backends->startCreateBackend(
        AppConfig::Backends::VersionInformationBackend::TypeKeys().constFirst(), recordPath(record), details,
        Notification::CreatePoint::Done, repository->getInternalRoot());
}

void addToModules(const VersionInformation &record)
{
    RepositoryProvider *const repository = RepositoryProvider::getInstance();
    const QWriteLocker locker(&appConfigLock());
    const auto modules = repository->getListPattern(QStringLiteral("names"), QStringLiteral("modules"));
    const auto node = repository->getInternalRoot()->findChildByRelativePath(recordPath(record));
    if (!modules || !node)
        return;
    const Shared::Hierarchy::HierarchyStringPathLink place(node->getNodePath());
    modules->addElementToList(record.getVersionIdentifier(), QVariant::fromValue(place), false);
}

} // namespace

VersionInformation LibraryVersionRecord(const QString &libraryFile)
{
    return VersionInformation(QStringLiteral("Tessellum"), QStringLiteral(":/Tessellum.vft"), libraryFile);
}

bool registerVersionInformation(const VersionInformationList &records)
{
    for (const VersionInformation &record : records) {
        if (record.getVersionIdentifier().isEmpty())
            continue;
        // No lock while waiting: the pool's threads may be busy with tasks whose code waits for it.
        const auto observer = startRecord(record);
        if (Notification::utils::WaitForSuccess(RepositoryProvider::getInstance()->getThreadPool(), observer))
            addToModules(record);
    }
    return true;
}

void rememberPluginRecords(const VersionInformationList &records)
{
    const QMutexLocker locker(&pluginRecordsMutex);
    pluginRecords().append(records);
}

VersionInformationList rememberedPluginRecords()
{
    const QMutexLocker locker(&pluginRecordsMutex);
    return pluginRecords();
}

} // namespace Tessellum::Core
