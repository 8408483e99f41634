#pragma once

#include <appdata/memory_strategy/MemoryStrategy.h>

#include <QStringList>

namespace Tessellum::AppData::Data::Entries {
class Entry;
}

namespace Tessellum::AppData::MemoryStrategies {

/*! Keeps the last elements of an entry in the order of their adding; one, unless {"limit": NUMBER} says
 * another number. An evaluation costs the same whatever the limit. */
class TESSELLUM_EXPORT LastAddedElementMemoryStrategy : public MemoryStrategy
{
    Q_OBJECT

public:
    LastAddedElementMemoryStrategy(const QString &id, const QString &parameters,
                                   const std::weak_ptr<const Data::Entries::Entry> &entry);
    ~LastAddedElementMemoryStrategy() override;

    /*! The type keys, the first of which is its type. */
    static const QStringList &Keys();

    bool configure(const QString &parameters) override;
    qint32 evaluate(const QString &elementUuid) override;

private:
    const std::weak_ptr<const Data::Entries::Entry> entry;
    qint32 limit = 1;
};

} // namespace Tessellum::AppData::MemoryStrategies
