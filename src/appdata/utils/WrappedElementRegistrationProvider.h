#pragma once

#include <appdata/interfaces/DataElementRegistrationInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! The registration of categories as an application gets it. */
class WrappedElementRegistrationProvider : public Interfaces::DataElementRegistrationInterface,
                                           private WrappedFront<Interfaces::DataElementRegistrationInterface>
{
public:
    using WrappedFront::WrappedFront;

    bool registerElement(const CategoryType &type, const QString &detail,
                         const ParserCreator &parserCreator) override;
};

} // namespace Tessellum::AppData::utils
