#pragma once

#include <shared/TessellumExport.h>

#include <QMap>
#include <QRegExp>
#include <QString>

namespace Shared::Conversion {

/*!
 * The names of date formats and their numbers: "text" 1, "iso" 2, "systemlocaleshort" 3, "systemlocalelong"
 * 4, "defaultlocaleshort" 5, "defaultlocalelong" 6, "rfc2822" 7, "duration" 8. A vocabulary for applications.
 */
TESSELLUM_EXPORT const QMap<QString, int> &DateFormatNames();

/*!
 * A duration read from a text such as "1.5h" or "2 ms": a number without a sign, with the decimal point of
 * the C locale, blanks, and a unit. The units are a (a year of 365.25 days), d, h, m (a minute), s, ms, us,
 * ns and ps; without a unit the number counts seconds.
 *
 * An object belongs to one thread at a time.
 */
class TESSELLUM_EXPORT TimeStringConversion
{
public:
    /*! Reads the text at once; isValid() tells whether that succeeded. */
    explicit TimeStringConversion(const QString &text);

    /*! Replaces the duration. False and a log line where the text cannot be read; the object is not valid
     * then. */
    bool parseTimeString(const QString &text);

    bool isValid() const { return valid; }

    /*! The duration in that unit, 0.0 while not valid. An unknown unit counts as a second. */
    double convertParsedSecondsToUnit(const QString &unit) const;

    double toYears() const;
    double toDays() const;
    double toHours() const;
    double toMinutes() const;
    double toSeconds() const;
    double toMilliSeconds() const;
    double toMicroSeconds() const;
    double toNanoSeconds() const;
    double toPicoSeconds() const;

private:
    // One an object: a QRegExp keeps the state of its last match and cannot be shared by threads.
    QRegExp expression;
    double seconds = 0.0;
    bool valid = false;
};

} // namespace Shared::Conversion
