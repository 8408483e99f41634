#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/utils/AttributeNodeVisitors.h>
#include <notification/utils/MakeNode.h>
#include <shared/foundation/IniFile.h>
#include <shared/foundation/StringHelpers.h>
#include <shared/foundation/VersionInformation.h>

#include <QTemporaryDir>
#include <QtTest>

#include <support/ClosedFolder.h>
#include <support/Files.h>
#include <support/Literals.h>
#include <support/LogCapture.h>

using Shared::IniContent;
using Shared::ParseIniFile;
using Shared::WildcardStringCompare;
using Shared::WriteIniFile;
using namespace Shared::VersionInformation;
using Shared::SettingsWrapper::SettingsWrapper;

namespace {

bool Matches(const QString &text, const QString &pattern)
{
    return WildcardStringCompare(text.constData(), pattern.constData());
}

// What the wildcards mean, without any thought of speed.
bool MatchesByDefinition(const QString &text, const QString &pattern)
{
    if (pattern.isEmpty())
        return text.isEmpty();
    if (pattern[0] == QLatin1Char('*'))
        return MatchesByDefinition(text, pattern.mid(1))
            || (!text.isEmpty() && MatchesByDefinition(text.mid(1), pattern));
    return !text.isEmpty() && (pattern[0] == QLatin1Char('?') || pattern[0] == text[0])
        && MatchesByDefinition(text.mid(1), pattern.mid(1));
}

QStringList AllWords(const QString &letters, int longest)
{
    QStringList words{QString()};
    for (int begin = 0; words[begin].size() < longest; ++begin) {
        for (const QChar letter : letters)
            words.append(words[begin] + letter);
    }
    return words;
}

} // namespace

/*! INI files, wildcards and version records. */
class FoundationTest : public QObject
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

    void wildcardsOfAllShortTexts()
    {
        const QStringList texts = AllWords("ab"_s, 5);
        const QStringList patterns = AllWords("ab*?"_s, 5);
        for (const QString &text : texts) {
            for (const QString &pattern : patterns) {
                if (Matches(text, pattern) != MatchesByDefinition(text, pattern))
                    QFAIL(qPrintable("'%1' by '%2'"_s.arg(text, pattern)));
            }
        }
        QVERIFY(Matches("x.a.a.a.a", "*.a.a.a"));
        QVERIFY(!Matches("Abc", "abc"));
        const QChar *const nothing = nullptr;
        QVERIFY(Shared::IsWildcardString("a?") && !Shared::IsWildcardString("a.b[c]"));
        QVERIFY(!WildcardStringCompare(nothing, QStringView(u"*").data()));
        QVERIFY(!WildcardStringCompare(QStringView(u"a").data(), nothing));
    }

    void wildcardsOfLongTexts()
    {
        const QString text(100000, QLatin1Char('a'));
        QVERIFY(Matches(text, "*a*a*a*a*a*a*a*a*a*a*a*a"_s));
        QVERIFY(!Matches(text, "*a*a*a*a*a*a*a*a*a*a*a*ab"_s));
    }

    void versionFile()
    {
        TestSupport::Files folder;
        const QString path
            = folder.write("[Version]\r\nLegalCopyright=\xc2\xa9 A,B,   C\r\nComments=\r\nFileVersion=1.2\r\n"
                           "[Other]\r\nProductName=X\r\n");
        VersionInformation record("module", path, "/m.so");
        const QPair<Identifier, QString> expected[]
            = {{Identifier::LegalCopyright, QString::fromUtf8("\xc2\xa9 A, B, C")},
               {Identifier::FileVersion, "1.2"},
               {Identifier::Comments, QString()},
               {Identifier::ProductName, QString()}};
        for (const auto &[identifier, value] : expected)
            QCOMPARE(record.getVersionInformationByIdentifier(identifier), value);
        QVERIFY(!record.addVersionInformationData("other", folder.filePath("none"), QString()));
        QCOMPARE(record.getVersionInformationByIdentifier(Identifier::FileVersion), QString("1.2"));
        QCOMPARE(record.getVersionIdentifier(), QString("other"));
        QVERIFY(!record.addModuleFilePath(QString()));
        QCOMPARE(record.getModuleFilePath(), QString("/m.so"));
    }

    void theLibrarysOwn()
    {
        const VersionInformation record("Tessellum", ":/Tessellum.vft", QString());
        const auto value = [&record](Identifier identifier) {
            return record.getVersionInformationByIdentifier(identifier);
        };
        QCOMPARE(value(Identifier::FileDescription), QString("Tessellum library"));
        QVERIFY(QRegularExpression("^\\d+\\.\\d+\\.\\d+$").match(value(Identifier::FileVersion)).hasMatch());
        QVERIFY(QDateTime::fromString(value(Identifier::Comments), "yyyy/MM/dd hh:mm:ss").isValid());
        QVERIFY(value(Identifier::LegalCopyright).contains(", "));
        const QByteArray text = TestSupport::Files::read(":/Tessellum.vft");
        QVERIFY(text.startsWith("[Version]\r\nComments="));
        QCOMPARE(text.count('\n'), text.count("\r\n"));
    }

    void modules()
    {
        const VersionInformation own(QStringLiteral("no such file"));
        QCOMPARE(own.getModuleFilePath(), QCoreApplication::applicationFilePath());
        QCOMPARE(own.getVersionIdentifier(), QString("FoundationTest"));
        TestSupport::Files folder;
        const QString path = folder.write("", "libx.so.1");
        const VersionInformation other(path);
        QCOMPARE(other.getModuleFilePath(), path);
        QCOMPARE(other.getVersionIdentifier(), QString("libx"));
    }

    void settings()
    {
        using namespace Tessellum::AppConfig;
        const auto root = Tessellum::Notification::utils::MakeNode<Shared::Hierarchy::HierarchyNodeInstance>(
            QStringLiteral("root"));
        const auto add = [&root](const char *path, const char *value) {
            Attributes::AttributeCreateData::AttributeCreateDataDetails details;
            details.value = QString(value);
            return Attributes::CreateAttributeInHierarchy(root, {path, details});
        };
        QVERIFY(add("A.Version.FileVersion", "1") && add("A.Version.ModulePath", "/a"));
        QVERIFY(add("modules.information.A.FileVersion", "2") && add("modules.information.A.Comments", "c"));
        const auto wrapper = std::make_shared<const SettingsWrapper>(
            nullptr, root, utils::AttributeNodeReadVisitor<QString>(),
            utils::AttributeNodeWriteVisitor<QString>());
        const VersionInformation record(wrapper, "A.");
        QCOMPARE(record.getVersionInformationByIdentifier(Identifier::FileVersion), QString("1"));
        QCOMPARE(record.getVersionInformationByIdentifier(Identifier::Comments), QString("c"));
        QCOMPARE(record.getModuleFilePath(), QString("/a"));
        QCOMPARE(record.getVersionIdentifier(), QString("A"));
        QVERIFY(VersionInformation(wrapper, "B.")
                    .getVersionInformationByIdentifier(Identifier::Comments)
                    .isEmpty());
        const VersionInformation none(std::shared_ptr<const SettingsWrapper>(), "A.");
        QVERIFY(none.getModuleFilePath().isEmpty() && !none.isDefaultConstructed());
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

QTEST_GUILESS_MAIN(FoundationTest)
#include "FoundationTest.moc"
