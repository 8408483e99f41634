#pragma once

#include <appconfig/InternalSettingsProvider.h>
#include <appconfig/validation/AttributeValidationInterface.h>
#include <shared/synchronization/Factory.h>
#include <shared/synchronization/Singleton.h>

#include <QMap>
#include <QReadWriteLock>

namespace Tessellum::AppConfig::Validation {

/*!
 * All validations of the process, by id, and the factory of their types.
 *
 * Threads: any. The lock guards the map alone: nodes are made and lists are written outside it.
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
    /*! Forgets an id whose source goes away; the list of names is the caller's business. */
    bool unregisterValidation(const QString &id);
    /*! Sorted. */
    QStringList getValidationIds() const;

private:
    AttributeValidationRepository();

    mutable QReadWriteLock lock;
    QMap<QString, std::shared_ptr<AttributeValidationInterface>> validations;
};

} // namespace Tessellum::AppConfig::Validation
