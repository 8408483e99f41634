#pragma once

#include <appdata/data/entries/EntrySerializeInformation.h>

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace Tessellum::Plugins::Sql {

using EntryRecord = AppData::Data::Entries::EntrySerializeInformation;

/*! The values of an element that the medium keeps. One that is not set was never given. */
struct ElementFields
{
    std::optional<bool> active;
    std::optional<quint64> stamp;
    std::optional<QByteArray> raw; /*!< Never null. */

    /*! Takes over what \a later has. */
    void merge(const ElementFields &later)
    {
        if (later.active)
            active = later.active;
        if (later.stamp)
            stamp = later.stamp;
        if (later.raw)
            raw = later.raw;
    }
};

/*! How a write that somebody waits for came out. Guarded by the queue's mutex. */
struct WriteTicket
{
    bool ended = false;
    bool written = false;
};

/*! One change of the medium. */
struct Write
{
    enum class Kind { PutEntry, RemoveEntry, PutElement, UpdateElement };

    Kind kind = Kind::PutEntry;
    QString entry;
    QString element; /*!< Of the two kinds that concern elements. */
    std::shared_ptr<const EntryRecord> record; /*!< Of PutEntry. */
    ElementFields fields; /*!< Of the two kinds that concern elements. */
    quint64 sequence = 0; /*!< Given by the queue, ascending. */
    std::shared_ptr<WriteTicket> ticket; /*!< Null where nobody waits. */

    qint64 bytes() const { return fields.raw ? fields.raw->size() : 0; }
};

using WriteGroup = std::vector<Write>;

/*! Whether the medium works. One text per outage is logged. */
struct MediumError
{
    QString text; /*!< Of the engine; empty: no error. */
    bool isOutage = false; /*!< The medium fails, and not what was asked of it. */

    explicit operator bool() const { return !text.isEmpty(); }
};

} // namespace Tessellum::Plugins::Sql
