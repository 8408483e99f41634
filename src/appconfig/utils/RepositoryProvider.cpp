#include <appconfig/backends/BackendRegistration.h>
#include <appconfig/utils/AttributeNodeVisitors.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/AttributesQueryProvider.h>
#include <appconfig/utils/GlobalPoolJobs.h>
#include <appconfig/utils/RepositoryAttributeValidationProvider.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/RepositoryTeardown.h>
#include <appconfig/utils/TaskFactories.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <notification/RepositoryLocks.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyNodeLink.h>

namespace Tessellum::AppConfig::utils {

using Notification::utils::MakeNode;
using Shared::Hierarchy::HierarchyNodeInstance;
using Shared::Hierarchy::HierarchyNodeLink;
using Shared::SettingsWrapper::SettingsWrapper;

/*! What lives from a start to a stop. The members go in reverse order, the lists last. */
struct RepositoryProvider::Run
{
    QList<NamedListPattern> listPatterns;
    std::shared_ptr<RepositoryBackendProvider> backends;
    std::shared_ptr<AttributesQueryProvider> query;
    std::shared_ptr<Notification::utils::NotificationProvider> notifications;
    std::shared_ptr<RepositoryAttributeValidationProvider> validations;
    std::shared_ptr<AttributesManipulationProvider> manipulation;

    ListPatternPtr list(const QString &first, const QString &second) const
    {
        for (const auto &[names, pattern] : listPatterns) {
            if (names.first == first && names.second == second)
                return pattern;
        }
        return nullptr;
    }
};

namespace {

QList<RepositoryProvider::NamedListPattern> makeListPatterns(Notification::ThreadPool &pool)
{
    static const char *const listNames[][2] = {
        {"names", "backends"},
        {"types", "backends"},
        {"metatypes", "repository"},
        {"names", "modules"},
        {"names", "validations"},
        {"types", "validations"},
        {"names", "memory_strategy"},
        {"types", "memory_strategy"},
        {"names", "storages"},
        {"types", "storages"},
        {"types", "custom_data_elements"},
    };
    QList<RepositoryProvider::NamedListPattern> result;
    for (const auto &[first, second] : listNames) {
        const QString id = QString::fromLatin1(second);
        result.append({{QString::fromLatin1(first), id}, MakeNode<Core::HierarchyListPattern>(&pool, id)});
    }
    return result;
}

/*! Whether \a node is \a ancestor or lies below it. */
bool liesWithin(RepositoryProvider::NodePtr node, const RepositoryProvider::NodePtr &ancestor)
{
    while (node && node != ancestor)
        node = node->getParent();
    return node != nullptr;
}

} // namespace

RepositoryProvider::RepositoryProvider()
    : root(MakeNode<HierarchyNodeInstance>())
    , settingsMutex(QMutex::Recursive)
    , pool(QStringLiteral("AppConfigRepository"), MakeCreateTaskFactory(*this), MakeUpdateTaskFactory(*this),
           MakeDeleteTaskFactory(*this), QThread::idealThreadCount(), true)
{
    Backends::RegisterBackends(*this);
}

RepositoryProvider::~RepositoryProvider() = default;

QStringList RepositoryProvider::getBackendTypes() const
{
    QStringList types = getRegisteredProductIdentifier();
    types.sort();
    return types;
}

QString RepositoryProvider::getPathFromPathElements(const QStringList &elements) const
{
    return root->getNodePath()->getPathFromPathElements(elements);
}

QStringList RepositoryProvider::getPathElementsFromPath(const QString &path) const
{
    return root->getNodePath()->getPathElementsFromPath(path);
}

std::shared_ptr<const Interfaces::RepositoryBackendInterface> RepositoryProvider::getBackendInterface() const
{
    return getBackendProvider();
}

std::shared_ptr<Interfaces::RepositoryBackendInterface> RepositoryProvider::getBackendInterface()
{
    return getBackendProvider();
}

std::shared_ptr<Interfaces::AttributesQueryInterface> RepositoryProvider::getQueryInterface() const
{
    return getQueryProvider();
}

std::shared_ptr<const Interfaces::AttributesManipulationInterface>
RepositoryProvider::getManipulationInterface() const
{
    return getManipulationProvider();
}

std::shared_ptr<Interfaces::AttributesManipulationInterface> RepositoryProvider::getManipulationInterface()
{
    return getManipulationProvider();
}

std::shared_ptr<const Notification::Interfaces::NotificationInterface>
RepositoryProvider::getNotificationInterface() const
{
    return nullptr;
}

std::shared_ptr<Notification::Interfaces::NotificationInterface>
RepositoryProvider::getNotificationInterface()
{
    return nullptr;
}

std::shared_ptr<const Interfaces::RepositoryAttributeValidationInterface>
RepositoryProvider::getValidationInterface() const
{
    return getValidationProvider();
}

std::shared_ptr<Interfaces::RepositoryAttributeValidationInterface>
RepositoryProvider::getValidationInterface()
{
    return getValidationProvider();
}

void RepositoryProvider::setRepositoryActive(NodePtr &keeper, bool stopping)
{
    if (!stopping) {
        start();
        return;
    }
    if (!keeper)
        keeper = MakeNode<HierarchyNodeInstance>();
    stop(keeper);
}

void RepositoryProvider::start()
{
    const QWriteLocker locker(&Core::appConfigLock());
    frameWorkers.open();
    if (isActive()) {
        pool.start();
        return;
    }
    const auto next = std::make_shared<Run>();
    next->listPatterns = makeListPatterns(pool);
    next->backends = std::make_shared<RepositoryBackendProvider>(
        root, next->list(QStringLiteral("names"), QStringLiteral("backends")), &pool);
    next->query = std::make_shared<AttributesQueryProvider>(root);
    next->notifications = std::make_shared<Notification::utils::NotificationProvider>();
    next->validations = std::make_shared<RepositoryAttributeValidationProvider>(root);
    next->manipulation = std::make_shared<AttributesManipulationProvider>(root, &pool);
    run.exchange(next);
    GlobalPoolJobs::BeginRun();
    pool.start();
}

void RepositoryProvider::stop(const NodePtr &keeper)
{
    // The tasks end first and with no lock held, since what they run may call the fronts that lock.
    frameWorkers.close();
    pool.stopAndWait();
    frameWorkers.waitForRunning();
    GlobalPoolJobs::EndRunAndWait();
    // The next run loads them anew, under the same ids.
    Validation::AttributeValidationRepository::getInstance()->unregisterBackendValidations();

    const NodePtr internal = getInternalRoot();
    QList<NodePtr> removed;
    std::shared_ptr<const Run> ended;
    const QWriteLocker locker(&Core::appConfigLock()); // goes before the nodes and providers above do
    RemoveBackends(*root, removed);
    RemoveBackends(*internal, removed);
    MoveChildren(*root, *keeper, removed);
    MoveChildren(*internal, *keeper, removed);
    ended = run.exchange(nullptr);
}

bool RepositoryProvider::isActive() const
{
    return run.get() != nullptr;
}

bool RepositoryProvider::linkNode(const QString &path, const NodePtr &node, const QString &name)
{
    return !path.isEmpty() && addLink(getPathElementsFromPath(path), node, name, false);
}

bool RepositoryProvider::addRootLink(const QString &path, const NodePtr &target, bool readOnly)
{
    if (path.isEmpty())
        return false;
    QStringList elements = getPathElementsFromPath(path);
    const QString id = elements.takeLast();
    return addLink(elements, target, id, readOnly);
}

RepositoryProvider::ListPatternPtr RepositoryProvider::getListPattern(const QString &first,
                                                                      const QString &second) const
{
    const auto present = run.get();
    return present ? present->list(first, second) : nullptr;
}

QList<RepositoryProvider::NamedListPattern> RepositoryProvider::getListPatterns() const
{
    const auto present = run.get();
    return present ? present->listPatterns : QList<NamedListPattern>();
}

std::shared_ptr<SettingsWrapper> RepositoryProvider::getSettings()
{
    const QMutexLocker locker(&settingsMutex);
    if (!settings) {
        internalRoot = MakeNode<HierarchyNodeInstance>(QStringLiteral("internal"));
        settings = std::make_shared<SettingsWrapper>(
            nullptr, internalRoot, AttributeNodeReadVisitor<QString>(), AttributeNodeWriteVisitor<QString>());
    }
    return settings;
}

RepositoryProvider::NodePtr RepositoryProvider::getInternalRoot()
{
    const QMutexLocker locker(&settingsMutex);
    getSettings();
    return internalRoot;
}

RepositoryProvider::NodePtr RepositoryProvider::getRoot() const
{
    return root;
}

Notification::ThreadPool &RepositoryProvider::getThreadPool()
{
    return pool;
}

std::shared_ptr<Notification::utils::NotificationProvider> RepositoryProvider::getNotificationProvider() const
{
    return run.get(&Run::notifications);
}

std::shared_ptr<RepositoryBackendProvider> RepositoryProvider::getBackendProvider() const
{
    return run.get(&Run::backends);
}

std::shared_ptr<AttributesQueryProvider> RepositoryProvider::getQueryProvider() const
{
    return run.get(&Run::query);
}

std::shared_ptr<AttributesManipulationProvider> RepositoryProvider::getManipulationProvider() const
{
    return run.get(&Run::manipulation);
}

std::shared_ptr<RepositoryAttributeValidationProvider> RepositoryProvider::getValidationProvider() const
{
    return run.get(&Run::validations);
}

bool RepositoryProvider::addLink(const QStringList &parentPath, const NodePtr &target, const QString &id,
                                 bool readOnly)
{
    if (!target || id.isEmpty())
        return false;
    NodePtr parent = root;
    QList<std::shared_ptr<HierarchyNodeInstance>> made; // a child before its parent
    for (const QString &element : parentPath) {
        NodePtr child = parent->getChildById(element);
        if (!child) {
            const auto plain = MakeNode<HierarchyNodeInstance>(element);
            if (HierarchyNodeInstance::AddIfAbsent(*parent, plain))
                made.prepend(plain);
            child = parent->getChildById(element); // somebody else's if it was first; none has an empty name
        }
        if (!(parent = child))
            break;
    }
    const bool added = parent && !liesWithin(parent, target)
        && parent->addChild(MakeNode<HierarchyNodeLink>(target, id, readOnly));
    if (!added) {
        for (const auto &node : qAsConst(made))
            node->setDeleteFlagIfEmpty();
    }
    return added;
}

} // namespace Tessellum::AppConfig::utils
