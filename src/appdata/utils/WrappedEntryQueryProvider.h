#pragma once

#include <appdata/interfaces/DataEntryQueryInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle for reading the elements of an entry. The application's list filter gets handles
 * too. */
class WrappedEntryQueryProvider : public Interfaces::DataEntryQueryInterface,
                                  private WrappedFront<Interfaces::DataEntryQueryInterface>
{
public:
    using WrappedFront::WrappedFront;

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
    template <class List>
    List wrapAll(const Interfaces::DataElementList &elements) const;
    Interfaces::DataElementList elementsOf(const ActivationMask &mask) const;
    Interfaces::DataElementList elementsInRange(quint64 first, quint64 last,
                                                const ActivationMask &mask) const;
};

} // namespace Tessellum::AppData::utils
