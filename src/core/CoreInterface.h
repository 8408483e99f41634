#pragma once

#include <appconfig/interfaces/RepositoryInterface.h>
#include <appdata/interfaces/RepositoryInterface.h>

#include <memory>

namespace Tessellum::Core {

/*!
 * The main interface of the library, from getCoreInterface().
 *
 * Threads: any. Ownership: the library's; the repositories are shared with the caller, stay usable after a
 * stop and then answer empty.
 */
class TESSELLUM_EXPORT CoreInterface
{
public:
    /*! The configuration; empty before the first start and after a stop. */
    virtual std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> getAppConfigRepository() const = 0;
    /*! The recorded data; empty before the first start and after a stop. */
    virtual std::shared_ptr<AppData::Interfaces::RepositoryInterface> getAppDataRepository() const = 0;
    virtual ~CoreInterface() = default;
};

} // namespace Tessellum::Core
