#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/ShownAttribute.h>
#include <shared/hierarchy/HierarchyNode.h>
#include <shared/synchronization/Singleton.h>

#include <QHash>
#include <QMap>
#include <QMutex>
#include <QMutexLocker>

#include <optional>
#include <utility>

namespace Tessellum::AppConfig::utils {

using Attributes::AttributeAccess;
using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;

namespace {

/*! Empty for the path itself. */
QString PathOf(const QString &path, const QString &child)
{
    return child.isEmpty() ? path
                           : path + Shared::Hierarchy::HierarchyNode::GetHierarchyNodePathSeparator() + child;
}

/*! What is shown in this process. The mutex guards the table; nothing is called while it is held. */
class ShownTable : public Shared::Singleton<ShownTable>
{
    friend class Shared::Singleton<ShownTable>;

public:
    struct Wish
    {
        QVariant value;
        QVariant first; // of an attribute that is missing
    };

    void add(const QString &path, const ShownAttribute::Presence &isPresent)
    {
        const QMutexLocker locker(&mutex);
        Shown &shown = table[path];
        ++shown.holders;
        shown.isPresent = isPresent;
    }
    void set(const QString &path, const QString &child, const Wish &wish)
    {
        {
            const QMutexLocker locker(&mutex);
            Shown &shown = table[path];
            shown.wishes.insert(child, wish);
            if (std::exchange(shown.isUnderWay, true))
                return;
        }
        goOn(path);
    }
    void remove(const QString &path)
    {
        {
            const QMutexLocker locker(&mutex);
            const auto shown = table.find(path);
            if (--shown->holders > 0 || shown->isUnderWay)
                return;
            if (shown->isPresent || !shown->isMade) {
                table.erase(shown);
                return;
            }
            shown->isUnderWay = true;
        }
        goOn(path);
    }

private:
    struct Shown
    {
        int holders = 0;
        ShownAttribute::Presence isPresent; // empty: shown for the holders' sake
        QMap<QString, Wish> wishes; // by the child, which is empty for the path itself
        bool isMade = false; // a task has been started since the last removal
        bool isUnderWay = false;
    };
    struct Step
    {
        QString child;
        std::optional<Wish> wish; // nothing: the removal
    };

    void goOn(const QString &path)
    {
        while (const auto step = takeNext(path)) {
            if (step->wish ? startShow(path, step->child, *step->wish) : startRemoval(path))
                return; // its end goes on
        }
    }

    /*! Nothing, and nothing is under way any more, where all is as wanted. */
    std::optional<Step> takeNext(const QString &path)
    {
        const bool isPresent = askPresence(path);
        const QMutexLocker locker(&mutex);
        const auto shown = table.find(path);
        const bool isLeft = shown->holders == 0;
        if (isLeft || !isPresent)
            shown->wishes.clear();
        if (shown->isMade && (!isPresent || (isLeft && !shown->isPresent))) {
            shown->isMade = false;
            return Step();
        }
        if (!shown->wishes.isEmpty()) {
            shown->isMade = true;
            const QString child = shown->wishes.firstKey();
            return Step{child, shown->wishes.take(child)};
        }
        shown->isUnderWay = false;
        if (isLeft)
            table.erase(shown);
        return std::nullopt;
    }

    bool askPresence(const QString &path)
    {
        ShownAttribute::Presence isPresent;
        {
            const QMutexLocker locker(&mutex);
            isPresent = table.constFind(path)->isPresent;
        }
        return !isPresent || isPresent();
    }

    bool startShow(const QString &path, const QString &child, const Wish &wish)
    {
        const auto provider = RepositoryProvider::getInstance()->getManipulationProvider();
        if (!provider)
            return false;
        const QString fullPath = PathOf(path, child);
        const auto update = provider->startUpdateAttribute(fullPath, wish.value, UpdatePoint::Done);
        if (update.nodeFound)
            return goOnAfter(path, update.observer);
        const bool hasFirst = wish.first.isValid() && wish.first != wish.value;
        if (hasFirst)
            wishAgain(path, child, {wish.value, QVariant()});
        return goOnAfter(path,
                         provider->startCreateAttribute(fullPath, hasFirst ? wish.first : wish.value,
                                                        CreatePoint::Done,
                                                        AttributeAccess::Read | AttributeAccess::Write));
    }

    void wishAgain(const QString &path, const QString &child, const Wish &wish)
    {
        const QMutexLocker locker(&mutex);
        auto &wishes = table[path].wishes;
        if (!wishes.contains(child))
            wishes.insert(child, wish);
    }

    bool startRemoval(const QString &path)
    {
        const auto provider = RepositoryProvider::getInstance()->getManipulationProvider();
        return provider && goOnAfter(path, provider->startDeleteAttribute(path, DeletePoint::Done));
    }

    template <class Observer>
    bool goOnAfter(const QString &path, const std::shared_ptr<Observer> &observer)
    {
        if (observer)
            observer->whenEnded([this, path] { goOn(path); });
        return observer != nullptr;
    }

    QMutex mutex;
    QHash<QString, Shown> table;
};

} // namespace

ShownAttribute::ShownAttribute(const QString &attributePath, const QVariant &value)
    : ShownAttribute(attributePath)
{
    show(value);
}

ShownAttribute::ShownAttribute(const QString &rootPath)
    : ShownAttribute(Presence(), rootPath)
{ }

ShownAttribute::ShownAttribute(const Presence &isPresent, const QString &rootPath)
    : path(rootPath)
{
    ShownTable::getInstance()->add(path, isPresent);
}

ShownAttribute::~ShownAttribute()
{
    ShownTable::getInstance()->remove(path);
}

void ShownAttribute::show(const QVariant &value) const
{
    showChild(QString(), value);
}

void ShownAttribute::showChild(const QString &child, const QVariant &value, const QVariant &first) const
{
    ShownTable::getInstance()->set(path, child, {value, first});
}

QString ShownAttribute::getChildPath(const QString &child) const
{
    return PathOf(path, child);
}

} // namespace Tessellum::AppConfig::utils
