#pragma once

#include <QReadWriteLock>

#include <memory>

namespace Tessellum::AppConfig::utils {

/*!
 * What the fronts that an application gets have in common: a weak hold on the provider of one run, and the
 * repository's lock around each call to it.
 *
 * The lock is held for a look-up, a pointer copy or a start alone: what \a call returns is waited for, read
 * or saved by the caller, after the lock has gone. Once the provider is gone a call gives its result type's
 * empty value.
 */
template <typename Provider>
class ProviderFront
{
public:
    ProviderFront(const std::weak_ptr<Provider> &provider, QReadWriteLock *lock)
        : weakProvider(provider)
        , repositoryLock(lock)
    { }

protected:
    template <typename Call>
    auto reading(Call call) const
    {
        std::shared_ptr<Provider> held; // outlives the locker: its end is no business of the lock
        const QReadLocker locker(repositoryLock);
        return called(held, call);
    }

    template <typename Call>
    auto writing(Call call) const
    {
        std::shared_ptr<Provider> held;
        const QWriteLocker locker(repositoryLock);
        return called(held, call);
    }

private:
    template <typename Call>
    auto called(std::shared_ptr<Provider> &held, Call call) const -> decltype(call(*held))
    {
        held = weakProvider.lock();
        if (held)
            return call(*held);
        return {};
    }

    std::weak_ptr<Provider> weakProvider;
    QReadWriteLock *repositoryLock;
};

} // namespace Tessellum::AppConfig::utils
