#pragma once

#include "common/Series.h"

#include <appconfig/interfaces/RepositoryInterface.h>
#include <appdata/interfaces/RepositoryInterface.h>

#include <QMap>

/*!
 * The library with one SQLite storage, from its start to its stop. Used by one thread. Every function says
 * whether it held.
 */
class Recording
{
public:
    using Entry = std::shared_ptr<Tessellum::AppData::Interfaces::DataEntryInterface>;

    /*! \a plugins is the folder of the SQLite plug-in. */
    explicit Recording(const QString &plugins);
    ~Recording();
    Q_DISABLE_COPY_MOVE(Recording)

    bool start();
    bool stop();
    /*! Opens \a file, or creates it, and attaches its series. \a mode 1: a value that was taken is on the
     * disk. */
    bool open(const QString &file, int mode);

    std::shared_ptr<Tessellum::AppConfig::Interfaces::RepositoryInterface> configuration() const;
    std::shared_ptr<Tessellum::AppData::Interfaces::RepositoryInterface> data() const;
    /*! The entry of a series in \a storage, made as a ring of \a capacity where it is missing; null where
     * that fails. The entries of a series in several storages are a pair. */
    Entry series(const QString &storage, const QString &name, quint64 capacity);
    /*! All series of the file, by name. */
    QMap<QString, Series> readAll() const;

    /*! The storage of the file. */
    static const QString &StorageName();

private:
    const QString plugins;
    bool runs = false;
};
