#pragma once

#include <appdata/memory_strategy/MemoryStrategy.h>
#include <appdata/memory_strategy/TimeRangeProvider.h>

#include <QStringList>

#include <atomic>

namespace Tessellum::AppData::Data::Entries {
class Entry;
}

namespace Tessellum::AppData::MemoryStrategies {

/*! Keeps the elements of an entry whose time stamps lie in a range, which may move with the entry's ends; see
 * TimeRangeProvider for the parameters. */
class TESSELLUM_EXPORT ElementTimeSpanMemoryStrategy : public MemoryStrategy
{
    Q_OBJECT

public:
    ElementTimeSpanMemoryStrategy(const QString &id, const QString &parameters,
                                  const std::weak_ptr<const Data::Entries::Entry> &entry);
    ~ElementTimeSpanMemoryStrategy() override;

    /*! The type keys, the first of which is its type. */
    static const QStringList &Keys();

    bool configure(const QString &parameters) override;
    qint32 evaluate(const QString &elementUuid) override;

protected:
    /*! The entry's ends may have moved. */
    void handleElementAdded(const QString &elementId) override;

private:
    const std::weak_ptr<const Data::Entries::Entry> entry;
    const std::shared_ptr<TimeRangeProvider> range;
    std::atomic<quint64> seenChanges{0}; // of the entry's index by time stamp
};

} // namespace Tessellum::AppData::MemoryStrategies
