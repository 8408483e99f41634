#pragma once

#include "common/Series.h"
#include "Mirror.h"
#include "Screen.h"

/*!
 * Asks the recorder for another sampling interval and looks whether it follows: its configuration has to show
 * the new value, and the values that come in have to keep the new distance.
 *
 * Used by one thread.
 */
class IntervalChange
{
public:
    explicit IntervalChange(int intervalMs);

    /*! Asks; to be called once, while the recorder is connected. */
    void ask(Mirror &mirror, Screen &screen);
    /*! Looks, once it was asked; to be called often. */
    void look(const Mirror &mirror, Screen &screen);
    bool wasAsked() const { return asked; }
    bool isConfirmed() const { return confirmed; }

private:
    bool keepsDistance(const Mirror &mirror) const;

    const int wanted; // milliseconds
    int before = 0;
    quint64 newest = 0; // the time stamp that was the last one when it was asked
    bool asked = false;
    bool refused = false;
    bool confirmed = false;
};
