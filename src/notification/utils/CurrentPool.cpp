#include "CurrentPool.h"

namespace Tessellum::Notification::utils {

namespace {

thread_local const CurrentPool *innermost = nullptr;

} // namespace

CurrentPool::CurrentPool(ThreadPool *pool)
    : m_pool(pool)
    , m_outer(innermost)
{
    innermost = this;
}

CurrentPool::~CurrentPool()
{
    innermost = m_outer;
}

ThreadPool *CurrentPool::Outermost()
{
    ThreadPool *pool = nullptr;
    for (const CurrentPool *mark = innermost; mark; mark = mark->m_outer)
        pool = mark->m_pool;
    return pool;
}

bool CurrentPool::Contains(const ThreadPool *pool)
{
    for (const CurrentPool *mark = innermost; mark; mark = mark->m_outer) {
        if (mark->m_pool == pool)
            return true;
    }
    return false;
}

} // namespace Tessellum::Notification::utils
