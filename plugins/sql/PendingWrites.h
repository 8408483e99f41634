#pragma once

#include "Write.h"

#include <QHash>
#include <QStringList>

#include <deque>

namespace Tessellum::Plugins::Sql {

/*!
 * What the writes on their way will have made of the medium, so that readers see them before they are there.
 * Has no lock: the queue guards it.
 */
class PendingWrites
{
public:
    /*! What is known of an entry beyond the medium. */
    struct EntryView
    {
        bool removed = false; /*!< What the medium holds of the entry is void. */
        std::shared_ptr<const EntryRecord> record; /*!< Null: as the medium has it. */
    };
    /*! What is known of an element beyond the medium. */
    struct ElementView
    {
        bool entryRemoved = false;
        bool whole = false; /*!< The fields are all there is; the medium need not be asked. */
        ElementFields fields;
    };

    void add(const Write &write);
    /*! \a write is in the medium. In the order of the writes. */
    void settle(const Write &write);
    void clear() { entries.clear(); }

    EntryView entry(const QString &uuid) const;
    ElementView element(const QString &entryUuid, const QString &elementUuid) const;
    /*! The elements that are not in the medium yet, in their order; may hold some that are. */
    QStringList createdElements(const QString &entryUuid) const;
    QHash<QString, EntryView> changedEntries() const;

private:
    struct PendingElement
    {
        quint64 last = 0; // the write with which it is settled
        bool whole = false;
        ElementFields fields;
    };
    struct PendingEntry
    {
        quint64 removedBy = 0;
        quint64 recordBy = 0;
        std::shared_ptr<const EntryRecord> record;
        QHash<QString, PendingElement> elements;
        std::deque<std::pair<quint64, QString>> created;

        bool isSettled() const { return removedBy == 0 && !record && elements.isEmpty(); }
    };

    QHash<QString, PendingEntry> entries;
};

} // namespace Tessellum::Plugins::Sql
