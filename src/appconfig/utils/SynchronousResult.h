#pragma once

#include <notification/utils/PoolWait.h>

namespace Tessellum::AppConfig::utils {

/*! What came of the start of an update. */
struct StartedUpdate
{
    std::shared_ptr<Notification::UpdateObserver> observer; ///< empty: the task could not be started
    bool nodeFound = false;
};

/*!
 * The whole of a synchronous update: start, create what is missing and start again, wait. \a startUpdate and
 * \a startCreate only start, so that a front can hold a lock around each of them and no lock is held in
 * between. An update that could not be started, or ended without a report that reached its wait point, is
 * ApplyFailed.
 */
template <typename StartUpdate, typename StartCreate>
Notification::UpdateResult UpdateOrCreate(Notification::ThreadPool &pool, StartUpdate startUpdate,
                                          StartCreate startCreate)
{
    StartedUpdate started = startUpdate();
    if (!started.nodeFound) {
        // Whoever made the node meanwhile: what counts is that it is there.
        if (const auto create = startCreate()) {
            Notification::utils::WaitForTask(pool, create);
            started = startUpdate();
        }
    }
    if (!started.nodeFound)
        return Notification::UpdateResult::NodeGone;
    const auto report = Notification::utils::WaitForTask(pool, started.observer);
    return report ? report->second : Notification::UpdateResult::ApplyFailed;
}

} // namespace Tessellum::AppConfig::utils
