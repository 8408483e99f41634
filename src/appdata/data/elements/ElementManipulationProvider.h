#pragma once

#include <appdata/data/elements/ElementUpdateData.h>
#include <appdata/interfaces/DataElementManipulationInterface.h>
#include <appdata/utils/AppDataRepositoryEventThreadUser.h>
#include <notification/Observer.h>
#include <shared/synchronization/SharedLockable.h>

#include <memory>

namespace Tessellum::AppData::Data::Elements {

class Element;

/*!
 * Changes an element, loads and unloads its value. Lives on the event thread; whoever holds it through
 * Element::getManipulationProvider() holds the element.
 *
 * Locks: none of its own. Signals are emitted with no lock held.
 */
class TESSELLUM_EXPORT ElementManipulationProvider
    : public Shared::Synchronization::SharedLockable<ElementManipulationProvider>,
      public Interfaces::DataElementManipulationInterface,
      public AppData::utils::AppDataRepositoryEventThreadUser
{
    Q_OBJECT

public:
    using UpdateHandle = std::shared_ptr<Notification::UpdateObserver>;

    explicit ElementManipulationProvider(Element *element);
    ~ElementManipulationProvider() override;

    bool setActive(const bool &active, const Notification::UpdatePoint &point) override;
    bool setTimestamp(const quint64 &timestamp, const Notification::UpdatePoint &point) override;
    bool setData(const ElementValueKind &kind, const QVariant &value,
                 const Notification::UpdatePoint &point) override;
    bool setValues(const ElementValueKind &kind, const QVariant &value, const quint64 &timestamp,
                   const bool &active, const Notification::UpdatePoint &point) override;
    bool performCommand(const ElementCommand &command) override;

    /*! These start the task and wait for nothing; null where it could not be started. */
    UpdateHandle startSetActive(const bool &active, const Notification::UpdatePoint &point);
    UpdateHandle startSetTimestamp(const quint64 &timestamp, const Notification::UpdatePoint &point);
    UpdateHandle startSetData(const ElementValueKind &kind, const QVariant &value,
                              const Notification::UpdatePoint &point);
    UpdateHandle startSetValues(const ElementValueKind &kind, const QVariant &value, const quint64 &timestamp,
                                const bool &active, const Notification::UpdatePoint &point);
    UpdateHandle startUpdate(const ElementUpdateData &data, const Notification::UpdatePoint &point);

    /*! What performCommand() does, for a caller that holds the element's data lock for writing. \a changed
     * becomes true where a signal is due: emitLoadChange() after the lock. */
    bool performCommandLocked(const ElementCommand &command, bool &changed);
    void emitLoadChange(const ElementCommand &command);
    /*! Connects (once) to the entry's wrapper, or lets go of it. With the data lock held for writing. */
    bool connectStrategyLocked();
    void disconnectStrategyLocked();

public Q_SLOTS:
    /*! Asks the strategy and unloads where it says so. */
    void onMemoryStrategyInvalidated();

Q_SIGNALS:
    void dataLoaded();
    void dataUnloaded();

private:
    bool takeRawData(const ElementValueKind &kind, const QVariant &value, ElementUpdateData &data) const;
    bool loadParsedDataLocked();

    Element *const element;
    QMetaObject::Connection strategyConnection; // guarded by the element's data lock
};

} // namespace Tessellum::AppData::Data::Elements
