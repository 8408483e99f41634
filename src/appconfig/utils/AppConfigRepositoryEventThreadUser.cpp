#include <appconfig/utils/AppConfigRepositoryEventThreadUser.h>

#include <notification/RepositoryHierarchyThreadProvider.h>

#include <QObject>

namespace Tessellum::AppConfig::utils {

AppConfigRepositoryEventThreadUser::AppConfigRepositoryEventThreadUser(QObject *object)
{
    if (object)
        object->moveToThread(Core::RepositoryHierarchyThreadProvider::getInstance()->getThread());
}

} // namespace Tessellum::AppConfig::utils
