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
    void init()
    {
        directory = std::make_unique<QTemporaryDir>();
        file.setFileName(directory->filePath("a.ini"));
    }

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

    void linesAtTheEdges()
    {
        struct Line
        {
            const char *text;
            const char *pattern;
            QString key;
            QString value;
        };
        const Line lines[] = {
            {"a = \"b\"", "=", "a", "b"},  {"a=\" b \"", "=", "a", " b "}, {"a=\"b", "=", "a", "\"b"},
            {"a=\"", "=", "a", "\""},      {"a=\"\"", "=", "a", ""},       {"a=b=c", "=", "a", "b=c"},
            {"=b", "=", "", "b"},          {"[x=y", "=", "[x", "y"},       {"[x=y] ", "=", "[x", "y]"},
            {"a::=b", "::=", "a", ":=b"}, // one character of the match goes
            {"a:b=c", "[:=]", "a", "b=c"},
        };
        for (const Line &line : lines) {
            IniContent content;
            QVERIFY(ParseIniFile(QByteArray(line.text), content, QRegExp(line.pattern)));
            QCOMPARE(content, IniContent({{QString(), {{line.key, line.value}}}}));
        }
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
        IniContent content;
        QVERIFY(!ParseIniFile(file, content, separator)); // does not exist
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(!ParseIniFile(file, content, separator)); // cannot be read from
        file.close();
        QCOMPARE(parsed(), IniContent());
        QVERIFY(!file.isOpen());
        QFile folder(directory->path());
        QVERIFY(!ParseIniFile(folder, content, separator));
        QTextStream nothing;
        QVERIFY(!ParseIniFile(nothing, content, separator));
    }

    void writtenContentReadsBack()
    {
        const IniContent content{
            {"", {{"early", "1"}}},
            {"a]", {{"blanks", "  x "}, {"quotes", "\"y\" \""}, {"equal", "1=2"}, {"empty", ""}}},
            {"deg", {{QString::fromUtf8("\xc2\xb0"), QString::fromUtf8("\xc2\xb0\x43")}}},
        };
        QVERIFY(WriteIniFile(file, content, true, separator));
        QCOMPARE(parsed(), content);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("[]\nearly=\"1\"\n[a]]\nblanks=\"  x \"\n"));
        file.close();
        QVERIFY(WriteIniFile(file, {}, true, separator));
        QCOMPARE(file.size(), 0);
    }

    void writingLaysOverWhatIsThere()
    {
        QVERIFY(WriteIniFile(file, {{"a", {{"x", "1"}, {"y", "2"}}}, {"b", {{"z", "3"}}}}, false, separator));
        QVERIFY(WriteIniFile(file, {{"a", {{"y", "4"}, {"n", 5.5}}}}, false, separator));
        QCOMPARE(parsed(), IniContent({{"a", {{"x", "1"}, {"y", "4"}, {"n", "5.5"}}}, {"b", {{"z", "3"}}}}));
        QVERIFY(WriteIniFile(file, {{"a", {{"y", "4"}}}}, true, separator));
        QCOMPARE(parsed(), IniContent({{"a", {{"y", "4"}}}}));
    }

    void writesDirectlyWhereItMust()
    {
        QVERIFY(WriteIniFile(file, {{"a", {{"x", "1"}}}}, true, separator));
        {
            const TestSupport::ClosedFolder folder(directory->path(), file.fileName());
            QVERIFY(folder.isClosed());
            QVERIFY(WriteIniFile(file, {{"a", {{"x", "2"}}}}, true, separator));
        }
        QCOMPARE(parsed(), IniContent({{"a", {{"x", "2"}}}}));
    }

    void lineBreaksAreNotWritten()
    {
        const TestSupport::LogCapture log;
        QVERIFY(WriteIniFile(file, {{"a", {{"x", "1\n[b]\r\ny=2"}}}}, true, separator));
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(!WriteIniFile(file, {{"a", {{"k\nk", "1"}}}, {"b\nc", {{"z", "3"}}}}, false, separator));
        QCOMPARE(log.lines().filter("WARNING").size(), 3);
        QCOMPARE(parsed(), IniContent({{"a", {{"x", "1 [b] y=2"}}}}));
    }

private:
    // What is in the file.
    IniContent parsed()
    {
        IniContent content;
        return ParseIniFile(file, content, separator) ? content : IniContent{{"unreadable", {}}};
    }

    const QRegExp separator{"="_s};
    std::unique_ptr<QTemporaryDir> directory;
    QFile file;
};

QTEST_GUILESS_MAIN(IniFileTest)
#include "IniFileTest.moc"
