#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/ShownAttribute.h>
#include <shared/synchronization/Singleton.h>

#include <QHash>
#include <QMutex>
#include <QMutexLocker>

#include <functional>
#include <optional>

namespace Tessellum::AppConfig::utils {

using Attributes::AttributeAccess;
using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;

namespace {

/*! What is shown in this process. The mutex guards the table; no task is started while it is held. */
class ShownTable : public Shared::Singleton<ShownTable>
{
    friend class Shared::Singleton<ShownTable>;

public:
    void add(const QString &path, const QVariant &value)
    {
        change(path, [&value](Shown &shown) {
            ++shown.holders;
            shown.value = value;
        });
    }
    void set(const QString &path, const QVariant &value)
    {
        change(path, [&value](Shown &shown) { shown.value = value; });
    }
    void remove(const QString &path)
    {
        change(path, [](Shown &shown) { --shown.holders; });
    }

private:
    struct Shown
    {
        int holders = 0;
        QVariant value;
        bool changed = false; // since the step that is under way began
        bool underWay = false;
    };

    void change(const QString &path, const std::function<void(Shown &)> &apply)
    {
        {
            const QMutexLocker locker(&mutex);
            Shown &shown = table[path];
            apply(shown);
            shown.changed = true;
            if (shown.underWay)
                return;
            shown.underWay = true;
        }
        goOn(path);
    }

    void goOn(const QString &path)
    {
        while (const auto next = takeNext(path)) {
            if (next->holders > 0 ? startShow(path, next->value) : startRemoval(path))
                return; // its end goes on
        }
    }

    /*! Nothing, and nothing is under way any more, where all is as wanted. */
    std::optional<Shown> takeNext(const QString &path)
    {
        const QMutexLocker locker(&mutex);
        const auto shown = table.find(path);
        if (shown->changed) {
            shown->changed = false;
            return *shown;
        }
        shown->underWay = false;
        if (shown->holders == 0)
            table.erase(shown);
        return std::nullopt;
    }

    bool startShow(const QString &path, const QVariant &value)
    {
        const auto provider = RepositoryProvider::getInstance()->getManipulationProvider();
        if (!provider)
            return false;
        const auto update = provider->startUpdateAttribute(path, value, UpdatePoint::Done);
        return update.nodeFound
            ? goOnAfter(path, update.observer)
            : goOnAfter(path,
                        provider->startCreateAttribute(path, value, CreatePoint::Done,
                                                       AttributeAccess::Read | AttributeAccess::Write));
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
    : path(attributePath)
{
    ShownTable::getInstance()->add(path, value);
}

ShownAttribute::~ShownAttribute()
{
    ShownTable::getInstance()->remove(path);
}

void ShownAttribute::show(const QVariant &value) const
{
    ShownTable::getInstance()->set(path, value);
}

} // namespace Tessellum::AppConfig::utils
