#include <shared/communication/FileDownloader.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <support/Literals.h>

using Shared::Communication::FileDownloader;

namespace {

/*! Answers each request by what stands for its path; an answer that is not there is the end of the
 * connection. */
class Server : public QTcpServer
{
public:
    Server()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            auto *const socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(*socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
        if (!listen(QHostAddress::LocalHost))
            qFatal("cannot listen");
    }

    QUrl url(const char *path) const
    {
        return QUrl("http://127.0.0.1:%1%2"_s.arg(serverPort()).arg(QLatin1String(path)));
    }

    QHash<QByteArray, QByteArray> answers; // by path: all that stands behind "HTTP/1.1 "
    int requests = 0;

private:
    void answer(QTcpSocket &socket)
    {
        if (!socket.peek(1 << 16).contains("\r\n\r\n"))
            return;
        ++requests;
        const QByteArray path = socket.readAll().split(' ').value(1);
        if (answers.contains(path))
            socket.write("HTTP/1.1 " + answers.value(path));
        socket.disconnectFromHost();
    }
};

QByteArray page(const char *status, const QByteArray &body)
{
    return QByteArray(status) + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

QByteArray redirect(const QByteArray &target)
{
    return "302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n";
}

/*! Whether it was told to have succeeded; it is told once. */
bool fetch(FileDownloader &downloader, const QUrl &url)
{
    const QSignalSpy ended(&downloader, &FileDownloader::downloaded);
    downloader.download(url);
    if (!QTest::qWaitFor([&ended] { return !ended.isEmpty(); }, 20000))
        qFatal("no end of the download");
    QCoreApplication::processEvents();
    return ended.size() == 1 && ended.first().first().toBool();
}

} // namespace

class FileDownloaderTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void fetches();
    void fetchesOnTheThreadItIsMovedTo();
    void tellsFailures_data();
    void tellsFailures();
    void followsRedirects();
    void leavesRedirects_data();
    void leavesRedirects();

private:
    Server server;
};

void FileDownloaderTest::fetches()
{
    const QByteArray body(300000, 'x');
    server.answers["/file"] = page("200 OK", body);
    FileDownloader downloader(nullptr, false);
    QCOMPARE(downloader.status(), QNetworkReply::NoError);
    const QSignalSpy progress(&downloader, &FileDownloader::downloadProgress);
    QVERIFY(fetch(downloader, server.url("/file")));
    QVERIFY(downloader.downloadedData() == body);
    QCOMPARE(downloader.url(), server.url("/file"));
    QCOMPARE(progress.last(), (QVariantList{qint64(body.size()), qint64(body.size())}));
}

void FileDownloaderTest::fetchesOnTheThreadItIsMovedTo()
{
    const QUrl url = server.url("/file");
    server.answers["/file"] = page("200 OK", "there");
    QThread thread;
    FileDownloader downloader(nullptr, false);
    QList<bool> ended;
    connect(&downloader, &FileDownloader::downloaded, this,
            [&ended](bool success) { ended.append(success); });
    downloader.moveToThread(&thread);
    const auto *const manager = downloader.findChild<QNetworkAccessManager *>();
    QVERIFY(manager && manager->thread() == &thread);
    thread.start();
    const auto end = qScopeGuard([&thread] {
        thread.quit();
        thread.wait();
    });
    QMetaObject::invokeMethod(&downloader, [&downloader, url] { downloader.download(url); });
    QTRY_COMPARE(ended, QList<bool>{true});
    QCOMPARE(downloader.downloadedData(), QByteArray("there"));
}

void FileDownloaderTest::tellsFailures_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("not there") << server.url("/none") << int(QNetworkReply::ContentNotFoundError)
                               << QByteArray("no such page");
    QTest::newRow("closed at once") << server.url("/hang-up") << int(QNetworkReply::RemoteHostClosedError)
                                    << QByteArray();
    QTest::newRow("closed in the middle")
        << server.url("/half") << int(QNetworkReply::RemoteHostClosedError) << QByteArray("half");
    QTest::newRow("nobody") << QUrl("http://127.0.0.1:1/") << int(QNetworkReply::ConnectionRefusedError)
                            << QByteArray();
    QTest::newRow("unknown kind") << QUrl("nonsense://x") << int(QNetworkReply::ProtocolUnknownError)
                                  << QByteArray();
    QTest::newRow("no URL") << QUrl() << int(QNetworkReply::ProtocolUnknownError) << QByteArray();
}

void FileDownloaderTest::tellsFailures()
{
    server.answers["/none"] = page("404 Not Found", "no such page");
    server.answers["/half"] = "200 OK\r\nContent-Length: 100\r\n\r\nhalf";
    QFETCH(const QUrl, url);
    FileDownloader downloader(nullptr, true);
    QVERIFY(!fetch(downloader, url));
    QTEST(int(downloader.status()), "status");
    QTEST(downloader.downloadedData(), "body");
    QVERIFY(!downloader.statusString().isEmpty());
}

void FileDownloaderTest::followsRedirects()
{
    server.answers["/a"] = redirect("/sub/b?x=1");
    server.answers["/sub/b?x=1"] = redirect("c");
    server.answers["/sub/c"] = page("200 OK", "there");
    FileDownloader downloader(nullptr, true);
    QVERIFY(fetch(downloader, server.url("/a")));
    QCOMPARE(downloader.downloadedData(), QByteArray("there"));
    QCOMPARE(downloader.url(), server.url("/sub/c"));

    FileDownloader stays(nullptr, false);
    QVERIFY(fetch(stays, server.url("/a")));
    QVERIFY(stays.downloadedData().isEmpty());
    QCOMPARE(stays.url(), server.url("/a"));
}

void FileDownloaderTest::leavesRedirects_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("requests");
    QTest::newRow("in circles") << QByteArray("/again") << int(QNetworkReply::TooManyRedirectsError) << 51;
    QTest::newRow("to a file") << QByteArray("file:///etc/hostname")
                               << int(QNetworkReply::ProtocolUnknownError) << 1;
}

void FileDownloaderTest::leavesRedirects()
{
    QFETCH(const QByteArray, target);
    server.answers["/again"] = redirect(target);
    server.requests = 0;
    FileDownloader downloader(nullptr, true);
    for (int round = 1; round <= 2; ++round) { // the count begins anew
        QVERIFY(!fetch(downloader, server.url("/again")));
        QTEST(int(downloader.status()), "status");
        QVERIFY(!downloader.statusString().isEmpty());
        QTEST(server.requests / round, "requests");
    }
    QCOMPARE(downloader.url(), server.url("/again"));
}

QTEST_GUILESS_MAIN(FileDownloaderTest)
#include "FileDownloaderTest.moc"
