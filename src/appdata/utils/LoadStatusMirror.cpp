#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/LiveNode.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/DataTypeStrings.h>
#include <appdata/utils/LoadStatusMirror.h>
#include <appdata/utils/RepositoryProvider.h>

#include <QMutex>

namespace Tessellum::AppData::utils {

using AppConfig::Attributes::AttributeAccess;
using Notification::CreatePoint;
using Notification::UpdatePoint;
using Shared::Hierarchy::HierarchyNode;
using ConfigurationProvider = AppConfig::utils::RepositoryProvider;

namespace {

QString joined(const QString &left, const QString &right)
{
    return left + HierarchyNode::GetHierarchyNodePathSeparator() + right;
}

QString rootOf(const QString &fullPath)
{
    return joined(QStringLiteral("appdata"), fullPath);
}

QString attributeOf(const QString &fullPath)
{
    return joined(rootOf(fullPath), QStringLiteral("loaded"));
}

} // namespace

/*! Lives as long as a step is on its way, also when the node has gone. */
struct LoadStatusMirror::State : public std::enable_shared_from_this<State>
{
    QMutex mutex;
    std::weak_ptr<HierarchyNode> node;
    LoadStatus created = LoadStatus::Unknown; ///< what a fresh attribute begins with
    LoadStatus wanted = LoadStatus::Unknown;
    LoadStatus shown = LoadStatus::Unknown;
    bool underWay = false;
    bool triedToCreate = false; ///< since the last change: what cannot be created is not tried for ever

    void want(const LoadStatus &old, const LoadStatus &current)
    {
        {
            const QMutexLocker locker(&mutex);
            if (wanted == LoadStatus::Unknown)
                created = old;
            wanted = current;
            triedToCreate = false;
            if (underWay)
                return;
            underWay = true;
        }
        startStep();
    }

    void startStep()
    {
        for (;;) {
            LoadStatus first = LoadStatus::Unknown;
            LoadStatus next = LoadStatus::Unknown;
            bool mayCreate = false;
            {
                const QMutexLocker locker(&mutex);
                if (shown == wanted) {
                    underWay = false;
                    return;
                }
                first = created;
                next = wanted;
                mayCreate = !std::exchange(triedToCreate, true);
            }
            if ((mayCreate && createMissing(first)) || update(next))
                return;
            const QMutexLocker locker(&mutex);
            shown = LoadStatus::Unknown;
            underWay = wanted != next; // what came in between found this step under way
            if (!underWay)
                return; // the configuration does not run, or the node has gone
        }
    }

    /*! The path of the node, empty where it is off the tree. */
    QString nodePath() const
    {
        const auto target = AppConfig::utils::LockLiveNode(node);
        return target ? target->getNodePath()->getFullPath() : QString();
    }

    bool createMissing(LoadStatus status)
    {
        const QString target = nodePath();
        const auto provider = ConfigurationProvider::getInstance()->getManipulationProvider();
        if (target.isEmpty() || !provider
            || ConfigurationProvider::getInstance()->getRoot()->findChildByRelativePath(
                attributeOf(target))) {
            return false;
        }
        return goOnAfter(
            provider->startCreateAttribute(attributeOf(target), ConvertDataEntryLoadStatusToString(status),
                                           CreatePoint::All, AttributeAccess::Read | AttributeAccess::Write),
            target);
    }

    /*! A node that was removed while its attribute was still on its way had nothing to remove then. */
    void removeIfGone(const QString &target) const
    {
        if (nodePath() != target
            && !RepositoryProvider::getInstance()->getRoot()->findChildByRelativePath(target))
            StartRemoval(target);
    }

    bool update(LoadStatus status)
    {
        const auto provider = ConfigurationProvider::getInstance()->getManipulationProvider();
        const QString target = nodePath();
        if (target.isEmpty() || !provider)
            return false;
        {
            const QMutexLocker locker(&mutex);
            shown = status;
        }
        return goOnAfter(provider
                             ->startUpdateAttribute(attributeOf(target),
                                                    ConvertDataEntryLoadStatusToString(status),
                                                    UpdatePoint::All)
                             .observer,
                         target);
    }

    /*! Lets the end of the step, which showed the node at \a target, start the next one. */
    template <class Observer>
    bool goOnAfter(const std::shared_ptr<Observer> &observer, const QString &target)
    {
        if (!observer)
            return false;
        observer->whenEnded([self = shared_from_this(), target] {
            self->removeIfGone(target);
            self->startStep();
        });
        return true;
    }
};

LoadStatusMirror::LoadStatusMirror(const std::weak_ptr<HierarchyNode> &node)
    : state(std::make_shared<State>())
{
    state->node = node;
}

LoadStatusMirror::~LoadStatusMirror() = default;

void LoadStatusMirror::publish(const LoadStatus &old, const LoadStatus &current)
{
    state->want(old, current);
}

std::shared_ptr<Notification::DeleteObserver> LoadStatusMirror::StartRemoval(const QString &fullPath)
{
    const auto provider = ConfigurationProvider::getInstance()->getManipulationProvider();
    return provider ? provider->startDeleteAttribute(rootOf(fullPath), Notification::DeletePoint::Done)
                    : nullptr;
}

} // namespace Tessellum::AppData::utils
