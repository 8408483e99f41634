#include <shared/foundation/MetaPropertyWrapper.h>

#include <QDynamicPropertyChangeEvent>
#include <QMetaMethod>
#include <QMutexLocker>
#include <QThread>

namespace Shared {

namespace {

constexpr int longestWait = 100; // milliseconds

} // namespace

MetaPropertyWrapper::MetaPropertyWrapper(const QMetaProperty &wrappedProperty, QObject *propertyOwner,
                                         QObject *newParent)
    : property(wrappedProperty)
    , owner(propertyOwner)
    , alive(propertyOwner)
{
    connect(this, &MetaPropertyWrapper::movingToNewParent, this, &MetaPropertyWrapper::onMoveToNewParent);
    // Never at once: the owner's code would run under the lock of whoever writes, and before writes that
    // wait.
    connect(this, &MetaPropertyWrapper::propertyWriteRequest, this,
            &MetaPropertyWrapper::onPropertyWriteRequest, Qt::QueuedConnection);
    if (!propertyOwner)
        return;
    if (propertyOwner->thread() == QThread::currentThread()) {
        watchOwner();
    } else {
        moveToThread(propertyOwner->thread());
        QMetaObject::invokeMethod(this, &MetaPropertyWrapper::watchOwner, Qt::QueuedConnection);
    }
    if (newParent)
        Q_EMIT movingToNewParent(newParent);
}

MetaPropertyWrapper::~MetaPropertyWrapper() = default;

std::shared_ptr<MetaPropertyWrapper> MetaPropertyWrapper::Create(const QMetaProperty &property,
                                                                 QObject *owner)
{
    return {new MetaPropertyWrapper(property, owner), [](MetaPropertyWrapper *wrapper) {
                if (wrapper->threadEnded)
                    delete wrapper; // nobody works on its events any more
                else
                    wrapper->deleteLater();
            }};
}

QString MetaPropertyWrapper::name() const
{
    return QString::fromUtf8(property.name());
}

bool MetaPropertyWrapper::readProperty(const QMetaType::Type &type, QVariant &value)
{
    if (!readCopy(value))
        return false;
    return type == QMetaType::UnknownType || value.convert(type);
}

bool MetaPropertyWrapper::writeProperty(const QVariant &value)
{
    QVariant converted = value;
    if (!convert(converted))
        return false;
    {
        const QMutexLocker locker(&mutex);
        if (!alive)
            return false;
        copy.swap(converted); // what stood there is freed with the mutex open
        filled = true;
        ++writesUnderWay;
    }
    Q_EMIT propertyWriteRequest(value);
    return true;
}

bool MetaPropertyWrapper::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == owner && event->type() == QEvent::DynamicPropertyChange
        && static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() == property.name()) {
        onOwnerNotified();
    }
    return false;
}

void MetaPropertyWrapper::onMoveToNewParent(QObject *newParent)
{
    setParent(newParent);
}

void MetaPropertyWrapper::onPropertyWriteRequest(const QVariant &value)
{
    QVariant converted = value;
    if (owner && convert(converted))
        property.write(owner, converted);
    {
        const QMutexLocker locker(&mutex);
        writesUnderWay = qMax(0, writesUnderWay - 1);
    }
    if (owner)
        store(readOwner()); // what the owner has made of it
}

/*! From here on the copy follows the owner, on the owner's thread. */
void MetaPropertyWrapper::watchOwner()
{
    const auto onDestroyed = [this] {
        const QMutexLocker locker(&mutex);
        alive = false;
        refreshed.wakeAll();
    };
    if (!owner) {
        onDestroyed();
        return;
    }
    connect(owner, &QObject::destroyed, this, onDestroyed);
    connect(
        QThread::currentThread(), &QThread::finished, this, [this] { threadEnded = true; },
        Qt::DirectConnection);
    owner->installEventFilter(this);
    if (property.hasNotifySignal()) {
        const QMetaObject &own = staticMetaObject;
        connect(owner, property.notifySignal(), this, own.method(own.indexOfSlot("onOwnerNotified()")));
    }
    store(readOwner());
}

void MetaPropertyWrapper::onOwnerNotified()
{
    if (!owner)
        return;
    const QVariant value = readOwner();
    store(value);
    Q_EMIT propertyChanged(value);
}

void MetaPropertyWrapper::refresh()
{
    quint64 number = 0;
    {
        const QMutexLocker locker(&mutex);
        refreshQueued = false; // who asks from here on wants a later value
        number = ++refreshesBegun;
    }
    if (owner)
        store(readOwner());
    const QMutexLocker locker(&mutex);
    refreshesDone = number;
    refreshed.wakeAll();
}

/*! Makes the value one of the property's type. */
bool MetaPropertyWrapper::convert(QVariant &value) const
{
    const int type = property.userType();
    return type == QMetaType::QVariant || type == value.userType() || value.convert(type);
}

QVariant MetaPropertyWrapper::readOwner() const
{
    return property.read(owner);
}

void MetaPropertyWrapper::store(const QVariant &value)
{
    QVariant replaced = value; // what stood there is freed with the mutex open
    const QMutexLocker locker(&mutex);
    if (writesUnderWay > 0)
        return;
    copy.swap(replaced);
    filled = true;
}

/*! The value as this thread may have it. False without an owner, or where nothing is known of it yet. */
bool MetaPropertyWrapper::readCopy(QVariant &value)
{
    const bool onOwnersThread = QThread::currentThread() == thread();
    {
        QMutexLocker locker(&mutex);
        if (!onOwnersThread && (!filled || !property.hasNotifySignal()))
            waitForRefresh();
        if (!onOwnersThread || writesUnderWay > 0) {
            if (alive && filled)
                value = copy;
            return alive && filled;
        }
    }
    if (owner)
        value = readOwner();
    return owner;
}

/*!
 * Asks the owner's thread for the value and waits for it, but not again for a thread that is known to be
 * blocked. The mutex is held by the caller, and open during the wait.
 */
void MetaPropertyWrapper::waitForRefresh()
{
    if (alive && !refreshQueued) {
        refreshQueued = true;
        refreshDeadline = QDeadlineTimer(longestWait);
        QMetaObject::invokeMethod(this, &MetaPropertyWrapper::refresh, Qt::QueuedConnection);
    }
    const quint64 wanted = refreshesBegun + 1;
    const QDeadlineTimer deadline = refreshDeadline; // that of later readers is not this one's
    while (alive && refreshesDone < wanted && refreshed.wait(&mutex, deadline)) { }
}

} // namespace Shared
