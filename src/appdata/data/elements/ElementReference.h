#pragma once

#include <appdata/interfaces/DataElementInterface.h>
#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

namespace Tessellum::AppData::Data::Elements {

/*! Stands for an element beneath the node of its pair, under the same id, and holds it weakly. An element
 * that has gone gives empty results. */
class TESSELLUM_EXPORT ElementReference : public Shared::Hierarchy::HierarchyNodeInstance,
                                          public Interfaces::DataElementInterface,
                                          public AppData::utils::AppDataRepositoryEventThreadUser
{
    Q_OBJECT

public:
    ElementReference(const QString &uuid, const std::shared_ptr<Interfaces::DataElementInterface> &element);
    ~ElementReference() override;

    QString getUuid() const override;
    std::shared_ptr<const Interfaces::DataElementQueryInterface> getQueryInterface() const override;
    std::shared_ptr<Interfaces::DataElementQueryInterface> getQueryInterface() override;
    std::shared_ptr<const Interfaces::DataElementManipulationInterface>
    getManipulationInterface() const override;
    std::shared_ptr<Interfaces::DataElementManipulationInterface> getManipulationInterface() override;

    /*! Null where it has gone. */
    std::shared_ptr<Interfaces::DataElementInterface> getTarget() const { return target.lock(); }

private:
    const std::weak_ptr<Interfaces::DataElementInterface> target;
    const std::weak_ptr<const Interfaces::DataElementInterface> constTarget;
};

} // namespace Tessellum::AppData::Data::Elements
