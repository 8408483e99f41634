#include "common/ProgressLine.h"
#include "common/Steps.h"
#include "Instrument.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonValue>

using namespace Tessellum;
using Notification::CreatePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

const QString intervalPath = QStringLiteral("instrument.sampling.interval_ms");

AppConfig::Backends::BackendCreateDataDetails detailsOf(const QVariant &data, const QString &description)
{
    AppConfig::Backends::BackendCreateDataDetails details;
    details.data = data;
    details.description = description;
    return details;
}

} // namespace

Instrument::Instrument(const InstrumentOptions &instrumentOptions, QTextStream &output)
    : options(instrumentOptions)
    , out(output)
{
    connect(&timer, &QTimer::timeout, this, &Instrument::takeSample);
}

bool Instrument::run()
{
    return start() && loadConfiguration() && assignLimits() && registerHandlers() && sampleForAWhile()
        && showRefusedAndClipped() && saveAndCompareAfterRestart();
}

bool Instrument::step(const QString &what, bool held)
{
    return TellStep(out, what, held);
}

bool Instrument::start()
{
    const int result = initializeLibrary();
    if (Core::CoreInterface *const core = getCoreInterface())
        repository = core->getAppConfigRepository();
    return step(QStringLiteral("the library started"), result == 0 && repository);
}

bool Instrument::stop()
{
    handles.clear();
    repository.reset();
    return step(QStringLiteral("the library stopped"), uninitializeLibrary() == 1);
}

bool Instrument::loadConfiguration()
{
    const auto backends = repository->getBackendInterface();
    const bool configuration = backends->createBackend(
        QStringLiteral("json"), QStringLiteral("instrument"),
        detailsOf(options.configurationFile, QStringLiteral("What the user sets")), CreatePoint::Done);
    const bool measured = backends->createBackend(
        QStringLiteral("memory"), QStringLiteral("measured"),
        detailsOf(QVariant(), QStringLiteral("What the machine says")), CreatePoint::Done);
    return step(
        QStringLiteral("%1 values from %2").arg(configurationValues().size()).arg(options.configurationFile),
        configuration && measured && !configurationValues().isEmpty());
}

bool Instrument::assignLimits()
{
    const bool loaded = repository->getBackendInterface()->createBackend(
        QStringLiteral("constraints"), QStringLiteral("limits"),
        detailsOf(options.constraintsFile, QStringLiteral("What values may be")), CreatePoint::Done);
    const auto validations = repository->getValidationInterface();
    const int assigned = validations->assignValidation(intervalPath, QStringLiteral("sampling_interval"))
        + validations->assignValidation(QStringLiteral("instrument.limits.load"),
                                        QStringLiteral("load_limit"))
        + validations->assignValidation(QStringLiteral("instrument.limits.*percent"),
                                        QStringLiteral("percent"));
    return step(QStringLiteral("limits %1 assigned to %2 attributes")
                    .arg(validations->getValidationIds().join(QStringLiteral(", ")))
                    .arg(assigned),
                loaded && assigned == 3);
}

bool Instrument::registerHandlers()
{
    const auto notifications = repository->getNotificationInterface();
    handles.append(notifications->registerUpdateHandler(
        QStringLiteral("measured.*"),
        [this](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
               const QVariant &) { heard += result == UpdateResult::Ok ? 1 : 0; },
        UpdatePoint::Done));
    // The handler runs on a thread of the library; the timer belongs to the main thread.
    handles.append(notifications->registerUpdateHandler(
        intervalPath,
        [this](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
               const QVariant &now) {
            if (result == UpdateResult::Ok)
                QMetaObject::invokeMethod(
                    this, [this, now] { timer.setInterval(now.toInt()); }, Qt::QueuedConnection);
        },
        UpdatePoint::Done));
    return step(QStringLiteral("handlers for measured.* and %1").arg(intervalPath),
                handles.at(0) != nullptr && handles.at(1) != nullptr);
}

void Instrument::takeSample()
{
    ++samples;
    const auto query = repository->getQueryInterface();
    const auto manipulation = repository->getManipulationInterface();
    for (const ProcSampler::Sample &sample : sampler.sample()) {
        QVariant enabled;
        const QString channel = sample.first.section(QLatin1Char('.'), 0, 0);
        if (!query->getValue(QStringLiteral("instrument.channels.") + channel, enabled, QMetaType::Bool)
            || !enabled.toBool())
            continue;
        const UpdateResult result = manipulation->updateAttribute(QStringLiteral("measured.") + sample.first,
                                                                  sample.second, UpdatePoint::Done);
        written += result == UpdateResult::Ok ? 1 : 0;
    }
}

bool Instrument::sampleForAWhile()
{
    QVariant interval;
    if (!repository->getQueryInterface()->getValue(intervalPath, interval, QMetaType::Int))
        return step(QStringLiteral("the interval can be read"), false);

    QEventLoop loop;
    ProgressLine progress;
    QElapsedTimer passed;
    bool changed = false;
    int samplesBefore = 0;
    QTimer tick;
    connect(&tick, &QTimer::timeout, &loop, [&] {
        progress.show(QStringLiteral("sampling every %1 ms: %2 samples, %3 values")
                          .arg(timer.interval())
                          .arg(samples)
                          .arg(written));
        if (!changed && passed.elapsed() > options.durationMs / 2) {
            samplesBefore = samples;
            changed = changeIntervalLive(interval.toInt() / 4);
        }
        if (passed.elapsed() > options.durationMs)
            loop.quit();
    });
    passed.start();
    timer.start(interval.toInt());
    tick.start(20);
    loop.exec();
    timer.stop();

    const bool faster = changed && samples - samplesBefore > samplesBefore;
    const bool allHeard = [&] {
        QElapsedTimer waited;
        for (waited.start(); heard < written && waited.elapsed() < 10000;)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return heard == written;
    }();
    step(QStringLiteral("the new interval of %1 ms took hold while sampling: %2 samples before, %3 after")
             .arg(timer.interval())
             .arg(samplesBefore)
             .arg(samples - samplesBefore),
         faster);
    return step(QStringLiteral("%1 samples wrote %2 values, the handler heard of %3")
                    .arg(samples)
                    .arg(written)
                    .arg(heard.load()),
                allHeard && written > 0)
        && faster;
}

bool Instrument::changeIntervalLive(int milliseconds)
{
    return repository->getManipulationInterface()->updateAttribute(intervalPath, milliseconds,
                                                                   UpdatePoint::Done)
        == UpdateResult::Ok;
}

bool Instrument::showRefusedAndClipped()
{
    const auto manipulation = repository->getManipulationInterface();
    const auto query = repository->getQueryInterface();
    QVariant before;
    QVariant after;
    query->getValue(intervalPath, before, 0);
    const UpdateResult refused = manipulation->updateAttribute(intervalPath, 1, UpdatePoint::Done);
    query->getValue(intervalPath, after, 0);
    const bool kept
        = step(QStringLiteral("an interval of 1 ms was refused, it stays %1 ms").arg(after.toInt()),
               refused == UpdateResult::CheckFailed && before == after);

    const QString percentPath = QStringLiteral("instrument.limits.memory_percent");
    const UpdateResult clipped = manipulation->updateAttribute(percentPath, 140, UpdatePoint::Done);
    QVariant percent;
    query->getValue(percentPath, percent, 0);
    return step(QStringLiteral("a limit of 140 percent was clipped to %1").arg(percent.toDouble()),
                clipped == UpdateResult::Ok && percent.toDouble() == 100.0)
        && kept;
}

Instrument::Values Instrument::configurationValues() const
{
    Values values;
    for (const auto &attribute :
         repository->getQueryInterface()->queryAttributes(QStringLiteral("instrument.*"))) {
        QVariant value;
        if (attribute->hasValue() && attribute->getValue(value, 0))
            values.insert(attribute->getPath(), QJsonValue::fromVariant(value).toVariant());
    }
    return values;
}

bool Instrument::saveAndCompareAfterRestart()
{
    const Values saved = configurationValues();
    if (!step(QStringLiteral("%1 values saved").arg(saved.size()),
              repository->getBackendInterface()->saveBackend(QStringLiteral("instrument"))))
        return false;
    if (!stop() || !start() || !loadConfiguration())
        return false;
    const bool same = step(QStringLiteral("after a restart nothing differs"), configurationValues() == saved);
    return stop() && same;
}
