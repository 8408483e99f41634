#include "common/ProgressLine.h"
#include "common/RecordingNames.h"
#include "common/Steps.h"
#include "Recorder.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>

using namespace Tessellum;
using namespace Tessellum::AppData;
using Notification::CreatePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

Recorder::Recorder(const RecorderOptions &recorderOptions, QTextStream &output)
    : options(recorderOptions)
    , out(output)
    , recording(recorderOptions.plugins)
{
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &Recorder::takeSample);
}

bool Recorder::run()
{
    return start() && record() && report(QStringLiteral("what was recorded")) && compareAfterRestart();
}

bool Recorder::step(const QString &what, bool held)
{
    return TellStep(out, what, held);
}

bool Recorder::start()
{
    return step(QStringLiteral("the library runs and knows the storage type sqlite"), recording.start())
        && step(QStringLiteral("the configuration %1").arg(options.configurationFile), readConfiguration())
        && step(QStringLiteral("the storage %1").arg(options.databaseFile),
                recording.open(options.databaseFile, 0))
        && step(QStringLiteral("handlers for what has been written, and for the interval"),
                registerHandlers())
        && (!options.serving || serve());
}

bool Recorder::serve()
{
    Serving serving(recording, *options.serving);
    if (!step(QStringLiteral("servers for %1 and the storage %2")
                  .arg(RecordingNames::Root(), RecordingNames::ServedStorage()),
              serving.start())) {
        return false;
    }
    out << serving.readyLine() << Qt::endl;
    return true;
}

bool Recorder::registerHandlers()
{
    const auto notifications = recording.data()->getNotificationInterface();
    // An added value is told as a create, one that overwrites the oldest of a full ring as an update.
    const QString values = RecordingNames::ValuesPattern();
    handles.append(notifications->registerCreateHandler(
        values, [this](const QString &, const CreatePoint &, const bool &done) { written += done ? 1 : 0; },
        CreatePoint::Done));
    handles.append(notifications->registerUpdateHandler(
        values,
        [this](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
               const QVariant &) { written += result == UpdateResult::Ok ? 1 : 0; },
        UpdatePoint::Done));
    // The handler runs on a thread of the library; the timer belongs to the main thread.
    handles.append(recording.configuration()->getNotificationInterface()->registerUpdateHandler(
        recording.configuration()->getPathFromPathElements(
            {RecordingNames::Root(), RecordingNames::Setting("interval_ms")}),
        [this](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
               const QVariant &now) {
            if (result == UpdateResult::Ok)
                QMetaObject::invokeMethod(
                    this, [this, now] { timer.setInterval(now.toInt()); }, Qt::QueuedConnection);
        },
        UpdatePoint::Done));
    return handles.at(0) && handles.at(1) && handles.at(2);
}

bool Recorder::loadConfiguration()
{
    const auto repository = recording.configuration();
    // What others mirror lies beneath an attribute, which a backend is not.
    if (!repository->getManipulationInterface()->createAttribute(RecordingNames::Root(), QVariant(),
                                                                 CreatePoint::Done, 3)) {
        return false;
    }
    const auto load = [&](const char *type, const QString &name, const QString &file) {
        AppConfig::Backends::BackendCreateDataDetails details;
        details.data = file;
        return repository->getBackendInterface()->createBackend(QLatin1String(type), name, details,
                                                                CreatePoint::Done);
    };
    const QString interval = repository->getPathFromPathElements(
        {RecordingNames::Root(), RecordingNames::Setting("interval_ms")});
    return load("json",
                repository->getPathFromPathElements({RecordingNames::Root(), QStringLiteral("settings")}),
                options.configurationFile)
        && load("constraints", QStringLiteral("limits"), options.constraintsFile)
        && repository->getValidationInterface()->assignValidation(interval,
                                                                  QStringLiteral("recording_interval"))
        == 1;
}

bool Recorder::readConfiguration()
{
    if (!loadConfiguration())
        return false;
    const auto repository = recording.configuration();
    const auto query = repository->getQueryInterface();
    const auto read = [&](const char *name, QMetaType::Type type) {
        QVariant value;
        query->getValue(
            repository->getPathFromPathElements({RecordingNames::Root(), RecordingNames::Setting(name)}),
            value, type);
        return value;
    };
    intervalMs = read("interval_ms", QMetaType::Int).toInt();
    capacity = read("capacity", QMetaType::ULongLong).toULongLong();
    strategy = read("memory.strategy", QMetaType::QString).toString();
    limit = read("memory.limit", QMetaType::Int).toInt();
    return intervalMs > 0 && capacity > 0 && !strategy.isEmpty() && limit > 0;
}

bool Recorder::record()
{
    ProgressLine progress;
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    const bool isLimited = options.durationMs > 0;
    if (isLimited)
        QTimer::singleShot(options.durationMs, &loop, &QEventLoop::quit);
    connect(&endSignals, &EndSignals::raised, &loop, &QEventLoop::quit);
    timer.start(intervalMs);
    connect(&timer, &QTimer::timeout, &loop, [&] {
        progress.show(
            QStringLiteral("recording %1%2 s: %3 series, %4 values")
                .arg(clock.elapsed() / 1000.0, 0, 'f', 1)
                .arg(isLimited ? QStringLiteral(" of %1").arg(options.durationMs / 1000.0) : QString())
                .arg(entries.size())
                .arg(taken));
    });
    if (!endSignals.wereRaised())
        loop.exec();
    timer.stop();
    return step(QStringLiteral("%1 values taken, each of them written").arg(taken),
                taken > 0 && waitForTheLast());
}

bool Recorder::waitForTheLast() const
{
    constexpr int longestMs = 30000;
    const QDeadlineTimer deadline(longestMs);
    while (written < writes && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        QThread::yieldCurrentThread();
    }
    return written == writes;
}

void Recorder::takeSample()
{
    const auto now = static_cast<quint64>(QDateTime::currentMSecsSinceEpoch());
    for (const ProcSampler::Sample &sample : sampler.sample()) {
        bool isTaken = true;
        for (const Recording::Entry &entry : seriesOf(sample.first))
            isTaken = write(entry, now, sample.second) && isTaken;
        isTaken ? ++taken : ++refused;
    }
}

bool Recorder::write(const Recording::Entry &entry, quint64 timestamp, double value)
{
    const bool isTaken = entry
        && !entry->getManipulationInterface()
                ->addDataElementValue(timestamp, ElementValueKind::ParsedValue, value, CreatePoint::All)
                .isEmpty();
    writes += isTaken ? 1 : 0;
    return isTaken;
}

QVector<Recording::Entry> Recorder::seriesOf(const QString &name)
{
    QVector<Recording::Entry> &pair = entries[name];
    if (pair.isEmpty()) {
        pair.append(makeSeries(Recording::StorageName(), name));
        if (options.serving)
            pair.append(makeSeries(RecordingNames::ServedStorage(), name));
    }
    return pair;
}

Recording::Entry Recorder::makeSeries(const QString &storage, const QString &name)
{
    const Recording::Entry entry = recording.series(storage, name, capacity);
    const auto memory = entry ? entry->getMemoryStrategyInterface() : nullptr;
    if (memory && memory->installMemoryStrategy(strategy, QString()))
        memory->configureMemoryStrategy(QStringLiteral("{\"limit\":%1}").arg(limit));
    return entry;
}

bool Recorder::report(const QString &title)
{
    entries.clear();
    handles.clear();
    if (!step(QStringLiteral("the library stopped and wrote what was queued"), recording.stop())
        || !step(QStringLiteral("it runs again"), recording.start())
        || !step(QStringLiteral("the storage is open again"), recording.open(options.databaseFile, 0))) {
        return false;
    }
    reported = recording.readAll();
    out << "  " << title << Qt::endl;
    int values = 0;
    for (const Series &series : qAsConst(reported)) {
        series.print(out);
        values += series.points.size();
    }
    return step(QStringLiteral("%1 values taken, %2 refused, %3 stored").arg(taken).arg(refused).arg(values),
                refused == 0 && values >= qMin<int>(taken, static_cast<int>(capacity)));
}

bool Recorder::compareAfterRestart()
{
    if (!recording.stop() || !recording.start() || !recording.open(options.databaseFile, 0))
        return step(QStringLiteral("a third start"), false);
    const bool same = recording.readAll() == reported;
    return step(QStringLiteral("after a restart nothing differs"), same)
        && step(QStringLiteral("the library stopped"), recording.stop());
}
