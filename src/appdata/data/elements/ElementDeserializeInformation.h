#pragma once

#include <appdata/data/entries/EntryDeserializeInformation.h>

namespace Tessellum::AppData::Data::Elements {

/*! Where an element comes from. */
struct ElementDeserializeInformation
{
    QString uuid; /*!< Of the element. */
    Entries::EntryDeserializeInformation entry; /*!< Of the entry. */
};

using ElementsDeserializeInformation = QList<ElementDeserializeInformation>;

} // namespace Tessellum::AppData::Data::Elements

Q_DECLARE_METATYPE(Tessellum::AppData::Data::Elements::ElementDeserializeInformation)
Q_DECLARE_METATYPE(Tessellum::AppData::Data::Elements::ElementsDeserializeInformation)
