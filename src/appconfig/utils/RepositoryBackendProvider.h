#pragma once

#include <appconfig/HierarchyListPattern.h>
#include <appconfig/interfaces/RepositoryBackendInterface.h>
#include <appconfig/InternalSettingsProvider.h>
#include <notification/Observer.h>

namespace Tessellum::AppConfig::Backends {
class Backend;
}

namespace Tessellum::AppConfig::utils {

/*! The work behind RepositoryBackendInterface; holds no lock. */
class RepositoryBackendProvider : public InternalSettingsProvider,
                                  public Interfaces::RepositoryBackendInterface
{
public:
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

    RepositoryBackendProvider(const NodePtr &repositoryRoot,
                              const std::shared_ptr<Core::HierarchyListPattern> &nameList,
                              Notification::ThreadPool *taskPool);

    bool createBackend(const QString &type, const QString &name,
                       const Backends::BackendCreateDataDetails &details,
                       const Notification::CreatePoint &waitPoint) override;
    QString getBackendDescription(const QString &name) const override;
    bool saveBackend(const QString &name) override;
    QStringList getBackendNames() const override;
    bool hasBackend(const QString &name) const override;
    std::shared_ptr<Interfaces::BackendInterface> getBackend(const QString &name) const override;

    /*! Starts a create beneath \a parent (the root if it is empty) and does not wait; null if it cannot
     * start. */
    std::shared_ptr<Notification::CreateObserver>
    startCreateBackend(const QString &type, const QString &name,
                       const Backends::BackendCreateDataDetails &details,
                       const Notification::CreatePoint &waitPoint, const NodePtr &parent = nullptr);
    /*! The node itself, by the path that the list of names keeps. */
    std::shared_ptr<Backends::Backend> findBackend(const QString &name) const;

    /*! Takes \a backend, which is about to leave the tree, off the list of names. */
    void forgetBackend(const Backends::Backend &backend);

private:
    /*! Beneath the root of the internal settings, which only const searches reach from the repository's root.
     */
    std::shared_ptr<Backends::Backend> findInternalBackend(const QString &path) const;

    NodePtr root;
    std::shared_ptr<Core::HierarchyListPattern> names;
    Notification::ThreadPool *pool;
};

/*! Has \a backend write its source, with no lock held; true for no backend, false if it fails or throws. */
bool SaveBackend(const std::shared_ptr<Backends::Backend> &backend);

} // namespace Tessellum::AppConfig::utils
