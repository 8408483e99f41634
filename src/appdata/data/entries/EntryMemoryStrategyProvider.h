#pragma once

#include <appdata/interfaces/DataEntryMemoryStrategyInterface.h>

#include <QMutex>

#include <memory>

namespace Tessellum::Core {
class HierarchyListPattern;
}

namespace Tessellum::AppData::MemoryStrategies {
class MemoryStrategyWrapper;
}

namespace Tessellum::AppData::Data::Entries {

class Entry;

/*!
 * Holds the wrapper of an entry, to which it belongs, and installs strategies in it.
 *
 * Lock: makes the look at the wrapper and what the list of names then shows one step; the locks of the
 * wrapper and of the list are taken inside it.
 */
class TESSELLUM_EXPORT EntryMemoryStrategyProvider : public Interfaces::DataEntryMemoryStrategyInterface
{
public:
    /*! Connects \a entry to the wrapper, which has no strategy. */
    explicit EntryMemoryStrategyProvider(Entry *entry);
    ~EntryMemoryStrategyProvider() override;

    bool installMemoryStrategy(const QString &type, const QString &parameters) override;
    bool removeMemoryStrategy() override;
    bool configureMemoryStrategy(const QString &parameters) override;
    bool getMemoryStrategyType(QString &type) const override;

    std::shared_ptr<MemoryStrategies::MemoryStrategyWrapper> getWrapper() const { return wrapper; }

private:
    void showType();

    Entry *const entry;
    const std::shared_ptr<MemoryStrategies::MemoryStrategyWrapper> wrapper;
    QMutex listMutex;
    std::weak_ptr<Core::HierarchyListPattern> shownIn; // where the entry's own element is
};

} // namespace Tessellum::AppData::Data::Entries
