#pragma once

#include <appdata/memory_strategy/MemoryStrategy.h>

#include <QReadWriteLock>

#include <atomic>
#include <memory>

namespace Tessellum::AppData::MemoryStrategies {

/*!
 * The stable object of one entry to which its loaded elements are connected, while strategies come and go.
 *
 * Lock: guards the pointer to the strategy alone; nothing is called and nothing emitted under it.
 */
class TESSELLUM_EXPORT MemoryStrategyWrapper : public MemoryStrategy
{
    Q_OBJECT

public:
    MemoryStrategyWrapper();
    ~MemoryStrategyWrapper() override;

    QString getType() const override;
    bool configure(const QString &parameters) override;
    /*! NoDecision without a strategy. */
    qint32 evaluate(const QString &elementUuid) override;
    /*! Takes the place of the strategy of before; null removes it. Emits invalidated() where there is one
     * now. False where it could not be connected. */
    bool setStrategy(const std::shared_ptr<MemoryStrategy> &strategy);
    bool hasStrategy() const;
    /*! What an added element, or a changed time stamp, starts: from any thread, tells the wrapper on the
     * event thread, where many in a row cost one invalidated(). */
    void announceElement(const QString &elementId);

protected:
    void handleElementAdded(const QString &elementId) override;

private:
    std::shared_ptr<MemoryStrategy> currentStrategy() const;

    mutable QReadWriteLock lock;
    std::shared_ptr<MemoryStrategy> strategy;
    std::atomic<int> announced{0};
};

} // namespace Tessellum::AppData::MemoryStrategies
