#include "common/ProgressLine.h"
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
    out << (held ? "  ok      " : "  FAILED  ") << what << Qt::endl;
    return held;
}

bool Recorder::start()
{
    return step(QStringLiteral("the library runs and knows the storage type sqlite"), recording.start())
        && step(QStringLiteral("the configuration %1").arg(options.configurationFile), readConfiguration())
        && step(QStringLiteral("the storage %1").arg(options.databaseFile),
                recording.open(options.databaseFile, 0))
        && step(QStringLiteral("handlers that count what has been written"), registerHandlers());
}

bool Recorder::registerHandlers()
{
    const auto notifications = recording.data()->getNotificationInterface();
    // An added value is told as a create, one that overwrites the oldest of a full ring as an update. The
    // last element of its path is a uuid, which the paths of the series themselves do not have.
    const QString values = QStringLiteral("machine.*.{*}");
    handles.append(notifications->registerCreateHandler(
        values, [this](const QString &, const CreatePoint &, const bool &done) { written += done ? 1 : 0; },
        CreatePoint::Done));
    handles.append(notifications->registerUpdateHandler(
        values,
        [this](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
               const QVariant &) { written += result == UpdateResult::Ok ? 1 : 0; },
        UpdatePoint::Done));
    return handles.at(0) && handles.at(1);
}

bool Recorder::readConfiguration()
{
    AppConfig::Backends::BackendCreateDataDetails details;
    details.data = options.configurationFile;
    const auto repository = recording.configuration();
    if (!repository->getBackendInterface()->createBackend(QStringLiteral("json"), QStringLiteral("recorder"),
                                                          details, CreatePoint::Done)) {
        return false;
    }
    const auto query = repository->getQueryInterface();
    const auto read = [&](const char *path, QMetaType::Type type) {
        QVariant value;
        query->getValue(QStringLiteral("recorder.") + QLatin1String(path), value, type);
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
    QTimer::singleShot(options.durationMs, &loop, &QEventLoop::quit);
    timer.start(intervalMs);
    connect(&timer, &QTimer::timeout, &loop, [&] {
        progress.show(QStringLiteral("recording %1 of %2 s: %3 series, %4 values")
                          .arg(clock.elapsed() / 1000.0, 0, 'f', 1)
                          .arg(options.durationMs / 1000.0)
                          .arg(entries.size())
                          .arg(taken));
    });
    loop.exec();
    timer.stop();
    return step(QStringLiteral("%1 values taken, each of them written").arg(taken),
                taken > 0 && waitForTheLast());
}

bool Recorder::waitForTheLast() const
{
    constexpr int longestMs = 30000;
    const QDeadlineTimer deadline(longestMs);
    while (written < taken && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        QThread::yieldCurrentThread();
    }
    return written == taken;
}

void Recorder::takeSample()
{
    const auto now = static_cast<quint64>(QDateTime::currentMSecsSinceEpoch());
    for (const ProcSampler::Sample &sample : sampler.sample()) {
        const Recording::Entry entry = seriesOf(sample.first);
        const QString uuid = entry ? entry->getManipulationInterface()->addDataElementValue(
                                 now, ElementValueKind::ParsedValue, sample.second, CreatePoint::All)
                                   : QString();
        uuid.isEmpty() ? ++refused : ++taken;
    }
}

Recording::Entry Recorder::seriesOf(const QString &name)
{
    Recording::Entry &entry = entries[name];
    if (!entry) {
        entry = recording.series(name, capacity);
        const auto memory = entry ? entry->getMemoryStrategyInterface() : nullptr;
        if (memory && memory->installMemoryStrategy(strategy, QString()))
            memory->configureMemoryStrategy(QStringLiteral("{\"limit\":%1}").arg(limit));
    }
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
