#include <appconfig/backends/Backend.h>
#include <notification/utils/PoolWait.h>
#include <shared/logging/FrameworkLog.h>

#include <utility>

using Shared::Logging::FrameworkLog;
using Tessellum::AppConfig::Attributes::AttributeAccess;
using Tessellum::AppConfig::Attributes::AttributeCreateData;
using Tessellum::AppConfig::Attributes::AttributesCreateData;
using Tessellum::AppConfig::Attributes::AttributeValueSource;

namespace Tessellum::AppConfig::Backends {

namespace {

/*! Functions can only grant what they are there for. */
bool CanTakeAccess(const AttributeCreateData::AttributeCreateDataDetails &details, quint32 access)
{
    if (details.valueSource != AttributeValueSource::Functions)
        return true;
    return (!(access & AttributeAccess::Read) || details.reader)
        && (!(access & AttributeAccess::Write) || details.writer);
}

void OverrideAccess(AttributesCreateData &attributes, quint32 access)
{
    for (AttributeCreateData &attribute : attributes) {
        if (CanTakeAccess(attribute.details, access))
            attribute.details.access = access;
    }
}

} // namespace

bool Backend::loadAttributes(Notification::ThreadPool &pool, const Notification::CreatePoint &waitPoint)
{
    AttributesCreateData attributes;
    if (!loadAttributesCreateDataInternal(attributes, waitPoint))
        return false;
    if (attributes.isEmpty())
        return true;
    OverrideAccess(attributes, getCreateData().access);
    // The task takes the list over, so that it goes as soon as the attributes stand.
    const QVariant payload = QVariant::fromValue(std::exchange(attributes, {}));
    const auto observer = pool.startCreateTask(self(), QString(), payload, waitPoint);
    return Notification::utils::WaitForSuccess(pool, observer);
}

bool Backend::loadAttributesCreateDataInternal(AttributesCreateData &, const Notification::CreatePoint &)
{
    FrameworkLog().warning()
        << "Backend::loadAttributesCreateDataInternal() default implementation called for backend=" << getId()
        << " no attribute create data elments created";
    return false;
}

} // namespace Tessellum::AppConfig::Backends
