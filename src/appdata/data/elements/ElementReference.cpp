#include <appdata/data/elements/ElementReference.h>

namespace Tessellum::AppData::Data::Elements {

ElementReference::ElementReference(const QString &uuid,
                                   const std::shared_ptr<Interfaces::DataElementInterface> &element)
    : HierarchyNodeInstance(uuid)
    , AppDataRepositoryEventThreadUser(this)
    , target(element)
    , constTarget(element)
{ }

ElementReference::~ElementReference() = default;

QString ElementReference::getUuid() const
{
    const auto element = constTarget.lock();
    return element ? element->getUuid() : QString();
}

std::shared_ptr<const Interfaces::DataElementQueryInterface> ElementReference::getQueryInterface() const
{
    const auto element = constTarget.lock();
    return element ? element->getQueryInterface() : nullptr;
}

std::shared_ptr<Interfaces::DataElementQueryInterface> ElementReference::getQueryInterface()
{
    const auto element = target.lock();
    return element ? element->getQueryInterface() : nullptr;
}

std::shared_ptr<const Interfaces::DataElementManipulationInterface>
ElementReference::getManipulationInterface() const
{
    const auto element = constTarget.lock();
    return element ? element->getManipulationInterface() : nullptr;
}

std::shared_ptr<Interfaces::DataElementManipulationInterface> ElementReference::getManipulationInterface()
{
    const auto element = target.lock();
    return element ? element->getManipulationInterface() : nullptr;
}

} // namespace Tessellum::AppData::Data::Elements
