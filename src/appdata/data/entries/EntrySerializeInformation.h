#pragma once

#include <appdata/data/entries/EntryCategory.h>

#include <atomic>

namespace Tessellum::AppData::Data::Entries {

/*! A number that copies as its value at that moment. */
class AtomicCount
{
public:
    AtomicCount() = default;
    AtomicCount(const AtomicCount &other)
        : value(other.load())
    { }
    AtomicCount &operator=(const AtomicCount &other)
    {
        value.store(other.load());
        return *this;
    }
    quint32 load() const { return value.load(); }
    void add(quint32 number) { value.fetch_add(number); }
    void subtract(quint32 number) { value.fetch_sub(number); }
    void reset() { value.store(0); }

private:
    std::atomic<quint32> value{0};
};

/*! What an entry is. */
struct EntrySerializeInformation
{
    EntrySerializeInformation() = default;
    EntrySerializeInformation(const QString &entryName, const QString &entryClassification,
                              const EntryCategory &entryCategory, const QString &nameOfStorage,
                              const PersistenceType &entryPersistence, const quint64 &entryCapacity)
        : name(entryName)
        , classification(entryClassification)
        , category(entryCategory)
        , storageName(nameOfStorage)
        , persistence(entryPersistence)
        , capacity(entryCapacity)
    { }

    QString name;
    QString classification;
    EntryCategory category;
    QString storageName; /*!< Empty for a volatile entry. */
    PersistenceType persistence = PersistenceType::Unknown;
    quint64 capacity = 0; /*!< The most elements; 0: no limit. */
    quint64 addCounter = 0; /*!< The number of writes that went into the ring. */
    AtomicCount pendingCreates; /*!< The elements whose create tasks are on their way. */
};

} // namespace Tessellum::AppData::Data::Entries

Q_DECLARE_METATYPE(Tessellum::AppData::Data::Entries::EntrySerializeInformation)
