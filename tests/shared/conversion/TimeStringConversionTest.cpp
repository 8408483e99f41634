#include <shared/conversion/TimeStringConversion.h>

#include <QtTest>

#include <support/Literals.h>
#include <support/LogCapture.h>

using Shared::Conversion::TimeStringConversion;

class TimeStringConversionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsNumberAndUnit_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("seconds");
        QTest::newRow("no unit") << "90" << 90.0;
        QTest::newRow("point without digits") << "3." << 3.0;
        QTest::newRow("year") << "2a" << 63115200.0;
        QTest::newRow("day") << "1d" << 86400.0;
        QTest::newRow("hour") << "1.5h" << 5400.0;
        QTest::newRow("minute") << "1m" << 60.0;
        QTest::newRow("blanks") << "2 \t ms" << 0.002;
        QTest::newRow("microseconds") << "5us" << 5 * 0.000001;
        QTest::newRow("nanoseconds") << "5ns" << 5 * 0.000000001;
        QTest::newRow("picoseconds") << "5ps" << 5 * 0.000000000001;
    }

    void readsNumberAndUnit()
    {
        QFETCH(QString, text);
        const TimeStringConversion duration(text);
        QVERIFY(duration.isValid());
        QTEST(duration.toSeconds(), "seconds");
    }

    void refusesWhatIsNoDuration_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");
        const auto row = [](const QString &text, const char *line) {
            QTest::newRow(qPrintable("'%1'"_s.arg(text)))
                << text << "WARNING TimeStringConversion::parseTimeString() can not "_s + line + text;
        };
        for (const char *text : {"", "-1s", ".5s", "1,5s", "5x", "s", "1 s ", " 1s", "1msx", "1S"})
            row(QString::fromLatin1(text), "parse the provided duration=");
        row("\u0663s"_s, "convert the provided duration value="); // an Arabic-Indic digit
    }

    void refusesWhatIsNoDuration()
    {
        QFETCH(QString, text);
        QFETCH(QString, line);
        TestSupport::LogCapture log;
        const TimeStringConversion duration(text);
        QVERIFY(!duration.isValid());
        QCOMPARE(duration.toSeconds(), 0.0);
        QCOMPARE(log.lines(), QStringList(line));
    }

    void failedReadingReplacesTheDuration()
    {
        TimeStringConversion duration("1h"_s);
        const TimeStringConversion copy(duration);
        QVERIFY(!duration.parseTimeString("soon"_s));
        QCOMPARE(duration.toSeconds(), 0.0);
        QVERIFY(duration.parseTimeString("2m"_s));
        QCOMPARE(duration.toSeconds(), 120.0);
        QCOMPARE(copy.toSeconds(), 3600.0);
        QCOMPARE(copy.toMinutes(), 60.0);
    }
};

QTEST_GUILESS_MAIN(TimeStringConversionTest)
#include "TimeStringConversionTest.moc"
