#pragma once

#include <appdata/interfaces/DataEntryQueryInterface.h>

#include <functional>

namespace Tessellum::AppData::Data::Entries {

class Entry;

/*! Reads the elements of an entry, or those of all entries of a pair, and belongs to it. Filters run with no
 * lock held. */
class TESSELLUM_EXPORT EntryQueryProvider : public Interfaces::DataEntryQueryInterface
{
public:
    /*! Whether an element that passed the mask is kept. */
    using ElementFilter = std::function<bool(const Interfaces::ConstDataElementPtr &)>;

    explicit EntryQueryProvider(Entry *entry);

    Interfaces::ConstDataElementList
    getElements(const ActivationMask &mask,
                const Interfaces::ConstElementListFilter &listFilter) const override;
    Interfaces::DataElementList getElements(const ActivationMask &mask,
                                            const Interfaces::ElementListFilter &listFilter) override;
    Interfaces::ConstDataElementList
    getElementsInRange(const quint64 &first, const quint64 &last, const ActivationMask &mask,
                       const Interfaces::ConstElementListFilter &listFilter) const override;
    Interfaces::DataElementList getElementsInRange(const quint64 &first, const quint64 &last,
                                                   const ActivationMask &mask,
                                                   const Interfaces::ElementListFilter &listFilter) override;
    quint64 countElements(const ActivationMask &mask) const override;
    Interfaces::ConstDataElementPtr getElementByIndex(const quint64 &index) const override;
    Interfaces::DataElementPtr getElementByIndex(const quint64 &index) override;
    Interfaces::ConstDataElementPtr getElementById(const QString &uuid) const override;
    Interfaces::DataElementPtr getElementById(const QString &uuid) override;
    bool getTimeSpan(quint64 &first, quint64 &last) const override;

private:
    Interfaces::DataElementList elements(const ActivationMask &mask) const;
    Interfaces::DataElementList elementsInRange(quint64 first, quint64 last,
                                                const ActivationMask &mask) const;
    Interfaces::DataElementList pairElementsInRange(quint64 first, quint64 last) const;
    Interfaces::DataElementList masked(const Interfaces::DataElementList &elements,
                                       const ActivationMask &mask) const;

    Entry *const entry;
    const ElementFilter filter;
};

/*! Whether \a element has the activation that \a mask asks for and passes \a filter; false with a WARNING for
 * a mask that does not exist. */
bool applyMaskedFilter(const Interfaces::ConstDataElementPtr &element, const ActivationMask &mask,
                       const EntryQueryProvider::ElementFilter &filter);

} // namespace Tessellum::AppData::Data::Entries
