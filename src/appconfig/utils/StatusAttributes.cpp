#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/StatusAttributes.h>
#include <notification/Observer.h>

#include <QHash>
#include <QMap>
#include <QMutex>

namespace Tessellum::AppConfig::utils {

using Attributes::AttributeAccess;
using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;

/*! What is asked for at one root. The members are guarded by the mutex of the roots. */
struct StatusAttributes::State : public std::enable_shared_from_this<State>
{
    struct Wish
    {
        QVariant value;
        bool onlyMissing = false;
    };
    struct Roots
    {
        QMutex mutex;
        QHash<QString, std::shared_ptr<State>> states; // those in use, and those with a task on its way
    };

    State(const std::shared_ptr<Roots> &allRoots, const QString &path)
        : roots(allRoots)
        , root(path)
    { }

    static std::shared_ptr<State> join(const QString &path)
    {
        // Also held by each state: some leave only while the process ends.
        static const auto all = std::make_shared<Roots>();
        const QMutexLocker locker(&all->mutex);
        auto &state = all->states[path];
        if (!state)
            state = std::make_shared<State>(all, path);
        ++state->users;
        return state;
    }

    void leave()
    {
        {
            const QMutexLocker locker(&roots->mutex);
            if (--users > 0)
                return;
            wishes.clear();
            removalIsDue = isMade;
            if (!removalIsDue && !isUnderWay)
                roots->states.remove(root);
        }
        go();
    }

    void wish(const QString &child, const Wish &wanted)
    {
        {
            const QMutexLocker locker(&roots->mutex);
            wishes.insert(child, wanted);
            isMade = true;
        }
        go();
    }

    void go()
    {
        {
            const QMutexLocker locker(&roots->mutex);
            if (isUnderWay || (wishes.isEmpty() && !removalIsDue))
                return;
            isUnderWay = true;
        }
        startStep();
    }

    /*! Starts the next task; its end calls this again. */
    void startStep()
    {
        for (;;) {
            QString child;
            Wish next;
            bool removes = false;
            {
                const QMutexLocker locker(&roots->mutex);
                removes = std::exchange(removalIsDue, false);
                if (removes)
                    isMade = !wishes.isEmpty();
                if (!removes && wishes.isEmpty()) {
                    isUnderWay = false;
                    if (users == 0)
                        roots->states.remove(root);
                    return;
                }
                if (!removes) {
                    child = wishes.firstKey();
                    next = wishes.take(child);
                }
            }
            if (removes ? startRemoval() : start(pathOf(child), next))
                return;
        }
    }

    bool startRemoval()
    {
        const auto provider = RepositoryProvider::getInstance()->getManipulationProvider();
        return provider && goOnAfter(provider->startDeleteAttribute(root, DeletePoint::Done));
    }

    bool start(const QString &path, const Wish &wanted)
    {
        const auto provider = RepositoryProvider::getInstance()->getManipulationProvider();
        if (!provider)
            return false;
        if (!RepositoryProvider::getInstance()->getRoot()->findChildByRelativePath(path)) {
            return goOnAfter(provider->startCreateAttribute(path, wanted.value, CreatePoint::Done,
                                                            AttributeAccess::Read | AttributeAccess::Write));
        }
        return !wanted.onlyMissing
            && goOnAfter(provider->startUpdateAttribute(path, wanted.value, UpdatePoint::Done).observer);
    }

    template <class Observer>
    bool goOnAfter(const std::shared_ptr<Observer> &observer)
    {
        if (!observer)
            return false;
        observer->whenEnded([self = shared_from_this()] { self->startStep(); });
        return true;
    }

    QString pathOf(const QString &child) const
    {
        return child.isEmpty()
            ? root
            : root + Shared::Hierarchy::HierarchyNode::GetHierarchyNodePathSeparator() + child;
    }

    const std::shared_ptr<Roots> roots;
    const QString root;
    QMap<QString, Wish> wishes;
    int users = 0;
    bool isMade = false;
    bool removalIsDue = false;
    bool isUnderWay = false;
};

StatusAttributes::StatusAttributes(const QString &rootPath)
    : state(State::join(rootPath))
{ }

StatusAttributes::~StatusAttributes()
{
    state->leave();
}

void StatusAttributes::set(const QString &child, const QVariant &value)
{
    state->wish(child, {value, false});
}

void StatusAttributes::provide(const QString &child, const QVariant &value)
{
    state->wish(child, {value, true});
}

bool StatusAttributes::isThere(const QString &child) const
{
    return RepositoryProvider::getInstance()->getRoot()->findChildByRelativePath(pathOf(child)) != nullptr;
}

QString StatusAttributes::pathOf(const QString &child) const
{
    return state->pathOf(child);
}

} // namespace Tessellum::AppConfig::utils
