#include <appdata/memory_strategy/ElementTimeSpanMemoryStrategy.h>
#include <appdata/memory_strategy/LastAddedElementMemoryStrategy.h>
#include <appdata/memory_strategy/MemoryStrategyRepository.h>
#include <notification/utils/ExceptionBarrier.h>
#include <notification/utils/MakeNode.h>

#include <QReadLocker>
#include <QRegExp>
#include <QWriteLocker>

namespace Tessellum::AppData::MemoryStrategies {

using Data::Entries::Entry;

template <class Strategy>
void MemoryStrategyRepository::registerStrategy()
{
    for (const QString &key : Strategy::Keys()) {
        firstKeys.insert(key, Strategy::Keys().constFirst());
        registerProduct(key,
                        [](const QString &id, const QString &parameters,
                           const std::weak_ptr<const Entry> &entry) -> std::shared_ptr<MemoryStrategy> {
                            return Notification::utils::MakeEventThreadObject<Strategy>(id, parameters,
                                                                                        entry);
                        });
    }
}

MemoryStrategyRepository::MemoryStrategyRepository()
{
    registerStrategy<ElementTimeSpanMemoryStrategy>();
    registerStrategy<LastAddedElementMemoryStrategy>();
}

MemoryStrategyRepository::~MemoryStrategyRepository() = default;

std::shared_ptr<MemoryStrategy>
MemoryStrategyRepository::createMemoryStrategy(const QString &type, const QString &id,
                                               const QString &parameters,
                                               const std::weak_ptr<const Entry> &entry) const
{
    const auto creator = getCreator(keyOf(type));
    std::shared_ptr<MemoryStrategy> strategy;
    if (creator)
        Notification::utils::RunGuarded("MemoryStrategy", [&] { strategy = creator(id, parameters, entry); });
    return strategy;
}

QString MemoryStrategyRepository::getFirstKey(const QString &type) const
{
    const QString key = keyOf(type);
    return firstKeys.value(key, key);
}

bool MemoryStrategyRepository::isTypeRegistered(const QString &type) const
{
    return isProductRegistered(keyOf(type));
}

void MemoryStrategyRepository::setStrategyPattern(const QString &pattern, const QString &type)
{
    const QWriteLocker locker(&lock);
    patterns.insert(pattern, type);
}

QString MemoryStrategyRepository::getStrategyType(const QString &classification, const QString &name) const
{
    const QString key = settings() ? classification + getPathSeparator() + name : QString();
    QMap<QString, QString> present;
    {
        const QReadLocker locker(&lock);
        present = patterns;
    }
    for (auto pattern = present.cbegin(); pattern != present.cend(); ++pattern) {
        if (QRegExp(pattern.key(), Qt::CaseSensitive, QRegExp::Wildcard).exactMatch(key))
            return pattern.value();
    }
    return QString();
}

QString MemoryStrategyRepository::keyOf(const QString &type) const
{
    const auto present = settings();
    const bool ignoreCase = present
        && present->readSetting<bool>(QStringLiteral("repository"), QStringLiteral("names_ignore_case"),
                                      false);
    return ignoreCase ? type.toLower() : type;
}

} // namespace Tessellum::AppData::MemoryStrategies
