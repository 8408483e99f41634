#pragma once

#include "common/ProcSampler.h"

#include <core/Library.h>

#include <QMap>
#include <QObject>
#include <QTextStream>
#include <QTimer>
#include <QVariant>

#include <atomic>

/*! What the example was asked to do. */
struct InstrumentOptions
{
    QString configurationFile; ///< JSON, read and written
    QString constraintsFile;
    int durationMs = 3000;
};

/*!
 * An instrument that keeps its configuration and its measured values in the tree.
 *
 * Lives on the main thread; handlers come on threads of the library and hand over to it by queued calls.
 */
class Instrument : public QObject
{
    Q_OBJECT
public:
    Instrument(const InstrumentOptions &options, QTextStream &out);

    /*! Runs all steps; false as soon as one did not hold. */
    bool run();

private:
    using Values = QMap<QString, QVariant>;

    bool start();
    bool stop();
    bool loadConfiguration();
    bool assignLimits();
    bool registerHandlers();
    bool sampleForAWhile();
    bool changeIntervalLive(int milliseconds);
    bool showRefusedAndClipped();
    bool saveAndCompareAfterRestart();

    void takeSample();
    Values configurationValues() const;
    bool step(const QString &what, bool held);

    const InstrumentOptions options;
    QTextStream &out;
    std::shared_ptr<Tessellum::AppConfig::Interfaces::RepositoryInterface> repository;
    QList<std::shared_ptr<Tessellum::Notification::Interfaces::NotificationHandleInterface>> handles;
    ProcSampler sampler;
    QTimer timer;
    int samples = 0;
    int written = 0;
    std::atomic<int> heard{0};
};
