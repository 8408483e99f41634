#pragma once

#include <appdata/data/elements/ElementsFactory.h>
#include <appdata/data/elements/parsers/ElementParserFactory.h>
#include <notification/utils/MakeNode.h>

#include <memory>

namespace Tessellum::AppData::Data::Elements {

/*! Enters the creator of a category's elements into a factory; a category that has one keeps it. */
template <class ElementType>
class ElementSelfRegistration
{
public:
    ElementSelfRegistration(ElementsFactory &factory, const Entries::EntryCategory &category)
    {
        factory.registerProduct(category, MakeCreator(category));
    }

    /*! Makes elements with the one parser of \a category, which may be none. */
    static std::function<std::shared_ptr<Element>(const ElementData &)>
    MakeCreator(const Entries::EntryCategory &category)
    {
        return [category](const ElementData &data) -> std::shared_ptr<Element> {
            return Notification::utils::MakeNode<ElementType>(
                data, Parsers::ElementParserFactory::getInstance()->get(category));
        };
    }
};

} // namespace Tessellum::AppData::Data::Elements
