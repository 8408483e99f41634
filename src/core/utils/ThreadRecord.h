#pragma once

#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <memory>

namespace Tessellum {
class TessellumImplementation;
}

namespace Tessellum::Core::utils {

/*! What the exported functions work on: the two objects that live as long as the process. */
struct ThreadRecord
{
    std::shared_ptr<TessellumLocalizationInterfaceProvider> localizationProvider;
    std::shared_ptr<TessellumImplementation> coreObject;
};

/*! The two process-wide objects, made at the first call and never destroyed. */
const ThreadRecord &ProcessRecord();

/*!
 * The calling thread's record, made at its first call. Once the thread's own record has gone, at the very end
 * of the thread, the process-wide one serves: a static destructor of the application may still call.
 */
const ThreadRecord &CurrentThreadRecord();

} // namespace Tessellum::Core::utils
