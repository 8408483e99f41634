#pragma once

#include <shared/TessellumExport.h>

class QObject;

namespace Tessellum::AppData::utils {

/*! Base of the objects of the data repository that take queued signals: moves the object to the repositories'
 * event thread. */
class TESSELLUM_EXPORT AppDataRepositoryEventThreadUser
{
public:
    /*! Moves \a object, which must live on the calling thread; null does nothing. */
    explicit AppDataRepositoryEventThreadUser(QObject *object);
    virtual ~AppDataRepositoryEventThreadUser() = default;
};

} // namespace Tessellum::AppData::utils
