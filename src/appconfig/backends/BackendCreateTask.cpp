#include <appconfig/backends/BackendCreateTask.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/utils/MakeNode.h>
#include <notification/utils/NotifyExaminers.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/hierarchy/HierarchyStringPathLink.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutex>

#include <exception>

using Shared::Hierarchy::HierarchyNodeInstance;
using Shared::Hierarchy::HierarchyStringPathLink;
using Shared::Logging::FrameworkLog;
using Tessellum::Notification::CreateObserver;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::utils::MakeNode;

namespace Tessellum::AppConfig::Backends {

namespace {

/*! Orders the hanging in of a backend against the removal of plain parents that stayed empty, or a backend
 * could land in a parent that another task takes away. Taken before the locks of nodes; nothing waits and no
 * backend's function runs under it. */
QBasicMutex parentsMutex;

QString JoinedPath(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &parent, const QString &path)
{
    const auto parentPath = parent->getNodePath();
    const QString full = parentPath->getFullPath();
    return full.isEmpty() ? path : parentPath->getPathFromPathElements({full, path});
}

} // namespace

/*! What a task has hung into the tree. Takes it away again unless it is told to keep it. */
class BackendCreateTask::Traces
{
public:
    explicit Traces(const std::shared_ptr<Backend> &createdBackend)
        : backend(createdBackend)
    { }
    Q_DISABLE_COPY_MOVE(Traces)
    ~Traces()
    {
        if (!keep)
            remove();
    }

    bool hangIn(NodePtr parent, const QStringList &parentElements)
    {
        const QMutexLocker lock(&parentsMutex);
        for (const QString &element : parentElements) {
            parent = childOf(parent, element);
            if (!parent)
                return false;
        }
        return parent->addChild(backend, nullptr);
    }

    void setKept() { keep = true; }

private:
    NodePtr childOf(const NodePtr &parent, const QString &id)
    {
        if (auto present = parent->findChildByRelativePath(id))
            return present;
        const NodePtr made = MakeNode<HierarchyNodeInstance>(id);
        if (parent->addChild(made, nullptr)) {
            madeParents.prepend(made);
            return made;
        }
        // Somebody else was quicker.
        return parent->findChildByRelativePath(id);
    }

    void remove()
    {
        backend->setDeleteFlag();
        const QMutexLocker lock(&parentsMutex);
        for (const NodePtr &node : qAsConst(madeParents)) {
            if (!removeIfEmpty(node))
                return;
        }
    }

    static bool removeIfEmpty(const NodePtr &node)
    {
        const NodePtr above = node->getParent();
        if (!above || node->getNumberOfChildren() > 0)
            return false;
        node->setParent({}, true);
        if (node->getNumberOfChildren() > 0) {
            // Another task has found it meanwhile and hung an attribute into it.
            above->addChild(node, nullptr);
            return false;
        }
        return node->setDeleteFlag();
    }

    const std::shared_ptr<Backend> backend;
    QList<NodePtr> madeParents; // the deepest first
    bool keep = false;
};

BackendCreateTask::BackendCreateTask(const Examiners &createExaminer,
                                     const std::weak_ptr<Core::HierarchyListPattern> &backendNames,
                                     const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &parent,
                                     const QString &backendPath, const QVariant &createData,
                                     const CreatePoint &callersWaitPoint)
    : CreateTask(parent, backendPath, createData)
    , examiner(createExaminer)
    , names(backendNames)
    , waitPoint(callersWaitPoint)
    , observer(std::make_shared<CreateObserver>(
          [callersWaitPoint](const CreateObserver::ResultType &result) {
              return Notification::ReachesWaitPoint(callersWaitPoint, result);
          },
          [this](const CreateObserver::ResultType &result) { handleCreateNotification(result); }))
{ }

CreateObserver::ResultType BackendCreateTask::runCreate()
{
    if (!data.canConvert<BackendCreateData>()) {
        FrameworkLog().warning() << "BackendCreateTask::runCreate() failed to convert the create data into "
                                    "BackendCreateData, no backend created";
        observer->report({CreatePoint::Begin, false});
        return observer->getResult();
    }
    const NodePtr parent = root.lock();
    if (!parent || parent->isDeleteFlagSet() || path.isEmpty()) {
        observer->report({CreatePoint::Begin, false});
        return observer->getResult();
    }
    const bool exists = parent->findChildByRelativePath(path) != nullptr;
    observer->report({CreatePoint::Begin, !exists});
    if (exists)
        return observer->getResult();

    bool created = false;
    std::exception_ptr failure;
    try {
        created = createBackend(parent);
    } catch (...) {
        // Who waits and who listens must hear of the end first; run() then logs the exception.
        failure = std::current_exception();
    }
    observer->report({CreatePoint::Done, created});
    if (failure)
        std::rethrow_exception(failure);
    return observer->getResult();
}

std::shared_ptr<CreateObserver> BackendCreateTask::getObserver()
{
    return observer;
}

bool BackendCreateTask::createBackend(const NodePtr &parent) const
{
    QStringList elements = parent->getNodePath()->getPathElementsFromPath(path);
    const std::shared_ptr<Backend> backend = createBackendForHierarchy(elements);
    if (!backend)
        return false;
    elements.removeLast();
    Traces traces(backend);
    if (!traces.hangIn(parent, elements)
        || !backend->loadAttributes(AppConfig::utils::RepositoryProvider::getInstance()->getThreadPool(),
                                    waitPoint)) {
        return false;
    }
    traces.setKept();
    addToNames(backend);
    return true;
}

std::shared_ptr<Backend> BackendCreateTask::createBackendForHierarchy(const QStringList &elements) const
{
    auto createData = data.value<BackendCreateData>();
    if (createData.type.isEmpty() || createData.name.isEmpty()) {
        FrameworkLog().warning()
            << "BackendCreateTask::createBackendForHierarchy() supplied creation data is "
               "empty, no backend created";
        return nullptr;
    }
    const auto creator = AppConfig::utils::RepositoryProvider::getInstance()->getCreator(createData.type);
    if (!creator) {
        FrameworkLog().warning()
            << "BackendCreateTask::createBackendForHierarchy() cannot create backend with unknown type: '"
            << createData.type << "' or empty name: '" << path << "'";
        return nullptr;
    }
    createData.name = elements.last();
    // No node can have an empty name, so a path with an empty element leads nowhere.
    const std::shared_ptr<Backend> backend = elements.contains(QString()) ? nullptr : creator(createData);
    if (!backend) {
        FrameworkLog().warning()
            << "BackendCreateTask::createBackendForHierarchy() failed to create backend '" << createData.name
            << "'";
    }
    return backend;
}

void BackendCreateTask::addToNames(const std::shared_ptr<Backend> &backend) const
{
    if (const auto list = names.lock()) {
        list->addElementToList(backend->getId(),
                               QVariant::fromValue(HierarchyStringPathLink(backend->getNodePath())), true);
    }
}

void BackendCreateTask::handleCreateNotification(const CreateObserver::ResultType &result) const
{
    if (!examiner || examiner->isEmpty())
        return;
    if (const NodePtr parent = root.lock()) {
        Notification::utils::NotifyExaminers(examiner, JoinedPath(parent, path), result.first, result.second);
    }
}

} // namespace Tessellum::AppConfig::Backends
