#pragma once

#include <shared/TessellumExport.h>

#include <QChar>
#include <QJsonValue>
#include <QLocale>
#include <QRegExp>
#include <QString>

namespace Shared::Conversion::UnitConversion {

/*!
 * How a number becomes a text, as "fieldWidth;format;precision;padding": "10;f;3;_" is three digits behind
 * the point, filled up with "_" on the left to ten characters. The format is one of e, E, f, g and G, with
 * what QLocale::toString() means by it. Precision (-1, which leaves it to QLocale) and padding (a blank) may
 * be missing.
 *
 * Reading an object is safe from any thread, changing one is not.
 */
class TESSELLUM_EXPORT FormatSpecification
{
public:
    /*! Reads the text; where it is no format, the object is not valid and has the values of "0;g;-1;". */
    explicit FormatSpecification(const QString &definition);
    /*! Goes through the text of the values, so the copy of one that is not valid is valid. */
    FormatSpecification(const FormatSpecification &other);
    FormatSpecification &operator=(const FormatSpecification &other) = default;
    virtual ~FormatSpecification() = default;

    /*! Reads the string; any other value stands for "0;g;-1;". */
    static FormatSpecification ParseFormatSpecificationFromJson(const QJsonValue &value);
    /*! The format "0;g;-1;". Never destroyed. */
    static const FormatSpecification &GetDefault();

    bool isValid() const { return valid; }
    /*! The text that was read. */
    QString formatSpecification() const { return text; }

    /*! The least number of characters. */
    int fieldWidth() const { return width; }
    int &fieldWidth() { return width; }
    QChar format() const { return formatCharacter; }
    QChar padding() const { return paddingCharacter; }
    QChar &padding() { return paddingCharacter; }
    int precision() const { return digits; }
    int &precision() { return digits; }

    /*!
     * \a textTemplate with the number in place of the "%1" in it. So many digits are shown that the first one
     * of a small number other than zero (1e-12) is among them. Width and precision count up to 65,536.
     */
    QString formatDouble(const double &value, const QLocale &locale, const QString &textTemplate) const;

private:
    // One an object: matching changes the state of a QRegExp, which threads cannot share.
    QRegExp expression;
    QString text;
    bool valid = false;
    int width = 0;
    QChar formatCharacter = QLatin1Char('g');
    int digits = -1;
    QChar paddingCharacter = QLatin1Char(' ');
};

} // namespace Shared::Conversion::UnitConversion
