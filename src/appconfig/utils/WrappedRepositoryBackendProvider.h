#pragma once

#include <appconfig/utils/ProviderFront.h>
#include <appconfig/utils/RepositoryBackendProvider.h>

namespace Tessellum::AppConfig::utils {

/*!
 * The application's way to backends: gives references. The lock is held for writing while a create is started
 * and while the backend to save is looked up, for reading in the other operations; a save runs after it.
 */
class WrappedRepositoryBackendProvider : public Interfaces::RepositoryBackendInterface,
                                         private ProviderFront<RepositoryBackendProvider>
{
public:
    using ProviderFront<RepositoryBackendProvider>::ProviderFront;

    bool createBackend(const QString &type, const QString &name,
                       const Backends::BackendCreateDataDetails &details,
                       const Notification::CreatePoint &waitPoint) override;
    QString getBackendDescription(const QString &name) const override;
    bool saveBackend(const QString &name) override;
    QStringList getBackendNames() const override;
    bool hasBackend(const QString &name) const override;
    std::shared_ptr<Interfaces::BackendInterface> getBackend(const QString &name) const override;
};

} // namespace Tessellum::AppConfig::utils
