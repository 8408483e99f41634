#pragma once

#include <QReadWriteLock>

#include <memory>
#include <utility>

namespace Tessellum::AppData::utils {

/*!
 * What the handles that an application gets have in common: a weak hold on what they stand for.
 *
 * The repository's lock is held while the pointer is taken and let go before the target is called, since
 * that may wait for a task, load from a storage or run code of the application. Once the target is gone a
 * call gives its result type's empty value.
 */
template <class Target>
class WrappedFront
{
public:
    WrappedFront(const std::weak_ptr<Target> &wrapped, QReadWriteLock *lock)
        : target(wrapped)
        , repositoryLock(lock)
    { }

protected:
    ~WrappedFront() = default;
    QReadWriteLock *lock() const { return repositoryLock; }

    template <class Call>
    auto reading(Call call) const
    {
        return called(take<QReadLocker>(), call);
    }

    template <class Call>
    auto writing(Call call) const
    {
        return called(take<QWriteLocker>(), call);
    }

    /*! A handle of class \a Wrapper for what \a call gives; null for null. */
    template <class Wrapper, class Call>
    std::shared_ptr<Wrapper> wrapped(Call call) const
    {
        const auto found = reading(call);
        return found ? std::make_shared<Wrapper>(found, repositoryLock) : nullptr;
    }

    template <class Locker>
    std::shared_ptr<Target> take() const
    {
        const Locker locker(repositoryLock);
        return target.lock();
    }

private:
    template <class Call>
    static auto called(const std::shared_ptr<Target> &held, Call call) -> decltype(call(*held))
    {
        if (held)
            return call(*held);
        return {};
    }

    const std::weak_ptr<Target> target;
    QReadWriteLock *const repositoryLock;
};

} // namespace Tessellum::AppData::utils
