#pragma once

#include <appconfig/HierarchyListPattern.h>
#include <appconfig/InternalSettingsProvider.h>
#include <appconfig/validation/AttributeValidationInterface.h>
#include <shared/synchronization/Factory.h>
#include <shared/synchronization/Singleton.h>

#include <QHash>
#include <QMap>
#include <QReadWriteLock>

namespace Tessellum::AppConfig::Validation {

/*!
 * All validations of the process, by id, and the factory of their types.
 *
 * Threads: any. The lock guards the two maps alone: nodes are made and lists are
 * written outside it.
 */
class AttributeValidationRepository
    : public Shared::Singleton<AttributeValidationRepository>,
      public Shared::Factory<AttributeValidationInterface, QString,
                             std::shared_ptr<AttributeValidationInterface>,
                             std::function<std::shared_ptr<AttributeValidationInterface>(const QString &)>>,
      public InternalSettingsProvider
{
    friend class Shared::Singleton<AttributeValidationRepository>;

public:
    /*! A new validation named \a id, not registered yet; null for an unknown \a type. */
    std::shared_ptr<AttributeValidationInterface> createValidation(const QString &type, const QString &id);
    std::shared_ptr<AttributeValidationInterface> getValidation(const QString &id) const;
    /*! False for a null pointer, an empty id, and an id that is registered already. */
    bool registerValidation(const std::shared_ptr<AttributeValidationInterface> &validation);
    /*! As registerValidation(), for a validation that was read from a file and comes again with the next
     * start. Once \a backend has left the tree, another one may take its id. */
    bool registerBackendValidation(const std::shared_ptr<AttributeValidationInterface> &validation,
                                   const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &backend);
    /*! Forgets an id whose source goes away; the list of names is the caller's business. */
    bool unregisterValidation(const QString &id);
    /*! Forgets what registerBackendValidation() took, also of backends that have gone; for the stop. */
    void unregisterBackendValidations();
    /*! Sorted. */
    QStringList getValidationIds() const;

private:
    AttributeValidationRepository();

    /*! Forgets the validation of a backend that has left the tree. */
    void removeIfGone(const QString &id, const std::shared_ptr<Core::HierarchyListPattern> &list);
    /*! \a backend is null for a validation of the application. */
    bool insert(const std::shared_ptr<AttributeValidationInterface> &validation,
                const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &backend);

    mutable QReadWriteLock lock;
    QMap<QString, std::shared_ptr<AttributeValidationInterface>> validations;
    QHash<QString, std::weak_ptr<Shared::Hierarchy::HierarchyNode>> backends; ///< whose the ids are
};

} // namespace Tessellum::AppConfig::Validation
