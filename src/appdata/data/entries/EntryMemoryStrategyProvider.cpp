#include <appconfig/utils/LiveNode.h>
#include <appdata/data/elements/Element.h>
#include <appdata/data/entries/Entry.h>
#include <appdata/data/entries/EntryMemoryStrategyProvider.h>
#include <appdata/InternalSettingsProvider.h>
#include <appdata/memory_strategy/MemoryStrategyRepository.h>
#include <appdata/memory_strategy/MemoryStrategyWrapper.h>
#include <notification/utils/MakeNode.h>
#include <shared/logging/FrameworkLog.h>

#include <QMutexLocker>
#include <QUuid>

namespace Tessellum::AppData::Data::Entries {

using MemoryStrategies::MemoryStrategy;
using MemoryStrategies::MemoryStrategyRepository;
using MemoryStrategies::MemoryStrategyWrapper;
using Shared::Logging::FrameworkLog;

EntryMemoryStrategyProvider::EntryMemoryStrategyProvider(Entry *strategyEntry)
    : entry(strategyEntry)
    , wrapper(Notification::utils::MakeEventThreadObject<MemoryStrategyWrapper>())
{
    // Directly: the wrapper counts on the adding thread what its own thread has not seen yet.
    if (entry
        && !QObject::connect(entry, &Entry::notifyChildAdded, wrapper.get(),
                             &MemoryStrategyWrapper::announceElement, Qt::DirectConnection)) {
        FrameworkLog().warning() << "EntryMemoryStrategyProvider::EntryMemoryStrategyProvider() failed to "
                                    "connect signals for entry="
                                 << entry->getUuid();
    }
}

EntryMemoryStrategyProvider::~EntryMemoryStrategyProvider() = default;

bool EntryMemoryStrategyProvider::installMemoryStrategy(const QString &type, const QString &parameters)
{
    const auto target
        = entry ? std::dynamic_pointer_cast<Entry>(AppConfig::utils::LockLiveNode(entry->self())) : nullptr;
    if (!target) {
        FrameworkLog().warning()
            << "EntryMemoryStrategyProvider::installMemoryStrategy() failed to install strategy=" << type
            << " invalid entry";
        return false;
    }
    const auto repository = MemoryStrategyRepository::getInstance();
    if (!repository->isTypeRegistered(type)) {
        FrameworkLog().warning()
            << "EntryMemoryStrategyProvider::installMemoryStrategy() installing memory strategy=" << type
            << " for entry=" << target->getUuid() << " failed, no such memory strategy type registered!";
        return false;
    }
    QString present;
    if (getMemoryStrategyType(present) && present == repository->getFirstKey(type))
        return true;
    const auto strategy
        = repository->createMemoryStrategy(type, QUuid::createUuid().toString(), parameters, target);
    // Those that are added from here on see to it themselves.
    if (wrapper->expectStrategy()) {
        for (const auto &child : target->getChildren(false)) {
            if (const auto element = std::dynamic_pointer_cast<Elements::Element>(child))
                element->setMemoryStrategyWrapper(wrapper);
        }
    }
    // With no lock held: the loaded elements are evaluated at once. Of two installations at once the later
    // one stays.
    if (!strategy || !wrapper->setStrategy(strategy))
        return false;
    showType();
    return true;
}

bool EntryMemoryStrategyProvider::removeMemoryStrategy()
{
    const bool removed = wrapper->setStrategy(nullptr);
    showType();
    return removed;
}

bool EntryMemoryStrategyProvider::configureMemoryStrategy(const QString &parameters)
{
    return wrapper->configure(parameters);
}

bool EntryMemoryStrategyProvider::getMemoryStrategyType(QString &type) const
{
    type = wrapper->getType();
    return wrapper->hasStrategy();
}

void EntryMemoryStrategyProvider::showType()
{
    if (!entry)
        return;
    const QMutexLocker locker(&listMutex);
    QString type;
    if (getMemoryStrategyType(type) && !entry->isDeleteFlagSet()) {
        const auto list
            = InternalSettingsProvider().getList(QStringLiteral("names"), QStringLiteral("memory_strategy"));
        if (list)
            list->addElementToList(entry->getUuid(), type, false);
        shownIn = list;
    } else if (const auto list = shownIn.lock()) {
        list->removeElementFromList(entry->getUuid());
        shownIn.reset();
    }
}

} // namespace Tessellum::AppData::Data::Entries
