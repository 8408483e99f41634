#include <shared/conversion/DoubleConversion.h>

#include <QtTest>

#include <cmath>
#include <limits>
#include <support/Literals.h>
#include <support/LogCapture.h>

using Shared::Conversion::ConvertDouble;

class DoubleConversionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void convertsWithinTheLimitsOfTheType_data()
    {
        QTest::addColumn<QVariant>("lowest");
        QTest::addColumn<QVariant>("highest");
        QTest::addColumn<QVariant>("truncated");
        const auto row = [](const char *name, auto lowest, auto highest) {
            using T = decltype(lowest);
            QTest::newRow(name) << QVariant::fromValue<T>(lowest) << QVariant::fromValue<T>(highest)
                                << QVariant::fromValue<T>(static_cast<T>(99));
        };
        row("char", char(-128), char(127));
        row("unsigned char", (unsigned char)0, (unsigned char)255);
        row("short", short(-32768), short(32767));
        row("unsigned short", (unsigned short)0, (unsigned short)65535);
        row("int", -2147483647 - 1, 2147483647);
        row("unsigned int", 0U, 4294967295U);
        row("long", -2147483648L, 2147483647L);
        row("unsigned long", 0UL, 4294967295UL);
        row("long long", std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max());
        row("unsigned long long", 0ULL, std::numeric_limits<unsigned long long>::max());
        row("float", -std::numeric_limits<float>::max(), std::numeric_limits<float>::max());
    }

    void convertsWithinTheLimitsOfTheType()
    {
        QFETCH(QVariant, lowest);
        QFETCH(QVariant, highest);
        QFETCH(QVariant, truncated);
        const int type = lowest.userType();
        const double largest = std::numeric_limits<double>::max();
        for (double value : {-largest, -HUGE_VAL, lowest.toDouble()}) {
            QCOMPARE(ConvertDouble(type, value), lowest);
            QCOMPARE(ConvertDouble(type, value).userType(), type);
        }
        // The highest as a double is the first value beyond the type for the 64 bit types.
        for (double value : {largest, HUGE_VAL, highest.toDouble()})
            QCOMPARE(ConvertDouble(type, value), highest);
        if (type != QMetaType::Float) {
            QCOMPARE(ConvertDouble(type, 99.9), truncated);
            QCOMPARE(ConvertDouble(type, -0.9).toInt(), 0);
        }
    }

    void notANumberIsZeroOnlyWhereItHasNoForm()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        QCOMPARE(ConvertDouble(QMetaType::Int, nan), QVariant(0));
        QCOMPARE(ConvertDouble(QMetaType::ULongLong, nan), QVariant(0ULL));
        QVERIFY(std::isnan(ConvertDouble(QMetaType::Double, nan).toDouble()));
        QVERIFY(std::isnan(ConvertDouble(QMetaType::Float, nan).toFloat()));
        QCOMPARE(ConvertDouble(QMetaType::Double, HUGE_VAL).toDouble(), std::numeric_limits<double>::max());
    }

    void unknownTypeIsInvalidAndLogged()
    {
        TestSupport::LogCapture log;
        QVERIFY(!ConvertDouble(QMetaType::QString, 1.0).isValid());
        QVERIFY(!ConvertDouble(QMetaType::Bool, 1.0).isValid());
        const auto line = "WARNING DoubleConversionFunctionWrapper::defaultConvert() called!"_s;
        QCOMPARE(log.lines(), QStringList({line, line}));
    }
};

QTEST_GUILESS_MAIN(DoubleConversionTest)
#include "DoubleConversionTest.moc"
