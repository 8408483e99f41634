#pragma once

#include <appdata/data/entries/EntryCategory.h>
#include <appdata/interfaces/DataElementParserInterface.h>
#include <shared/synchronization/Factory.h>
#include <shared/synchronization/Singleton.h>

#include <functional>

namespace Tessellum::AppData::Data::Elements::Parsers {

/*! Gives the one parser of each category. Lock: guards the parsers made so far; creators run without it. */
class TESSELLUM_EXPORT ElementParserFactory
    : public Shared::Singleton<ElementParserFactory>,
      public Shared::Factory<ElementParserFactory, Entries::EntryCategory,
                             std::shared_ptr<Interfaces::DataElementParserInterface>,
                             std::function<std::shared_ptr<Interfaces::DataElementParserInterface>()>>
{
    friend class Shared::Singleton<ElementParserFactory>;

public:
    /*! The parser, made at the first call; null without a creator, then for ever. */
    std::shared_ptr<Interfaces::DataElementParserInterface> get(const Entries::EntryCategory &category);

private:
    ElementParserFactory();
    ~ElementParserFactory() override;

    QMutex cacheMutex;
    QHash<Entries::EntryCategory, std::shared_ptr<Interfaces::DataElementParserInterface>> cache;
};

} // namespace Tessellum::AppData::Data::Elements::Parsers
