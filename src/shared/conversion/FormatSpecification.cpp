#include <shared/conversion/FormatSpecification.h>
#include <shared/conversion/utils/SiPrefixTable.h>

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Shared::Conversion::UnitConversion {

namespace {

/*! Only copies of it are matched: it is shared by all threads. */
const QRegExp &SharedExpression()
{
    static const auto *const expression
        = new QRegExp(QStringLiteral("^(\\d+);([eEfgG])(?:;(?:([\\+-]\\d+)(?:;(.?))?|(\\d+)(?:;(.?))?))?$"));
    return *expression;
}

/*! Longer texts of numbers say no more, but could take all memory. */
constexpr int maximumLength = 65536;

/*! The digits behind the point that show the first one of \a value. */
int leadingZeros(double value)
{
    const double magnitude = std::fabs(value);
    if (magnitude <= utils::NearlyZero || !std::isfinite(value))
        return 0;
    return std::max(0, -static_cast<int>(std::floor(std::log10(magnitude))));
}

} // namespace

FormatSpecification::FormatSpecification(const QString &definition)
    : expression(SharedExpression())
    , text(definition)
    , valid(expression.exactMatch(text))
{
    if (!valid)
        return;
    QStringList items = expression.capturedTexts();
    items.removeAll(QString());
    width = items.at(1).toInt();
    formatCharacter = items.at(2).at(0);
    if (items.size() > 3)
        digits = items.at(3).toInt();
    if (items.size() > 4)
        paddingCharacter = items.at(4).at(0);
}

FormatSpecification::FormatSpecification(const FormatSpecification &other)
    : FormatSpecification(QStringLiteral("%1;%2;%3;%4")
                              .arg(QString::number(other.width), QString(other.formatCharacter),
                                   QString::number(other.digits), QString(other.paddingCharacter)))
{ }

FormatSpecification FormatSpecification::ParseFormatSpecificationFromJson(const QJsonValue &value)
{
    return FormatSpecification(value.toString(QStringLiteral("0;g;-1;")));
}

const FormatSpecification &FormatSpecification::GetDefault()
{
    static const auto *const format = new FormatSpecification(QStringLiteral("0;g;-1;"));
    return *format;
}

QString FormatSpecification::formatDouble(const double &value, const QLocale &locale,
                                          const QString &textTemplate) const
{
    int shownDigits = std::min(digits, maximumLength);
    const int zeros = leadingZeros(value);
    if (zeros > 0)
        shownDigits = std::max(shownDigits, zeros);
    const QString number = locale.toString(value, formatCharacter.toLatin1(), shownDigits);
    return textTemplate.arg(number, std::clamp(width, -maximumLength, maximumLength), paddingCharacter);
}

} // namespace Shared::Conversion::UnitConversion
