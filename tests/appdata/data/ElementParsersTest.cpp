#include "../../support/LogCapture.h"
#include "../support/RunningDataRepository.h"

#include <appdata/data/elements/ElementsFactory.h>
#include <appdata/data/elements/parsers/ElementParserFactory.h>
#include <appdata/data/utils/ElementRegistrationProvider.h>

#include <QtTest>

#include <stdexcept>

using namespace Tessellum::AppData;
using Data::Elements::ElementsFactory;
using Data::Elements::Parsers::ElementParserFactory;
using Data::Entries::EntryCategory;
using Data::utils::ElementRegistrationProvider;
using Interfaces::DataElementParserInterface;

namespace {

struct Parser : DataElementParserInterface
{
    QByteArray toRaw(const std::shared_ptr<QVariant> &value) const override { return value->toByteArray(); }
    std::shared_ptr<QVariant> parse(const QByteArray &raw) const override
    {
        return std::make_shared<QVariant>(raw);
    }
};

std::shared_ptr<DataElementParserInterface> parserOf(CategoryType type, const QString &detail = QString())
{
    return ElementParserFactory::getInstance()->get(EntryCategory(type, detail));
}

} // namespace

// The factories live as long as the process: each test has a detail of its own.
class ElementParsersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void doubles_data();
    void doubles();
    void bytesStayAsTheyAre();
    void oneParserForEachCategory();
    void missIsRemembered();
    void creatorThatMisbehaves();
};

void ElementParsersTest::doubles_data()
{
    QTest::addColumn<QByteArray>("raw");
    QTest::addColumn<double>("value");
    QTest::newRow("value") << QByteArray::fromHex("3ff8000000000000") << 1.5;
    QTest::newRow("more bytes") << QByteArray::fromHex("3ff8000000000000ff") << 1.5;
    QTest::newRow("three bytes") << QByteArray::fromHex("3ff800") << 0.0;
    QTest::newRow("no bytes") << QByteArray() << 0.0;
}

void ElementParsersTest::doubles()
{
    QFETCH(QByteArray, raw);
    const auto parser = parserOf(CategoryType::Float);
    const auto parsed = parser->parse(raw);
    QCOMPARE(parsed->type(), QVariant::Double);
    QTEST(parsed->toDouble(), "value");
    if (raw.size() == 8)
        QCOMPARE(parser->toRaw(parsed), raw);
}

void ElementParsersTest::bytesStayAsTheyAre()
{
    const QByteArray bytes("\0\xc3\x28\xff", 4); // no text in any code page
    const auto parser = parserOf(CategoryType::Text);
    QCOMPARE(parser->parse(bytes)->type(), QVariant::ByteArray);
    QCOMPARE(parser->toRaw(parser->parse(bytes)), bytes);
}

void ElementParsersTest::oneParserForEachCategory()
{
    QVERIFY(parserOf(CategoryType::Binary));
    QCOMPARE(parserOf(CategoryType::Binary), parserOf(CategoryType::Binary));
    QVERIFY(parserOf(CategoryType::Binary) != parserOf(CategoryType::Unit));
    QVERIFY(!parserOf(CategoryType::Custom));
    // Without a parser an element still is made, for raw bytes.
    const auto element
        = ElementsFactory::getInstance()->create(EntryCategory(CategoryType::Custom, QString()), {});
    QVERIFY(element && !element->copyParser());
    const EntryCategory unknown(CategoryType::Text, "nobody");
    QVERIFY(!ElementsFactory::getInstance()->create(unknown, {}));
}

void ElementParsersTest::missIsRemembered()
{
    QVERIFY(!parserOf(CategoryType::Text, "late"));
    QVERIFY(ElementRegistrationProvider().registerElement(CategoryType::Text, "late",
                                                          [] { return std::make_shared<Parser>(); }));
    QVERIFY(!parserOf(CategoryType::Text, "late"));
}

void ElementParsersTest::creatorThatMisbehaves()
{
    ElementRegistrationProvider provider;
    QVERIFY(provider.registerElement(CategoryType::Text, "throws",
                                     []() -> std::shared_ptr<DataElementParserInterface> {
                                         throw std::runtime_error("no parser today");
                                     }));
    const TestSupport::LogCapture log;
    QVERIFY(!parserOf(CategoryType::Text, "throws"));
    QCOMPARE(log.lines(),
             QStringList("CRITICAL ElementParserFactory::get() catched exception of the parser: "
                         "no parser today"));
    // One that comes back for another parser while it makes its own.
    QVERIFY(provider.registerElement(CategoryType::Text, "nested",
                                     [] { return parserOf(CategoryType::Binary); }));
    QCOMPARE(parserOf(CategoryType::Text, "nested"), parserOf(CategoryType::Binary));
}

QTEST_GUILESS_MAIN(ElementParsersTest)
#include "ElementParsersTest.moc"
