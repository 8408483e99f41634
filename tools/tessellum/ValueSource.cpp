#include "AttributeWait.h"
#include "RunningLibrary.h"
#include "ValueSource.h"

#include <shared/logging/LogHandler.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QUrl>
#include <QUrlQuery>

namespace Tessellum::Tool {

using Notification::CreatePoint;
using Shared::Logging::LogHandler;

namespace {

constexpr qint64 defaultTimeoutMs = 5000;
constexpr qint64 statusMs = 2000; // in which a client tells how its connection stands

QString item(const QUrl &url, const char *key)
{
    return QUrlQuery(url).queryItemValue(QLatin1String(key), QUrl::FullyDecoded);
}

/*! The URL of a client: with an id under which it shows its status, and with an end to its wait. */
QUrl clientUrl(const ValueSource &source, const QString &name)
{
    QUrl url(source.text);
    if (!url.isValid() || url.host().isEmpty() || url.port() < 0)
        FailUsage(QStringLiteral("%1 is no URL of the kind ws://HOST:PORT/?path=PATH").arg(source.text));
    if (item(url, "path").isEmpty())
        FailUsage(QStringLiteral("%1 needs ?path=PATH, the path of a subtree").arg(source.text));
    QUrlQuery query(url);
    QString id = item(url, "id");
    if (id.isEmpty())
        id = QStringLiteral("tessellum-%1").arg(QCoreApplication::applicationPid());
    if (name != BackendName())
        id += QLatin1Char('-') + name;
    query.removeAllQueryItems(QStringLiteral("id"));
    query.addQueryItem(QStringLiteral("id"), id);
    query.removeAllQueryItems(QStringLiteral("timeout"));
    query.addQueryItem(QStringLiteral("timeout"), QString::number(TimeoutOf(source)));
    url.setQuery(query);
    return url;
}

} // namespace

bool ValueSource::isProcess() const
{
    return text.startsWith(QLatin1String("ws://"), Qt::CaseInsensitive);
}

QString BackendName()
{
    return QStringLiteral("values");
}

QString LocalPath(const QString &path)
{
    return BackendName() + QLatin1Char('.') + path;
}

QString SourcePath(const QString &localPath)
{
    return localPath.mid(BackendName().size() + 1);
}

void OpenFile(const ValueSource &source, bool mayBeMissing)
{
    if (!mayBeMissing && !QFileInfo::exists(source.text))
        Fail(QStringLiteral("%1 does not exist").arg(source.text));
    AppConfig::Backends::BackendCreateDataDetails details;
    details.data = source.text;
    if (!Configuration()->getBackendInterface()->createBackend(QStringLiteral("json"), BackendName(), details,
                                                               CreatePoint::Done)) {
        Fail(QStringLiteral("%1 cannot be loaded").arg(source.text));
    }
}

QString OpenProcess(const ValueSource &source, const QString &name)
{
    const QUrl url = clientUrl(source, name);
    // What is usual on a connection is no news to a command's user.
    LogHandler::SetLogLevel(Shared::Logging::LogMessageType::warning);
    const QString status = Configuration()->getPathFromPathElements(
        {QStringLiteral("appconfig"), QStringLiteral("backends"), QStringLiteral("remote_clients"),
         item(url, "id"), QStringLiteral("status")});
    AttributeWait statusWait({status});
    const QDeadlineTimer deadline(TimeoutOf(source));
    AppConfig::Backends::BackendCreateDataDetails details;
    details.data = url;
    details.access = 3;
    if (!Configuration()->getBackendInterface()->createBackend(QStringLiteral("remote-backend-client"), name,
                                                               details, CreatePoint::Done)) {
        Fail(QStringLiteral("%1 cannot be mirrored").arg(source.text));
    }
    const bool isTimeUp = deadline.hasExpired();
    const QString established = QStringLiteral("established");
    const bool isTold = statusWait.until([&] { return AttributeValue(status).isValid(); },
                                         QDeadlineTimer(isTimeUp ? 0 : statusMs));
    if (!isTold || AttributeValue(status) != established)
        Fail(QStringLiteral("nobody answers at %1:%2").arg(url.host()).arg(url.port()));
    const auto query = Configuration()->getQueryInterface();
    if (isTimeUp && query->queryAttributes(name + QStringLiteral(".*")).isEmpty()) {
        Fail(QStringLiteral("%1:%2 did not answer for the subtree %3 within %4 s")
                 .arg(url.host())
                 .arg(url.port())
                 .arg(item(url, "path"))
                 .arg(double(TimeoutOf(source)) / 1000));
    }
    return status;
}

qint64 TimeoutOf(const ValueSource &source)
{
    if (source.timeoutMs >= 0)
        return source.timeoutMs;
    bool isNumber = false;
    const qint64 asked = item(QUrl(source.text), "timeout").toUInt(&isNumber);
    return isNumber ? asked : defaultTimeoutMs;
}

} // namespace Tessellum::Tool
