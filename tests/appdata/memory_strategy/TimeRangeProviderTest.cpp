#include <appdata/memory_strategy/TimeRangeProvider.h>

#include <QtTest>

#include <support/LogCapture.h>

using Tessellum::AppData::MemoryStrategies::TimeRangeProvider;
using RangeType = TimeRangeProvider::RangeType;

namespace {

constexpr quint64 Largest = ~quint64(0);

// An entry with elements from 100 to 200.
TimeRangeProvider::TimeSpanFunction OneHundredToTwoHundred(int *calls = nullptr)
{
    return [calls](quint64 &first, quint64 &last) {
        if (calls)
            ++*calls;
        first = 100;
        last = 200;
        return true;
    };
}

} // namespace

class TimeRangeProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resolves_data();
    void resolves();
    void refuses_data();
    void refuses();
    void isResolvedOncePerChange();
    void staysAsItWasWithoutATimeSpan();
    void whoComesDuringAComputationDoesNotWait();
};

void TimeRangeProviderTest::resolves_data()
{
    QTest::addColumn<QString>("parameters");
    QTest::addColumn<int>("type");
    QTest::addColumn<quint64>("from");
    QTest::addColumn<quint64>("to");

    const auto row = [](const char *parameters, RangeType type, quint64 from, quint64 to) {
        QTest::newRow(parameters) << QString::fromLatin1(parameters) << int(type) << from << to;
    };
    row("", RangeType::None, 0, 0);
    row("{}", RangeType::None, 0, 0);
    row(R"({"from":{"value":5}})", RangeType::FromOnly, 5, 0);
    row(R"({"from":{},"to":{"value":5}})", RangeType::ToOnly, 0, 5);
    row(R"({"to":{"value":10,"type":"relative_to_from"},"from":{"value":5}})", RangeType::Both, 5, 15);
    row(R"({"from":{"value":10,"type":"relative_from_to"},"to":{"value":150}})", RangeType::Both, 140, 150);
    row(R"({"from":{"value":3,"type":"relative_from_to"},"to":{"value":1}})", RangeType::Both, 1,
        Largest - 1); // it wraps, and is swapped then
    row(R"({"from":{"value":10,"type":"RELATIVE_to_Start"},"to":{"value":20,"type":"relative_from_end"}})",
        RangeType::Both, 110, 180);
    row(R"({"from":{"value":201,"type":"relative_from_end"}})", RangeType::FromOnly, 100, 0);
    row(R"({"from":{"value":20},"to":{"value":10}})", RangeType::Both, 10, 20);
    row(R"({"from":{"value":0},"to":{"value":10}})", RangeType::Both, 0, 10);
    row(R"({"from":{"value":10},"to":{"value":0}})", RangeType::Both, 10, 0);
    row(R"({"from":{"value":9223372036854775808},"to":{"value":1e300}})", RangeType::Both, quint64(1) << 63,
        Largest);
}

void TimeRangeProviderTest::resolves()
{
    QFETCH(QString, parameters);
    QFETCH(int, type);
    QFETCH(quint64, from);
    QFETCH(quint64, to);
    TimeRangeProvider provider(OneHundredToTwoHundred());
    QVERIFY(provider.configure(parameters));
    provider.recompute();
    const auto range = provider.getRange();
    QCOMPARE(int(range.rangeType), type);
    QCOMPARE(range.fromResolved, from);
    QCOMPARE(range.toResolved, to);

    // Both ends belong to the range, and the end that is not set limits nothing.
    const bool hasFrom = type & int(RangeType::FromOnly);
    const bool hasTo = type & int(RangeType::ToOnly);
    const bool isEmpty = type == 0 || (hasFrom && hasTo && from > to);
    QCOMPARE(provider.isTimeStampInRange(hasFrom ? from : 0), !isEmpty);
    QCOMPARE(provider.isTimeStampInRange(hasTo ? to : Largest), !isEmpty);
    if (hasFrom && from > 0)
        QVERIFY(!provider.isTimeStampInRange(from - 1));
    if (hasTo && to < Largest)
        QVERIFY(!provider.isTimeStampInRange(to + 1));
}

void TimeRangeProviderTest::refuses_data()
{
    QTest::addColumn<QString>("parameters");
    for (const char *parameters :
         {"no json", "[]", R"({"from":null})", R"({"to":5})", R"({"from":{"type":"absolute"}})",
          R"({"from":{"value":"5"}})", R"({"from":{"value":-1}})", R"({"from":{"value":1,"type":5}})",
          R"({"from":{"value":1,"type":"none"}})", R"({"from":{"value":10,"type":"relative_to_from"}})",
          R"({"to":{"value":10,"type":"relative_from_to"}})"}) {
        QTest::newRow(parameters) << QString::fromLatin1(parameters);
    }
}

void TimeRangeProviderTest::refuses()
{
    QFETCH(QString, parameters);
    TimeRangeProvider provider(OneHundredToTwoHundred());
    QVERIFY(provider.configure(QStringLiteral(R"({"from":{"value":3},"to":{"value":4}})")));
    QVERIFY(!provider.configure(parameters));
    provider.setDirty();
    QVERIFY(provider.isTimeStampInRange(3));
    QVERIFY(!provider.isTimeStampInRange(5));
}

void TimeRangeProviderTest::isResolvedOncePerChange()
{
    int calls = 0;
    TimeRangeProvider provider(OneHundredToTwoHundred(&calls));
    QVERIFY(provider.configure(QStringLiteral(R"({"from":{"value":20,"type":"relative_from_end"}})")));
    for (quint64 timestamp = 0; timestamp < 10; ++timestamp)
        QVERIFY(!provider.isTimeStampInRange(timestamp));
    QCOMPARE(calls, 1);
    provider.setDirty();
    QVERIFY(provider.isTimeStampInRange(180));
    QCOMPARE(calls, 2);
    QVERIFY(provider.configure(QStringLiteral(R"({"from":{"value":1},"to":{"value":2}})")));
    QVERIFY(provider.isTimeStampInRange(2));
    QCOMPARE(calls, 2); // two time stamps need no time span
}

void TimeRangeProviderTest::staysAsItWasWithoutATimeSpan()
{
    bool hasElements = true;
    TimeRangeProvider provider([&](quint64 &first, quint64 &last) {
        first = 100;
        last = 200;
        return hasElements;
    });
    QVERIFY(provider.configure(QStringLiteral(R"({"to":{"value":20,"type":"relative_to_start"}})")));
    QVERIFY(provider.isTimeStampInRange(120));
    hasElements = false;
    const TestSupport::LogCapture log;
    QVERIFY(provider.configure(QStringLiteral(R"({"from":{"value":0,"type":"relative_from_end"}})")));
    QVERIFY(provider.isTimeStampInRange(120));
    TimeRangeProvider withoutFunction(nullptr);
    QVERIFY(!withoutFunction.isTimeStampInRange(0));
    QCOMPARE(
        log.lines(),
        QStringList({QStringLiteral("WARNING TimeRangeProvider::invalidate() time span could not be "
                                    "retrieved. No elements available!"),
                     QStringLiteral("WARNING TimeRangeProvider::invalidate() invalid function pointer to "
                                    "retrieve the elements time span!")}));
}

void TimeRangeProviderTest::whoComesDuringAComputationDoesNotWait()
{
    TimeRangeProvider *self = nullptr;
    bool nested = true;
    TimeRangeProvider provider([&](quint64 &first, quint64 &last) {
        nested = self->isTimeStampInRange(150);
        return OneHundredToTwoHundred()(first, last);
    });
    self = &provider;
    QVERIFY(provider.configure(QStringLiteral(R"({"from":{"value":50,"type":"relative_to_start"}})")));
    QVERIFY(provider.isTimeStampInRange(150));
    QVERIFY(!nested); // it took the range as it stood
}

QTEST_GUILESS_MAIN(TimeRangeProviderTest)

#include "TimeRangeProviderTest.moc"
