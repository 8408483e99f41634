#include <shared/foundation/IdentifierMapping.h>

#include <iterator>

namespace Shared::VersionInformation {

namespace {

constexpr const char *keys[] = {"CompanyName",    "FileDescription", "FileVersion",      "InternalName",
                                "LegalCopyright", "LegalTrademarks", "OriginalFilename", "ProductName",
                                "ProductVersion", "Comments",        "VersionHash"};
constexpr int keyCount = int(std::size(keys));
constexpr Identifier noIdentifier = Identifier(-1);

} // namespace

Identifier IdentifierMapping::getIdentifierByIndex(const int &index) const
{
    return index >= 0 && index < keyCount ? Identifier(index) : noIdentifier;
}

QString IdentifierMapping::getIdentifierStringByIdentifier(const Identifier &identifier) const
{
    return getIdentifierStringByIndex(static_cast<int>(identifier));
}

QString IdentifierMapping::getIdentifierStringByIndex(const int &index) const
{
    return index >= 0 && index < keyCount ? QString::fromLatin1(keys[index]) : QString();
}

QList<Identifier> IdentifierMapping::getIdentifiers() const
{
    QList<Identifier> identifiers;
    for (int index = 0; index < keyCount; ++index)
        identifiers.append(Identifier(index));
    return identifiers;
}

} // namespace Shared::VersionInformation
