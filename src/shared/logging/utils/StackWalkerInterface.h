#pragma once

#include <shared/TessellumExport.h>

#include <QStringList>

namespace Shared::Logging::utils::StackWalker {

/*! Yields a call stack as text. */
class TESSELLUM_EXPORT StackWalkerInterface
{
public:
    virtual ~StackWalkerInterface() = default;
    /*! One line a frame, the innermost first. */
    virtual QStringList getStackOutput() = 0;
};

} // namespace Shared::Logging::utils::StackWalker
