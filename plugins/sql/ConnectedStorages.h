#pragma once

namespace Tessellum::Plugins::Sql {

class SqlStorage;

/*!
 * The storages that are connected. Qt forgets its database connections when the application object dies, or
 * when the process ends, and storages may live on: those still connected then are disconnected just before,
 * so that their writes arrive and no thread of theirs meets a connection that is gone.
 *
 * Lock: one mutex guards the set, and is taken before a storage's lifecycle. It is held while a storage is
 * disconnected at the end of the process.
 */
namespace ConnectedStorages {

/*! Before \a storage connects. False when the process ends: it must not connect any more. */
bool Add(SqlStorage *storage);
/*! Before \a storage dies. */
void Remove(SqlStorage *storage);

} // namespace ConnectedStorages

} // namespace Tessellum::Plugins::Sql
