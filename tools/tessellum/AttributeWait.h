#pragma once

#include <notification/interfaces/NotificationInterface.h>

#include <QDeadlineTimer>
#include <QSemaphore>

#include <functional>
#include <vector>

namespace Tessellum::Tool {

/*! Waits for what shows in attributes, of which it hears each creation and update from its making on. */
class AttributeWait
{
public:
    /*! \a patterns of the attributes on which the condition depends. */
    explicit AttributeWait(const QStringList &patterns);
    Q_DISABLE_COPY_MOVE(AttributeWait)

    /*! Whether \a condition comes true in time; it is asked at once, and after each change. */
    bool until(const std::function<bool()> &condition, const QDeadlineTimer &deadline);

private:
    QSemaphore changes;
    std::vector<Notification::Interfaces::NotificationInterface::HandlePointer> handles; // end first
};

/*! What stands at \a path in the running library; invalid if there is no such value. */
QVariant AttributeValue(const QString &path);

} // namespace Tessellum::Tool
