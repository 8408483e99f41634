#include <appdata/memory_strategy/MemoryStrategy.h>

namespace Tessellum::AppData::MemoryStrategies {

MemoryStrategy::MemoryStrategy(const QString &strategyType, const QString &strategyId)
    : AppDataRepositoryEventThreadUser(this)
    , type(strategyType)
    , id(strategyId)
{ }

MemoryStrategy::~MemoryStrategy() = default;

QString MemoryStrategy::getType() const
{
    return type;
}

bool MemoryStrategy::configure(const QString & /*parameters*/)
{
    return false;
}

void MemoryStrategy::onNotifyElementAdded(const QString &elementId)
{
    handleElementAdded(elementId);
}

void MemoryStrategy::handleElementAdded(const QString & /*elementId*/) { }

} // namespace Tessellum::AppData::MemoryStrategies
