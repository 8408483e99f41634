#pragma once

#include <QMutex>

#include <memory>
#include <utility>

namespace Tessellum::Notification::utils {

/*!
 * The one pointer to what a repository has from its start to its stop; empty in between. Any thread may call.
 * The mutex is taken last and only to copy the pointer.
 */
template <class Run>
class CurrentRun
{
public:
    std::shared_ptr<const Run> get() const
    {
        const QMutexLocker locker(&mutex);
        return run;
    }

    /*! What \a member of the present run holds; empty between the runs. */
    template <class T>
    std::shared_ptr<T> get(std::shared_ptr<T> Run::*member) const
    {
        const auto present = get();
        return present ? (*present).*member : nullptr;
    }

    /*! Puts \a next in the place of what was, which is returned and may die with the caller. */
    std::shared_ptr<const Run> exchange(const std::shared_ptr<const Run> &next)
    {
        const QMutexLocker locker(&mutex);
        return std::exchange(run, next);
    }

private:
    mutable QMutex mutex;
    std::shared_ptr<const Run> run;
};

} // namespace Tessellum::Notification::utils
