#pragma once

#include <appdata/interfaces/DataElementRegistrationInterface.h>
#include <appdata/InternalSettingsProvider.h>

namespace Tessellum::AppData::Data::utils {

/*! The work behind DataElementRegistrationInterface; holds no lock. */
class ElementRegistrationProvider : public Interfaces::DataElementRegistrationInterface,
                                    public InternalSettingsProvider
{
public:
    bool registerElement(const CategoryType &type, const QString &detail,
                         const ParserCreator &parserCreator) override;
};

} // namespace Tessellum::AppData::Data::utils
