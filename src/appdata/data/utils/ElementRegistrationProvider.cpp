#include <appdata/data/elements/ElementSelfRegistration.h>
#include <appdata/data/utils/ElementRegistrationProvider.h>
#include <appdata/DataTypeStrings.h>

namespace Tessellum::AppData::Data::utils {

using namespace Elements;

ElementRegistrationProvider::ElementRegistrationProvider()
{
    for (const auto &category : ElementsFactory::getInstance()->getRegisteredProductIdentifier()) {
        if (!category.getDetail().isEmpty()) // without one it is the library's own
            enlist(category);
    }
}

bool ElementRegistrationProvider::registerElement(const CategoryType &type, const QString &detail,
                                                  const ParserCreator &parserCreator)
{
    const Entries::EntryCategory category(type, detail);
    if (!Parsers::ElementParserFactory::getInstance()->registerProduct(category, parserCreator))
        return false;
    ElementsFactory *const factory = ElementsFactory::getInstance();
    if (!factory->registerProduct(category, ElementSelfRegistration<Element>::MakeCreator(category)))
        return true; // it can be made already
    enlist(category);
    return true;
}

void ElementRegistrationProvider::enlist(const Entries::EntryCategory &category) const
{
    if (const auto list = getList(QStringLiteral("types"), QStringLiteral("custom_data_elements"))) {
        const QString text = ConvertDataEntryCategoryToString(category);
        list->addElementToList(text, text, false);
    }
}

} // namespace Tessellum::AppData::Data::utils
