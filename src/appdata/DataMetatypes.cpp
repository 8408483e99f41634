#include <appdata/data/elements/ElementData.h>
#include <appdata/data/elements/ElementUpdateData.h>
#include <appdata/data/entries/EntryInfo.h>
#include <appdata/DataMetatypes.h>
#include <appdata/storages/StorageCreateData.h>

namespace Tessellum::AppData {

QList<int> RegisterDataMetatypes()
{
    using namespace Data::Elements;
    using namespace Data::Entries;
    qRegisterMetaType<CategoryType>("Tessellum::AppData::CategoryType");
    qRegisterMetaType<PersistenceType>("Tessellum::AppData::PersistenceType");
    qRegisterMetaType<EntryInfoContainer>("Tessellum::AppData::Data::Entries::EntryInfoContainer");
    qRegisterMetaType<QList<EntryDeserializeInformation>>();
    qRegisterMetaType<ElementData>("Tessellum::AppData::Data::Elements::ElementData");
    return {
        qRegisterMetaType<EntryCategory>("Tessellum::AppData::Data::Entries::EntryCategory"),
        qRegisterMetaType<ElementSerializeInformation>(
            "Tessellum::AppData::Data::Elements::ElementSerializeInformation"),
        qRegisterMetaType<ElementsSerializeInformation>(
            "Tessellum::AppData::Data::Elements::ElementsSerializeInformation"),
        qRegisterMetaType<ElementDeserializeInformation>(
            "Tessellum::AppData::Data::Elements::ElementDeserializeInformation"),
        qRegisterMetaType<ElementsDeserializeInformation>(
            "Tessellum::AppData::Data::Elements::ElementsDeserializeInformation"),
        qRegisterMetaType<ElementUpdateData>("Tessellum::AppData::Data::Elements::ElementUpdateData"),
        qRegisterMetaType<EntryDeserializeInformation>(
            "Tessellum::AppData::Data::Entries::EntryDeserializeInformation"),
        qRegisterMetaType<EntrySerializeInformation>(
            "Tessellum::AppData::Data::Entries::EntrySerializeInformation"),
        qRegisterMetaType<Storages::StorageCreateData>("Tessellum::AppData::Storages::StorageCreateData"),
        qRegisterMetaType<LoadStatus>("Tessellum::AppData::LoadStatus"),
        qRegisterMetaType<LoadDataHint>("Tessellum::AppData::LoadDataHint"),
    };
}

} // namespace Tessellum::AppData
