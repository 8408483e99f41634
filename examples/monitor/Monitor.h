#pragma once

#include "common/EndSignals.h"
#include "IntervalChange.h"

#include <QElapsedTimer>
#include <QEventLoop>

#include <optional>

/*! What the example is asked for. */
struct MonitorOptions
{
    MirrorOptions mirror;
    int durationMs = 0;
    int intervalMs = 0; ///< that the recorder is to take; 0: the one it has
    int changeAfterMs = 0; ///< when it is asked for that
    bool expectsRestart = false; ///< whether the recorder is to go and come back
};

/*! Shows what a recorder records, and whether it is there. */
class Monitor
{
public:
    Monitor(const MonitorOptions &options, QTextStream &out);

    /*! Whether everything that was asked for was seen. */
    bool run();

private:
    void watch();
    void look();
    void lookAtConnection();
    void lookAtValues();
    void changeInterval();
    QStringList block() const;
    bool report();

    const MonitorOptions options;
    QTextStream &out;
    Screen screen;
    Mirror mirror;
    EndSignals endSignals;
    QElapsedTimer clock;
    std::optional<IntervalChange> change;
    bool isConnected = false;
    int gone = 0; // how often the recorder went
    int back = 0; // how often it came again
    int arrivedBefore = 0; // values when it connected last
    bool awaitsValues = false; // of that connection
    bool haveValuesCome = false;
    bool haveValuesComeAgain = false;
};
