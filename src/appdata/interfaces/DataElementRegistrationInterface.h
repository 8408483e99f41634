#pragma once

#include <appdata/DataTypes.h>
#include <appdata/interfaces/DataElementParserInterface.h>

#include <QString>

#include <functional>

namespace Tessellum::AppData::Interfaces {

/*! Takes categories of an application's own. Threads: any. */
class TESSELLUM_EXPORT DataElementRegistrationInterface
{
public:
    using ParserCreator = std::function<std::shared_ptr<DataElementParserInterface>()>;

    /*! Registers the parser of a category, before entries of that category are added. False, with nothing
     * changed, where the category has one. */
    virtual bool registerElement(const CategoryType &type, const QString &detail,
                                 const ParserCreator &parserCreator)
        = 0;
    virtual ~DataElementRegistrationInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
