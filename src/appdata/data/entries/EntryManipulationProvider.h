#pragma once

#include <appdata/data/elements/ElementUpdateData.h>
#include <appdata/interfaces/DataElementInterface.h>
#include <appdata/interfaces/DataEntryManipulationInterface.h>

#include <memory>

namespace Tessellum::AppData::Data::Entries {

class Entry;

/*!
 * Adds values to an entry and changes them. Whoever holds it through the entry's interface holds the entry.
 *
 * Locks: none of its own. The entry's lock makes the test of the capacity and the reservation of a place one
 * step; no lock is held across a wait.
 */
class TESSELLUM_EXPORT EntryManipulationProvider : public Interfaces::DataEntryManipulationInterface
{
public:
    explicit EntryManipulationProvider(Entry *entry);
    ~EntryManipulationProvider() override;

    QString addDataElementValue(const quint64 &timestamp, const ElementValueKind &kind, const QVariant &value,
                                const Notification::CreatePoint &point, qint64 *index = nullptr) override;
    bool changeDataElementActivationByUuid(const QString &uuid, const bool &active) override;
    bool changeDataElementActivationByIndex(const quint64 &index, const bool &active) override;
    std::shared_ptr<QVariant> readDataElementValueByUuid(const QString &uuid) override;
    bool writeDataElementValueByUuid(const QString &uuid, const ElementValueKind &kind, const QVariant &value,
                                     const Notification::UpdatePoint &point) override;
    std::shared_ptr<QVariant> readDataElementValueByIndex(const quint64 &index) override;
    bool writeDataElementValueByIndex(const quint64 &index, const ElementValueKind &kind,
                                      const QVariant &value, const Notification::UpdatePoint &point) override;

private:
    using ElementPtr = std::shared_ptr<Interfaces::DataElementInterface>;
    struct Addition;

    Addition startAddition(const Elements::ElementUpdateData &data, const QString &freshUuid,
                           const Notification::CreatePoint &point) const;
    static bool changeActivation(const ElementPtr &element, bool active);
    static std::shared_ptr<QVariant> read(const ElementPtr &element);
    bool rawBytes(const ElementValueKind &kind, const QVariant &value, QByteArray &raw) const;
    bool write(const ElementPtr &element, const ElementValueKind &kind, const QVariant &value,
               const Notification::UpdatePoint &point) const;

    Entry *const entry;
};

} // namespace Tessellum::AppData::Data::Entries
