#include "support/RunningDataRepository.h"

#include <appdata/data/elements/ElementsFactory.h>
#include <appdata/data/elements/ElementUpdateData.h>
#include <appdata/data/elements/parsers/ElementParserFactory.h>
#include <appdata/data/utils/ElementRegistrationProvider.h>
#include <appdata/DataTypeStrings.h>

#include <QtTest>

#include <stdexcept>

using namespace TestSupport;
using Data::Elements::ElementsFactory;
using Data::Elements::Parsers::ElementParserFactory;
using Data::Entries::EntryCategory;
using Parser = std::shared_ptr<Interfaces::DataElementParserInterface>;

namespace {

Parser parserOf(CategoryType type, const QString &detail = QString())
{
    return ElementParserFactory::getInstance()->get(EntryCategory(type, detail));
}

} // namespace

/*! Texts and keys of the data's types, and the parsers of categories. The parsers' factory lives as long as
 * the process: each test has a detail of its own. */
class DataTypesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void categoriesAsTexts()
    {
        struct Case
        {
            QString text;
            CategoryType type; // Unknown: not known
            QString detail;
            QString back;
        };
        const Case cases[] = {
            {"FLOAT", CategoryType::Float, "", "float"},
            {"Text:Volt", CategoryType::Text, "volt", "text:volt"},
            {"unit:a:B", CategoryType::Unit, "a:b", "unit:a:b"},
            {"binary:", CategoryType::Binary, "", "binary"},
            {":volt", CategoryType::Unknown, "", ""},
            {"volts:Ampere", CategoryType::Unknown, "ampere", ""},
            {"", CategoryType::Unknown, "", ""},
        };
        for (const Case &each : cases) {
            const bool known = each.type != CategoryType::Unknown;
            const LogCapture log;
            bool ok = !known;
            const EntryCategory category = ParseDataEntryCategoryFromString(each.text, &ok);
            QCOMPARE(ok, known);
            QCOMPARE(category.getType(), each.type);
            QCOMPARE(category.getDetail(), each.detail);
            QCOMPARE(ConvertDataEntryCategoryToString(category), each.back);
            const QStringList lines{
                "WARNING ParseDataEntryCategoryFromString() callled with unkown category string=" + each.text,
                "WARNING ConvertDataEntryCategoryToString() callled with unkown category=0"};
            QCOMPARE(log.lines(), known ? QStringList() : lines);
        }
        const EntryCategory upper(CategoryType::Text, "VOLT");
        const EntryCategory lower(CategoryType::Text, "volt");
        QVERIFY(upper == lower);
        QCOMPARE(qHash(upper, 7), qHash(lower, 7));
    }

    void textsOfNumbers()
    {
        QCOMPARE(ConvertDataEntryLoadStatusToString(LoadStatus::NotLoaded), QString("not_loaded"));
        QVERIFY(ParseStringToPersistenceType("Volatile") == PersistenceType::Volatile);
        const LogCapture log;
        QCOMPARE(ConvertDataEntryLoadStatusToString(LoadStatus(5)), QString());
        QCOMPARE(ConvertPersistenceTypeToString(PersistenceType(3)), QString());
        QVERIFY(ParseStringToPersistenceType("unknown") == PersistenceType::Unknown);
        QCOMPARE(
            log.lines(),
            QStringList({"WARNING ConvertDataEntryLoadStatusToString() callled with unkown load status=5",
                         "CRITICAL ConvertPersistenceTypeToString() callled with unkown persistence type=3",
                         "WARNING ParseStringToPersistenceType() callled with unkown persistence type "
                         "string=unknown"}));
    }

    void keysOfAnUpdate()
    {
        using Type = DataElementUpdateType;
        Data::Elements::ElementUpdateData data;
        data.setValue(ElementValueKind::ParsedValue, 1.5);
        data.setValue(ElementValueKind::Unknown, "dropped");
        data.setTimestamp(~0ULL);
        data.setActive(true);
        QVERIFY(data.getUpdateTypes() == QList<Type>({Type::Active, Type::Timestamp, Type::ParsedData}));
        quint64 timestamp = 0;
        QByteArray raw("as before");
        QVERIFY(data.getTimestamp(timestamp) && !data.getRawData(raw));
        QCOMPARE(timestamp, ~quint64(0));
        QCOMPARE(raw, QByteArray("as before"));
        // There, but of a type that does not convert.
        for (const Type type : {Type::Timestamp, Type::RawData})
            data.insert(type, QVariant::fromValue(QPoint(1, 2)));
        QVERIFY(data.getTimestamp(timestamp) && data.getRawData(raw));
        QCOMPARE(timestamp, quint64(0));
        QVERIFY(raw.isEmpty());
    }

    void doubles()
    {
        const auto parser = parserOf(CategoryType::Float);
        const QPair<const char *, double> cases[]
            = {{"3ff8000000000000", 1.5}, {"3ff8000000000000ff", 1.5}, {"3ff800", 0.0}, {"", 0.0}};
        for (const auto &[hex, value] : cases)
            QCOMPARE(*parser->parse(QByteArray::fromHex(hex)), QVariant(value));
        QCOMPARE(parser->toRaw(std::make_shared<QVariant>(1.5)), QByteArray::fromHex("3ff8000000000000"));
    }

    void bytesStayAsTheyAre()
    {
        const QByteArray bytes("\0\xc3\x28\xff", 4); // no text in any code page
        const auto parser = parserOf(CategoryType::Text);
        QCOMPARE(*parser->parse(bytes), QVariant(bytes));
        QCOMPARE(parser->toRaw(parser->parse(bytes)), bytes);
    }

    void oneParserForEachCategory()
    {
        QVERIFY(parserOf(CategoryType::Binary));
        QCOMPARE(parserOf(CategoryType::Binary), parserOf(CategoryType::Binary));
        QVERIFY(parserOf(CategoryType::Binary) != parserOf(CategoryType::Unit));
        QVERIFY(!parserOf(CategoryType::Custom));
        // Without a parser an element still is made, for raw bytes.
        const auto element = ElementsFactory::getInstance()->create({CategoryType::Custom, QString()}, {});
        QVERIFY(element && !element->copyParser());
        QVERIFY(!ElementsFactory::getInstance()->create({CategoryType::Text, "nobody"}, {}));
    }

    void creatorsOfParsers()
    {
        Data::utils::ElementRegistrationProvider provider;
        const auto add = [&provider](const char *detail, const std::function<Parser()> &creator) {
            return provider.registerElement(CategoryType::Text, detail, creator);
        };
        // One that comes back for another parser while it makes its own.
        QVERIFY(add("nested", [] { return parserOf(CategoryType::Binary); }));
        QCOMPARE(parserOf(CategoryType::Text, "nested"), parserOf(CategoryType::Binary));
        QVERIFY(!parserOf(CategoryType::Text, "late"));
        QVERIFY(add("late", [] { return parserOf(CategoryType::Binary); }));
        QVERIFY(!parserOf(CategoryType::Text, "late")); // a miss is remembered
        QVERIFY(add("throws", []() -> Parser { throw std::runtime_error("no parser today"); }));
        const LogCapture log;
        QVERIFY(!parserOf(CategoryType::Text, "throws"));
        QCOMPARE(log.lines(),
                 QStringList("CRITICAL ElementParserFactory::get() catched exception of the parser: "
                             "no parser today"));
    }
};

QTEST_GUILESS_MAIN(DataTypesTest)
#include "DataTypesTest.moc"
