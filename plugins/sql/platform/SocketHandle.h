#pragma once

namespace Tessellum::Plugins::Sql {

/*!
 * A second handle of a socket that is somebody else's, whose number may be another's as soon as its owner
 * closes it. Not for several threads at once.
 */
class SocketHandle
{
public:
    /*! Handles nothing. */
    SocketHandle() = default;
    ~SocketHandle();
    SocketHandle(const SocketHandle &) = delete;
    SocketHandle &operator=(const SocketHandle &) = delete;

    /*! From now on for the socket \a descriptor; -1 for none. */
    void reset(int descriptor);
    /*! Ends the connection in both directions: who waits for it, with whatever handle, goes on at once. */
    void shutDown() const;
    bool isValid() const { return handle != -1; }

private:
    int handle = -1;
};

} // namespace Tessellum::Plugins::Sql
