#include <shared/conversion/ScaleTransform.h>
#include <shared/conversion/Specification.h>
#include <shared/conversion/UnitParsing.h>

#include <QJsonDocument>
#include <QtTest>

#include <support/Literals.h>
#include <tuple>

using namespace Shared::Conversion::UnitConversion;

class SpecificationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsFormats()
    {
        // A copy tells the values that were read.
        const std::pair<const char *, const char *> rows[]
            = {{"0;g", "0;g;-1; "},      {"10;f;+3;_", "10;f;3;_"}, {"10;f;3", "10;f;3; "},
               {"10;e;3;;", "10;e;3;;"}, {"10;E;-2", "10;E;-2; "},  {"7;G;-2;", "7;G;-2; "}};
        for (const auto &[text, values] : rows) {
            const FormatSpecification format(text);
            QVERIFY2(format.isValid() && format.formatSpecification() == text, text);
            QCOMPARE(FormatSpecification(format).formatSpecification(), QString(values));
        }
        for (const char *text : {"", "x;g", "0;z", "0", "0;g;", "0;g;x", "0;g;1;__", " 0;g", "-1;g"}) {
            const FormatSpecification format(text);
            QVERIFY2(!format.isValid() && format.formatSpecification() == text, text);
            QCOMPARE(FormatSpecification(format).formatSpecification(), "0;g;-1; "_s);
        }
        FormatSpecification changed("10;f;3;_"_s);
        changed.precision() = 1;
        changed.fieldWidth() = 2;
        changed.padding() = '#';
        QCOMPARE(FormatSpecification(changed).formatSpecification(), "2;f;1;#"_s);
    }

    void readsUnitsAndVisualizations()
    {
        const Specification quantity = parse(R"({"unit": {"baseUnit": "V", "inputPrefix": "m",
            "allowedSiPrefixes": ["k", "x", "", 5], "minimum": "-1,5", "maximum": "1e3", "scaling": "2.5"},
            "visualization": {"availableRepresentations": ["a", 1], "availableOptions": ["b"],
            "availableParsingOptions": ["c"]}})");
        const UnitSpecification &unit = quantity.getUnitSpecification();
        QVERIFY(unit.isValid() && unit.unitString == "V");
        QCOMPARE(unit.enabledPrefixes, QVector<SiPrefix>({SiPrefix::Kilo, SiPrefix::None, SiPrefix::Milli}));
        QCOMPARE(unit.minimumRange, -1.5);
        QCOMPARE(unit.maximumRange, 1000.0);
        QCOMPARE(unit.scalingFactor, 2.5);
        const VisualizationSpecification &visualization = quantity.getVisualizationSpecification();
        QVERIFY(visualization.hasRepresentation("a") && !visualization.hasRepresentation("b"));
        QVERIFY(visualization.hasOption("b") && !visualization.hasOption("B"));
        QVERIFY(visualization.hasParsingOption("c") && !visualization.hasParsingOption(""));
    }

    void whatIsMissingOrWrongGetsItsDefault()
    {
        for (const char *text :
             {"{}", R"({"unit": 5, "format": [], "format-kilo": "x", "visualization": null})",
              R"({"unit": {"baseUnit": 1, "inputPrefix": [], "allowedSiPrefixes": {}, "minimum": -1,
                  "maximum": "big", "scaling": null}, "format": {"default": 7, "x": "0;f;1", "nan": "0;f;1"},
                  "visualization": {"availableOptions": "x"}})"}) {
            const Specification quantity = parse(text);
            const UnitSpecification &unit = quantity.getUnitSpecification();
            QVERIFY(!quantity.isDefault() && !unit.isValid());
            QCOMPARE(unit.inputPrefix, SiPrefix::None);
            QCOMPARE(unit.enabledPrefixes, cvFullPrefixes);
            QCOMPARE(unit.minimumRange, std::numeric_limits<double>::min());
            QCOMPARE(unit.maximumRange, std::numeric_limits<double>::max());
            QCOMPARE(unit.scalingFactor, 1.0);
            QCOMPARE(quantity.getFormatSpecificationFromValue(1, SiPrefix::Kilo).formatSpecification(),
                     "0;g;-1; "_s);
        }
        const Specification plain("plain"_s);
        QVERIFY(plain.isDefault() && plain.getIdentification() == "plain");
        QCOMPARE(plain.getUnitSpecification().minimumRange, std::numeric_limits<double>::lowest());
        QCOMPARE(plain.bestFitConversion(english, 1500, {}), "1,500"_s);
    }

    void choosesFormats()
    {
        const Specification quantity = parse(R"({"unit": {"baseUnit": "V", "allowedSiPrefixes": ["k", "m"]},
            "format": {"100": "3;g", "9,5": "2;g", "1": "1;g", "default": "4;g"},
            "format-kilo": {"10": "5;g"}})");
        const std::tuple<double, SiPrefix, int> rows[]
            = {{0.5, SiPrefix::None, 1},  {-9.4, SiPrefix::None, 2}, {9.5, SiPrefix::None, 3},
               {-100, SiPrefix::None, 4}, {0.5, SiPrefix::Milli, 1}, {0.5, SiPrefix::Tera, 1},
               {9, SiPrefix::Kilo, 5},    {10, SiPrefix::Kilo, 0}};
        for (const auto &[value, prefix, width] : rows)
            QCOMPARE(quantity.getFormatSpecificationFromValue(value, prefix).fieldWidth(), width);
    }

    void formats()
    {
        using Options = Specification::Options;
        const char *const range = R"(, "minimum": "1", "maximum": "3")";
        const Options clipping{{"clipping", false}};
        const Options zero{{"clipping", {}}, {"allowZero", {}}};
        const Options negative{{"clipping", {}}, {"allowNegativeValue", {}}};
        // locale, value, what the "unit" object has beside its name, default format, options, text
        const std::tuple<QLocale, double, const char *, const char *, Options, const char *> rows[] = {
            {english, 1500, "", "0;f;1", {}, "1.5 kHz"},
            {QLocale("ar_EG"), 1500, "", "0;f;1", {}, "١٫٥ kHz"},
            {english, -1.5e-6, "", "0;g", {}, "-1.5 µHz"},
            {english, 1500, R"(, "scaling": "2")", "0;f;1", {}, "3.0 kHz"},
            {english, 1500, R"(, "inputPrefix": "m")", "0;f;1", {}, "1.5 Hz"},
            {german, 1234567, R"(, "allowedSiPrefixes": [""])", "0;f;2", {}, "1.234.567,00 Hz"},
            {english, 0.00123, R"(, "allowedSiPrefixes": [""])", "0;f;0", {}, "0.001 Hz"},
            {english, 1e-13, R"(, "allowedSiPrefixes": [""])", "0;f;0", {}, "0 Hz"},
            {english, 1500, "", "8;f;1;_", {}, "_____1.5 kHz"},
            {english, 1500, "", "8;f;1", {}, "1.5 kHz"}, // no blanks are left in front
            {english, 1, "", "3;f;0;%", {}, "%%1 Hz"},
            {english, 1500, "", "0;f;1", {{"precision_increment", 2}}, "1.500 kHz"},
            {english, 1500, "", "0;f;1", {{"precision_increment", -2}}, "1.500000 kHz"},
            {english, 1500, "", "0;f;1", {{"precision_increment", "x"}}, "1.5 kHz"},
            {english, 5, range, "0;g", {}, "5 Hz"},
            {english, 5, range, "0;g", clipping, "> 3 Hz"},
            {english, 0, range, "0;g", clipping, "< 1 Hz"},
            {english, 0, range, "0;g", zero, "0 Hz"},
            {english, -5, range, "0;g", negative, "> -3 Hz"},
            {english, -0.5, range, "0;g", negative, "< -1 Hz"},
            {english, -2, range, "0;g", negative, "-2 Hz"},
            {english, -1, "", "0;g", clipping, "< 2.22507e-308 Hz"},
            {english, std::numeric_limits<double>::infinity(), "", "0;g", {}, "inf Hz"},
        };
        for (const auto &[locale, value, unit, format, options, text] : rows) {
            const auto document = R"({"unit": {"baseUnit": "Hz"%1}, "format": {"default": "%2"}})"_s;
            const Specification quantity = parse(document.arg(unit, format).toUtf8());
            QCOMPARE(quantity.bestFitConversion(locale, value, options), QString(text));
        }
    }

    void hugeWidthsAndPrecisionsAreBounded()
    {
        const FormatSpecification format("2000000000;f;2000000000"_s);
        QCOMPARE(format.precision(), 2000000000);
        QCOMPARE(format.formatDouble(1, english, "%1"_s).size(), 65538);
    }

    void representations()
    {
        const Specification quantity = parse(R"({"unit": {"baseUnit": "V", "inputPrefix": "k"},
            "format": {"default": "0;f;1"}, "format-mega": {"default": "0;f;4"}})");
        const std::tuple<const char *, QVariant, const char *> rows[]
            = {{"fixedPrefix", QVariant(), "1,234,567.0 kV"},
               {"fixedPrefix", QVariant::fromValue(SiPrefix::Mega), "1,234.5670 MV"},
               {"fixedPrefix", "G", "1.2 GV"},
               {"fixedPrefix", "", "1,234,567,000.0 V"},
               {"fixedPrefix", "x", "1,234,567.0 kV"},
               {"bestFit", "x", "1.2 GV"},
               {"BestFit", QVariant(), "1.23457e+06"}};
        for (const auto &[representation, parameter, text] : rows)
            QCOMPARE(quantity.formatValueWithRepresentationAndOptions(english, 1234567, representation,
                                                                      parameter, {}),
                     QString(text));
    }

    void customFormatters()
    {
        const auto formatter = [](const FormatSpecification &format, const double &value,
                                  const QLocale &locale, const QString &text) {
            return text.arg(format.formatSpecification() + '|' + locale.toString(value));
        };
        const Specification quantity
            = parse(R"({"unit": {"baseUnit": "V", "scaling": "2", "maximum": "8"}})", formatter);
        QCOMPARE(quantity.bestFitConversion(german, 9, {{"clipping", {}}}), "> 0;g;-1; |16 V"_s);
    }

    void whatWasFormattedIsReadAgain()
    {
        const auto reset = qScopeGuard([] { qApp->setProperty("current_language", QVariant()); });
        QRandomGenerator random(1);
        for (const SiPrefix prefix : cvFullPrefixes) {
            for (const char *format : {"0;e;16", "0;g;17", "24;f;3"}) {
                const auto document
                    = R"({"unit": {"baseUnit": "V", "inputPrefix": "%1"}, "format": {"default": "%2"}})"_s;
                const auto quantity = parse(document.arg(ConvertSiPrefixToString(prefix), format).toUtf8());
                for (const char *name : {"C", "en_US", "de_DE", "fr_FR", "de_CH", "sv_SE", "ar_EG", "fa_IR",
                                         "mr_IN", "my_MM", "pl_PL", "eu_ES"}) {
                    const QLocale locale(name);
                    qApp->setProperty("current_language", locale);
                    // With three digits behind the point, so that each format holds them all.
                    const double value = (random.bounded(2000000000) - 1000000000) / 1000.0;
                    const QString text = quantity.fixedPrefixConversion(locale, value, prefix, {});
                    double read = 0;
                    SiPrefix readPrefix = SiPrefix::None;
                    QString unit;
                    ParseStringToSiPrefixUnitAndValue(text, read, &readPrefix, &unit);
                    QVERIFY2(read == value && readPrefix == prefix && unit == "V",
                             qPrintable("%1 under %2 is %3"_s.arg(text, name).arg(read, 0, 'g', 17)));
                }
            }
        }
    }

    void transforms()
    {
        Shared::ScaleTransform transform(3, 1);
        QCOMPARE(transform.transform(2), 9.0);
        QCOMPARE(transform.invTransform(9), 2.0);
        QCOMPARE(transform.invTransform(1e-13), 0.0);
        const std::unique_ptr<Shared::ScaleTransform> copy(transform.copy());
        transform.setScale(1e-13);
        transform.setOffset(5);
        QCOMPARE(transform.transform(2), 7.0);
        QCOMPARE(copy->transform(2), 9.0);
        QCOMPARE(Shared::ScaleTransform(0, 1).transform(2), 3.0);
    }

private:
    static Specification parse(const QByteArray &json, const Specification::CustomFormatter &formatter = {})
    {
        return Specification::ParseSpecificationFromJson("id"_s, QJsonDocument::fromJson(json).object(),
                                                         formatter);
    }

    const QLocale english{QLocale::English, QLocale::UnitedStates};
    const QLocale german{QLocale::German, QLocale::Germany};
};

QTEST_GUILESS_MAIN(SpecificationTest)
#include "SpecificationTest.moc"
