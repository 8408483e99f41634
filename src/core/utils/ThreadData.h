#pragma once

#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <memory>

namespace Tessellum {
class TessellumImplementation;
}

namespace Tessellum::Core::utils {

/*! What the exported functions work on: the two objects that live as long as the process. */
struct ThreadData
{
    std::shared_ptr<TessellumLocalizationInterfaceProvider> localizationProvider;
    std::shared_ptr<TessellumImplementation> coreObject;
};

/*! The two process-wide objects, made at the first call and never destroyed. */
const ThreadData &ProcessThreadData();

/*!
 * The calling thread's record, made at its first call. Once the thread's own record has gone, at the very end
 * of the thread, the process-wide one serves: a static destructor of the application may still call.
 */
const ThreadData &currentThreadData();

} // namespace Tessellum::Core::utils
