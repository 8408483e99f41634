#pragma once

#include "common/EndSignals.h"
#include "common/ProcSampler.h"
#include "Serving.h"

#include <notification/interfaces/NotificationInterface.h>

#include <QObject>
#include <QTimer>

#include <atomic>
#include <optional>

/*! Where the example reads and writes. */
struct RecorderOptions
{
    QString plugins;
    QString configurationFile;
    QString constraintsFile;
    QString databaseFile;
    int durationMs = 0; ///< 0: until the process is told to end
    std::optional<ServingOptions> serving; ///< whether others may mirror what is recorded
};

/*! Samples this machine for a while into one series for each value, stops, starts again, and compares. A
 * change of the interval in its configuration, from wherever it comes, is followed at once. */
class Recorder : public QObject
{
    Q_OBJECT

public:
    Recorder(const RecorderOptions &options, QTextStream &out);

    /*! Whether every step held. */
    bool run();

private:
    bool step(const QString &what, bool held);
    bool start();
    bool serve();
    bool readConfiguration();
    bool loadConfiguration();
    bool registerHandlers();
    bool record();
    bool waitForTheLast() const;
    void takeSample();
    bool write(const Recording::Entry &entry, quint64 timestamp, double value);
    QVector<Recording::Entry> seriesOf(const QString &name);
    Recording::Entry makeSeries(const QString &storage, const QString &name);
    bool report(const QString &title);
    bool compareAfterRestart();

    const RecorderOptions options;
    QTextStream &out;
    Recording recording;
    ProcSampler sampler;
    QTimer timer;
    EndSignals endSignals;
    QHash<QString, QVector<Recording::Entry>> entries; ///< one in each storage
    QMap<QString, Series> reported;
    int intervalMs = 0;
    quint64 capacity = 0;
    QString strategy;
    int limit = 0;
    int taken = 0;
    int writes = 0; ///< of the values taken, in all storages
    int refused = 0;
    QList<Tessellum::Notification::Interfaces::NotificationInterface::HandlePointer> handles;
    std::atomic<int> written{0}; ///< counted on the handlers' threads
};
