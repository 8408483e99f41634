#include <appconfig/validation/AttributeValidationInterface.h>
#include <appconfig/validation/ValidationContainer.h>

#include <QHash>
#include <QMutex>
#include <QMutexLocker>

namespace Tessellum::AppConfig::Validation::utils {

using ValidationPtr = std::shared_ptr<AttributeValidationInterface>;

struct ValidationContainer::Content
{
    QMutex mutex{QMutex::Recursive};
    QHash<QString, ValidationPtr> validations;
    // The hash is seeded anew in each process; a value must be judged in the same order in all of them.
    QStringList order;
};

ValidationContainer::~ValidationContainer()
{
    delete contentIfMade();
}

QList<ValidationPtr> ValidationContainer::getValidations() const
{
    QList<ValidationPtr> result;
    if (Content *content = contentIfMade()) {
        QMutexLocker locker(&content->mutex);
        for (const QString &id : qAsConst(content->order))
            result.append(content->validations.value(id));
    }
    return result;
}

QStringList ValidationContainer::getValidationIds() const
{
    Content *content = contentIfMade();
    if (!content)
        return QStringList();
    QMutexLocker locker(&content->mutex);
    return content->order;
}

bool ValidationContainer::addValidation(const ValidationPtr &validation)
{
    return addValidationConst(validation);
}

bool ValidationContainer::hasValidation(const QString &id) const
{
    Content *content = contentIfMade();
    if (!content)
        return false;
    QMutexLocker locker(&content->mutex);
    return content->validations.contains(id);
}

bool ValidationContainer::removeValidation(const QString &id)
{
    return removeValidationConst(id);
}

bool ValidationContainer::addValidationConst(const ValidationPtr &validation) const
{
    if (!validation)
        return false;
    const QString id = validation->getValidationId();
    Content &content = contentMade();
    QMutexLocker locker(&content.mutex);
    if (content.validations.contains(id))
        return false;
    content.validations.insert(id, validation);
    content.order.append(id);
    return true;
}

bool ValidationContainer::removeValidationConst(const QString &id) const
{
    Content *content = contentIfMade();
    if (!content)
        return false;
    ValidationPtr removed; // may be the last pointer, and dies after the lock
    QMutexLocker locker(&content->mutex);
    removed = content->validations.take(id);
    return content->order.removeOne(id);
}

ValidationContainer::Content *ValidationContainer::contentIfMade() const
{
    return made.load(std::memory_order_acquire);
}

ValidationContainer::Content &ValidationContainer::contentMade() const
{
    if (Content *present = contentIfMade())
        return *present;
    auto fresh = std::make_unique<Content>();
    Content *expected = nullptr;
    // Of two threads that make the content at once, the second takes what the first has made.
    if (!made.compare_exchange_strong(expected, fresh.get(), std::memory_order_acq_rel))
        return *expected;
    return *fresh.release();
}

} // namespace Tessellum::AppConfig::Validation::utils
