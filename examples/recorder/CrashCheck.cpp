#include "CrashCheck.h"
#include "Recording.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>

#include <cstdio>

using namespace Tessellum::AppData;
using Tessellum::Notification::CreatePoint;

namespace {

const QString seriesName = QStringLiteral("counter");

/*! The highest value that the child has named; -1 before the first. */
qint64 lastNamed(const QByteArray &output)
{
    const int end = output.lastIndexOf('\n');
    const int begin = output.lastIndexOf('\n', end - 1) + 1;
    return end < 0 ? -1 : output.mid(begin, end - begin).toLongLong();
}

/*! Lets the child write for a moment that is never the same, and kills it. */
bool runChild(const CrashOptions &options, QByteArray &output)
{
    constexpr int patienceMs = 60000;
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--write-until-killed"), QStringLiteral("--plugins"), options.plugins,
                 QStringLiteral("--database"), options.databaseFile, QStringLiteral("--mode"),
                 QString::number(options.mode)});
    const int wanted = QRandomGenerator::global()->bounded(1, options.mode == 1 ? 300 : 5000);
    while (lastNamed(output) < wanted) {
        if (!child.waitForReadyRead(patienceMs))
            return false; // it has ended, or writes nothing
        output += child.readAllStandardOutput();
    }
    child.kill();
    child.waitForFinished(patienceMs);
    output += child.readAllStandardOutput();
    return true;
}

} // namespace

int WriteUntilKilled(const CrashOptions &options)
{
    Recording recording(options.plugins);
    if (!recording.start() || !recording.open(options.databaseFile, options.mode))
        return 1;
    const Recording::Entry entry = recording.series(Recording::StorageName(), seriesName, 0);
    const auto manipulation = entry ? entry->getManipulationInterface() : nullptr;
    for (quint64 value = 0; manipulation; ++value) {
        const QString uuid = manipulation->addDataElementValue(value, ElementValueKind::ParsedValue,
                                                               static_cast<double>(value), CreatePoint::Done);
        if (uuid.isEmpty())
            break;
        std::printf("%llu\n", static_cast<unsigned long long>(value));
        std::fflush(stdout);
    }
    return 1;
}

bool KillAndCheck(const CrashOptions &options, QTextStream &out)
{
    QByteArray output;
    if (!runChild(options, output)) {
        out << "  FAILED  the child did not write" << Qt::endl;
        return false;
    }
    Recording recording(options.plugins);
    const bool opened = recording.start() && recording.open(options.databaseFile, options.mode);
    const Series series = opened ? recording.readAll().value(seriesName) : Series();
    bool gapless = true;
    for (int i = 0; i < series.points.size(); ++i)
        gapless = gapless && series.points.at(i) == Series::Point{static_cast<quint64>(i), double(i)};
    const qint64 named = lastNamed(output) + 1;
    const bool complete = options.mode == 0 || series.points.size() >= named;
    const bool held = opened && gapless && complete;
    out << (held ? "  ok      " : "  FAILED  ")
        << QStringLiteral("mode %1: the child named %2 values before it was killed, %3 came back%4")
               .arg(options.mode)
               .arg(named)
               .arg(series.points.size())
               .arg(gapless ? QString() : QStringLiteral(", with a gap"))
        << Qt::endl;
    return held;
}
