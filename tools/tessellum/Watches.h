#pragma once

#include "JsonLines.h"

#include <notification/interfaces/NotificationInterface.h>

#include <QMap>

namespace Tessellum::Tool {

/*!
 * The registered handlers of a shell, by number; each writes an object with "notify" for what it hears. Used
 * by the shell's thread; the handlers run on threads of the library.
 */
class Watches
{
public:
    explicit Watches(JsonLines &output);

    /*! Registers for "create", "update" or "delete"; the number of the watch, or 0. */
    int addCreate(const QString &pattern, Notification::CreatePoint point);
    int addUpdate(const QString &pattern, Notification::UpdatePoint point);
    int addDelete(const QString &pattern, Notification::DeletePoint point);
    /*! Ends one after waiting for its running handler; false if there is none of that number. */
    bool remove(int number);
    void clear();
    int size() const { return handles.size(); }

private:
    int enter(const Notification::Interfaces::NotificationInterface::HandlePointer &handle);

    JsonLines &lines;
    QMap<int, Notification::Interfaces::NotificationInterface::HandlePointer> handles;
    int lastNumber = 0;
};

} // namespace Tessellum::Tool
