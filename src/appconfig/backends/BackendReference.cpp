#include <appconfig/backends/Backend.h>
#include <appconfig/backends/BackendReference.h>

namespace Tessellum::AppConfig::Backends {

BackendReference::BackendReference(const std::weak_ptr<Backend> &referencedBackend)
    : backend(referencedBackend)
{ }

QString BackendReference::getType() const
{
    const auto alive = backend.lock();
    return alive ? alive->getType() : QString();
}

QString BackendReference::getDescription() const
{
    const auto alive = backend.lock();
    return alive ? alive->getDescription() : QString();
}

QString BackendReference::getId() const
{
    const auto alive = backend.lock();
    return alive ? alive->getId() : QString();
}

QStringList BackendReference::getTypeKeys() const
{
    const auto alive = backend.lock();
    return alive ? alive->getTypeKeys() : QStringList();
}

bool BackendReference::setDescription(const QString &description)
{
    const auto alive = backend.lock();
    return alive && alive->setDescription(description);
}

} // namespace Tessellum::AppConfig::Backends
