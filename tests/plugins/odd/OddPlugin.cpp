// A plug-in that does everything wrong that it can.
#include <appconfig/backends/BackendPlugin.h>
#include <appconfig/interfaces/RepositoryInterface.h>
#include <core/CoreInterface.h>
#include <core/Library.h>

#include <stdexcept>

using namespace Tessellum::AppConfig::Backends;
using Shared::VersionInformation::VersionInformation;

int registerBackendInstance(QList<VersionInformation> *versions, BackendFactory *factory, const QString &hash)
{
    factory->registerProduct(QStringLiteral("odd_empty"), {});
    factory->registerProduct(QStringLiteral("odd_null"), [](const BackendCreateData &) { return nullptr; });
    factory->registerProduct(QStringLiteral("odd_throwing"),
                             [](const BackendCreateData &) -> std::shared_ptr<Backend> {
                                 throw std::runtime_error("no product");
                             });
    factory->registerProduct(hash, {});
    // Uses the library while it is loaded.
    if (auto *const core = getCoreInterface()) {
        core->getAppConfigRepository()->getManipulationInterface()->createAttribute(
            QStringLiteral("odd"), 1, Tessellum::Notification::CreatePoint::Done, 3);
    }
    addPluginSearchPath(QStringLiteral("/nowhere/at/all"));
    versions->append(VersionInformation(QStringLiteral("Odd"), QString(), QString()));
    if (qEnvironmentVariableIsSet("ODD_PLUGIN_RETURNS")) {
        versions->append(VersionInformation());
        versions->append(VersionInformation(QStringLiteral("a..b"), QString(), QString()));
        return -5;
    }
    throw std::runtime_error("no plug-in");
}
