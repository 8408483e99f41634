#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <appconfig/validation/LimitsValidation.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyStringPathLink.h>

#include <QMetaType>
#include <QReadLocker>
#include <QRegularExpression>
#include <QWriteLocker>

namespace Tessellum::AppConfig::Validation {

namespace {

using ValidationPtr = std::shared_ptr<AttributeValidationInterface>;
using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

/*! Whether a backend has left the tree, by itself or with what it hung beneath. */
bool HasLeftTree(NodePtr backend)
{
    if (!backend)
        return true;
    while (backend && !backend->isDeleteFlagSet())
        backend = backend->getParent();
    return backend != nullptr;
}

template <class T>
ValidationPtr MakeLimits(const QString &id)
{
    return Notification::utils::MakeNode<LimitsValidation<T>>(id);
}

template <class T>
QString KeyWithType(const QString &key)
{
    QString type = QString::fromLatin1(QMetaType::typeName(qMetaTypeId<T>()));
    type.replace(QRegularExpression(QStringLiteral("\\s")), QStringLiteral("_"));
    return key + QLatin1Char('_') + type;
}

template <class... Ts>
void RegisterWithTypes(AttributeValidationRepository &repository, const QString &key)
{
    (repository.registerProduct(KeyWithType<Ts>(key), &MakeLimits<Ts>), ...);
}

} // namespace

AttributeValidationRepository::AttributeValidationRepository()
{
    for (const QString &key : {QStringLiteral("limits"), QStringLiteral("limit")}) {
        registerProduct(key, &MakeLimits<double>);
        RegisterWithTypes<double, float, signed char, short, int, long long>(*this, key);
    }
}

ValidationPtr AttributeValidationRepository::createValidation(const QString &type, const QString &id)
{
    const auto internalSettings = settings();
    const bool ignoreCase = internalSettings
        && internalSettings->readSetting<bool>(QStringLiteral("repository"),
                                               QStringLiteral("names_ignore_case"), false);
    const auto creator = getCreator(ignoreCase ? type.toLower() : type);
    return creator ? creator(id) : nullptr;
}

ValidationPtr AttributeValidationRepository::getValidation(const QString &id) const
{
    QReadLocker locker(&lock);
    return validations.value(id);
}

bool AttributeValidationRepository::registerValidation(const ValidationPtr &validation)
{
    return insert(validation, nullptr);
}

bool AttributeValidationRepository::registerBackendValidation(const ValidationPtr &validation,
                                                              const NodePtr &backend)
{
    return insert(validation, backend);
}

bool AttributeValidationRepository::unregisterValidation(const QString &id)
{
    ValidationPtr removed; // may be the last pointer, and dies after the lock
    QWriteLocker locker(&lock);
    removed = validations.take(id);
    backends.remove(id);
    return removed != nullptr;
}

void AttributeValidationRepository::unregisterBackendValidations()
{
    QList<ValidationPtr> removed; // die after the lock
    QWriteLocker locker(&lock);
    for (auto backend = backends.cbegin(); backend != backends.cend(); ++backend)
        removed.append(validations.take(backend.key()));
    backends.clear();
}

QStringList AttributeValidationRepository::getValidationIds() const
{
    QReadLocker locker(&lock);
    return validations.keys();
}

void AttributeValidationRepository::removeIfGone(const QString &id,
                                                 const std::shared_ptr<Core::HierarchyListPattern> &list)
{
    std::shared_ptr<AttributeValidationInterface> removed; // dies after the lock
    NodePtr backend;
    {
        QReadLocker locker(&lock);
        removed = validations.value(id);
        if (!backends.contains(id))
            return;
        backend = backends.value(id).lock();
    }
    if (!HasLeftTree(backend)) // takes locks of nodes
        return;
    {
        QWriteLocker locker(&lock);
        if (validations.value(id) != removed)
            return;
        validations.remove(id);
        backends.remove(id);
    }
    if (list)
        list->removeElementFromList(id);
}

bool AttributeValidationRepository::insert(const ValidationPtr &validation, const NodePtr &backend)
{
    const QString id = validation ? validation->getValidationId() : QString();
    if (id.isEmpty())
        return false;
    const auto list = AppConfig::utils::RepositoryProvider::getInstance()->getListPattern(
        QStringLiteral("names"), QStringLiteral("validations"));
    removeIfGone(id, list);
    {
        QWriteLocker locker(&lock);
        if (validations.contains(id))
            return false;
        validations.insert(id, validation);
        if (backend)
            backends.insert(id, backend);
    }
    // The list starts a task, so it is told with no lock held.
    if (list) {
        const Shared::Hierarchy::HierarchyStringPathLink place(validation->getNodePath());
        list->addElementToList(id, QVariant::fromValue(place), true);
    }
    return true;
}

} // namespace Tessellum::AppConfig::Validation
