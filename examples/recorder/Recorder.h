#pragma once

#include "common/ProcSampler.h"
#include "Recording.h"

#include <notification/interfaces/NotificationInterface.h>

#include <QObject>
#include <QTimer>

#include <atomic>

/*! Where the example reads and writes. */
struct RecorderOptions
{
    QString plugins;
    QString configurationFile;
    QString databaseFile;
    int durationMs = 0;
};

/*! Samples this machine for a while into one series for each value, stops, starts again, and compares. */
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
    bool readConfiguration();
    bool registerHandlers();
    bool record();
    bool waitForTheLast() const;
    void takeSample();
    Recording::Entry seriesOf(const QString &name);
    bool report(const QString &title);
    bool compareAfterRestart();

    const RecorderOptions options;
    QTextStream &out;
    Recording recording;
    ProcSampler sampler;
    QTimer timer;
    QHash<QString, Recording::Entry> entries;
    QMap<QString, Series> reported;
    int intervalMs = 0;
    quint64 capacity = 0;
    QString strategy;
    int limit = 0;
    int taken = 0;
    int refused = 0;
    QList<Tessellum::Notification::Interfaces::NotificationInterface::HandlePointer> handles;
    std::atomic<int> written{0}; ///< counted on the handlers' threads
};
