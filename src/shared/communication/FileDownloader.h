#pragma once

#include <shared/TessellumExport.h>

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QUrl>

namespace Shared::Communication {

/*! Fetches one URL at a time into memory. Threads: that on which it lives, which needs an event loop. */
class TESSELLUM_EXPORT FileDownloader : public QObject
{
    Q_OBJECT

public:
    /*! \a followRedirects: whether a server may name another place, up to 50 times; only one of the web, and
     * none without encryption in place of one with it. */
    FileDownloader(QObject *parent, const bool &followRedirects);
    ~FileDownloader() override;

    /*! What came last, also where it failed: the server's page about it, if any. */
    QByteArray downloadedData() const;
    QNetworkReply::NetworkError status() const;
    /*! The error in words, in the user's language; of no meaning without an error. */
    QString statusString() const;
    /*! What was asked for last: behind a redirect its target. */
    QUrl url() const;

public Q_SLOTS:
    /*! Begins to fetch \a url; its end is told by downloaded(). */
    void download(const QUrl &url);
    void fileDownloaded(QNetworkReply *pReply);

Q_SIGNALS:
    void downloaded(bool success);
    /*! \a bytesTotal is -1 where the server does not say it. */
    void downloadProgress(qint64 bytesReceived, qint64 bytesTotal);

private:
    void request(const QUrl &url);
    bool follow(const QUrl &from, const QUrl &target);
    bool refuse(QNetworkReply::NetworkError error, const QString &reason);

    QNetworkAccessManager manager;
    const bool followsRedirects;
    int redirects = 0; // of the present download
    QByteArray data;
    QNetworkReply::NetworkError lastStatus = QNetworkReply::NoError;
    QString lastStatusString;
    QUrl lastUrl;
};

} // namespace Shared::Communication
