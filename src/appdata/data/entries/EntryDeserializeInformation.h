#pragma once

#include <appdata/DataTypes.h>

#include <QList>
#include <QString>

#include <memory>

namespace Tessellum::AppData::Storages {
class Storage;
}

namespace Tessellum::AppData::Data::Entries {

/*! Where an entry comes from. */
struct EntryDeserializeInformation
{
    QString uuid;
    LoadDataHint loadDataHint = LoadDataHint::OnDemand;
    std::weak_ptr<Storages::Storage> storage;
};

} // namespace Tessellum::AppData::Data::Entries

Q_DECLARE_METATYPE(Tessellum::AppData::Data::Entries::EntryDeserializeInformation)
Q_DECLARE_METATYPE(QList<Tessellum::AppData::Data::Entries::EntryDeserializeInformation>)
