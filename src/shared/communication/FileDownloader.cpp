#include <shared/communication/FileDownloader.h>

#include <QNetworkRequest>

namespace Shared::Communication {

FileDownloader::FileDownloader(QObject *parent, const bool &followRedirects)
    : QObject(parent)
    , manager(this) // so that it moves to another thread along with this
    , followsRedirects(followRedirects)
{
    connect(&manager, &QNetworkAccessManager::finished, this, &FileDownloader::fileDownloaded);
}

FileDownloader::~FileDownloader() = default;

QByteArray FileDownloader::downloadedData() const
{
    return data;
}

QNetworkReply::NetworkError FileDownloader::status() const
{
    return lastStatus;
}

QString FileDownloader::statusString() const
{
    return lastStatusString;
}

QUrl FileDownloader::url() const
{
    return lastUrl;
}

void FileDownloader::download(const QUrl &url)
{
    redirects = 0;
    request(url);
}

void FileDownloader::request(const QUrl &url)
{
    lastUrl = url;
    const auto *const reply = manager.get(QNetworkRequest(url));
    connect(reply, &QNetworkReply::downloadProgress, this, &FileDownloader::downloadProgress);
}

void FileDownloader::fileDownloaded(QNetworkReply *pReply)
{
    if (!pReply)
        return;
    pReply->deleteLater();
    data = pReply->readAll();
    lastStatus = pReply->error();
    lastStatusString = pReply->errorString();
    // A plain request never tells of a redirect by a signal: its target stands in what has come.
    const QUrl target = pReply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (followsRedirects && target.isValid() && follow(pReply->url(), pReply->url().resolved(target)))
        return;
    Q_EMIT downloaded(lastStatus == QNetworkReply::NoError);
}

/*! False, with the status saying why, where \a target is not followed. */
bool FileDownloader::follow(const QUrl &from, const QUrl &target)
{
    constexpr int most = 50;
    const bool isEncrypted = target.scheme() == QLatin1String("https");
    if (redirects >= most)
        return refuse(QNetworkReply::TooManyRedirectsError, tr("Too many redirects"));
    // Otherwise any server could have files of this machine read.
    if (!isEncrypted && target.scheme() != QLatin1String("http"))
        return refuse(QNetworkReply::ProtocolUnknownError,
                      tr("Redirect to %1").arg(target.toDisplayString()));
    if (!isEncrypted && from.scheme() == QLatin1String("https"))
        return refuse(QNetworkReply::InsecureRedirectError, tr("Redirect to an unencrypted place"));
    ++redirects;
    request(target);
    return true;
}

bool FileDownloader::refuse(QNetworkReply::NetworkError error, const QString &reason)
{
    lastStatus = error;
    lastStatusString = reason;
    return false;
}

} // namespace Shared::Communication
