#pragma once

#include <QList>
#include <QString>

namespace Shared::Foundation::Platform {

/*! Where one call of a stack stands. What is not known is empty. */
struct StackFrame
{
    const void *address = nullptr; /*!< the instruction behind the call */
    QString module; /*!< the name of the file of the program or library */
    QString function; /*!< as it is written in the source */
    QString file; /*!< of the source, where the module has debug information */
    int line = 0;
};

/*!
 * The stack of the calling thread, the caller of this function first, with at most \a limit frames. Any
 * thread; waits for the program loader, so not to be called with a lock that is needed while a library loads.
 */
QList<StackFrame> CaptureStack(int limit);

} // namespace Shared::Foundation::Platform
