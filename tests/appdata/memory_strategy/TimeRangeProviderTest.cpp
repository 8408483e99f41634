#include <appdata/memory_strategy/TimeRangeProvider.h>

#include <QtTest>

#include <support/LogCapture.h>

using Tessellum::AppData::MemoryStrategies::TimeRangeProvider;
using RangeType = TimeRangeProvider::RangeType;

namespace {

constexpr quint64 Largest = ~quint64(0);

// An entry with elements from 100 to 200.
bool OneHundredToTwoHundred(quint64 &first, quint64 &last)
{
    first = 100;
    last = 200;
    return true;
}

struct Range
{
    const char *parameters;
    RangeType type;
    quint64 from;
    quint64 to;
};

const Range ranges[] = {
    {"", RangeType::None, 0, 0},
    {"{}", RangeType::None, 0, 0},
    {R"({"from":{"value":5}})", RangeType::FromOnly, 5, 0},
    {R"({"from":{},"to":{"value":5}})", RangeType::ToOnly, 0, 5},
    {R"({"to":{"value":10,"type":"relative_to_from"},"from":{"value":5}})", RangeType::Both, 5, 15},
    {R"({"from":{"value":10,"type":"relative_from_to"},"to":{"value":150}})", RangeType::Both, 140, 150},
    // It wraps, and is swapped then.
    {R"({"from":{"value":3,"type":"relative_from_to"},"to":{"value":1}})", RangeType::Both, 1, Largest - 1},
    {R"({"from":{"value":10,"type":"RELATIVE_to_Start"},"to":{"value":20,"type":"relative_from_end"}})",
     RangeType::Both, 110, 180},
    {R"({"from":{"value":201,"type":"relative_from_end"}})", RangeType::FromOnly, 100, 0},
    {R"({"from":{"value":20},"to":{"value":10}})", RangeType::Both, 10, 20},
    {R"({"from":{"value":0},"to":{"value":10}})", RangeType::Both, 0, 10},
    {R"({"from":{"value":10},"to":{"value":0}})", RangeType::Both, 10, 0},
    {R"({"from":{"value":9223372036854775808},"to":{"value":1e300}})", RangeType::Both, quint64(1) << 63,
     Largest},
};

} // namespace

class TimeRangeProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resolves()
    {
        for (const Range &expected : ranges) {
            TimeRangeProvider provider(OneHundredToTwoHundred);
            QVERIFY(provider.configure(expected.parameters));
            provider.recompute();
            const auto range = provider.getRange();
            QVERIFY2(range.rangeType == expected.type && range.fromResolved == expected.from
                         && range.toResolved == expected.to,
                     expected.parameters);

            // Both ends belong to the range, and the end that is not set limits nothing.
            const bool hasFrom = int(expected.type) & int(RangeType::FromOnly);
            const bool hasTo = int(expected.type) & int(RangeType::ToOnly);
            const bool isEmpty = (!hasFrom && !hasTo) || (hasFrom && hasTo && expected.from > expected.to);
            QCOMPARE(provider.isTimeStampInRange(hasFrom ? expected.from : 0), !isEmpty);
            QCOMPARE(provider.isTimeStampInRange(hasTo ? expected.to : Largest), !isEmpty);
            if (hasFrom && expected.from > 0)
                QVERIFY(!provider.isTimeStampInRange(expected.from - 1));
            if (hasTo && expected.to < Largest)
                QVERIFY(!provider.isTimeStampInRange(expected.to + 1));
        }
    }

    void refuses()
    {
        TimeRangeProvider provider(OneHundredToTwoHundred);
        QVERIFY(provider.configure(R"({"from":{"value":3},"to":{"value":4}})"));
        for (const char *parameters :
             {"no json", "[]", R"({"from":null})", R"({"to":5})", R"({"from":{"type":"absolute"}})",
              R"({"from":{"value":"5"}})", R"({"from":{"value":-1}})", R"({"from":{"value":1,"type":5}})",
              R"({"from":{"value":1,"type":"none"}})", R"({"from":{"value":10,"type":"relative_to_from"}})",
              R"({"to":{"value":10,"type":"relative_from_to"}})"}) {
            QVERIFY2(!provider.configure(parameters), parameters);
            provider.setDirty();
            QVERIFY(provider.isTimeStampInRange(3) && !provider.isTimeStampInRange(5));
        }
    }

    void isResolvedOncePerChange()
    {
        int calls = 0;
        TimeRangeProvider provider([&calls](quint64 &first, quint64 &last) {
            ++calls;
            return OneHundredToTwoHundred(first, last);
        });
        QVERIFY(provider.configure(R"({"from":{"value":20,"type":"relative_from_end"}})"));
        for (quint64 timestamp = 0; timestamp < 10; ++timestamp)
            QVERIFY(!provider.isTimeStampInRange(timestamp));
        QCOMPARE(calls, 1);
        provider.setDirty();
        QVERIFY(provider.isTimeStampInRange(180));
        QCOMPARE(calls, 2);
        QVERIFY(provider.configure(R"({"from":{"value":1},"to":{"value":2}})"));
        QVERIFY(provider.isTimeStampInRange(2));
        QCOMPARE(calls, 2); // two time stamps need no time span
    }

    void staysAsItWasWithoutATimeSpan()
    {
        bool hasElements = true;
        TimeRangeProvider provider([&](quint64 &first, quint64 &last) {
            return OneHundredToTwoHundred(first, last) && hasElements;
        });
        QVERIFY(provider.configure(R"({"to":{"value":20,"type":"relative_to_start"}})"));
        QVERIFY(provider.isTimeStampInRange(120));
        hasElements = false;
        const TestSupport::LogCapture log;
        QVERIFY(provider.configure(R"({"from":{"value":0,"type":"relative_from_end"}})"));
        QVERIFY(provider.isTimeStampInRange(120));
        TimeRangeProvider withoutFunction(nullptr);
        QVERIFY(!withoutFunction.isTimeStampInRange(0));
        QCOMPARE(log.lines(),
                 QStringList({"WARNING TimeRangeProvider::invalidate() time span could not be "
                              "retrieved. No elements available!",
                              "WARNING TimeRangeProvider::invalidate() invalid function pointer to "
                              "retrieve the elements time span!"}));
    }

    void whoComesDuringAComputationDoesNotWait()
    {
        TimeRangeProvider *self = nullptr;
        bool nested = true;
        TimeRangeProvider provider([&](quint64 &first, quint64 &last) {
            nested = self->isTimeStampInRange(150);
            return OneHundredToTwoHundred(first, last);
        });
        self = &provider;
        QVERIFY(provider.configure(R"({"from":{"value":50,"type":"relative_to_start"}})"));
        QVERIFY(provider.isTimeStampInRange(150));
        QVERIFY(!nested); // it took the range as it stood
    }
};

QTEST_GUILESS_MAIN(TimeRangeProviderTest)

#include "TimeRangeProviderTest.moc"
