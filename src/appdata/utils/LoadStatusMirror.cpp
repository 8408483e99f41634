#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/LiveNode.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/DataTypeStrings.h>
#include <appdata/utils/LoadStatusMirror.h>

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
        if (!(mayCreate && createMissing(first)) && !update(next)) {
            const QMutexLocker locker(&mutex);
            underWay = false; // the configuration does not run
        }
    }

    QString path() const
    {
        const auto target = AppConfig::utils::LockLiveNode(node);
        return target ? joined(rootOf(target->getNodePath()->getFullPath()), QStringLiteral("loaded"))
                      : QString();
    }

    bool createMissing(LoadStatus status)
    {
        const QString attribute = path();
        const auto provider = ConfigurationProvider::getInstance()->getManipulationProvider();
        if (attribute.isEmpty() || !provider
            || ConfigurationProvider::getInstance()->getRoot()->findChildByRelativePath(attribute)) {
            return false;
        }
        return goOnAfter(provider->startCreateAttribute(attribute, ConvertDataEntryLoadStatusToString(status),
                                                        CreatePoint::All,
                                                        AttributeAccess::Read | AttributeAccess::Write));
    }

    bool update(LoadStatus status)
    {
        const auto provider = ConfigurationProvider::getInstance()->getManipulationProvider();
        const QString attribute = path();
        if (attribute.isEmpty() || !provider)
            return false;
        {
            const QMutexLocker locker(&mutex);
            shown = status;
        }
        return goOnAfter(provider
                             ->startUpdateAttribute(attribute, ConvertDataEntryLoadStatusToString(status),
                                                    UpdatePoint::All)
                             .observer);
    }

    template <class Observer>
    bool goOnAfter(const std::shared_ptr<Observer> &observer)
    {
        if (!observer)
            return false;
        observer->whenEnded([self = shared_from_this()] { self->startStep(); });
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
