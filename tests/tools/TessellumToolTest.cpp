#include "ToolRunner.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace ToolSupport;

class TessellumToolTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(folder->isValid());
    }
    void wrongUsageIsTold();
    void filesAreReadAndChanged();
    void badFilesFail();
    void filesAreDownloaded();
    void theShellWorksOnAttributes();
    void theShellWorksOnBackends();
    void theShellHears();
    void theShellRunsTheLibrary();
    void theShellTellsVersionsAndLoadsPlugins();
    void theShellTellsItsGravestResult();

private:
    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(folder->filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(content);
        return file.fileName();
    }

    std::unique_ptr<QTemporaryDir> folder;
};

void TessellumToolTest::wrongUsageIsTold()
{
    const Outcome help = runTool({"--help"});
    QCOMPARE(help.exitCode, 0);
    for (const char *word : {"tree SOURCE", "set SOURCE", "watch create|update|delete", "Exit codes"})
        QVERIFY2(help.output.contains(word), word);
    for (const QStringList &wrong : {QStringList(),
                                     {"tree"},
                                     {"get", "x"},
                                     {"nonsense"},
                                     {"shell", "more"},
                                     {"download", "http://x/"}}) {
        const Outcome outcome = runTool(wrong);
        QCOMPARE(outcome.exitCode, 2);
        QVERIFY(outcome.output.isEmpty() && outcome.errors.contains("usage:"));
    }
    QCOMPARE(runTool({"set", write("a.json", "{\"a\":1}"), "a", "word"}).exitCode, 2);
}

void TessellumToolTest::filesAreReadAndChanged()
{
    const QString file = write("a.json", "{\"net\":{\"port\":8080,\"hosts\":[\"a\",\"b c\"]},\"on\":true}");
    QCOMPARE(runTool({"tree", file}).output,
             QString("net\nnet.<hosts>\nnet.port = 8080\nnet.<hosts>.0 = \"a\"\nnet.<hosts>.1 = \"b c\"\n"
                     "on = true\n"));
    QCOMPARE(runTool({"tree", file, "net.p*"}).output, QString("net.port = 8080\n"));
    QCOMPARE(runTool({"get", file, "net.<hosts>.1"}).output, QString("\"b c\"\n"));

    QCOMPARE(runTool({"set", file, "net.port", "1.5"}).exitCode, 0);
    QCOMPARE(runTool({"set", file, "new.text", "\"x\""}).exitCode, 0);
    QCOMPARE(runTool({"get", file, "net.port"}).output, QString("1.5\n"));
    QCOMPARE(runTool({"get", file, "new.text"}).output, QString("\"x\"\n"));
    QCOMPARE(runTool({"get", file, "net.<hosts>.0"}).output, QString("\"a\"\n"));

    const QString fresh = folder->filePath("fresh.json");
    QCOMPARE(runTool({"set", fresh, "a", "[1,2]"}).exitCode, 0);
    QCOMPARE(runTool({"get", fresh, "<a>.1"}).output, QString("2\n"));
}

void TessellumToolTest::badFilesFail()
{
    const QString broken = write("broken.json", "{\"a\":");
    for (const QStringList &arguments : {QStringList{"tree", broken},
                                         {"get", broken, "a"},
                                         {"set", broken, "a", "1"},
                                         {"tree", folder->filePath("missing.json")},
                                         {"get", write("a.json", "{\"a\":1}"), "b"},
                                         {"tree", write("b.json", "{\"a\":1}"), "c*"},
                                         {"set", folder->filePath("no/such.json"), "a", "1"}}) {
        const Outcome outcome = runTool(arguments);
        QVERIFY2(outcome.exitCode == 1, qPrintable(arguments.join(' ')));
        QVERIFY(outcome.output.isEmpty() && outcome.errors.contains("tessellum: "));
    }
    QFile file(broken);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("{\"a\":"));
}

void TessellumToolTest::filesAreDownloaded()
{
    const QByteArray content(100000, 'c');
    const QString url = QUrl::fromLocalFile(write("source", content)).toString();
    const QString target = write("target", "before");
    const auto read = [&target] {
        QFile file(target);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    for (const QString &bad : {url + "x", QString("http://127.0.0.1:1/"), QString("nonsense://x/")}) {
        const Outcome failed = runTool({"download", bad, target});
        QCOMPARE(failed.exitCode, 1);
        QVERIFY2(failed.errors.startsWith("tessellum: " + bad + " cannot be fetched: "),
                 qPrintable(failed.errors));
        QCOMPARE(read(), QByteArray("before"));
    }
    QCOMPARE(runTool({"download", "no url", target}).exitCode, 2);
    QCOMPARE(runTool({"download", url, folder->filePath("none/x")}).exitCode, 1);
    const Outcome quiet = runTool({"download", url, target});
    QVERIFY(quiet.exitCode == 0 && quiet.output.isEmpty() && quiet.errors.isEmpty());
    QVERIFY(read() == content);

    QProcess terminal; // which "script" makes for what it runs
    const QString command = QString("'%1' download '%2' '%3'").arg(TESSELLUM_TOOL, url, target);
    terminal.start("script", {"-qec", command, "/dev/null"});
    QVERIFY(terminal.waitForFinished(60000));
    QCOMPARE(terminal.exitCode(), 0);
    const QString shown = QString::fromUtf8(terminal.readAllStandardOutput());
    QVERIFY2(shown.contains(QString(40, '#') + "] 100 %"), qPrintable(shown));
}

void TessellumToolTest::theShellWorksOnAttributes()
{
    ShellProcess shell;
    QVERIFY(shell.succeeds("start"));
    QCOMPARE(shell.ask("create a.b 1 Done 1"), QJsonObject({{"ok", true}, {"point", named("Done", 2)}}));
    QVERIFY(shell.succeeds("create a.text \"x y\""));
    QCOMPARE(shell.ask("update a.b 2").value("result"), QJsonValue(named("ApplyFailed", 3)));
    QCOMPARE(shell.ask("update a.text [1,\"2\"] done").value("result"), QJsonValue(named("Ok", 0)));
    QCOMPARE(shell.ask("get a.text").value("value"), QJsonValue(QJsonArray{1, "2"}));
    QCOMPARE(shell.ask("get a.b QString"),
             QJsonObject({{"ok", true}, {"value", QString("1")}, {"type", QString("QString")}}));
    QVERIFY(shell.ask("get a.b nonsense").contains("error"));
    const QJsonArray found = shell.ask("query a.*").value("attributes").toArray();
    QCOMPARE(found.size(), 2);
    QCOMPARE(found.first().toObject(), QJsonObject({{"path", QString("a.b")}, {"access", 1}, {"value", 1}}));
    QVERIFY(shell.succeeds("delete a.b"));
    QVERIFY(shell.ask("get a.b").contains("error"));
    QVERIFY(shell.ask("delete a.b Begin").contains("error"));
    QVERIFY(shell.succeeds("get internal.repository.list_separators"));
}

void TessellumToolTest::theShellWorksOnBackends()
{
    const QString constraints = write("limits.ini", "[small]\nType=limit_int\nMinimum=0\nMaximum=9\n");
    const QString values = write("values.json", "{\"a\":1,\"b\":2}");
    ShellProcess shell;
    QVERIFY(shell.succeeds("start"));
    QVERIFY(shell.succeeds("backend json values \"" + values.toUtf8() + "\" 3"));
    QVERIFY(shell.succeeds("backend constraints limits " + constraints.toUtf8()));
    QVERIFY(shell.ask("backend nonsense x").contains("error"));
    const QJsonObject backends = shell.ask("backends");
    // The first one is the library's own version record.
    QCOMPARE(backends.value("backends").toArray().at(1).toObject().value("type"), QJsonValue("json"));
    QVERIFY(backends.value("types").toArray().contains("memory"));

    QCOMPARE(shell.ask("validations").value("validations"), QJsonValue(QJsonArray{"small"}));
    QCOMPARE(shell.ask("assign values.* small").value("count"), QJsonValue(2));
    QCOMPARE(shell.ask("update values.a 10").value("result"), QJsonValue(named("CheckFailed", 2)));
    QVERIFY(shell.ask("assign values.* nonsense").contains("error"));
    QCOMPARE(shell.ask("unassign values.a small").value("count"), QJsonValue(1));
    QVERIFY(shell.succeeds("update values.a 10"));
    QVERIFY(shell.succeeds("save values"));
    QVERIFY(shell.ask("save nonsense").contains("error"));
    QCOMPARE(runTool({"get", values, "a"}).output, QString("10\n"));
}

void TessellumToolTest::theShellHears()
{
    ShellProcess shell;
    QVERIFY(shell.succeeds("start"));
    QCOMPARE(shell.ask("watch create a Done").value("watch"), QJsonValue(1));
    QCOMPARE(shell.ask("watch update a* Done").value("watch"), QJsonValue(2));
    QCOMPARE(shell.ask("watch delete a 2").value("watch"), QJsonValue(3));
    QVERIFY(shell.ask("watch nonsense a Done").contains("error"));
    QVERIFY(shell.ask("watch update a Begin").contains("error"));

    QVERIFY(shell.succeeds("create a 1"));
    QCOMPARE(shell.hear(),
             QJsonObject({{"notify", QString("create")},
                          {"watch", 1},
                          {"path", QString("a")},
                          {"point", named("Done", 2)},
                          {"result", true}}));
    QVERIFY(shell.succeeds("update a 2"));
    QCOMPARE(shell.hear(),
             QJsonObject({{"notify", QString("update")},
                          {"watch", 2},
                          {"path", QString("a")},
                          {"old", 1},
                          {"new", 2},
                          {"point", named("Done", 8)},
                          {"result", named("Ok", 0)}}));
    QCOMPARE(shell.ask("unwatch 2").value("removed"), QJsonValue(1));
    QVERIFY(shell.ask("unwatch 2").contains("error"));
    QVERIFY(shell.succeeds("update a 3"));
    QVERIFY(shell.succeeds("delete a"));
    QCOMPARE(shell.hear().value("notify"), QJsonValue("delete"));
    QCOMPARE(shell.ask("unwatch").value("removed"), QJsonValue(2));
}

void TessellumToolTest::theShellRunsTheLibrary()
{
    ShellProcess shell;
    QCOMPARE(shell.ask("stop"), QJsonObject({{"error", QString("the library does not run")}, {"result", 0}}));
    QCOMPARE(shell.ask("get a").value("error"), QJsonValue("the library does not run"));
    QVERIFY(shell.ask("locale").contains("error"));
    QCOMPARE(shell.ask("start").value("result"), QJsonValue(0));
    QCOMPARE(shell.ask("start").value("result"), QJsonValue(1));
    QCOMPARE(shell.ask("locale").value("default"), QJsonValue("C"));
    QCOMPARE(shell.ask("locale de_DE").value("default"), QJsonValue("de_DE"));
    QVERIFY(shell.ask("locale nonsense").contains("error"));
    QVERIFY(shell.succeeds("create text \"1,5\""));
    QCOMPARE(shell.ask("get text double").value("value"), QJsonValue(1.5));
    QCOMPARE(shell.ask("log critical").value("level"), QJsonValue(named("critical", 4)));
    QVERIFY(shell.ask("log nonsense").contains("error"));
    QVERIFY(shell.ask("help").value("commands").toArray().size() > 15);
    QVERIFY(shell.succeeds("watch create * All"));
    QCOMPARE(shell.ask("stop").value("result"), QJsonValue(1));
    QVERIFY(shell.succeeds("start"));
    QVERIFY(shell.succeeds("create text 1"));
    QVERIFY(shell.heard.isEmpty());
    QCOMPARE(shell.finish(), 2); // the end of the input stops the library
}

void TessellumToolTest::theShellTellsVersionsAndLoadsPlugins()
{
    ShellProcess shell;
    QVERIFY(shell.ask("version").contains("error"));
    QVERIFY(shell.succeeds("plugins " + QFileInfo(FOLDER_BACKEND).path().toUtf8()));
    QVERIFY(shell.succeeds("start"));
    const QJsonObject record = shell.ask("version").value("version").toObject();
    QCOMPARE(record.size(), 11);
    QCOMPARE(record.value("ProductName"), QJsonValue("Tessellum library"));
    QVERIFY(shell.ask("backends").value("types").toArray().contains("folder"));
    QCOMPARE(shell.ask("plugins " + QFileInfo(FOLDER_BACKEND).path().toUtf8()).value("result"),
             QJsonValue(-1));
    QCOMPARE(shell.ask("plugins \"\"").value("result"), QJsonValue(-2));
    QCOMPARE(shell.ask("get internal.modules.information.FolderBackend.FileVersion").value("value"),
             QJsonValue("1.0"));
}

void TessellumToolTest::theShellTellsItsGravestResult()
{
    QCOMPARE(runTool({"shell"}, "# nothing\n\nstart\nstop\n").exitCode, 0);
    QCOMPARE(runTool({"shell"}, "start\nget a\ncreate a 1").exitCode, 1);
    QCOMPARE(runTool({"shell"}, "start\nget\nget a\nquit\nnonsense\n").exitCode, 2);
    const Outcome outcome = runTool({"shell"}, "get \"a\nnonsense\nget\n");
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(outcome.output,
             QString("{\"error\":\"the JSON value at column 5 has no end\"}\n"
                     "{\"error\":\"nonsense is no command, see help\"}\n"
                     "{\"error\":\"usage: get PATH [METATYPE]\"}\n"));
}

QTEST_GUILESS_MAIN(TessellumToolTest)
#include "TessellumToolTest.moc"
