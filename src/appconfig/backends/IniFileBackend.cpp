#include <appconfig/attributes/Attribute.h>
#include <appconfig/backends/IniFileBackend.h>
#include <appconfig/utils/AttributesQueryProvider.h>
#include <shared/foundation/IniFile.h>
#include <shared/logging/FrameworkLog.h>

using Tessellum::AppConfig::Attributes::Attribute;
using Tessellum::AppConfig::Attributes::AttributeAccess;
using Tessellum::AppConfig::Attributes::AttributeCreateData;

namespace Tessellum::AppConfig::Backends {

namespace {

QRegExp Separator()
{
    return QRegExp(QStringLiteral("="));
}

/*! The values beneath \a section by the path from there. */
QHash<QString, QVariant> SectionValues(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &section)
{
    QHash<QString, QVariant> values;
    const auto sectionPath = section->getNodePath();
    const QStringList sectionElements = sectionPath->split();
    const auto attributes
        = AppConfig::utils::AttributesQueryProvider(section).findAttributes(QStringLiteral("*"));
    for (const auto &attribute : attributes) {
        QVariant value;
        // One read only: the function behind an attribute may answer differently the second time.
        if (!attribute->getValue(value, QMetaType::UnknownType) || !value.isValid())
            continue;
        QStringList elements = attribute->getNodePath()->split();
        for (const QString &element : sectionElements) {
            if (elements.isEmpty() || elements.constFirst() != element)
                break;
            elements.removeFirst();
        }
        values.insert(sectionPath->getPathFromPathElements(elements), value);
    }
    return values;
}

} // namespace

QStringList IniFileBackend::TypeKeys()
{
    return {QStringLiteral("ini"), QStringLiteral("ini_file"), QStringLiteral("inifile")};
}

QStringList IniFileBackend::getTypeKeys() const
{
    return TypeKeys();
}

bool IniFileBackend::loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                                      const Notification::CreatePoint &)
{
    QFile file(getCreateData().data.toString());
    Shared::IniContent content;
    if (!Shared::ParseIniFile(file, content, Separator())) {
        Shared::Logging::FrameworkLog().log()
            << "IniFileBackend::loadAttributesCreateDataInternal() ini file '" << file.fileName()
            << "' does not exist, no attributes loaded";
        return true;
    }
    const int before = out.size();
    const auto place = getNodePath();
    AttributeCreateData::AttributeCreateDataDetails details;
    details.access = AttributeAccess::Read | AttributeAccess::Write;
    for (auto section = content.cbegin(); section != content.cend(); ++section) {
        for (auto entry = section->cbegin(); entry != section->cend(); ++entry) {
            details.value = entry.value();
            out.append({place->getPathFromPathElements({section.key(), entry.key()}), details});
        }
    }
    return out.size() > before;
}

bool IniFileBackend::saveAttributes()
{
    Shared::IniContent content;
    for (const auto &section : getChildren(false)) {
        const auto values = SectionValues(section);
        if (!values.isEmpty())
            content.insert(section->getId(), values);
    }
    QFile file(getCreateData().data.toString());
    return Shared::WriteIniFile(file, content, false, Separator());
}

} // namespace Tessellum::AppConfig::Backends
