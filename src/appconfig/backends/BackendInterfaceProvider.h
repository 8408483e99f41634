#pragma once

#include <appconfig/backends/BackendCreateData.h>
#include <appconfig/interfaces/BackendInterface.h>
#include <appconfig/utils/AppConfigRepositoryEventThreadUser.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/synchronization/PropertyContainer.h>

namespace Tessellum::AppConfig::Backends::utils {

/*! The node of a backend and what it was created from. The node's lock guards the create data. */
class TESSELLUM_EXPORT BackendInterfaceProvider : public Shared::Hierarchy::HierarchyNodeInstance,
                                                  public Interfaces::BackendInterface,
                                                  public Shared::PropertyContainer<BackendCreateData>,
                                                  public AppConfig::utils::AppConfigRepositoryEventThreadUser
{
    Q_OBJECT
public:
    explicit BackendInterfaceProvider(const BackendCreateData &createData);

    QString getType() const override;
    QString getDescription() const override;
    QString getId() const override;
    bool setDescription(const QString &description) override;

protected:
    /*! A copy, taken under the node's lock. */
    BackendCreateData getCreateData() const;

private:
    BackendCreateData createData;
};

} // namespace Tessellum::AppConfig::Backends::utils
