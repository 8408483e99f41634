#pragma once

#include <appdata/data/entries/EntrySerializeInformation.h>

#include <QList>

namespace Tessellum::AppData::Data::Elements {

/*! What an element is besides its value. */
struct ElementSerializeInformation
{
    quint64 timestamp = 0;
    bool active = false;
    Entries::EntrySerializeInformation entry; /*!< A copy of the record of the entry. */
};

using ElementsSerializeInformation = QList<ElementSerializeInformation>;

} // namespace Tessellum::AppData::Data::Elements

Q_DECLARE_METATYPE(Tessellum::AppData::Data::Elements::ElementSerializeInformation)
Q_DECLARE_METATYPE(Tessellum::AppData::Data::Elements::ElementsSerializeInformation)
