#pragma once

#include <QHash>
#include <QList>
#include <QPair>
#include <QString>

/*!
 * Reads this machine's own values from the proc and sys file systems: load, memory in MiB, the busy share of
 * each core in percent since the last call, temperatures in degrees Celsius where there are any.
 *
 * Used by one thread. A value that can not be read is left out.
 */
class ProcSampler
{
public:
    /*! A name such as "core.0.busy", and the value. */
    using Sample = QPair<QString, double>;

    QList<Sample> sample();
    /*! The memory of this process in bytes; 0 where it is unknown. */
    static qint64 residentBytes();

private:
    struct CoreTimes
    {
        quint64 busy = 0;
        quint64 total = 0;
    };

    static void appendLoad(QList<Sample> &samples);
    static void appendMemory(QList<Sample> &samples);
    void appendCores(QList<Sample> &samples);
    static void appendTemperatures(QList<Sample> &samples);

    QHash<QString, CoreTimes> lastTimes;
};
