#pragma once

#include <QString>

namespace Tessellum::Core {

/*!
 * Brings the repositories up and publishes what the library knows of itself in the internal tree; opens the
 * notification pool last. Every step runs, whatever came before; false if one of them failed. What was built
 * stays.
 */
bool startCore();

/*!
 * Closes the notification pool, then takes the repositories down, and returns when the nodes of the run are
 * gone. Waits for running handlers and tasks without a limit, so it must not be called by one of them. Always
 * true.
 */
bool stopCore();

/*! Publishes the numbers and names of the library's metatypes in the list "metatypes.repository". */
bool registerMetatypes();
/*!
 * Writes the library's settings and links them read-only at "internal". Starts to load the constraints that
 * lie beside \a libraryFile, if it is not empty, and does not wait for them.
 */
bool registerInternalSettings(const QString &libraryFile);
/*! Hangs the lists into the tree of the internal settings. */
bool attachListNodes();
/*! Adds the type keys that the lists beneath "types" miss; false if none of the lists is there. */
bool registerTypeLists();

} // namespace Tessellum::Core
