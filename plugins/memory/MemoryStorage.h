#pragma once

#include <appdata/storages/StorageImplementation.h>

#include <QHash>
#include <QMutex>
#include <QStringList>

#include <atomic>

namespace Tessellum::Plugins::Memory {

/*!
 * A storage in memory: it keeps what it was given until the object dies, also over a disconnect.
 *
 * Lock: mutex guards the entries. Nothing is called with it held.
 */
class MemoryStorage : public AppData::Storages::StorageImplementation
{
public:
    using StorageImplementation::StorageImplementation;

    QStringList getEntryTypes() const override;
    bool connectStorage() override;
    bool disconnectStorage() override;
    bool isConnected() const override { return connected; }
    bool serializeEntry(const QString &uuid, const EntryRecord &record) override;
    bool serializeElement(const QString &entryUuid, const QString &elementUuid,
                          const ElementValues &values) override;
    quint64 getEntries(QHash<QString, EntryRecord> &found) const override;
    bool deserializeEntry(const QString &uuid, EntryRecord &record) const override;
    quint64 getElementIds(const QString &entryUuid, QStringList &uuids) const override;
    bool deserializeElement(const QString &entryUuid, const QString &elementUuid, ElementValues &values,
                            const AppData::LoadDataHint &hint) const override;
    QByteArray getElementRawData(const QString &entryUuid, const QString &elementUuid) const override;
    bool removeEntry(const QString &uuid) override;
    bool updateElement(const QString &entryUuid, const QString &elementUuid,
                       const ElementValues &values) override;
    bool updateElementValue(const QString &entryUuid, const QString &elementUuid,
                            const AppData::DataElementUpdateType &type, const QVariant &value) override;

private:
    struct Entry
    {
        EntryRecord record;
        QStringList order; // of the elements, as they came
        QHash<QString, ElementValues> elements;
    };

    template <class Work>
    auto whileConnected(const Work &work) const;

    std::atomic<bool> connected = false;
    mutable QMutex mutex;
    QHash<QString, Entry> entries;
};

} // namespace Tessellum::Plugins::Memory
