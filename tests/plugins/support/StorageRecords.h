#pragma once

#include <appdata/storages/StorageImplementation.h>

#include <QUuid>

namespace TestSupport {

using EntryRecord = Tessellum::AppData::Storages::StorageImplementation::EntryRecord;
using ElementValues = Tessellum::AppData::Storages::StorageImplementation::ElementValues;

inline QString Uuid()
{
    return QUuid::createUuid().toString();
}

inline EntryRecord Record(const QString &name = QStringLiteral("load"))
{
    using namespace Tessellum::AppData;
    return EntryRecord(name, QStringLiteral("plant"),
                       Data::Entries::EntryCategory(CategoryType::Float, QStringLiteral("percent")),
                       QStringLiteral("archive"), PersistenceType::Persistent, ~quint64(0));
}

inline ElementValues Values(quint64 stamp, const QByteArray &raw, bool active = true)
{
    ElementValues values;
    values.setActive(active);
    values.setTimestamp(stamp);
    values.setRawData(raw);
    return values;
}

} // namespace TestSupport
