#pragma once

#include <appdata/data/entries/EntryData.h>
#include <appdata/interfaces/DataEntryInterface.h>
#include <shared/hierarchy/HierarchyNode.h>

namespace Tessellum::AppData::Data::Entries::utils {

/*! The facts of an entry, guarded by the lock of its node. */
class TESSELLUM_EXPORT EntryProvider : public Interfaces::DataEntryInterface,
                                       public Shared::PropertyContainer<EntryData>
{
public:
    /*! \a node is the entry itself. */
    EntryProvider(const EntryData &data, const Shared::Hierarchy::HierarchyNode &node);
    ~EntryProvider() override;

    QString getName() const override;
    QString getUuid() const override;
    QString getStorageName() const override;
    std::shared_ptr<Interfaces::DataEntryCategoryInterface> getCategory() const override;
    QString getClassification() const override;
    PersistenceType getPersistenceType() const override;
    bool setPersistenceType(const PersistenceType &type) override;
    LoadStatus getLoadStatus() const override;
    bool isSingleElementEntry() const override;
    quint64 getCapacity() const override;
    /*! False, with nothing changed, for LoadStatus::Unknown. */
    virtual bool setLoadStatus(const LoadStatus &status);

    EntryData copyData() const;
    /*! With the node's lock held. */
    EntryData &dataLocked() { return data; }
    const EntryData &dataLocked() const { return data; }

private:
    EntryData data;
    const Shared::Hierarchy::HierarchyNode &lock;
    LoadStatus loadStatus = LoadStatus::NotLoaded;
};

} // namespace Tessellum::AppData::Data::Entries::utils
