#include <appdata/memory_strategy/MemoryStrategyWrapper.h>
#include <notification/utils/ExceptionBarrier.h>

#include <QPointer>
#include <QReadLocker>
#include <QTimer>
#include <QWriteLocker>

#include <utility>

namespace Tessellum::AppData::MemoryStrategies {

namespace {

// The share of the event thread's time that goes into emissions is at most one in this number and one.
constexpr qint64 RestPerWork = 3;

/*! Calls \a strategy, which may be the application's own: what it throws ends here. */
template <class Call>
auto Ask(const std::shared_ptr<MemoryStrategy> &strategy, decltype(std::declval<Call>()()) failed,
         Call &&call)
{
    if (strategy)
        Notification::utils::RunGuarded("MemoryStrategy", [&] { failed = call(); });
    return failed;
}

void Tell(const std::shared_ptr<MemoryStrategy> &strategy, const QString &elementId)
{
    Notification::utils::RunGuarded("MemoryStrategy", [&] { strategy->onNotifyElementAdded(elementId); });
}

} // namespace

MemoryStrategyWrapper::MemoryStrategyWrapper()
    : MemoryStrategy(QStringLiteral("wrapper"), QStringLiteral("wrapper"))
    , lock(QReadWriteLock::Recursive)
{ }

MemoryStrategyWrapper::~MemoryStrategyWrapper() = default;

QString MemoryStrategyWrapper::getType() const
{
    const auto present = currentStrategy();
    return present ? present->getType() : QString();
}

bool MemoryStrategyWrapper::configure(const QString &parameters)
{
    const auto present = currentStrategy();
    return Ask(present, false, [&] { return present->configure(parameters); });
}

qint32 MemoryStrategyWrapper::evaluate(const QString &elementUuid)
{
    const auto present = currentStrategy();
    return Ask(present, qint32(NoDecision), [&] { return present->evaluate(elementUuid); });
}

bool MemoryStrategyWrapper::setStrategy(const std::shared_ptr<MemoryStrategy> &next)
{
    if (next)
        expectStrategy();
    std::shared_ptr<MemoryStrategy> before = next; // may be the last pointer, and goes after the lock
    {
        const QWriteLocker locker(&lock);
        strategy.swap(before);
        if (before)
            disconnect(before.get(), &MemoryStrategy::invalidated, this, &MemoryStrategy::invalidated);
        if (next && !connect(next.get(), &MemoryStrategy::invalidated, this, &MemoryStrategy::invalidated))
            return false;
    }
    if (next)
        Q_EMIT invalidated();
    return true;
}

bool MemoryStrategyWrapper::hasStrategy() const
{
    return currentStrategy() != nullptr;
}

void MemoryStrategyWrapper::announceElement(const QString &elementId)
{
    const auto present = currentStrategy();
    if (!present)
        return;
    Tell(present, elementId);
    if (!announced.exchange(true))
        QMetaObject::invokeMethod(this, &MemoryStrategyWrapper::emitAnnounced, Qt::QueuedConnection);
}

void MemoryStrategyWrapper::handleElementAdded(const QString &elementId)
{
    const auto present = currentStrategy();
    if (!present)
        return;
    Tell(present, elementId);
    Q_EMIT invalidated();
}

void MemoryStrategyWrapper::emitAnnounced()
{
    if (const qint64 wait = millisecondsToWait(); wait > 0) {
        QTimer::singleShot(int(wait), this, &MemoryStrategyWrapper::emitAnnounced);
        return;
    }
    // Before the emission: an element that comes during it is announced anew.
    announced.store(false);
    if (!hasStrategy())
        return;
    sinceEmission.start();
    // An element that unloads may be the last to hold its entry, and with it this.
    const QPointer<MemoryStrategyWrapper> self(this);
    Q_EMIT invalidated();
    if (self)
        emissionMilliseconds = sinceEmission.restart();
}

qint64 MemoryStrategyWrapper::millisecondsToWait() const
{
    return sinceEmission.isValid() ? RestPerWork * emissionMilliseconds - sinceEmission.elapsed() : 0;
}

std::shared_ptr<MemoryStrategy> MemoryStrategyWrapper::currentStrategy() const
{
    const QReadLocker locker(&lock);
    return strategy;
}

} // namespace Tessellum::AppData::MemoryStrategies
