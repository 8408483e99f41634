#include <appconfig/backends/ObjectPropertiesBackend.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <notification/utils/PoolWait.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppConfig::utils {

using Backends::Backend;
using Backends::BackendCreateData;
using Backends::BackendCreateDataDetails;
using Notification::CreateObserver;
using Notification::CreatePoint;

RepositoryBackendProvider::RepositoryBackendProvider(
    const NodePtr &repositoryRoot, const std::shared_ptr<Core::HierarchyListPattern> &nameList,
    Notification::ThreadPool *taskPool)
    : root(repositoryRoot)
    , names(nameList)
    , pool(taskPool)
{ }

bool RepositoryBackendProvider::createBackend(const QString &type, const QString &name,
                                              const BackendCreateDataDetails &details,
                                              const CreatePoint &waitPoint)
{
    const auto bound = Backends::ObjectPropertiesBackend::BindObject(type, details);
    return Notification::utils::WaitForSuccess(*pool, startCreateBackend(type, name, bound, waitPoint));
}

QString RepositoryBackendProvider::getBackendDescription(const QString &name) const
{
    const auto backend = findBackend(name);
    return backend ? backend->getDescription() : QString();
}

bool RepositoryBackendProvider::saveBackend(const QString &name)
{
    return SaveBackend(findBackend(name));
}

QStringList RepositoryBackendProvider::getBackendNames() const
{
    return names->getElements();
}

bool RepositoryBackendProvider::hasBackend(const QString &name) const
{
    return getBackendNames().contains(name);
}

std::shared_ptr<Interfaces::BackendInterface> RepositoryBackendProvider::getBackend(const QString &name) const
{
    return findBackend(name);
}

std::shared_ptr<CreateObserver>
RepositoryBackendProvider::startCreateBackend(const QString &type, const QString &name,
                                              const BackendCreateDataDetails &details,
                                              const CreatePoint &waitPoint, const NodePtr &parent)
{
    if (!pool->isRunning())
        return nullptr;
    const BackendCreateData data(type, name, details);
    return pool->startCreateTask(parent ? parent : root, name, QVariant::fromValue(data), waitPoint);
}

std::shared_ptr<Backend> RepositoryBackendProvider::findBackend(const QString &name) const
{
    const auto element = names->getElement(name);
    QVariant path;
    // The element keeps a link to the path of the node, which reads as an empty text once the node has gone.
    if (!element || !element->getValue(path, QMetaType::QString) || path.toString().isEmpty())
        return nullptr;
    if (auto backend = std::dynamic_pointer_cast<Backend>(root->findChildByRelativePath(path.toString())))
        return backend;
    return findInternalBackend(path.toString());
}

void RepositoryBackendProvider::forgetBackend(const Backend &backend)
{
    // By its path: the list may have given the backend another name than its own.
    const QString backendPath = backend.getNodePath()->getFullPath();
    for (const QString &name : names->getElements()) {
        const auto element = names->getElement(name);
        QVariant path;
        if (element && element->getValue(path, QMetaType::QString) && path.toString() == backendPath)
            names->removeElementFromList(name);
    }
}

std::shared_ptr<Backend> RepositoryBackendProvider::findInternalBackend(const QString &path) const
{
    const auto internalRoot = settings()->getRootNode().lock();
    if (!internalRoot)
        return nullptr;
    QStringList elements = internalRoot->getNodePath()->getPathElementsFromPath(path);
    if (elements.isEmpty() || elements.takeFirst() != internalRoot->getId())
        return nullptr;
    const QString relativePath = internalRoot->getNodePath()->getPathFromPathElements(elements);
    return std::dynamic_pointer_cast<Backend>(internalRoot->findChildByRelativePath(relativePath));
}

bool SaveBackend(const std::shared_ptr<Backend> &backend)
{
    if (!backend)
        return true;
    try {
        return backend->saveAttributes();
    } catch (...) {
        Shared::Logging::FrameworkLog().critical()
            << "RepositoryBackendProvider::saveBackend() catched exception of backend=" << backend->getId();
        return false;
    }
}

} // namespace Tessellum::AppConfig::utils
