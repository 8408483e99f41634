#pragma once

#include <appdata/storages/StorageImplementation.h>

#include <QUuid>

namespace TestSupport {

using Tessellum::AppData::Storages::StorageImplementation;
using EntryRecord = StorageImplementation::EntryRecord;
using ElementValues = StorageImplementation::ElementValues;

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

// The time stamps of an entry's elements, in their order.
inline QList<qulonglong> Stamps(const std::shared_ptr<StorageImplementation> &storage, const QString &entry)
{
    QList<qulonglong> found;
    QStringList uuids;
    storage->getElementIds(entry, uuids);
    for (const QString &uuid : qAsConst(uuids)) {
        ElementValues values;
        quint64 stamp = ~quint64(0);
        storage->deserializeElement(entry, uuid, values, Tessellum::AppData::LoadDataHint::OnDemand);
        values.getTimestamp(stamp);
        found.append(stamp);
    }
    return found;
}

} // namespace TestSupport
