#include "common/RecordingNames.h"
#include "common/Steps.h"
#include "Monitor.h"

#include <QTimer>

namespace {

/*! The values of the last seconds as one line. */
QString lineOf(const Tessellum::AppData::Interfaces::DataEntryInterface &series, const QString &name)
{
    constexpr quint64 shownMs = 10000;
    constexpr int sparklineWidth = 40;
    constexpr int nameWidth = 18;
    quint64 first = 0;
    quint64 last = 0;
    if (const auto query = series.getQueryInterface())
        query->getTimeSpan(first, last);
    const auto points = Series::Read(series, last > shownMs ? last - shownMs : 0).points;
    if (points.isEmpty())
        return QStringLiteral("  %1 no value yet").arg(name, -nameWidth);
    return QStringLiteral("  %1%2  %3")
        .arg(name, -nameWidth)
        .arg(points.last().value, 11, 'f', 2)
        .arg(Sparkline(points, sparklineWidth));
}

} // namespace

Monitor::Monitor(const MonitorOptions &monitorOptions, QTextStream &output)
    : options(monitorOptions)
    , out(output)
    , screen(output)
    , mirror(monitorOptions.mirror)
{
    if (options.intervalMs > 0)
        change.emplace(options.intervalMs);
}

bool Monitor::run()
{
    if (!TellStep(out, QStringLiteral("the library runs"), mirror.start()))
        return false;
    watch();
    screen.finish(block());
    return report();
}

void Monitor::watch()
{
    constexpr int lookMs = 100;
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [this] { look(); });
    QObject::connect(&endSignals, &EndSignals::raised, &loop, &QEventLoop::quit);
    QTimer::singleShot(options.durationMs, &loop, &QEventLoop::quit);
    clock.start();
    timer.start(lookMs);
    if (!endSignals.wereRaised())
        loop.exec();
}

void Monitor::look()
{
    lookAtConnection();
    lookAtValues();
    changeInterval();
    screen.show(block());
}

void Monitor::lookAtConnection()
{
    const bool wasConnected = isConnected;
    isConnected = mirror.keepConnected();
    if (wasConnected == isConnected)
        return;
    if (!isConnected) {
        ++gone;
        screen.tell(QStringLiteral("the recorder has gone"));
        return;
    }
    arrivedBefore = mirror.arrived();
    awaitsValues = true;
    if (gone == 0) {
        screen.tell(QStringLiteral("connected to the recorder"));
        return;
    }
    ++back;
    screen.tell(QStringLiteral("the recorder is back"));
    // Settings keep the values that they had when it went. One that is set to what it is said to be already
    // makes the recorder tell what it really is.
    mirror.set("interval_ms", mirror.setting("interval_ms"));
}

void Monitor::lookAtValues()
{
    if (!awaitsValues || mirror.arrived() <= arrivedBefore)
        return;
    awaitsValues = false;
    (back > 0 ? haveValuesComeAgain : haveValuesCome) = true;
    screen.tell(back > 0 ? QStringLiteral("its values come again") : QStringLiteral("its values come"));
}

void Monitor::changeInterval()
{
    if (!change)
        return;
    if (!change->wasAsked() && haveValuesCome && isConnected && clock.elapsed() >= options.changeAfterMs)
        change->ask(mirror, screen);
    else
        change->look(mirror, screen);
}

QStringList Monitor::block() const
{
    const QVariant interval = mirror.setting("interval_ms");
    const QStringList names = mirror.seriesNames();
    QStringList lines{QStringLiteral("  recorder %1, %2, %3 values of %4 series")
                          .arg(isConnected ? QStringLiteral("connected") : QStringLiteral("GONE"),
                               interval.isValid() ? QStringLiteral("each %1 ms").arg(interval.toInt())
                                                  : QStringLiteral("configuration unknown"))
                          .arg(mirror.arrived())
                          .arg(names.size())};
    for (const QString &name : names) {
        if (const auto series = mirror.series(name))
            lines.append(lineOf(*series, name));
    }
    return lines;
}

bool Monitor::report()
{
    bool held = TellStep(out, QStringLiteral("the configuration was mirrored"),
                         mirror.setting("interval_ms").isValid());
    held = TellStep(out, QStringLiteral("%1 values came").arg(mirror.arrived()), haveValuesCome) && held;
    if (change) {
        held
            = TellStep(out, QStringLiteral("the recorder took the interval of %1 ms").arg(options.intervalMs),
                       change->isConfirmed())
            && held;
    }
    if (options.expectsRestart) {
        held = TellStep(out, QStringLiteral("the recorder went, came back and sent values again"),
                        gone > 0 && back > 0 && haveValuesComeAgain)
            && held;
    }
    return TellStep(out, QStringLiteral("the library stopped"), mirror.stop()) && held;
}
