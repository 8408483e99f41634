#pragma once

#include <shared/TessellumExport.h>

#include <memory>
#include <utility>

class QObject;

namespace Shared::Communication::Connections {

/*! The deleter of connections and of their devices: they die on their own thread, in its event loop, so that
 * the last pointer may be dropped on any thread and within any of their signals. */
struct TESSELLUM_EXPORT ConnectionReleaser
{
    void operator()(QObject *object) const;
};

/*! Makes a connection of class \a T, such as TcpConnection, that lives on the calling thread. It can be moved
 * to another one before its first open(), not later: its device would stay behind. */
template <class T, class... Arguments>
std::shared_ptr<T> MakeConnection(Arguments &&...arguments)
{
    auto connection = std::make_unique<T>(std::forward<Arguments>(arguments)...);
    return std::shared_ptr<T>(connection.release(), ConnectionReleaser());
}

} // namespace Shared::Communication::Connections
