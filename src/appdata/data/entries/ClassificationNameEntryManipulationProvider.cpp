#include <appdata/data/entries/ClassificationNameEntry.h>
#include <appdata/data/entries/ClassificationNameEntryManipulationProvider.h>
#include <appdata/data/entries/utils/PairLinks.h>

namespace Tessellum::AppData::Data::Entries {

using Notification::CreatePoint;
using Notification::UpdatePoint;

ClassificationNameEntryManipulationProvider::ClassificationNameEntryManipulationProvider(
    ClassificationNameEntry *changedPair)
    : pair(changedPair)
{ }

ClassificationNameEntryManipulationProvider::~ClassificationNameEntryManipulationProvider() = default;

QString ClassificationNameEntryManipulationProvider::addDataElementValue(const quint64 &timestamp,
                                                                         const ElementValueKind &kind,
                                                                         const QVariant &value,
                                                                         const CreatePoint &point,
                                                                         qint64 *index)
{
    if (index)
        *index = -1;
    const auto living = entries();
    if (living.isEmpty())
        return QString();
    return living.constFirst()->getManipulationInterface()->addDataElementValue(timestamp, kind, value, point,
                                                                                index);
}

bool ClassificationNameEntryManipulationProvider::changeDataElementActivationByUuid(const QString &uuid,
                                                                                    const bool &active)
{
    const auto entry = entryWith(uuid);
    return entry && entry->getManipulationInterface()->changeDataElementActivationByUuid(uuid, active);
}

bool ClassificationNameEntryManipulationProvider::changeDataElementActivationByIndex(const quint64 &index,
                                                                                     const bool &active)
{
    quint64 rest = index;
    const auto entry = entryAt(rest);
    return entry && entry->getManipulationInterface()->changeDataElementActivationByIndex(rest, active);
}

std::shared_ptr<QVariant>
ClassificationNameEntryManipulationProvider::readDataElementValueByUuid(const QString &uuid)
{
    const auto entry = entryWith(uuid);
    return entry ? entry->getManipulationInterface()->readDataElementValueByUuid(uuid) : nullptr;
}

std::shared_ptr<QVariant>
ClassificationNameEntryManipulationProvider::readDataElementValueByIndex(const quint64 &index)
{
    quint64 rest = index;
    const auto entry = entryAt(rest);
    return entry ? entry->getManipulationInterface()->readDataElementValueByIndex(rest) : nullptr;
}

bool ClassificationNameEntryManipulationProvider::writeDataElementValueByUuid(const QString &uuid,
                                                                              const ElementValueKind &kind,
                                                                              const QVariant &value,
                                                                              const UpdatePoint &point)
{
    const auto entry = entryWith(uuid);
    return entry && entry->getManipulationInterface()->writeDataElementValueByUuid(uuid, kind, value, point);
}

bool ClassificationNameEntryManipulationProvider::writeDataElementValueByIndex(const quint64 &index,
                                                                               const ElementValueKind &kind,
                                                                               const QVariant &value,
                                                                               const UpdatePoint &point)
{
    quint64 rest = index;
    const auto entry = entryAt(rest);
    return entry && entry->getManipulationInterface()->writeDataElementValueByIndex(rest, kind, value, point);
}

QList<ClassificationNameEntryManipulationProvider::EntryPtr>
ClassificationNameEntryManipulationProvider::entries() const
{
    return utils::EntriesOfPair(pair->getLinkPath());
}

ClassificationNameEntryManipulationProvider::EntryPtr
ClassificationNameEntryManipulationProvider::entryWith(const QString &uuid) const
{
    for (const EntryPtr &entry : entries()) {
        if (entry->getQueryInterface()->getElementById(uuid))
            return entry;
    }
    return nullptr;
}

/*! \a index becomes the position within the entry. */
ClassificationNameEntryManipulationProvider::EntryPtr
ClassificationNameEntryManipulationProvider::entryAt(quint64 &index) const
{
    for (const EntryPtr &entry : entries()) {
        const quint64 number = entry->getQueryInterface()->countElements(ActivationMask::All);
        if (index < number)
            return entry;
        index -= number;
    }
    return nullptr;
}

} // namespace Tessellum::AppData::Data::Entries
