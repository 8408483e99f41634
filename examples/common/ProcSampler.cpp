#include "ProcSampler.h"

#include <QDir>
#include <QFile>

namespace {

QByteArray readAll(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/*! The number of "Key:   123 kB" lines in bytes; -1 if the key is missing. */
qint64 bytesOfKey(const QByteArray &text, const QByteArray &key)
{
    for (const QByteArray &line : text.split('\n')) {
        if (line.startsWith(key + ':'))
            return line.mid(key.size() + 1).simplified().split(' ').first().toLongLong() * 1024;
    }
    return -1;
}

constexpr double mebibyte = 1024.0 * 1024.0;

} // namespace

QList<ProcSampler::Sample> ProcSampler::sample()
{
    QList<Sample> samples;
    appendLoad(samples);
    appendMemory(samples);
    appendCores(samples);
    appendTemperatures(samples);
    return samples;
}

qint64 ProcSampler::residentBytes()
{
    return qMax<qint64>(0, bytesOfKey(readAll(QStringLiteral("/proc/self/status")), "VmRSS"));
}

void ProcSampler::appendLoad(QList<Sample> &samples)
{
    const QList<QByteArray> fields = readAll(QStringLiteral("/proc/loadavg")).split(' ');
    const QString names[]
        = {QStringLiteral("load.1min"), QStringLiteral("load.5min"), QStringLiteral("load.15min")};
    for (int i = 0; i < 3 && i < fields.size(); ++i) {
        bool ok = false;
        const double value = fields.at(i).toDouble(&ok);
        if (ok)
            samples.append({names[i], value});
    }
}

void ProcSampler::appendMemory(QList<Sample> &samples)
{
    const QByteArray text = readAll(QStringLiteral("/proc/meminfo"));
    const qint64 total = bytesOfKey(text, "MemTotal");
    const qint64 available = bytesOfKey(text, "MemAvailable");
    if (total < 0 || available < 0)
        return;
    samples.append({QStringLiteral("memory.used_mib"), static_cast<double>(total - available) / mebibyte});
    samples.append({QStringLiteral("memory.total_mib"), static_cast<double>(total) / mebibyte});
}

void ProcSampler::appendCores(QList<Sample> &samples)
{
    constexpr int idleField = 4;
    for (const QByteArray &line : readAll(QStringLiteral("/proc/stat")).split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (!line.startsWith("cpu") || fields.first() == "cpu" || fields.size() <= idleField)
            continue;
        CoreTimes now;
        for (int i = 1; i < fields.size(); ++i) {
            const quint64 ticks = fields.at(i).toULongLong();
            now.total += ticks;
            now.busy += i == idleField ? 0 : ticks;
        }
        const QString core = QString::fromLatin1(fields.first().mid(3));
        const CoreTimes last = lastTimes.value(core);
        lastTimes.insert(core, now);
        const double passed = static_cast<double>(now.total - last.total);
        if (passed > 0)
            samples.append({QStringLiteral("core.%1.busy").arg(core),
                            100.0 * static_cast<double>(now.busy - last.busy) / passed});
    }
}

void ProcSampler::appendTemperatures(QList<Sample> &samples)
{
    const QDir thermal(QStringLiteral("/sys/class/thermal"));
    for (const QString &zone : thermal.entryList({QStringLiteral("thermal_zone*")}, QDir::Dirs)) {
        bool ok = false;
        const double milliDegrees
            = readAll(thermal.filePath(zone + QStringLiteral("/temp"))).trimmed().toDouble(&ok);
        if (ok)
            samples.append({QStringLiteral("temperature.%1").arg(zone), milliDegrees / 1000.0});
    }
}
