#include "../../tools/tessellum/ShellCommand.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

using namespace Tessellum::Tool;

class ShellCommandTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void wordsAndJsonAreTold()
    {
        const ShellCommand command
            = ParseShellCommand("  update\ta.b \"x \\\" \\u00e4\" {\"k\": [1, \"] }\"]} -2.5 null nul\r\n");
        QCOMPARE(command.error, QString());
        QCOMPARE(command.name, QString("update"));
        QCOMPARE(command.arguments.size(), 6);
        QCOMPARE(command.arguments.at(0).text, QString("a.b"));
        QVERIFY(command.arguments.at(0).value.isUndefined());
        QCOMPARE(command.arguments.at(1).text, QString::fromUtf8("x \" ä"));
        QCOMPARE(command.arguments.at(2).value, QJsonValue(QJsonObject{{"k", QJsonArray{1, "] }"}}}));
        QCOMPARE(command.arguments.at(3).value, QJsonValue(-2.5));
        QVERIFY(command.arguments.at(4).value.isNull());
        for (const char *digits : {"-9223372036854775807", "[1,{\"a\":9007199254740993}]"})
            QCOMPARE(JsonText(ParseJsonValue(digits)), QString(digits));
        QVERIFY(command.arguments.at(5).value.isUndefined());

        const QByteArray uuid = "{14dac2ec-2e21-4ff5-b1b8-2f1d00a8b893}";
        const ShellCommand named = ParseShellCommand("element set plant.temp " + uuid + " {}");
        QCOMPARE(named.arguments.value(2).text, QString(uuid));
        QCOMPARE(named.arguments.value(3).value, QJsonValue(QJsonObject()));

        for (const char *nothing : {"", " \t ", "# update a 1", "  #"}) {
            const ShellCommand empty = ParseShellCommand(nothing);
            QVERIFY(empty.name.isEmpty() && empty.error.isEmpty());
        }
    }

    void faultsAreNamed_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("error");
        QTest::newRow("open quotes") << QByteArray("get \"a") << "the JSON value at column 5 has no end";
        QTest::newRow("escaped end") << QByteArray("get \"a\\\"") << "the JSON value at column 5 has no end";
        QTest::newRow("open bracket") << QByteArray("get [1, {}") << "the JSON value at column 5 has no end";
        QTest::newRow("glued") << QByteArray("get \"a\"b") << "the JSON value at column 5 has no end";
        QTest::newRow("wrong bracket") << QByteArray("get [1}") << "the value at column 5 is no JSON";
        QTest::newRow("bad escape") << QByteArray("get \"\\u12\"") << "the value at column 5 is no JSON";
        QTest::newRow("no UTF-8") << QByteArray("get a\xff") << "the line is no UTF-8";
        QTest::newRow("cut UTF-8") << QByteArray("get \xc3") << "the line is no UTF-8";
    }

    void faultsAreNamed()
    {
        QFETCH(QByteArray, line);
        QTEST(ParseShellCommand(line).error, "error");
    }

    void hugeAndDeepLinesEnd()
    {
        const QByteArray deep = "update a " + QByteArray(100000, '[') + QByteArray(100000, ']');
        QVERIFY(!ParseShellCommand(deep).error.isEmpty());
        const ShellCommand wide = ParseShellCommand("update a \"" + QByteArray(1000000, 'x') + '"');
        QCOMPARE(wide.arguments.value(1).text.size(), 1000000);
    }
};

QTEST_GUILESS_MAIN(ShellCommandTest)
#include "ShellCommandTest.moc"
