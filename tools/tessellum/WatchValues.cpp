#include "AttributeWait.h"
#include "JsonLines.h"
#include "RunningLibrary.h"
#include "StopSignals.h"
#include "ValueCommands.h"

#include <atomic>
#include <vector>

namespace Tessellum::Tool {

using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

/*! Writes lines until there are enough of them. Threads: any. */
class ChangeLines
{
public:
    ChangeLines(int mostLines, const StopSignals &stopSignals)
        : most(mostLines)
        , stop(stopSignals)
    { }

    void writeChange(const char *kind, const QString &localPath, const QVariant &value)
    {
        const int number = ++changes;
        if (most > 0 && number > most)
            return;
        QVariantMap line{{QStringLiteral("notify"), QString::fromLatin1(kind)},
                         {QStringLiteral("path"), SourcePath(localPath)}};
        if (value.isValid())
            line.insert(QStringLiteral("value"), value);
        lines.write(line);
        if (number == most)
            stop.raise();
    }

    void writeStatus(const QString &status)
    {
        lines.write(
            {{QStringLiteral("notify"), QStringLiteral("status")}, {QStringLiteral("value"), status}});
        if (status != QLatin1String("disconnected"))
            return;
        isLost = true;
        stop.raise();
    }

    bool hasLostConnection() const { return isLost; }

private:
    const int most;
    const StopSignals &stop;
    std::atomic<int> changes = 0;
    std::atomic<bool> isLost = false;
    JsonLines lines;
};

} // namespace

void WatchValues(const ValueSource &source, const QString &pattern, int count)
{
    const StopSignals stop;
    ChangeLines lines(count, stop);
    const RunningLibrary library;
    const QString status = OpenProcess(source);
    const auto notifications = Configuration()->getNotificationInterface();
    const auto query = Configuration()->getQueryInterface();
    const QString local = LocalPath(pattern);
    const std::vector<Notification::Interfaces::NotificationInterface::HandlePointer> handles
        = {notifications->registerCreateHandler(
               local,
               [&lines, query](const QString &path, const CreatePoint &, const bool &created) {
                   QVariant value;
                   query->getValue(path, value, QMetaType::UnknownType);
                   if (created)
                       lines.writeChange("create", path, value);
               },
               CreatePoint::Done),
           notifications->registerUpdateHandler(
               local,
               [&lines](const QString &path, const UpdatePoint &, const UpdateResult &result,
                        const QVariant &, const QVariant &value) {
                   if (result == UpdateResult::Ok)
                       lines.writeChange("update", path, value);
               },
               UpdatePoint::Done),
           notifications->registerDeleteHandler(
               local,
               [&lines](const QString &path, const DeletePoint &, const bool &deleted) {
                   if (deleted)
                       lines.writeChange("delete", path, QVariant());
               },
               DeletePoint::Done),
           notifications->registerUpdateHandler(
               status,
               [&lines](const QString &, const UpdatePoint &, const UpdateResult &, const QVariant &,
                        const QVariant &value) { lines.writeStatus(value.toString()); },
               UpdatePoint::Done)};
    // The connection may have gone before somebody listened.
    lines.writeStatus(AttributeValue(status).toString());
    stop.wait();
    if (lines.hasLostConnection())
        Fail(QStringLiteral("the connection to %1 was lost").arg(source.text));
}

} // namespace Tessellum::Tool
