#pragma once

#include <shared/foundation/IdentifierMapping.h>
#include <shared/foundation/SettingsWrapper.h>

#include <QMap>
#include <QMetaType>

#include <memory>

namespace Shared::VersionInformation {

/*!
 * The version record of a module: what it is called, of which file it came, and a text for each Identifier.
 *
 * A record comes of a version file (.vft): an INI text with the one section "Version", whose keys are those
 * of IdentifierMapping; keys may be missing or empty, and their order does not matter. What cannot be read
 * leaves empty texts, which is a record like any other. Values as those of Qt: copies may be used by
 * different threads.
 */
class TESSELLUM_EXPORT VersionInformation
{
public:
    /*! An empty record, without an identifier. */
    VersionInformation();
    /*!
     * Of the file \a module, or of the running program where there is no such file. Executables hold no
     * version data on this system, so that the record has the path alone; the identifier is the file's base
     * name.
     */
    explicit VersionInformation(const QString &module);
    /*! See addVersionInformationData(). */
    VersionInformation(const QString &identifier, const QString &filePath, const QString &modulePath);
    /*!
     * What settings hold of a record: beneath "Version" of \a prefix, or as the library publishes the record
     * of the module named \a prefix (with or without a separator at its end). Empty for a null \a settings.
     */
    VersionInformation(const std::shared_ptr<const Shared::SettingsWrapper::SettingsWrapper> &settings,
                       const QString &prefix);
    VersionInformation(const VersionInformation &) = default;
    VersionInformation &operator=(const VersionInformation &) = default;
    virtual ~VersionInformation() = default;

    /*!
     * Names the record and its module and takes the texts of the version file \a filePath, which may be a
     * resource. False, with the texts as they were, if there is no such file.
     */
    bool addVersionInformationData(const QString &identifier, const QString &filePath,
                                   const QString &modulePath);
    /*! False, with the path as it was, for an empty one. */
    bool addModuleFilePath(const QString &modulePath);

    /*! Empty for what the record does not have. */
    QString getVersionInformationByIdentifier(const Identifier &identifier) const;
    const IdentifierMapping &getVersionIdentifierMapping() const;
    QString getModuleFilePath() const;
    /*! What the module is called among others; a record without it is not published. */
    QString getVersionIdentifier() const;
    /*! True only for a record of the default constructor, and its copies. */
    bool isDefaultConstructed() const;

    /*! "Version", the section of a version file. */
    static QString GetVersionIdentifier();
    /*! "ModulePath" */
    static QString GetModuleStringPath();
    /*! "RawVersionInformation" */
    static QString GetRawVersionInformationIdentifier();

private:
    QMap<Identifier, QString> values;
    IdentifierMapping mapping;
    QString versionIdentifier;
    QString moduleFilePath;
    bool defaultConstructed = false;
};

} // namespace Shared::VersionInformation

Q_DECLARE_METATYPE(Shared::VersionInformation::VersionInformation)
