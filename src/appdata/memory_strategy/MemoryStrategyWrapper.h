#pragma once

#include <appdata/memory_strategy/MemoryStrategy.h>

#include <QElapsedTimer>
#include <QReadWriteLock>

#include <atomic>
#include <memory>

namespace Tessellum::AppData::MemoryStrategies {

/*!
 * The stable object of one entry to which its loaded elements are connected, while strategies come and go.
 *
 * What a strategy throws leaves a CRITICAL line and counts as no decision, or as refused parameters.
 *
 * Lock: guards the pointer to the strategy alone; no strategy is called and nothing emitted under it.
 */
class TESSELLUM_EXPORT MemoryStrategyWrapper : public MemoryStrategy
{
    Q_OBJECT

public:
    MemoryStrategyWrapper();
    ~MemoryStrategyWrapper() override;

    /*! Empty without a strategy. */
    QString getType() const override;
    bool configure(const QString &parameters) override;
    /*! NoDecision without a strategy. */
    qint32 evaluate(const QString &elementUuid) override;
    /*! Takes the place of the strategy of before; null removes it. Emits invalidated() where there is one
     * now. False where it could not be connected. */
    bool setStrategy(const std::shared_ptr<MemoryStrategy> &next);
    bool hasStrategy() const;
    /*! Lets loaded elements connect themselves from now on; true for the first call. An entry that never had
     * a strategy has none of those connections, which cost more than the rest of a value. */
    bool expectStrategy() { return !expected.exchange(true); }
    bool expectsStrategy() const { return expected.load(); }

public Q_SLOTS:
    /*!
     * What an added element, or a changed time stamp, starts, from any thread: tells the strategy at once and
     * lets the event thread emit invalidated(). One emission answers all that was announced before it, and as
     * it reaches every loaded element, the next one keeps a distance that leaves the event thread mostly
     * free.
     */
    void announceElement(const QString &elementId);

protected:
    void handleElementAdded(const QString &elementId) override;

private:
    std::shared_ptr<MemoryStrategy> currentStrategy() const;
    void emitAnnounced();
    qint64 millisecondsToWait() const;

    mutable QReadWriteLock lock;
    std::shared_ptr<MemoryStrategy> strategy;
    std::atomic<bool> expected{false};
    std::atomic<bool> announced{false}; // an emission is on its way
    // For the event thread alone.
    QElapsedTimer sinceEmission;
    qint64 emissionMilliseconds = 0;
};

} // namespace Tessellum::AppData::MemoryStrategies
