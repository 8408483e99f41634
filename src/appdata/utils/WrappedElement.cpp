#include <appdata/utils/WrappedElement.h>
#include <appdata/utils/WrappedElementManipulationProvider.h>
#include <appdata/utils/WrappedElementQueryProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::DataElementInterface;

QString WrappedElement::getUuid() const
{
    return reading([](const DataElementInterface &element) { return element.getUuid(); });
}

std::shared_ptr<const Interfaces::DataElementQueryInterface> WrappedElement::getQueryInterface() const
{
    return wrapped<WrappedElementQueryProvider>(
        [](DataElementInterface &element) { return element.getQueryInterface(); });
}

std::shared_ptr<Interfaces::DataElementQueryInterface> WrappedElement::getQueryInterface()
{
    return wrapped<WrappedElementQueryProvider>(
        [](DataElementInterface &element) { return element.getQueryInterface(); });
}

std::shared_ptr<const Interfaces::DataElementManipulationInterface>
WrappedElement::getManipulationInterface() const
{
    return wrapped<WrappedElementManipulationProvider>(
        [](DataElementInterface &element) { return element.getManipulationInterface(); });
}

std::shared_ptr<Interfaces::DataElementManipulationInterface> WrappedElement::getManipulationInterface()
{
    return wrapped<WrappedElementManipulationProvider>(
        [](DataElementInterface &element) { return element.getManipulationInterface(); });
}

} // namespace Tessellum::AppData::utils
