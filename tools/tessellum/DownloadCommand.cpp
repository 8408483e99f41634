#include "DownloadCommand.h"
#include "ProgressBar.h"
#include "ToolError.h"

#include <shared/communication/FileDownloader.h>

#include <QEventLoop>
#include <QSaveFile>
#include <QUrl>

namespace Tessellum::Tool {

using Shared::Communication::FileDownloader;

namespace {

QByteArray fetch(const QUrl &url)
{
    FileDownloader downloader(nullptr, true);
    QEventLoop loop;
    bool hasCome = false;
    QObject::connect(&downloader, &FileDownloader::downloaded, &loop, [&](bool success) {
        hasCome = success;
        loop.quit();
    });
    {
        ProgressBar bar;
        QObject::connect(&downloader, &FileDownloader::downloadProgress, &loop,
                         [&bar](qint64 received, qint64 total) { bar.show(received, total); });
        downloader.download(url);
        loop.exec();
        QObject::disconnect(&downloader, nullptr, &loop, nullptr);
    }
    if (!hasCome)
        Fail(QStringLiteral("%1 cannot be fetched: %2")
                 .arg(downloader.url().toDisplayString(), downloader.statusString()));
    return downloader.downloadedData();
}

} // namespace

void DownloadFile(const QString &url, const QString &file)
{
    const QUrl parsed(url, QUrl::StrictMode);
    if (!parsed.isValid() || parsed.isRelative())
        FailUsage(QStringLiteral("%1 is no URL, as http://HOST/PATH is one").arg(url));
    // Before the download: it would be lost.
    QSaveFile target(file);
    if (!target.open(QIODevice::WriteOnly))
        Fail(QStringLiteral("%1 cannot be written: %2").arg(file, target.errorString()));
    target.write(fetch(parsed));
    if (!target.commit())
        Fail(QStringLiteral("%1 cannot be written: %2").arg(file, target.errorString()));
}

} // namespace Tessellum::Tool
