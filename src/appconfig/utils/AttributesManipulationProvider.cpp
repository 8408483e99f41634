#include <appconfig/attributes/Attribute.h>
#include <appconfig/attributes/AttributeCreateTask.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/SynchronousResult.h>

namespace Tessellum::AppConfig::utils {

using Attributes::Attribute;
using Attributes::AttributeAccess;
using Attributes::AttributeCreateData;
using Attributes::AttributeEnsureData;
using Attributes::AttributeValueSource;
using Notification::CreateObserver;
using Notification::CreatePoint;
using Notification::DeleteObserver;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;
using Shared::Hierarchy::HierarchyNode;

namespace {

using Details = AttributeCreateData::AttributeCreateDataDetails;

constexpr quint32 readWrite = AttributeAccess::Read | AttributeAccess::Write;

Details storedDetails(const QVariant &value, int access)
{
    Details details;
    details.value = value;
    details.access = static_cast<quint32>(access);
    details.valueSource = AttributeValueSource::Stored;
    return details;
}

/*! Access beyond the four known values asks for no function, and so grants nothing. */
Details customDetails(const QVariant &value, const AttributesManipulationProvider::CustomData &data,
                      int access)
{
    Details details = storedDetails(value, 0);
    details.valueSource = AttributeValueSource::Functions;
    const auto asked = static_cast<quint32>(access);
    if (asked == AttributeAccess::Read || asked == readWrite) {
        details.reader = [data](const QVariant &stored, QVariant &out) { return data->read(stored, out); };
        details.access |= AttributeAccess::Read;
    }
    if (asked == AttributeAccess::Write || asked == readWrite) {
        details.writer = [data](QVariant &stored, const QVariant &in) { return data->write(stored, in); };
        details.access |= AttributeAccess::Write;
    }
    return details;
}

} // namespace

AttributesManipulationProvider::AttributesManipulationProvider(
    const std::shared_ptr<HierarchyNode> &repositoryRoot, Notification::ThreadPool *taskPool)
    : root(repositoryRoot)
    , pool(taskPool)
{ }

bool AttributesManipulationProvider::createAttribute(const QString &path, const QVariant &value,
                                                     const CreatePoint &waitPoint, const int &access)
{
    return Notification::utils::WaitForSuccess(*pool, startCreateAttribute(path, value, waitPoint, access));
}

bool AttributesManipulationProvider::createAttribute(const QString &path, const QVariant &value,
                                                     const CustomData &data, const CreatePoint &waitPoint,
                                                     const int &access)
{
    return Notification::utils::WaitForSuccess(*pool,
                                               startCreateAttribute(path, value, data, waitPoint, access));
}

UpdateResult AttributesManipulationProvider::updateAttribute(const QString &path, const QVariant &value,
                                                             const UpdatePoint &waitPoint)
{
    return UpdateOrCreate(
        *pool, [&] { return startUpdateAttribute(path, value, waitPoint); },
        [&] { return startAutomaticCreate(path); });
}

bool AttributesManipulationProvider::deleteAttribute(const QString &path, const DeletePoint &waitPoint)
{
    return Notification::utils::WaitForSuccess(*pool, startDeleteAttribute(path, waitPoint));
}

std::shared_ptr<CreateObserver>
AttributesManipulationProvider::startCreateAttribute(const QString &path, const QVariant &value,
                                                     const CreatePoint &waitPoint, int access)
{
    if (!pool->isRunning())
        return nullptr;
    const AttributeCreateData data(path, storedDetails(value, access));
    return pool->startCreateTask(root, path, QVariant::fromValue(data), waitPoint);
}

std::shared_ptr<CreateObserver>
AttributesManipulationProvider::startCreateAttribute(const QString &path, const QVariant &value,
                                                     const CustomData &data, const CreatePoint &waitPoint,
                                                     int access)
{
    if (!data || !pool->isRunning())
        return nullptr;
    const AttributeCreateData createData(path, customDetails(value, data, access));
    return pool->startCreateTask(root, path, QVariant::fromValue(createData), waitPoint);
}

std::shared_ptr<CreateObserver> AttributesManipulationProvider::startAutomaticCreate(const QString &path)
{
    if (!pool->isRunning()
        || !settings()->readSetting<bool>(QStringLiteral("repository"),
                                          QStringLiteral("automatic_create_through_updates"), false)) {
        return nullptr;
    }
    const AttributeEnsureData data(path, storedDetails({}, readWrite));
    return pool->startCreateTask(root, path, QVariant::fromValue(data), CreatePoint::Done);
}

StartedUpdate AttributesManipulationProvider::startUpdateAttribute(const QString &path, const QVariant &value,
                                                                   const UpdatePoint &waitPoint)
{
    if (!pool->isRunning())
        return {};
    const auto node = root->findChildByRelativePath(path);
    if (!node)
        return {};
    return {pool->startUpdateTask(node, value, waitPoint), true};
}

std::shared_ptr<DeleteObserver>
AttributesManipulationProvider::startDeleteAttribute(const QString &path, const DeletePoint &waitPoint)
{
    if (!pool->isRunning())
        return nullptr;
    const auto node = root->findChildByRelativePath(path);
    if (!std::dynamic_pointer_cast<Attribute>(node))
        return nullptr;
    return pool->startDeleteTask(node, path, QVariant(), waitPoint);
}

} // namespace Tessellum::AppConfig::utils
