#pragma once

#include <appdata/data/elements/ElementData.h>
#include <appdata/interfaces/DataElementInterface.h>
#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

namespace Tessellum::AppData::Data::Elements {

class ElementManipulationProvider;
class ElementQueryProvider;

/*!
 * The node of one time-stamped value; its id is the uuid.
 *
 * Locks: the node's own guards the providers, which are made when somebody asks for them; the lock in the
 * data guards the data (see ElementData). The functions that end in "Locked" need the latter held, for
 * writing where they are not const, and never take it.
 */
class TESSELLUM_EXPORT Element : public Shared::Hierarchy::HierarchyNodeInstance,
                                 public Interfaces::DataElementInterface,
                                 public Shared::PropertyContainer<ElementData>,
                                 public AppData::utils::AppDataRepositoryEventThreadUser
{
    Q_OBJECT

public:
    /*! \a parser may be null. */
    Element(const ElementData &data, const std::shared_ptr<Interfaces::DataElementParserInterface> &parser);
    ~Element() override;

    QString getUuid() const override;
    std::shared_ptr<const Interfaces::DataElementQueryInterface> getQueryInterface() const override;
    std::shared_ptr<Interfaces::DataElementQueryInterface> getQueryInterface() override;
    std::shared_ptr<const Interfaces::DataElementManipulationInterface>
    getManipulationInterface() const override;
    std::shared_ptr<Interfaces::DataElementManipulationInterface> getManipulationInterface() override;

    /*! The provider behind the interface; the pointer keeps the element alive. */
    std::shared_ptr<ElementManipulationProvider> getManipulationProvider();

    /*! Lets go of the wrapper of before and takes \a wrapper; null leaves a WARNING. False where a loaded
     * element could not be connected. */
    bool setMemoryStrategyWrapper(const std::shared_ptr<MemoryStrategies::MemoryStrategyWrapper> &wrapper);

    QReadWriteLock &dataLock() const { return *data.lock; }
    const ElementData &dataLocked() const { return data; }
    ElementData &dataLocked() { return data; }
    /*! Takes a copy under the lock. */
    ElementData copyData() const;
    std::shared_ptr<Interfaces::DataElementParserInterface> copyParser() const;
    quint64 getTimestamp() const;
    bool isActive() const;
    LoadStatus getLoadStatus() const;

    /*! Also takes the element out of the index by time stamp of the entry that it leaves. */
    bool setParent(const std::weak_ptr<HierarchyNode> &newParent, const bool &silent = false) override;

private:
    std::shared_ptr<ElementManipulationProvider> madeProvider();

    ElementData data;
    std::shared_ptr<ElementQueryProvider> queryProvider;
    std::shared_ptr<ElementManipulationProvider> manipulationProvider;
};

} // namespace Tessellum::AppData::Data::Elements
