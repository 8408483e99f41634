#include <appconfig/backends/VersionInformationBackend.h>
#include <shared/foundation/VersionInformation.h>

namespace Tessellum::AppConfig::Backends {

using Shared::VersionInformation::VersionInformation;

QStringList VersionInformationBackend::TypeKeys()
{
    return {QStringLiteral("version"), QStringLiteral("version_information_file"),
            QStringLiteral("version_file")};
}

QStringList VersionInformationBackend::getTypeKeys() const
{
    return TypeKeys();
}

bool VersionInformationBackend::saveAttributes()
{
    return false;
}

bool VersionInformationBackend::loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                                                 const Notification::CreatePoint &)
{
    const QVariant data = getCreateData().data;
    if (!data.canConvert<VersionInformation>())
        return false;
    const auto append = [&out](const QString &name, const QVariant &value) {
        Attributes::AttributeCreateData::AttributeCreateDataDetails details;
        details.value = value;
        details.access = Attributes::AttributeAccess::Read;
        out.append({name, details});
    };
    const auto information = data.value<VersionInformation>();
    const Shared::VersionInformation::IdentifierMapping mapping;
    for (const auto identifier : mapping.getIdentifiers()) {
        append(mapping.getIdentifierStringByIdentifier(identifier),
               information.getVersionInformationByIdentifier(identifier));
    }
    append(VersionInformation::GetModuleStringPath(), information.getModuleFilePath());
    append(VersionInformation::GetRawVersionInformationIdentifier(), QVariant::fromValue(information));
    return true;
}

} // namespace Tessellum::AppConfig::Backends
