#include <appconfig/utils/AppConfigRepositoryEventThreadUser.h>
#include <notification/RepositoryHierarchyThreadProvider.h>

namespace Tessellum::AppConfig::utils {

AppConfigRepositoryEventThreadUser::AppConfigRepositoryEventThreadUser(QObject *object)
{
    Core::RepositoryHierarchyThreadProvider::getInstance()->moveToEventThread(object);
}

} // namespace Tessellum::AppConfig::utils
