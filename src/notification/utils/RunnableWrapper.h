#pragma once

#include <notification/utils/TrackedRunnable.h>

#include <utility>

namespace Tessellum::Notification::utils {

/*!
 * Carries one runnable through a ThreadPool: counts it while it is queued, ends its observer when it is over
 * or discarded, and stays for a later clean-up, since nothing may be deleted from inside its own run().
 */
template <class Runnable>
class RunnableWrapper final : public TrackedRunnable
{
public:
    RunnableWrapper(std::unique_ptr<Runnable> wrapped, std::shared_ptr<ObserverCore> ended,
                    RunnableCounter &queued)
        : TrackedRunnable(std::move(ended), queued, wrapped->describe())
        , runnable(std::move(wrapped))
    { }

    ~RunnableWrapper() override { end(); }

    /*! Runs the runnable, ends the observer, deletes the runnable. May run on a thread that waits for it. */
    void run() override
    {
        runnable->run(); // catches all that is thrown in it
        end();
        runnable.reset();
    }

private:
    std::unique_ptr<Runnable> runnable;
};

} // namespace Tessellum::Notification::utils
