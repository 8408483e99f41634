#pragma once

#include <appdata/interfaces/MemoryStrategyInterface.h>
#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <shared/synchronization/SharedLockable.h>

namespace Tessellum::AppData::MemoryStrategies {

/*!
 * The base of the memory strategies. Lives on the event thread and dies there.
 *
 * Lock: guards the parameters of the derived class, which copies them before it calls out.
 */
class TESSELLUM_EXPORT MemoryStrategy : public Shared::Synchronization::SharedLockable<MemoryStrategy>,
                                        public Interfaces::MemoryStrategyInterface,
                                        public AppData::utils::AppDataRepositoryEventThreadUser
{
    Q_OBJECT

public:
    /*! \a type is the first key of the class, \a id a uuid. */
    MemoryStrategy(const QString &type, const QString &id);
    ~MemoryStrategy() override;

    QString getType() const override;
    /*! Refuses. */
    bool configure(const QString &parameters) override;
    QString getId() const { return id; }

public Q_SLOTS:
    void onNotifyElementAdded(const QString &elementId);

Q_SIGNALS:
    /*! Elements are to be evaluated anew. */
    void invalidated();

protected:
    /*! An element has come or its time stamp has changed. */
    virtual void handleElementAdded(const QString &elementId);

private:
    const QString type;
    const QString id;
};

} // namespace Tessellum::AppData::MemoryStrategies
