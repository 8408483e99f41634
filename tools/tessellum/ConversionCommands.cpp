#include "ConversionCommands.h"
#include "ToolError.h"

#include <shared/conversion/Specification.h>
#include <shared/conversion/TimeStringConversion.h>
#include <shared/conversion/UnitParsing.h>
#include <shared/foundation/RapidJsonValidator.h>
#include <shared/localization/NumberParsing.h>

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QMap>

namespace Tessellum::Tool {

using namespace Shared::Conversion::UnitConversion;

namespace {

/*! Words and options of a command line. */
struct Words
{
    QStringList words;
    QMap<QString, QString> options;
};

/*! False if an option is not among \a known, stands twice or has no value. */
bool readWords(const QStringList &arguments, const QStringList &known, Words &result)
{
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (!argument.startsWith(QLatin1String("--"))) {
            result.words.append(argument);
            continue;
        }
        if (!known.contains(argument) || result.options.contains(argument) || i + 1 == arguments.size())
            return false;
        result.options.insert(argument, arguments.at(++i));
    }
    return true;
}

/*! The locale of the option, or the system's. Its notation is the first that numbers are read in. */
QLocale useLocale(const Words &words)
{
    const QString name = words.options.value(QStringLiteral("--locale"));
    if (name.isEmpty())
        return QLocale::system();
    const QLocale locale(name);
    if (locale.language() == QLocale::C && name != QLatin1String("C"))
        FailUsage(QStringLiteral("%1 is no locale").arg(name));
    QCoreApplication::instance()->setProperty("current_language", locale);
    return locale;
}

QByteArray contentOf(const QString &name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        Fail(QStringLiteral("%1 cannot be read: %2").arg(name, file.errorString()));
    return file.readAll();
}

Specification quantityIn(const QString &name)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(contentOf(name), &error);
    if (error.error != QJsonParseError::NoError)
        Fail(QStringLiteral("%1 is no JSON: %2").arg(name, error.errorString()));
    if (!document.isObject())
        Fail(QStringLiteral("%1 holds no JSON object").arg(name));
    return Specification::ParseSpecificationFromJson(name, document.object(), {});
}

QString shortest(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

void formatValue(const Words &words, QTextStream &out)
{
    const QLocale locale = useLocale(words);
    double value = 0;
    if (!Shared::Localization::ParseNumber(words.words.at(0), value))
        FailUsage(QStringLiteral("%1 is no number").arg(words.words.at(0)));
    const auto prefixText = words.options.constFind(QStringLiteral("--prefix"));
    const bool isFixed = prefixText != words.options.constEnd();
    bool isPrefix = true;
    const SiPrefix prefix
        = isFixed ? ParseStringToSiPrefix(*prefixText, SiPrefix::None, &isPrefix) : SiPrefix::None;
    if (!isPrefix)
        FailUsage(QStringLiteral("%1 is no prefix").arg(*prefixText));
    const Specification quantity = quantityIn(words.options.value(QStringLiteral("--spec")));
    out << (isFixed ? quantity.fixedPrefixConversion(locale, value, prefix, {})
                    : quantity.bestFitConversion(locale, value, {}))
        << '\n';
}

void parseText(const Words &words, QTextStream &out)
{
    useLocale(words);
    double value = 0;
    SiPrefix prefix = SiPrefix::None;
    QString unit;
    if (!ParseStringToSiPrefixUnitAndValue(words.words.at(0), value, &prefix, &unit))
        Fail(QStringLiteral("%1 begins with no number").arg(words.words.at(0)));
    const QJsonObject object{
        {QStringLiteral("value"), value},
        {QStringLiteral("prefix"), ConvertSiPrefixToString(prefix)},
        {QStringLiteral("unit"), unit},
        {QStringLiteral("base"), ConvertValueToTargetPrefix(value, prefix, SiPrefix::None)}};
    out << QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) << '\n';
}

void readDuration(const QString &text, QTextStream &out)
{
    const Shared::Conversion::TimeStringConversion duration(text);
    if (!duration.isValid())
        Fail(QStringLiteral("%1 is no duration").arg(text));
    out << shortest(duration.toSeconds()) << '\n';
}

void validate(const QString &file, const QString &schema)
{
    Shared::JsonValidation::RapidJsonValidator validator;
    if (!validator.validate(contentOf(file), contentOf(schema)))
        Fail(QStringLiteral("%1 does not keep to %2:\n%3")
                 .arg(file, schema, validator.getErrors().join(QLatin1Char('\n'))));
}

} // namespace

bool RunConversionCommand(const QString &command, const QStringList &arguments, QTextStream &out)
{
    const bool isFormat = command == QLatin1String("format");
    const bool isParse = command == QLatin1String("parse");
    QStringList known;
    if (isFormat)
        known = QStringList{QStringLiteral("--spec"), QStringLiteral("--locale"), QStringLiteral("--prefix")};
    else if (isParse)
        known = QStringList{QStringLiteral("--locale")};
    Words words;
    if (!readWords(arguments, known, words))
        return false;
    const int count = words.words.size();
    if (isFormat && count == 1 && words.options.contains(QStringLiteral("--spec")))
        formatValue(words, out);
    else if (isParse && count == 1)
        parseText(words, out);
    else if (command == QLatin1String("duration") && count == 1)
        readDuration(words.words.at(0), out);
    else if (command == QLatin1String("validate") && count == 2)
        validate(words.words.at(0), words.words.at(1));
    else
        return false;
    return true;
}

} // namespace Tessellum::Tool
