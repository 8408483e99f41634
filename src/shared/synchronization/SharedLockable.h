#pragma once

#include <shared/synchronization/Lockable.h>
#include <shared/synchronization/QApplicationMainThreadMover.h>
#include <shared/synchronization/Shareable.h>

namespace Shared::Synchronization {

/*! A Lockable that lives in a std::shared_ptr<T> and can hand it out. T is the class that derives from this.
 */
template <class T>
class TESSELLUM_EXPORT SharedLockable : public Lockable,
                                        public Shareable<T>,
                                        public QApplicationMainThreadMover
{
public:
    explicit SharedLockable(const QMutex::RecursionMode &mode = QMutex::Recursive)
        : SharedLockable(nullptr, mode)
    { }
    explicit SharedLockable(QObject *parent, const QMutex::RecursionMode &mode = QMutex::Recursive)
        : Lockable(parent, mode)
        , QApplicationMainThreadMover(this)
    { }
    ~SharedLockable() override = default;
};

} // namespace Shared::Synchronization
