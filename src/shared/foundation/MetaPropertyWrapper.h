#pragma once

#include <shared/TessellumExport.h>

#include <QDeadlineTimer>
#include <QMetaProperty>
#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QVariant>
#include <QWaitCondition>

#include <atomic>
#include <memory>

namespace Shared {

/*!
 * Shows one Qt property of an object, its owner, as a value with signals, to any thread.
 *
 * The wrapper lives on the owner's thread and touches the owner there alone. Reads and writes may be called
 * from any thread, and the owner may die at any time: they are false from then on. The owner must live during
 * the constructor and stay on its thread, which is not started again once it has ended.
 *
 * A write is queued to the owner's thread and counts at once: reads give what was written until it is done
 * there. A read from another thread gives a copy. For a property with a notify signal the copy follows that
 * signal; for any other the owner's thread is asked for the value first, and the copy serves only where that
 * thread is blocked, as one that waits for the reader is: so a read may take 100 ms, and never more.
 *
 * The mutex guards the copy and what is under way. It is held neither while the owner's code runs nor while a
 * read waits.
 */
class TESSELLUM_EXPORT MetaPropertyWrapper : public QObject
{
    Q_OBJECT

public:
    /*! \a newParent, if any, becomes the wrapper's parent, and is an object of the owner's thread. */
    MetaPropertyWrapper(const QMetaProperty &wrappedProperty, QObject *propertyOwner,
                        QObject *newParent = nullptr);
    ~MetaPropertyWrapper() override;

    /*! A wrapper without a parent that any thread may let go of: it dies on the owner's thread. */
    static std::shared_ptr<MetaPropertyWrapper> Create(const QMetaProperty &property, QObject *owner);

    /*! The name of the property. */
    QString name() const;
    /*! The value, converted to \a type if that is not 0. False without an owner or where it does not convert.
     */
    bool readProperty(const QMetaType::Type &type, QVariant &value);
    /*! Asks for the value to be written. False without an owner, or if no value of the property can be made
     * of it. */
    bool writeProperty(const QVariant &value);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void movingToNewParent(QObject *newParent);
    /*! Of a dynamic property, or one with a notify signal. On the owner's thread. */
    void propertyChanged(const QVariant &value);
    void propertyWriteRequest(const QVariant &value);

public Q_SLOTS:
    void onMoveToNewParent(QObject *newParent);
    /*! Writes to the owner. On the owner's thread. */
    void onPropertyWriteRequest(const QVariant &value);

private Q_SLOTS:
    void watchOwner();
    void onOwnerNotified();
    void refresh();

private:
    bool convert(QVariant &value) const;
    QVariant readOwner() const;
    void store(const QVariant &value);
    void waitForRefresh();
    bool readCopy(QVariant &value);

    const QMetaProperty property;
    const QPointer<QObject> owner; /*!< used on the owner's thread alone */

    std::atomic<bool> threadEnded{false}; /*!< the owner's */

    QMutex mutex;
    QWaitCondition refreshed;
    bool alive; /*!< the owner */
    bool filled = false; /*!< the copy has been read once */
    bool refreshQueued = false;
    quint64 refreshesBegun = 0;
    quint64 refreshesDone = 0; /*!< the number of the last */
    QDeadlineTimer refreshDeadline; /*!< after that the queued refresh is no longer waited for */
    int writesUnderWay = 0; /*!< until they are done the owner's value is older than the copy */
    QVariant copy;
};

/*! As MetaPropertyWrapper::Create() makes it. */
using MetaPropertyWrapperPtr = std::shared_ptr<MetaPropertyWrapper>;

} // namespace Shared

Q_DECLARE_METATYPE(Shared::MetaPropertyWrapperPtr)
