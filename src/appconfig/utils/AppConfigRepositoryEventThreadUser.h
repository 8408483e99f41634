#pragma once

#include <shared/TessellumExport.h>

class QObject;

namespace Tessellum::AppConfig::utils {

/*! Base of the configuration's objects that take queued signals: moves the object to the repository's event
 * thread. */
class TESSELLUM_EXPORT AppConfigRepositoryEventThreadUser
{
public:
    /*! Moves \a object, which must live on the calling thread; null does nothing. */
    explicit AppConfigRepositoryEventThreadUser(QObject *object);
    virtual ~AppConfigRepositoryEventThreadUser() = default;
};

} // namespace Tessellum::AppConfig::utils
