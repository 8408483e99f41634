#pragma once

#include <QtGlobal>

namespace Tessellum::Tool {

/*!
 * Takes SIGINT and SIGTERM for as long as it lives, so that they end the program cleanly; a second signal of
 * a kind ends it at once. A reader that goes, or a terminal in whose background the program runs, does not
 * end or stop it.
 *
 * One at a time. Threads: any.
 */
class StopSignals
{
public:
    /*! Fails the command if the system has no descriptors. */
    StopSignals();
    ~StopSignals();
    Q_DISABLE_COPY_MOVE(StopSignals)

    /*! Ends all waits from now on, as a signal does. */
    void raise() const;
    /*! Returns when the program is told to end. */
    void wait() const;
    /*! True when \a descriptor has something to read or has ended, false when the program is told to end. */
    bool waitForInput(int descriptor) const;

private:
    int toldToEnd = -1; ///< readable from the first signal on
};

} // namespace Tessellum::Tool
