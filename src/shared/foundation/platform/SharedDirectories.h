#pragma once

#include <QString>

namespace Shared::Foundation::Platform {

/*! The folder of the documents that all users share; the user's own where the system has none. */
QString PublicDocumentsDirectory();

} // namespace Shared::Foundation::Platform
