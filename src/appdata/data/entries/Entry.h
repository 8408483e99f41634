#pragma once

#include <appdata/data/entries/utils/EntryProvider.h>
#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QVarLengthArray>

#include <memory>
#include <utility>

namespace Tessellum::AppData::Data::Elements {
class Element;
}

namespace Tessellum::AppData::MemoryStrategies {
class MemoryStrategyWrapper;
}

namespace Tessellum::AppData::utils {
class LoadStatusMirror;
}

namespace Tessellum::AppData::Data::Entries {

namespace utils {
class ElementTimeIndex;
}
class ClassificationNameEntry;
class EntryManipulationProvider;
class EntryMemoryStrategyProvider;
class EntryQueryProvider;

/*!
 * The node of an entry; its id is the uuid, its children are its elements.
 *
 * Locks: the node's own guards the facts, addCounter among them; the lock of the index by time stamp is taken
 * last, also under that of an element's data. An entry's lock is taken before that of an element's node,
 * never after one of an element's data.
 */
class TESSELLUM_EXPORT Entry : public Shared::Hierarchy::HierarchyNodeInstance,
                               public utils::EntryProvider,
                               public AppData::utils::AppDataRepositoryEventThreadUser
{
    Q_OBJECT

public:
    /*! While it lives, what this thread adds to entries is told to nobody; its end tells of it. For those who
     * add under a lock, and made before that is taken; one at a time on a thread. */
    class TESSELLUM_EXPORT LateAnnouncements
    {
    public:
        LateAnnouncements();
        ~LateAnnouncements();
        Q_DISABLE_COPY_MOVE(LateAnnouncements)

    private:
        friend class Entry;

        mutable QVarLengthArray<std::pair<std::shared_ptr<HierarchyNode>, QString>, 1>
            added; // entries and ids
    };

    explicit Entry(const EntryData &data);
    ~Entry() override;

    std::shared_ptr<const Interfaces::DataEntryManipulationInterface>
    getManipulationInterface() const override;
    std::shared_ptr<Interfaces::DataEntryManipulationInterface> getManipulationInterface() override;
    std::shared_ptr<const Interfaces::DataEntryQueryInterface> getQueryInterface() const override;
    std::shared_ptr<Interfaces::DataEntryQueryInterface> getQueryInterface() override;
    std::shared_ptr<const Interfaces::DataEntryMemoryStrategyInterface>
    getMemoryStrategyInterface() const override;
    std::shared_ptr<Interfaces::DataEntryMemoryStrategyInterface> getMemoryStrategyInterface() override;

    /*! Also shows the status in the configuration, without waiting. No lock may be held. */
    bool setLoadStatus(const LoadStatus &status) override;
    /*! An element is counted in addCounter and entered into the index by time stamp as well. \a index becomes
     * -1 (all bits set) where the child is refused. */
    bool addChild(const std::shared_ptr<HierarchyNode> &child, quint64 *index = nullptr) override;

    /*! The one wrapper of this entry's elements, for as long as the entry lives. */
    std::shared_ptr<MemoryStrategies::MemoryStrategyWrapper> getMemoryStrategyWrapper() const;
    utils::ElementTimeIndex &timeIndex() const { return *elementTimes; }
    /*! The storage, null for a volatile entry or where it has gone. */
    std::shared_ptr<Storages::Storage> getStorage() const;
    /*! Classification and name as one path below the root of the repository. */
    QString getPairPath() const;
    /*! The pair that the entry is linked to, beneath which references to its elements are made; null without
     * one. Called under the pairMutex() of the repository alone. */
    std::shared_ptr<ClassificationNameEntry> getLinkedPair() const { return linkedPair.lock(); }
    void setLinkedPair(const std::shared_ptr<ClassificationNameEntry> &pair) { linkedPair = pair; }

protected:
    void childEntered(const std::shared_ptr<HierarchyNode> &child) override;
    void announceChild(const QString &childId) override;

private:
    std::weak_ptr<ClassificationNameEntry> linkedPair;
    const std::unique_ptr<utils::ElementTimeIndex> elementTimes;
    const std::shared_ptr<EntryQueryProvider> queryProvider;
    std::shared_ptr<EntryManipulationProvider> manipulationProvider;
    std::shared_ptr<EntryMemoryStrategyProvider> memoryStrategyProvider;
    std::shared_ptr<AppData::utils::LoadStatusMirror> mirror;
};

} // namespace Tessellum::AppData::Data::Entries
