#include "SocketHandle.h"

#include <sys/socket.h>
#include <unistd.h>

namespace Tessellum::Plugins::Sql {

SocketHandle::~SocketHandle()
{
    reset(-1);
}

void SocketHandle::reset(int descriptor)
{
    if (isValid())
        ::close(handle);
    handle = descriptor == -1 ? -1 : ::dup(descriptor);
}

void SocketHandle::shutDown() const
{
    ::shutdown(handle, SHUT_RDWR);
}

} // namespace Tessellum::Plugins::Sql
