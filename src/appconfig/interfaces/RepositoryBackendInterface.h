#pragma once

#include <appconfig/backends/BackendCreateData.h>
#include <appconfig/interfaces/BackendInterface.h>
#include <notification/TaskPoints.h>

#include <memory>

namespace Tessellum::AppConfig::Interfaces {

/*! Creates, finds and saves backends. Any thread may call. */
class TESSELLUM_EXPORT RepositoryBackendInterface
{
public:
    /*! Makes a backend of \a type beneath the root and loads it; false if the name is taken or the load
     * fails. */
    virtual bool createBackend(const QString &type, const QString &name,
                               const Backends::BackendCreateDataDetails &details,
                               const Notification::CreatePoint &waitPoint)
        = 0;
    /*! Empty if there is no such backend. */
    virtual QString getBackendDescription(const QString &name) const = 0;
    /*! Writes the backend's values to its source; true if there is no such backend. */
    virtual bool saveBackend(const QString &name) = 0;
    virtual QStringList getBackendNames() const = 0;
    virtual bool hasBackend(const QString &name) const = 0;
    /*! For a name that is not there a repository's front gives a reference that answers empty; empty after a
     * stop. */
    virtual std::shared_ptr<BackendInterface> getBackend(const QString &name) const = 0;
    virtual ~RepositoryBackendInterface() = default;
};

} // namespace Tessellum::AppConfig::Interfaces
