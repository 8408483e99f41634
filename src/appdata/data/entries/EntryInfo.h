#pragma once

#include <appdata/data/entries/EntrySerializeInformation.h>

#include <QStringList>

#include <memory>

namespace Tessellum::AppData::Data::Entries {

/*! The request for a new entry. The task writes the uuid where it is empty; it may be read after the task. */
struct EntryInfo
{
    QString uuid;
    EntrySerializeInformation serialize;
    QString sourceUuid; /*!< The entry whose elements are copied. */
    bool copyElements = false;
    QStringList elementsList; /*!< The uuids of the elements to copy. */
};

using EntryInfoContainer = std::shared_ptr<EntryInfo>;

} // namespace Tessellum::AppData::Data::Entries

Q_DECLARE_METATYPE(Tessellum::AppData::Data::Entries::EntryInfoContainer)
