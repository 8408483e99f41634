#include "PendingWrites.h"

namespace Tessellum::Plugins::Sql {

void PendingWrites::add(const Write &write)
{
    PendingEntry &entry = entries[write.entry];
    switch (write.kind) {
    case Write::Kind::PutEntry:
        entry.record = write.record;
        entry.recordBy = write.sequence;
        return;
    case Write::Kind::RemoveEntry:
        entry = PendingEntry();
        entry.removedBy = write.sequence;
        return;
    case Write::Kind::PutElement: {
        PendingElement &element = entry.elements[write.element];
        if (!element.whole)
            entry.created.emplace_back(write.sequence, write.element);
        element = {write.sequence, true, write.fields};
        return;
    }
    case Write::Kind::UpdateElement: {
        PendingElement &element = entry.elements[write.element];
        element.fields.merge(write.fields);
        element.last = write.sequence;
        return;
    }
    }
}

void PendingWrites::settle(const Write &write)
{
    const auto entry = entries.find(write.entry);
    if (entry == entries.end())
        return;
    if (entry->removedBy == write.sequence)
        entry->removedBy = 0;
    if (entry->recordBy == write.sequence)
        entry->record.reset();
    if (!write.element.isNull()) {
        while (!entry->created.empty() && entry->created.front().first <= write.sequence)
            entry->created.pop_front();
        const auto element = entry->elements.find(write.element);
        if (element != entry->elements.end() && element->last == write.sequence)
            entry->elements.erase(element);
    }
    if (entry->isSettled())
        entries.erase(entry);
}

PendingWrites::EntryView PendingWrites::entry(const QString &uuid) const
{
    const auto found = entries.constFind(uuid);
    return found == entries.cend() ? EntryView() : EntryView{found->removedBy != 0, found->record};
}

PendingWrites::ElementView PendingWrites::element(const QString &entryUuid, const QString &elementUuid) const
{
    const auto entry = entries.constFind(entryUuid);
    if (entry == entries.cend())
        return ElementView();
    const auto element = entry->elements.constFind(elementUuid);
    if (element == entry->elements.cend())
        return {entry->removedBy != 0, false, {}};
    return {entry->removedBy != 0, element->whole, element->fields};
}

QStringList PendingWrites::createdElements(const QString &entryUuid) const
{
    QStringList created;
    const auto entry = entries.constFind(entryUuid);
    if (entry == entries.cend())
        return created;
    created.reserve(int(entry->created.size()));
    for (const auto &[sequence, uuid] : entry->created)
        created.append(uuid);
    return created;
}

QHash<QString, PendingWrites::EntryView> PendingWrites::changedEntries() const
{
    QHash<QString, EntryView> changed;
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        if (entry->removedBy != 0 || entry->record)
            changed.insert(entry.key(), {entry->removedBy != 0, entry->record});
    }
    return changed;
}

} // namespace Tessellum::Plugins::Sql
