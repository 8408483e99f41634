#pragma once

#include <shared/TessellumExport.h>

#include <QList>
#include <QString>

namespace Shared::VersionInformation {

/*! The entries of a version record; the numbers are fixed. */
enum class Identifier : int {
    CompanyName = 0,
    FileDescription = 1,
    FileVersion = 2,
    InternalName = 3,
    LegalCopyright = 4,
    LegalTrademarks = 5,
    OriginalFilename = 6,
    ProductName = 7,
    ProductVersion = 8,
    Comments = 9,
    VersionHash = 10
};

/*! The key text of each entry, in the order of their numbers. Without state: any thread may call. */
class TESSELLUM_EXPORT IdentifierMapping
{
public:
    IdentifierMapping() = default;
    IdentifierMapping(const IdentifierMapping &) = default;
    IdentifierMapping &operator=(const IdentifierMapping &) = default;
    virtual ~IdentifierMapping() = default;

    /*! The entry at \a index, from 0; outside of the list one that no record holds and that has no key. */
    Identifier getIdentifierByIndex(const int &index) const;
    /*! The key, empty for a number that is no entry. */
    QString getIdentifierStringByIdentifier(const Identifier &identifier) const;
    /*! The key, empty outside of the list. */
    QString getIdentifierStringByIndex(const int &index) const;
    QList<Identifier> getIdentifiers() const;
};

} // namespace Shared::VersionInformation
