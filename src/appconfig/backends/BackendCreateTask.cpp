#include <appconfig/backends/BackendCreateTask.h>
#include <appconfig/utils/LiveNode.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/utils/MakeNode.h>
#include <notification/utils/NotifyExaminers.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/hierarchy/HierarchyStringPathLink.h>
#include <shared/logging/FrameworkLog.h>

using Shared::Hierarchy::HierarchyNodeInstance;
using Shared::Hierarchy::HierarchyStringPathLink;
using Shared::Logging::FrameworkLog;
using Tessellum::Notification::CreateObserver;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::utils::MakeNode;

namespace Tessellum::AppConfig::Backends {

namespace {

// Only a parent that another task removes makes a further attempt necessary.
constexpr int MaximumAttempts = 100;

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

    // No lock is held: a slot that hears of the new nodes may wait for another backend.
    bool hangIn(const NodePtr &parent, const QStringList &parentElements)
    {
        for (int attempt = 0; attempt < MaximumAttempts && !parent->isDeleteFlagSet(); ++attempt) {
            QList<NodePtr> way{parent};
            for (const QString &element : parentElements)
                way.append(childOf(way.constLast(), element));
            // What another task made first may have gone again with it.
            if (way.contains(nullptr))
                continue;
            if (!way.constLast()->addChild(backend, nullptr))
                return false;
            // Another task may have taken one of them away as one that stayed empty.
            if (AppConfig::utils::AreAllLive(way))
                return true;
        }
        return false;
    }

    void setKept() { keep = true; }

private:
    NodePtr childOf(const NodePtr &parent, const QString &id)
    {
        if (!parent)
            return nullptr;
        if (auto present = parent->findChildByRelativePath(id))
            return present;
        const auto made = MakeNode<HierarchyNodeInstance>(id);
        for (int attempt = 0; attempt < MaximumAttempts; ++attempt) {
            if (HierarchyNodeInstance::AddIfAbsent(*parent, made)) {
                madeParents.prepend(made);
                return made;
            }
            // Somebody else was quicker, but may have taken its own away again.
            if (auto present = parent->findChildByRelativePath(id))
                return present;
        }
        return nullptr;
    }

    void remove()
    {
        backend->setDeleteFlag();
        for (const auto &node : qAsConst(madeParents))
            node->setDeleteFlagIfEmpty();
    }

    const std::shared_ptr<Backend> backend;
    QList<std::shared_ptr<HierarchyNodeInstance>> madeParents; // a child before its parent
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
    , observer(makeObserver(callersWaitPoint,
                            [this](const ResultType &result) { handleCreateNotification(result); }))
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

    return reportOutcome(*observer, [&] { return createBackend(parent); });
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
