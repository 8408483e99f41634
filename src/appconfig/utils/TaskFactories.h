#pragma once

#include <notification/ThreadPool.h>

namespace Tessellum::AppConfig::utils {

class RepositoryProvider;

/*!
 * The factories of the configuration's pool. They tell the registered handlers of \a repository's present run
 * about the tasks; without one the tasks tell nobody. Threads: any, with the repository's lock held or not.
 */
Notification::ThreadPool::CreateFactory MakeCreateTaskFactory(RepositoryProvider &repository);
Notification::ThreadPool::UpdateFactory MakeUpdateTaskFactory(RepositoryProvider &repository);
Notification::ThreadPool::DeleteFactory MakeDeleteTaskFactory(RepositoryProvider &repository);

} // namespace Tessellum::AppConfig::utils
