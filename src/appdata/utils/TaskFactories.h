#pragma once

#include <notification/ThreadPool.h>

namespace Tessellum::AppData::utils {

class RepositoryProvider;

/*! What the pool of the data repository makes its tasks with. Without a running repository the tasks find
 * nobody to tell. \a repository outlives the functions. */
Notification::ThreadPool::CreateFactory MakeCreateTaskFactory(RepositoryProvider &repository);
/*! \copydoc MakeCreateTaskFactory() */
Notification::ThreadPool::UpdateFactory MakeUpdateTaskFactory(RepositoryProvider &repository);
/*! \copydoc MakeCreateTaskFactory() */
Notification::ThreadPool::DeleteFactory MakeDeleteTaskFactory(RepositoryProvider &repository);

} // namespace Tessellum::AppData::utils
