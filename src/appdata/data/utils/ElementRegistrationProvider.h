#pragma once

#include <appdata/data/entries/EntryCategory.h>
#include <appdata/interfaces/DataElementRegistrationInterface.h>
#include <appdata/InternalSettingsProvider.h>

namespace Tessellum::AppData::Data::utils {

/*! The work behind DataElementRegistrationInterface; holds no lock. */
class ElementRegistrationProvider : public Interfaces::DataElementRegistrationInterface,
                                    public InternalSettingsProvider
{
public:
    /*! Lists what earlier runs have registered: that stays for the life of the process, the list does not. */
    ElementRegistrationProvider();

    bool registerElement(const CategoryType &type, const QString &detail,
                         const ParserCreator &parserCreator) override;

private:
    void enlist(const Entries::EntryCategory &category) const;
};

} // namespace Tessellum::AppData::Data::utils
