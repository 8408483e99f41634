#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <notification/RepositoryHierarchyThreadProvider.h>

namespace Tessellum::AppData::utils {

AppDataRepositoryEventThreadUser::AppDataRepositoryEventThreadUser(QObject *object)
{
    Core::RepositoryHierarchyThreadProvider::getInstance()->moveToEventThread(object);
}

} // namespace Tessellum::AppData::utils
