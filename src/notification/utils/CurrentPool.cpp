#include "CurrentPool.h"

namespace Tessellum::Notification::utils {

namespace {

thread_local const CurrentPool *innermost = nullptr;

} // namespace

CurrentPool::CurrentPool(ThreadPool *current)
    : pool(current)
    , outer(innermost)
{
    innermost = this;
}

CurrentPool::~CurrentPool()
{
    innermost = outer;
}

ThreadPool *CurrentPool::Outermost()
{
    ThreadPool *found = nullptr;
    for (const CurrentPool *mark = innermost; mark; mark = mark->outer)
        found = mark->pool;
    return found;
}

bool CurrentPool::Contains(const ThreadPool *sought)
{
    for (const CurrentPool *mark = innermost; mark; mark = mark->outer) {
        if (mark->pool == sought)
            return true;
    }
    return false;
}

} // namespace Tessellum::Notification::utils
