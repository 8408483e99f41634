#pragma once

#include <QLocale>
#include <QStringView>

namespace Shared::Localization::utils {

/*!
 * Finds in one pass how much of the beginning of a text is a number under a locale, by the rules of
 * QLocale::toDouble(): trying it with one length after the other takes the square of the length.
 */
class NumberScan
{
public:
    NumberScan(const QLocale &numberLocale, QStringView numberText);

    /*!
     * The length of the longest number with which the text begins, blanks before it included; 0 for none. A
     * locale with options to refuse numbers may refuse it, but takes no longer one.
     */
    int longest();

private:
    QChar at(int index) const { return index < text.size() ? text.at(index) : QChar(); }
    /*! The digit at an index, -1 if there is none. */
    int digit(int index) const;
    bool isMinus(int index) const;
    bool isSign(int index) const;
    bool isGroupSeparator(int index) const;
    bool isExponent(int index) const;
    bool isWord(const char *word) const;

    void scanInteger();
    void scanFraction();
    void scanExponent();
    bool isGroupComplete() const;
    bool takesGroupSeparator();

    /*! Makes the text up to the next character the longest number so far, if a double holds a value whose
     * first digit has that power of ten. */
    void takeIfHeld(qint64 decade);

    const QLocale &locale;
    const QStringView text;
    const QChar zero;
    const QChar group;

    int next = 0; ///< the index of the next character
    int best = 0;
    int digits = 0; ///< in front of the exponent
    int lastSeparator = -1;
    int middleGroupSize = 0; ///< between two separators; 0 while it is not known
    bool isZero = true;
    qint64 topDecade = 0; ///< the power of ten of the first digit other than 0
    qint64 triedDecade = 0; ///< the last one that was at the limit of what can be held
    bool isTriedHeld = false;
};

} // namespace Shared::Localization::utils
