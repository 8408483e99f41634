#pragma once

#include <appconfig/backends/Backend.h>
#include <appconfig/HierarchyListPattern.h>
#include <appconfig/interfaces/RepositoryInterface.h>
#include <notification/ThreadPool.h>
#include <notification/utils/CurrentRun.h>
#include <notification/utils/FrameWorker.h>
#include <notification/utils/NotificationProvider.h>
#include <shared/foundation/SettingsWrapper.h>
#include <shared/synchronization/Factory.h>
#include <shared/synchronization/Singleton.h>

#include <QPair>

namespace Tessellum::AppConfig::utils {

class AttributesManipulationProvider;
class AttributesQueryProvider;
class RepositoryAttributeValidationProvider;
class RepositoryBackendProvider;

/*!
 * The one configuration tree with its pool, its lists and its providers.
 *
 * Locks: appConfigLock is held for writing while a start publishes the lists and providers of a run and while
 * a stop takes them and the tree down, so that whoever holds it sees a whole run or none; it is never held
 * across a wait. The pointer to them has a mutex of its own, so the getters may be called with or without
 * appConfigLock; between stop and start they answer empty. settingsMutex guards the making of the settings
 * wrapper.
 */
class RepositoryProvider
    : public Interfaces::RepositoryInterface,
      public Shared::Singleton<RepositoryProvider>,
      public Shared::Factory<
          Backends::Backend, QString, std::shared_ptr<Backends::Backend>,
          std::function<std::shared_ptr<Backends::Backend>(const Backends::BackendCreateData &)>>
{
    friend class Shared::Singleton<RepositoryProvider>;

public:
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;
    using ListPatternPtr = std::shared_ptr<Core::HierarchyListPattern>;
    /*! The pair of parent name and list name, with the list. */
    using NamedListPattern = QPair<QPair<QString, QString>, ListPatternPtr>;

    QStringList getBackendTypes() const override;
    QString getPathFromPathElements(const QStringList &elements) const override;
    QStringList getPathElementsFromPath(const QString &path) const override;
    std::shared_ptr<const Interfaces::RepositoryBackendInterface> getBackendInterface() const override;
    std::shared_ptr<Interfaces::RepositoryBackendInterface> getBackendInterface() override;
    std::shared_ptr<Interfaces::AttributesQueryInterface> getQueryInterface() const override;
    std::shared_ptr<const Interfaces::AttributesManipulationInterface>
    getManipulationInterface() const override;
    std::shared_ptr<Interfaces::AttributesManipulationInterface> getManipulationInterface() override;
    /*! Empty: an application's notification interface comes from ManagedRepository. */
    std::shared_ptr<const Notification::Interfaces::NotificationInterface>
    getNotificationInterface() const override;
    std::shared_ptr<Notification::Interfaces::NotificationInterface> getNotificationInterface() override;
    std::shared_ptr<const Interfaces::RepositoryAttributeValidationInterface>
    getValidationInterface() const override;
    std::shared_ptr<Interfaces::RepositoryAttributeValidationInterface> getValidationInterface() override;

    /*!
     * Starts (\a stop false) or stops the repository. A start on an active repository keeps what is there. A
     * stop ends the tasks first, with no lock held, then takes the write lock, removes the backends, and
     * moves the children of the root and of the internal root to \a keeper, which is made if it is empty.
     * Must not be called on a thread of the pool.
     */
    void setRepositoryActive(NodePtr &keeper, bool stop);
    bool isActive() const;

    /*! Hangs a link to \a node named \a name beneath \a path; false for an empty path or a null node. */
    bool linkNode(const QString &path, const NodePtr &node, const QString &name);
    /*! As linkNode() with the last element of \a path as the link's id; false for an empty path or null
     * target. */
    bool addRootLink(const QString &path, const NodePtr &target, bool readOnly);

    /*! The list "first.second"; empty if there is none or the repository is stopped. */
    ListPatternPtr getListPattern(const QString &first, const QString &second) const;
    QList<NamedListPattern> getListPatterns() const;
    std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> getSettings();
    /*! The root of the internal settings, made at first use. */
    NodePtr getInternalRoot();
    NodePtr getRoot() const;
    Notification::ThreadPool &getThreadPool();
    /*! The workers of remote peers' frames; their steps end with the run. */
    Notification::utils::FrameWorkers &getFrameWorkers() { return frameWorkers; }
    /*! For the library's own use: unwrapped, and empty while stopped. */
    std::shared_ptr<Notification::utils::NotificationProvider> getNotificationProvider() const;
    std::shared_ptr<RepositoryBackendProvider> getBackendProvider() const;
    std::shared_ptr<AttributesQueryProvider> getQueryProvider() const;
    std::shared_ptr<AttributesManipulationProvider> getManipulationProvider() const;
    std::shared_ptr<RepositoryAttributeValidationProvider> getValidationProvider() const;

private:
    RepositoryProvider();
    ~RepositoryProvider() override;

    struct Run;

    void start();
    void stop(const NodePtr &keeper);
    bool addLink(const QStringList &parentPath, const NodePtr &target, const QString &id, bool readOnly);

    NodePtr root;
    QMutex settingsMutex;
    NodePtr internalRoot;
    std::shared_ptr<Shared::SettingsWrapper::SettingsWrapper> settings;
    Notification::ThreadPool pool;
    Notification::utils::FrameWorkers frameWorkers;
    Notification::utils::CurrentRun<Run> run;
};

} // namespace Tessellum::AppConfig::utils
