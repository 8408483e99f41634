#include <appdata/data/elements/ElementSelfRegistration.h>
#include <appdata/data/elements/ElementsFactory.h>

namespace Tessellum::AppData::Data::Elements {

ElementsFactory::ElementsFactory()
{
    // At the first use and not by static objects, so that a program that merely links the library runs none.
    for (const CategoryType type : {CategoryType::Custom, CategoryType::Text, CategoryType::Binary,
                                    CategoryType::Unit, CategoryType::Float}) {
        const ElementSelfRegistration<Element> registration(*this, Entries::EntryCategory(type, QString()));
    }
}

ElementsFactory::~ElementsFactory() = default;

std::shared_ptr<Element> ElementsFactory::create(const Entries::EntryCategory &category,
                                                 const ElementData &data) const
{
    const auto creator = getCreator(category);
    return creator ? creator(data) : nullptr;
}

} // namespace Tessellum::AppData::Data::Elements
