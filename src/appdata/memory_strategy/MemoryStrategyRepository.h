#pragma once

#include <appdata/InternalSettingsProvider.h>
#include <appdata/memory_strategy/MemoryStrategy.h>
#include <shared/synchronization/Factory.h>
#include <shared/synchronization/Singleton.h>

#include <QMap>
#include <QReadWriteLock>
#include <QStringList>

namespace Tessellum::AppData::Data::Entries {
class Entry;
}

namespace Tessellum::AppData::MemoryStrategies {

/*!
 * Makes memory strategies by their type keys, and knows which pairs of classification and name get one when
 * their entries are added. Threads: any. Lock: guards the patterns; the base guards the creators.
 */
class TESSELLUM_EXPORT MemoryStrategyRepository
    : public Shared::Singleton<MemoryStrategyRepository>,
      public Shared::Factory<MemoryStrategy, QString, std::shared_ptr<MemoryStrategy>,
                             std::function<std::shared_ptr<MemoryStrategy>(
                                 const QString &id, const QString &parameters,
                                 const std::weak_ptr<const Data::Entries::Entry> &entry)>>,
      public InternalSettingsProvider
{
    friend class Shared::Singleton<MemoryStrategyRepository>;

public:
    /*! Null for an unknown type, and where the creator throws, which leaves a CRITICAL line. */
    std::shared_ptr<MemoryStrategy>
    createMemoryStrategy(const QString &type, const QString &id, const QString &parameters,
                         const std::weak_ptr<const Data::Entries::Entry> &entry) const;
    /*! The first of the keys that name the same strategy as \a type, which is what its getType() answers.
     * In lower case where the setting "names_ignore_case" says so. */
    QString getFirstKey(const QString &type) const;
    bool isTypeRegistered(const QString &type) const;

    /*! Lets new entries of the pairs that \a pattern matches, a path with wildcards, get \a type. */
    void setStrategyPattern(const QString &pattern, const QString &type);
    /*! The type for a new entry by the first pattern, in sorted order, that matches; empty without one. */
    QString getStrategyType(const QString &classification, const QString &name) const;

private:
    MemoryStrategyRepository();
    ~MemoryStrategyRepository() override;

    template <class Strategy>
    void registerStrategy();
    QString keyOf(const QString &type) const;

    QMap<QString, QString> firstKeys; // never changes after the constructor
    mutable QReadWriteLock lock;
    QMap<QString, QString> patterns;
};

} // namespace Tessellum::AppData::MemoryStrategies
