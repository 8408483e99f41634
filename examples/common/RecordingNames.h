#pragma once

#include <QString>

/*! The names under which a recorder's values and configuration are found, by the recorder itself and by what
 * mirrors them. */
namespace RecordingNames {

/*! The classification of all series; their names are those of ProcSampler. */
inline QString Classification()
{
    return QStringLiteral("machine");
}

/*! The storage whose entries others may mirror. */
inline QString ServedStorage()
{
    return QStringLiteral("served");
}

/*! The attribute that others may mirror. */
inline QString Root()
{
    return QStringLiteral("recorder");
}

/*! A setting, relative to the root. */
inline QString Setting(const char *name)
{
    return QStringLiteral("settings.") + QLatin1String(name);
}

/*! What a handler registers for that hears of each value of each series. The last element of a value's path
 * is a uuid, which the paths of the series themselves do not have. */
inline QString ValuesPattern()
{
    return Classification() + QStringLiteral(".*.{*}");
}

} // namespace RecordingNames
