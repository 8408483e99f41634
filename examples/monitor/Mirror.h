#pragma once

#include "common/Address.h"

#include <appconfig/interfaces/RepositoryInterface.h>
#include <appdata/interfaces/RepositoryInterface.h>
#include <notification/interfaces/NotificationInterface.h>

#include <QElapsedTimer>
#include <QStringList>

#include <atomic>

/*! Where a recorder serves. */
struct MirrorOptions
{
    Address configuration;
    Address data;
};

/*!
 * The library with a copy of a recorder's configuration and values, from its start to its stop. A connection
 * that is lost stays lost until somebody asks for it again, which is done here every now and then.
 *
 * Used by one thread.
 */
class Mirror
{
public:
    explicit Mirror(const MirrorOptions &options);
    ~Mirror();
    Q_DISABLE_COPY_MOVE(Mirror)

    /*! True whether the recorder answers or not. */
    bool start();
    bool stop();
    /*! Whether both connections are established; asks for those that are not. To be called often. */
    bool keepConnected();

    /*! A setting of the recorder; invalid where it is not known. */
    QVariant setting(const char *name) const;
    /*! Asks the recorder to take \a value; what it makes of that arrives later. */
    bool set(const char *name, const QVariant &value);
    /*! How many values have come in, overwritten ones included. */
    int arrived() const { return arrivals; }
    /*! The names of the series, sorted. */
    QStringList seriesNames() const;
    /*! What stands for the entries of a series: a recorder that starts again brings a new one. */
    std::shared_ptr<Tessellum::AppData::Interfaces::DataEntryInterface> series(const QString &name) const;

private:
    struct Connection
    {
        QString path; // of its control and status
        QElapsedTimer sinceAsked;
    };

    bool addMirrors();
    bool registerHandlers();
    bool keepConnected(Connection &connection) const;
    QString settingPath(const char *name) const;

    const MirrorOptions options;
    bool runs = false;
    std::shared_ptr<Tessellum::AppConfig::Interfaces::RepositoryInterface> configuration;
    std::shared_ptr<Tessellum::AppData::Interfaces::RepositoryInterface> data;
    QVector<Connection> connections;
    QList<Tessellum::Notification::Interfaces::NotificationInterface::HandlePointer> handles;
    std::atomic<int> arrivals{0}; // counted on the handlers' threads
};
