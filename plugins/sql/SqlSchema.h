#pragma once

#include "SqlDialect.h"

namespace Tessellum::Plugins::Sql {

/*! Makes the tables where there are none yet; refuses those of a newer version, and what is not ours. The
 * connection's error tells why. */
bool PrepareSchema(SqlConnection &connection, const SqlDialect &dialect);

} // namespace Tessellum::Plugins::Sql
