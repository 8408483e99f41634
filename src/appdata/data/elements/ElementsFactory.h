#pragma once

#include <appdata/data/elements/Element.h>
#include <shared/synchronization/Factory.h>
#include <shared/synchronization/Singleton.h>

#include <functional>

namespace Tessellum::AppData::Data::Elements {

/*! Makes the elements of a category. Threads: any. */
class TESSELLUM_EXPORT ElementsFactory
    : public Shared::Singleton<ElementsFactory>,
      public Shared::Factory<ElementsFactory, Entries::EntryCategory, std::shared_ptr<Element>,
                             std::function<std::shared_ptr<Element>(const ElementData &)>>
{
    friend class Shared::Singleton<ElementsFactory>;

public:
    /*! Null for a category without a creator. */
    std::shared_ptr<Element> create(const Entries::EntryCategory &category, const ElementData &data) const;

private:
    ElementsFactory();
    ~ElementsFactory() override;
};

} // namespace Tessellum::AppData::Data::Elements
