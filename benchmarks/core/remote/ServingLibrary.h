#pragma once

#include <core/Library.h>

#include <QCoreApplication>
#include <QUrl>

#include <atomic>
#include <memory>

/*! An application that measures how long the events of the library's event thread take. */
class WatchedApplication : public QCoreApplication
{
public:
    /*! Nanoseconds of the longest event. */
    struct Longest
    {
        qint64 send = 0; /*!< That gave a server a frame to send. */
        qint64 other = 0;
    };

    WatchedApplication(int &argumentCount, char **arguments);

    void beginWatch(QThread *watchedThread);
    Longest endWatch();

    bool notify(QObject *receiver, QEvent *event) override;

private:
    std::atomic<QThread *> watched = nullptr;
    std::atomic<qint64> longestSend = 0; // written on the watched thread
    std::atomic<qint64> longestOther = 0;
};

/*! The library running in this process, for all benchmarks, with a server for its configuration. */
class ServingLibrary
{
public:
    static ServingLibrary &instance();

    /*! Creates the attributes \a parent.value0 and so on. */
    static void createValues(const QString &parent, int count);
    /*! Adds a storage that is served; its port. */
    static int serveStorage(const QString &name);
    /*! For a client of \a path. */
    static QString urlOf(int port, const QString &path);

    int getConfigurationPort() const { return configurationPort; }
    WatchedApplication &getApplication() { return application; }

private:
    ServingLibrary();

    int argumentCount = 1;
    char program[6] = "bench";
    char *arguments[2] = {program, nullptr};
    WatchedApplication application;
    int configurationPort = 0;
};
