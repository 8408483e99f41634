#pragma once

#include <shared/synchronization/SharedLockable.h>

#include <QAbstractSocket>
#include <QByteArray>
#include <QIODevice>
#include <QList>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>

namespace Shared::Communication::Connections {

/*!
 * A way to a peer: opens and closes a device, sends, and tells each block that it receives. Made by
 * MakeConnection().
 *
 * Threads: the device is used on the thread of this object alone, which needs an event loop. Every function
 * may be called from any thread: off its own thread open(), close() and onDataSend() queue the call and
 * return at once, true when the state of that moment allows it; what becomes of it is told by the signals.
 * All signals are emitted on the own thread, with no lock held.
 *
 * The lock guards the pointer to the device and the reason of the last close, and is held while the device is
 * used.
 */
class TESSELLUM_EXPORT Connection : public Synchronization::SharedLockable<Connection>
{
    Q_OBJECT

public:
    ~Connection() override;

    /*! Begins to connect; false where it is connected already or cannot begin. Success is told by
     * connectionEstablished(), failure by connectionFailed(), for one that cannot begin before this returns.
     * While a connect is under way a further one is refused by connectionFailed() and the first goes on. */
    bool open();
    /*! Closes the device for \a reason; false, with the earlier reason kept, where there is no device. */
    bool close(const QVariant &reason);
    /*! What the last close() was given; invalid since the last open(). */
    QVariant closeReason() const;

    /*! What tells this connection from others. */
    virtual QString getId() const;
    /*! Whether data can be sent now. Threads: any. */
    virtual bool isConnected() const = 0;
    /*! Whether there is a device, connected or not: from the first open() on. */
    virtual bool isValid() const;

public Q_SLOTS:
    /*! Closes the device; false where there is none. What was sent before still goes out. */
    virtual bool onClose();
    /*! Sends \a request; true when the device has taken all of it, false, also, where it is not connected. */
    virtual bool onDataSend(const QByteArray &request);
    /*! Takes what the device has received and tells it. */
    virtual void onDataReceived();
    virtual void onConnect() const;
    virtual void onDisconnect() const;
    /*! Logs the device's error; a failure to connect is told. */
    virtual void onSocketError(QAbstractSocket::SocketError error);

Q_SIGNALS:
    /*! It could not be opened, or there was an error while it was not connected. */
    void connectionFailed() const;
    void connectionEstablished() const;
    void connectionClosed() const;
    /*! A block as it came, never empty. */
    void dataReceived(QByteArray data) const;

public:
    /*! The device, for the thread of this object alone. */
    virtual std::weak_ptr<QIODevice> getRawDevice() const = 0;

protected:
    /*! An empty \a id gives one that is unique. */
    explicit Connection(const QString &id = QString());

    /*! Makes the device if there is none yet; called by open(), under the lock. */
    virtual bool internalOpenReqest() = 0;
    /*! Begins to connect the device; \a connected tells whether it is connected already and will not tell so
     * itself. Called by open(), under the lock. */
    virtual bool internalConnect(bool &connected) = 0;

    bool isOnOwnThread() const;
    /*! Has \a call run on the own thread, soon; dropped if this object ends before. */
    void queue(std::function<void()> call);
    /*! Runs \a use on the device under the lock; false without a device. On the own thread only. */
    bool withDevice(const std::function<void(QIODevice &device)> &use);
    /*! Runs \a signal, what a device told, now or, while the lock is held for the device, when it is left. */
    void tell(const std::function<void()> &signal);

private:
    void underLock(const std::function<void()> &use);
    bool openOnOwnThread();
    bool beginToConnect(bool &connected);
    bool fail() const;

    const QString connectionId;
    QVariant lastReason; // guarded by the lock
    int deviceUses = 0; // nested ones; of the own thread
    QList<std::function<void()>> untold; // what the device told during them
};

} // namespace Shared::Communication::Connections
