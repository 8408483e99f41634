#pragma once

#include <appconfig/InternalSettingsProvider.h>
#include <appconfig/validation/AttributeValidationInterface.h>
#include <shared/synchronization/Factory.h>
#include <shared/synchronization/Singleton.h>

#include <QMap>
#include <QReadWriteLock>
#include <QSet>

namespace Tessellum::AppConfig::Validation {

/*!
 * All validations of the process, by id, and the factory of their types.
 *
 * Threads: any. The lock guards the map and the set of backends' ids alone: nodes are made and lists are
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
     * start. */
    bool registerBackendValidation(const std::shared_ptr<AttributeValidationInterface> &validation);
    /*! Forgets an id whose source goes away; the list of names is the caller's business. */
    bool unregisterValidation(const QString &id);
    /*! Forgets what registerBackendValidation() took, also of backends that have gone; for the stop. */
    void unregisterBackendValidations();
    /*! Sorted. */
    QStringList getValidationIds() const;

private:
    AttributeValidationRepository();

    bool insert(const std::shared_ptr<AttributeValidationInterface> &validation, bool fromBackend);

    mutable QReadWriteLock lock;
    QMap<QString, std::shared_ptr<AttributeValidationInterface>> validations;
    QSet<QString> backendIds;
};

} // namespace Tessellum::AppConfig::Validation
