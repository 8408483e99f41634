#include <shared/foundation/IniFile.h>

#include <QTemporaryDir>
#include <QtTest>

#include <support/ClosedFolder.h>
#include <support/Literals.h>
#include <support/LogCapture.h>

using Shared::IniContent;
using Shared::ParseIniFile;
using Shared::WriteIniFile;

class IniFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsSectionsAndKeys()
    {
        const QByteArray text = "early=1\r\n"
                                "[a]\n"
                                "  two   words =  spaced out \n"
                                "\n"
                                "; no separator, no data\n"
                                "[]\n"
                                "late=\xc2\xb0\x43\n"
                                "[b.c]\n"
                                "[a]\n"
                                "# data = all the same";
        IniContent content;
        QVERIFY(ParseIniFile(text, content, separator));
        const IniContent expected{
            {"", {{"early", "1"}, {"late", QString::fromUtf8("\xc2\xb0\x43")}}},
            {"a", {{"two words", "spaced out"}, {"# data", "all the same"}}},
        };
        QCOMPARE(content, expected);
    }

    void linesAtTheEdges_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        const auto row = [](const char *name, const char *line, const char *pattern, const char *key,
                            const char *value) {
            QTest::newRow(name) << QString(line) << QString(pattern) << QString(key) << QString(value);
        };
        row("quoted", "a = \"b\"", "=", "a", "b");
        row("blanks within quotes", "a=\" b \"", "=", "a", " b ");
        row("one quote", "a=\"b", "=", "a", "\"b");
        row("a quote alone", "a=\"", "=", "a", "\"");
        row("empty quotes", "a=\"\"", "=", "a", "");
        row("first separator counts", "a=b=c", "=", "a", "b=c");
        row("no key", "=b", "=", "", "b");
        row("open bracket", "[x=y", "=", "[x", "y");
        row("section with a blank behind", "[x=y] ", "=", "[x", "y]");
        row("one character of the match goes", "a::=b", "::=", "a", ":=b");
        row("alternatives", "a:b=c", "[:=]", "a", "b=c");
    }

    void linesAtTheEdges()
    {
        QFETCH(QString, line);
        QFETCH(QString, pattern);
        QFETCH(QString, key);
        QFETCH(QString, value);
        IniContent content;
        QVERIFY(ParseIniFile(line.toUtf8(), content, QRegExp(pattern)));
        QCOMPARE(content, IniContent({{QString(), {{key, value}}}}));
    }

    void firstOfTwoValuesStays()
    {
        TestSupport::LogCapture log;
        IniContent content;
        QVERIFY(ParseIniFile(QByteArray("[s]\nk=1\n[t]\nk=2\n[s]\nk=\"3\"\n"), content, separator));
        QCOMPARE(content, IniContent({{"s", {{"k", "1"}}}, {"t", {{"k", "2"}}}}));
        QCOMPARE(
            log.lines(),
            QStringList("WARNING Shared::ParseIniFile: The key 'k' already exists, ignoring the value '3'"));
    }

    void files()
    {
        QTemporaryDir directory;
        QFile file(directory.filePath("a.ini"_s));
        IniContent content;
        QVERIFY(!ParseIniFile(file, content, separator)); // does not exist
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(!ParseIniFile(file, content, separator)); // cannot be read from
        file.close();
        QVERIFY(ParseIniFile(file, content, separator)); // empty
        QVERIFY(content.isEmpty());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[s]\nk=v\n");
        file.close();
        QVERIFY(ParseIniFile(file, content, separator));
        QVERIFY(!file.isOpen());
        QCOMPARE(content, IniContent({{"s", {{"k", "v"}}}}));
        QFile folder(directory.path());
        QVERIFY(!ParseIniFile(folder, content, separator));
        QTextStream nothing;
        QVERIFY(!ParseIniFile(nothing, content, separator));
    }

    void writtenContentReadsBack()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("a.ini"));
        const IniContent content{
            {"", {{"early", "1"}}},
            {"a]", {{"blanks", "  x "}, {"quotes", "\"y\" \""}, {"equal", "1=2"}, {"empty", ""}}},
            {"deg", {{QString::fromUtf8("\xc2\xb0"), QString::fromUtf8("\xc2\xb0\x43")}}},
        };
        QVERIFY(WriteIniFile(file, content, true, separator));
        IniContent back;
        QVERIFY(ParseIniFile(file, back, separator));
        QCOMPARE(back, content);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("[]\nearly=\"1\"\n[a]]\nblanks=\"  x \"\n"));
        file.close();
        QVERIFY(WriteIniFile(file, {}, true, separator));
        QCOMPARE(file.size(), 0);
    }

    void writingLaysOverWhatIsThere()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("a.ini"));
        QVERIFY(WriteIniFile(file, {{"a", {{"x", "1"}, {"y", "2"}}}, {"b", {{"z", "3"}}}}, false, separator));
        QVERIFY(WriteIniFile(file, {{"a", {{"y", "4"}, {"n", 5.5}}}}, false, separator));
        IniContent merged;
        QVERIFY(ParseIniFile(file, merged, separator));
        QCOMPARE(merged, IniContent({{"a", {{"x", "1"}, {"y", "4"}, {"n", "5.5"}}}, {"b", {{"z", "3"}}}}));
        QVERIFY(WriteIniFile(file, {{"a", {{"y", "4"}}}}, true, separator));
        IniContent replaced;
        QVERIFY(ParseIniFile(file, replaced, separator));
        QCOMPARE(replaced, IniContent({{"a", {{"y", "4"}}}}));
    }

    void writesDirectlyWhereItMust()
    {
        QTemporaryDir directory;
        QFile file(directory.filePath("a.ini"));
        QVERIFY(WriteIniFile(file, {{"a", {{"x", "1"}}}}, true, separator));
        {
            const TestSupport::ClosedFolder folder(directory.path(), file.fileName());
            QVERIFY(folder.isClosed());
            QVERIFY(WriteIniFile(file, {{"a", {{"x", "2"}}}}, true, separator));
        }
        IniContent content;
        QVERIFY(ParseIniFile(file, content, separator));
        QCOMPARE(content, IniContent({{"a", {{"x", "2"}}}}));
    }

    void lineBreaksAreNotWritten()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("a.ini"));
        const TestSupport::LogCapture log;
        QVERIFY(WriteIniFile(file, {{"a", {{"x", "1\n[b]\r\ny=2"}}}}, true, separator));
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(!WriteIniFile(file, {{"a", {{"k\nk", "1"}}}, {"b\nc", {{"z", "3"}}}}, false, separator));
        QCOMPARE(log.lines().filter("WARNING").size(), 3);
        IniContent content;
        QVERIFY(ParseIniFile(file, content, separator));
        QCOMPARE(content, IniContent({{"a", {{"x", "1 [b] y=2"}}}}));
    }

private:
    const QRegExp separator{"="_s};
};

QTEST_GUILESS_MAIN(IniFileTest)
#include "IniFileTest.moc"
