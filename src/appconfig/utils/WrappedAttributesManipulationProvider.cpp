#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/WrappedAttributesManipulationProvider.h>

namespace Tessellum::AppConfig::utils {

using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

Notification::ThreadPool &taskPool()
{
    return RepositoryProvider::getInstance()->getThreadPool();
}

template <class Result>
bool waitForSuccess(const std::shared_ptr<Notification::Observer<Result>> &observer)
{
    return Notification::utils::WaitForSuccess(taskPool(), observer);
}

} // namespace

bool WrappedAttributesManipulationProvider::createAttribute(const QString &path, const QVariant &value,
                                                            const CreatePoint &waitPoint, const int &access)
{
    return waitForSuccess(writing([&](AttributesManipulationProvider &provider) {
        return provider.startCreateAttribute(path, value, waitPoint, access);
    }));
}

bool WrappedAttributesManipulationProvider::createAttribute(
    const QString &path, const QVariant &value,
    const std::shared_ptr<Interfaces::CustomAttributeDataInterface> &data, const CreatePoint &waitPoint,
    const int &access)
{
    return waitForSuccess(writing([&](AttributesManipulationProvider &provider) {
        return provider.startCreateAttribute(path, value, data, waitPoint, access);
    }));
}

UpdateResult WrappedAttributesManipulationProvider::updateAttribute(const QString &path,
                                                                    const QVariant &value,
                                                                    const UpdatePoint &waitPoint)
{
    const auto startUpdate = [&] {
        return writing([&](AttributesManipulationProvider &provider) {
            return provider.startUpdateAttribute(path, value, waitPoint);
        });
    };
    const auto startCreate = [&] {
        return writing(
            [&](AttributesManipulationProvider &provider) { return provider.startAutomaticCreate(path); });
    };
    return UpdateOrCreate(taskPool(), startUpdate, startCreate);
}

bool WrappedAttributesManipulationProvider::deleteAttribute(const QString &path, const DeletePoint &waitPoint)
{
    return waitForSuccess(writing([&](AttributesManipulationProvider &provider) {
        return provider.startDeleteAttribute(path, waitPoint);
    }));
}

} // namespace Tessellum::AppConfig::utils
