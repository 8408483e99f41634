#pragma once

#include <shared/logging/utils/StackWalkerInterface.h>

namespace Shared::Logging::utils::StackWalker {

/*!
 * Yields the stack of the calling thread, at most 1000 frames: "file (line): function" where the module has
 * debug information, else "address (module): file: function" with a text for what is not known.
 *
 * Any thread. The first call reads the symbols of the modules on the stack and takes its time. Not to be
 * called with a lock held that is needed while a library loads, as the walk may wait for the program loader.
 */
class TESSELLUM_EXPORT StackWalker : public StackWalkerInterface
{
public:
    QStringList getStackOutput() override;
};

} // namespace Shared::Logging::utils::StackWalker
