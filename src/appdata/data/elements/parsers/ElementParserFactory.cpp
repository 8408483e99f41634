#include <appdata/data/elements/parsers/CallParser.h>
#include <appdata/data/elements/parsers/DefaultElementParser.h>
#include <appdata/data/elements/parsers/ElementParserFactory.h>
#include <appdata/data/elements/parsers/FloatingPointNumberElementParser.h>

namespace Tessellum::AppData::Data::Elements::Parsers {

using Entries::EntryCategory;

ElementParserFactory::ElementParserFactory()
{
    for (const CategoryType type : {CategoryType::Text, CategoryType::Binary, CategoryType::Unit}) {
        registerProduct(EntryCategory(type, QString()),
                        [] { return std::make_shared<DefaultElementParser>(); });
    }
    registerProduct(EntryCategory(CategoryType::Float, QString()),
                    [] { return std::make_shared<FloatingPointNumberElementParser>(); });
}

ElementParserFactory::~ElementParserFactory() = default;

std::shared_ptr<Interfaces::DataElementParserInterface>
ElementParserFactory::get(const EntryCategory &category)
{
    {
        const QMutexLocker locker(&cacheMutex);
        const auto found = cache.constFind(category);
        if (found != cache.cend())
            return *found;
    }
    const auto creator = getCreator(category);
    const auto parser = creator ? GuardParser<std::shared_ptr<Interfaces::DataElementParserInterface>>(
                            "ElementParserFactory::get()", creator)
                                : nullptr;
    // Where another thread was quicker, its parser is the one.
    const QMutexLocker locker(&cacheMutex);
    const auto found = cache.constFind(category);
    return found != cache.cend() ? *found : *cache.insert(category, parser);
}

} // namespace Tessellum::AppData::Data::Elements::Parsers
