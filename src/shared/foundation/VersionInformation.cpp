#include <shared/foundation/platform/ModulePath.h>
#include <shared/foundation/VersionInformation.h>
#include <shared/hierarchy/HierarchyNode.h>
#include <shared/logging/FrameworkLog.h>

#include <QFileInfo>
#include <QSettings>

namespace Shared::VersionInformation {

namespace {

using Shared::Hierarchy::HierarchyNode;
using Shared::SettingsWrapper::SettingsWrapper;

/*! \a text without one separator at its end. */
QString WithoutSeparator(const QString &text)
{
    const QString separator = HierarchyNode::GetHierarchyNodePathSeparator();
    return text.endsWith(separator) ? text.chopped(separator.size()) : text;
}

/*! Reads settings in one place, and where they are missing there in the other. */
class RecordSettings
{
public:
    RecordSettings(const SettingsWrapper &settingsWrapper, const QString &prefix)
        : settings(settingsWrapper)
        , section(prefix + VersionInformation::GetVersionIdentifier())
        , publishedSection(
              QStringList{QStringLiteral("modules"), QStringLiteral("information"), WithoutSeparator(prefix)}
                  .join(HierarchyNode::GetHierarchyNodePathSeparator()))
    { }

    QString read(const QString &key) const
    {
        return settings.readSetting<QString>(settings.hasEntry(section, key) ? section : publishedSection,
                                             key, QString());
    }

private:
    const SettingsWrapper &settings;
    const QString section;
    const QString publishedSection;
};

} // namespace

VersionInformation::VersionInformation()
    : defaultConstructed(true)
{ }

VersionInformation::VersionInformation(const QString &module)
{
    QString path = module;
    if (!QFileInfo(module).isFile()) {
        int error = 0;
        path = Foundation::Platform::ExecutableFilePath(error);
        if (path.isEmpty()) {
            Logging::FrameworkLog().warning() << "GetModuleFileName failed with error: " << error;
            return;
        }
    }
    versionIdentifier = QFileInfo(path).baseName();
    addModuleFilePath(path);
}

VersionInformation::VersionInformation(const QString &identifier, const QString &filePath,
                                       const QString &modulePath)
{
    addVersionInformationData(identifier, filePath, modulePath);
}

VersionInformation::VersionInformation(const std::shared_ptr<const SettingsWrapper> &settings,
                                       const QString &prefix)
{
    if (!settings)
        return;
    versionIdentifier = WithoutSeparator(prefix);
    const RecordSettings record(*settings, prefix);
    for (const Identifier identifier : mapping.getIdentifiers())
        values.insert(identifier, record.read(mapping.getIdentifierStringByIdentifier(identifier)));
    moduleFilePath = record.read(GetModuleStringPath());
}

bool VersionInformation::addVersionInformationData(const QString &identifier, const QString &filePath,
                                                   const QString &modulePath)
{
    versionIdentifier = identifier;
    addModuleFilePath(modulePath);
    if (!QFileInfo(filePath).isFile())
        return false;
    QSettings file(filePath, QSettings::IniFormat);
    file.setIniCodec("UTF-8");
    for (const Identifier entry : mapping.getIdentifiers()) {
        const QString key = QStringLiteral("%1/%2").arg(GetVersionIdentifier(),
                                                        mapping.getIdentifierStringByIdentifier(entry));
        // A text with commas comes as a list.
        values.insert(entry, file.value(key).toStringList().join(QStringLiteral(", ")));
    }
    return true;
}

bool VersionInformation::addModuleFilePath(const QString &modulePath)
{
    if (modulePath.isEmpty())
        return false;
    moduleFilePath = modulePath;
    return true;
}

QString VersionInformation::getVersionInformationByIdentifier(const Identifier &identifier) const
{
    return values.value(identifier);
}

const IdentifierMapping &VersionInformation::getVersionIdentifierMapping() const
{
    return mapping;
}

QString VersionInformation::getModuleFilePath() const
{
    return moduleFilePath;
}

QString VersionInformation::getVersionIdentifier() const
{
    return versionIdentifier;
}

bool VersionInformation::isDefaultConstructed() const
{
    return defaultConstructed;
}

QString VersionInformation::GetVersionIdentifier()
{
    return QStringLiteral("Version");
}

QString VersionInformation::GetModuleStringPath()
{
    return QStringLiteral("ModulePath");
}

QString VersionInformation::GetRawVersionInformationIdentifier()
{
    return QStringLiteral("RawVersionInformation");
}

} // namespace Shared::VersionInformation
