#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/backends/BackendCreateData.h>

namespace Tessellum::AppConfig::Backends {

namespace {

quint32 ReadableAccess(quint32 access)
{
    if (access & Attributes::AttributeAccess::Read)
        return access;
    return (access & Attributes::AttributeAccess::Write) | Attributes::AttributeAccess::Read;
}

} // namespace

BackendCreateData::BackendCreateData(const QString &backendType, const QString &backendName,
                                     const BackendCreateDataDetails &details)
    : type(backendType)
    , name(backendName)
    , data(details.data)
    , description(details.description)
    , access(ReadableAccess(details.access))
{ }

} // namespace Tessellum::AppConfig::Backends
