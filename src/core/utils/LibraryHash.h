#pragma once

#include <QString>

namespace Tessellum::Core::utils {

/*! A value that the library hands to its plug-ins and publishes in its settings; never computed. */
inline QString LibraryHash()
{
    return QStringLiteral("7b1f3c9a5e2d4860c1a7f0e93b6d28547fa9c3e1026bd8f45a7e1c390d6b4f28");
}

} // namespace Tessellum::Core::utils
