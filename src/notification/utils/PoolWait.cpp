#include "PoolWait.h"

namespace Tessellum::Notification::utils {

PlaceLender::PlaceLender(ThreadPool &pool, const ObserverCore &observer)
{
    const ThreadPool *const own = ThreadPool::Current();
    if (!own || !own->lendsPlaces() || observer.hasFinished() || observer.isEnded()
        || pool.takeAndRun(observer))
        return;
    lend();
}

PlaceLender::PlaceLender()
{
    lend();
}

void PlaceLender::lend()
{
    ThreadPool *const own = ThreadPool::Current();
    if (!own || !own->lendsPlaces())
        return;
    own->lendPlace();
    lent = own;
}

PlaceLender::~PlaceLender()
{
    if (lent)
        lent->takePlaceBack();
}

} // namespace Tessellum::Notification::utils
