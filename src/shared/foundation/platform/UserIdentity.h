#pragma once

#include <QString>

namespace Shared::Foundation::Platform {

/*!
 * "#" and the number of the user this process runs as: what sets a user's own system objects apart from
 * another's.
 */
QString UserKeySuffix();

} // namespace Shared::Foundation::Platform
