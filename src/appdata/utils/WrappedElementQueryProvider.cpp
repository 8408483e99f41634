#include <appdata/utils/WrappedElementQueryProvider.h>

namespace Tessellum::AppData::utils {

using Interfaces::DataElementQueryInterface;

quint64 WrappedElementQueryProvider::getTimestamp() const
{
    return reading([](const DataElementQueryInterface &query) { return query.getTimestamp(); });
}

bool WrappedElementQueryProvider::isActive() const
{
    return reading([](const DataElementQueryInterface &query) { return query.isActive(); });
}

QByteArray WrappedElementQueryProvider::getRawData() const
{
    return reading([](const DataElementQueryInterface &query) { return query.getRawData(); });
}

std::shared_ptr<QVariant> WrappedElementQueryProvider::getParsedData() const
{
    const auto value = reading([](const DataElementQueryInterface &query) { return query.getParsedData(); });
    return value ? value : std::make_shared<QVariant>();
}

bool WrappedElementQueryProvider::performQueryCommand(const ElementQueryCommand &command) const
{
    return reading(
        [&](const DataElementQueryInterface &query) { return query.performQueryCommand(command); });
}

} // namespace Tessellum::AppData::utils
