#pragma once

#include <appconfig/backends/Backend.h>
#include <notification/utils/MakeNode.h>
#include <shared/synchronization/Factory.h>

namespace Tessellum::AppConfig::Backends {

/*! The table of backend classes by type key. */
using BackendFactory = Shared::Factory<Backend, QString, std::shared_ptr<Backend>,
                                       std::function<std::shared_ptr<Backend>(const BackendCreateData &)>>;

/*! Enters \a BackendType under all its keys that are still free; the number of keys entered. */
template <class BackendType>
int RegisterBackend(BackendFactory &factory)
{
    int added = 0;
    const QStringList keys = BackendType::TypeKeys();
    for (const QString &key : keys) {
        const auto creator = [](const BackendCreateData &data) -> std::shared_ptr<Backend> {
            return Notification::utils::MakeNode<BackendType>(data);
        };
        if (factory.registerProduct(key, creator))
            ++added;
    }
    return added;
}

/*! Enters all classes of the library; the number of keys entered. */
int RegisterBackends(BackendFactory &factory);

} // namespace Tessellum::AppConfig::Backends
