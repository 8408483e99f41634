#include "PoolWait.h"

namespace Tessellum::Notification::utils {

PlaceLender::PlaceLender(ThreadPool &pool, const ObserverCore &observer)
{
    ThreadPool *const own = ThreadPool::Current();
    if (!own || !own->lendsPlaces() || observer.isFinished() || observer.isEnded()
        || pool.takeAndRun(observer))
        return;
    own->lendPlace();
    m_lent = own;
}

PlaceLender::~PlaceLender()
{
    if (m_lent)
        m_lent->takePlaceBack();
}

} // namespace Tessellum::Notification::utils
