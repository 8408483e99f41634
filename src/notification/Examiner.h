#pragma once

#include <notification/ExaminerConnection.h>
#include <notification/utils/WrappedNotificationHandle.h>

#include <QHash>
#include <QList>
#include <QReadWriteLock>
#include <QString>

#include <memory>

namespace Tessellum::Notification {

/*!
 * Gathers the connections of one path and one point. Any thread may call.
 *
 * Lock: guards the connections; taken after the lock of the registration. Connections end outside of it.
 */
class TESSELLUM_EXPORT Examiner
{
public:
    Examiner();
    ~Examiner();
    Q_DISABLE_COPY(Examiner)

    QString getUuid() const { return uuid; }

    /*! Connects the handler of \a handle; false if its handle has gone. */
    bool addConnection(const std::shared_ptr<utils::WrappedNotificationHandle> &handle);
    /*! Takes off the connection with the uuid of its handle; false if there is none. */
    bool removeConnection(const QString &uuid);
    /*! As removeConnection(), and hands the connection to the caller, who lets it go without a lock. */
    std::shared_ptr<ExaminerConnection> takeConnection(const QString &uuid);
    /*! A copy of all connections. */
    QList<std::shared_ptr<ExaminerConnection>> getConnections() const;
    /*! True if nothing is connected. */
    bool isEmpty() const;

private:
    const QString uuid;
    mutable QReadWriteLock lock;
    QHash<QString, std::shared_ptr<ExaminerConnection>> connections;
};

} // namespace Tessellum::Notification
