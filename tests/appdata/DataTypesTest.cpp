#include "../support/LogCapture.h"

#include <appdata/data/elements/ElementUpdateData.h>
#include <appdata/DataTypeStrings.h>

#include <QtTest>

using namespace Tessellum::AppData;
using Data::Elements::ElementUpdateData;
using Data::Entries::EntryCategory;
using TestSupport::LogCapture;

class DataTypesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void categoriesAsTexts_data();
    void categoriesAsTexts();
    void oneKeyInAnyCase();
    void textsOfNumbers();
    void keysOfAnUpdate();
};

void DataTypesTest::categoriesAsTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("type"); // 0: not known
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QString>("back");
    QTest::newRow("no detail") << "FLOAT" << 5 << ""
                               << "float";
    QTest::newRow("detail") << "Text:Volt" << 2 << "volt"
                            << "text:volt";
    QTest::newRow("detail with a colon") << "unit:a:B" << 4 << "a:b"
                                         << "unit:a:b";
    QTest::newRow("empty detail") << "binary:" << 3 << ""
                                  << "binary";
    QTest::newRow("colon first") << ":volt" << 0 << ""
                                 << "";
    QTest::newRow("unknown type") << "volts:Ampere" << 0 << "ampere"
                                  << "";
    QTest::newRow("empty") << "" << 0 << ""
                           << "";
}

void DataTypesTest::categoriesAsTexts()
{
    QFETCH(QString, text);
    QFETCH(int, type);
    const LogCapture log;
    bool ok = type == 0;
    const EntryCategory category = ParseDataEntryCategoryFromString(text, &ok);
    QCOMPARE(ok, type != 0);
    QCOMPARE(int(category.getType()), type);
    QTEST(category.getDetail(), "detail");
    QTEST(ConvertDataEntryCategoryToString(category), "back");
    const QStringList lines{"WARNING ParseDataEntryCategoryFromString() callled with unkown category string="
                                + text,
                            "WARNING ConvertDataEntryCategoryToString() callled with unkown category=0"};
    QCOMPARE(log.lines(), type == 0 ? lines : QStringList());
}

void DataTypesTest::oneKeyInAnyCase()
{
    const EntryCategory upper(CategoryType::Text, "VOLT");
    const EntryCategory lower(CategoryType::Text, "volt");
    QVERIFY(upper == lower);
    QCOMPARE(qHash(upper, 7), qHash(lower, 7));
    QVERIFY(upper != EntryCategory(CategoryType::Unit, "volt"));
}

void DataTypesTest::textsOfNumbers()
{
    QCOMPARE(ConvertDataEntryLoadStatusToString(LoadStatus::NotLoaded), QString("not_loaded"));
    QCOMPARE(ConvertDataEntryLoadStatusToString(LoadStatus::Unknown), QString("unknown"));
    QCOMPARE(ConvertPersistenceTypeToString(PersistenceType::Unknown), QString("unknown"));
    QVERIFY(ParseStringToPersistenceType("Volatile") == PersistenceType::Volatile);
    const LogCapture log;
    QCOMPARE(ConvertDataEntryLoadStatusToString(LoadStatus(5)), QString());
    QCOMPARE(ConvertPersistenceTypeToString(PersistenceType(3)), QString());
    QVERIFY(ParseStringToPersistenceType("unknown") == PersistenceType::Unknown);
    QCOMPARE(log.lines(),
             QStringList({"WARNING ConvertDataEntryLoadStatusToString() callled with unkown load status=5",
                          "CRITICAL ConvertPersistenceTypeToString() callled with unkown persistence type=3",
                          "WARNING ParseStringToPersistenceType() callled with unkown persistence type "
                          "string=unknown"}));
}

void DataTypesTest::keysOfAnUpdate()
{
    ElementUpdateData data;
    data.setValue(ElementValueKind::ParsedValue, 1.5);
    data.setValue(ElementValueKind::Unknown, "dropped");
    data.setTimestamp(~0ULL);
    data.setActive(true);
    using Type = DataElementUpdateType;
    const QList<Type> types{Type::Active, Type::Timestamp, Type::ParsedData};
    QVERIFY(data.getUpdateTypes() == types);
    quint64 timestamp = 0;
    QVERIFY(data.getTimestamp(timestamp));
    QCOMPARE(timestamp, ~quint64(0));
    QByteArray raw("as before");
    QVERIFY(!data.getRawData(raw));
    QCOMPARE(raw, QByteArray("as before"));
    // There, but of a type that does not convert.
    data.insert(Type::Timestamp, QVariant::fromValue(QPoint(1, 2)));
    data.insert(Type::RawData, QVariant::fromValue(QPoint(1, 2)));
    QVERIFY(data.getTimestamp(timestamp) && data.getRawData(raw));
    QCOMPARE(timestamp, quint64(0));
    QVERIFY(raw.isEmpty());
}

QTEST_GUILESS_MAIN(DataTypesTest)
#include "DataTypesTest.moc"
