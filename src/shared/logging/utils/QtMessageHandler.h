#pragma once

namespace Shared::Logging::utils {

/*! Takes over Qt's messages unless the application did. They arrive without a category. */
void InstallQtMessageHandler();
/*! Gives them back: the code of this copy may be unloaded after its end, and Qt must not call it any more. */
void UninstallQtMessageHandler();

} // namespace Shared::Logging::utils
