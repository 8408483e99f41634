#pragma once

#include <appdata/interfaces/DataEntryManipulationInterface.h>

#include <QList>

#include <memory>

namespace Tessellum::AppData::Data::Entries {

class ClassificationNameEntry;
class Entry;

/*! Hands each call on to the living entries of a pair, in the order of its link. Whoever holds it through the
 * pair's interface holds the pair. No lock of its own. */
class TESSELLUM_EXPORT ClassificationNameEntryManipulationProvider
    : public Interfaces::DataEntryManipulationInterface
{
public:
    explicit ClassificationNameEntryManipulationProvider(ClassificationNameEntry *pair);
    ~ClassificationNameEntryManipulationProvider() override;

    /*! To the first entry; empty without one. */
    QString addDataElementValue(const quint64 &timestamp, const ElementValueKind &kind, const QVariant &value,
                                const Notification::CreatePoint &point, qint64 *index = nullptr) override;
    /*! By uuid: to the first entry that has the element. */
    bool changeDataElementActivationByUuid(const QString &uuid, const bool &active) override;
    /*! By index: the elements of all entries count, one entry after the other. */
    bool changeDataElementActivationByIndex(const quint64 &index, const bool &active) override;
    std::shared_ptr<QVariant> readDataElementValueByUuid(const QString &uuid) override;
    bool writeDataElementValueByUuid(const QString &uuid, const ElementValueKind &kind, const QVariant &value,
                                     const Notification::UpdatePoint &point) override;
    std::shared_ptr<QVariant> readDataElementValueByIndex(const quint64 &index) override;
    bool writeDataElementValueByIndex(const quint64 &index, const ElementValueKind &kind,
                                      const QVariant &value, const Notification::UpdatePoint &point) override;

private:
    using EntryPtr = std::shared_ptr<Entry>;

    QList<EntryPtr> entries() const;
    EntryPtr entryWith(const QString &uuid) const;
    EntryPtr entryAt(quint64 &index) const;

    ClassificationNameEntry *const pair;
};

} // namespace Tessellum::AppData::Data::Entries
