#include "ToolRunner.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace ToolSupport;

namespace {

/*! What "history" or "export" say with the plug-ins of this build. */
Outcome readRecording(const QStringList &arguments)
{
    return runTool(arguments + QStringList{"--plugins", STORAGE_PLUGINS});
}

/*! One text for each object of \a list. */
QStringList column(const QJsonValue &list, const char *key)
{
    QStringList texts;
    for (const QJsonValue &object : list.toArray())
        texts.append(object.toObject().value(QLatin1String(key)).toVariant().toString());
    return texts;
}

QStringList sorted(QStringList texts)
{
    texts.sort();
    return texts;
}

} // namespace

/*! The commands on recorded data, with the storage plug-ins of this build. */
class RecordingToolTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(folder->isValid());
    }
    void theShellRecords();
    void theShellRefusesOddData();
    void recordingsAreRead();
    void badRecordingsFail();
    void aStoragePluginNeedsItsSuffix();

private:
    /*! A shell that runs with the storage "disk" on the file \a name. */
    std::unique_ptr<ShellProcess> recorder(const QString &name) const
    {
        auto shell = std::make_unique<ShellProcess>();
        const QByteArray file = folder->filePath(name).toUtf8();
        const bool ready = shell->succeeds("plugins " STORAGE_PLUGINS) && shell->succeeds("start")
            && shell->succeeds("storage sqlite disk " + file);
        return ready ? std::move(shell) : nullptr;
    }
    /*! Leaves a ring of 3 that has wrapped once, and one text. */
    QString record() const
    {
        const auto shell = recorder("a.sqlite");
        for (const char *command :
             {"entry disk plant temp float 3", "entry disk plant note text", "add plant.temp 1.5 100",
              "add plant.temp 2.5 200", "add plant.temp 3.5 300", "add plant.temp 4.5 18446744073709551615",
              "add plant.note \"a \\\"b\\\", c\" 250"}) {
            if (!shell || !shell->succeeds(command))
                return {};
        }
        return shell->finish() == 0 ? folder->filePath("a.sqlite") : QString();
    }

    std::unique_ptr<QTemporaryDir> folder;
};

void RecordingToolTest::theShellRecords()
{
    const QString file = record();
    QVERIFY(!file.isEmpty());
    const auto shell = recorder("a.sqlite");
    QVERIFY(shell);
    const QJsonObject storages = shell->ask("storages");
    QCOMPARE(column(storages.value("storages"), "name"), QStringList("disk"));
    QCOMPARE(column(storages.value("storages"), "entries"), QStringList("2"));
    QVERIFY(storages.value("types").toArray().contains("volatile"));
    QVERIFY(shell->ask("entries").value("entries").toArray().isEmpty());

    // What the file has is attached as it is, whatever capacity is asked for.
    QJsonObject entry = shell->ask("entry disk plant temp float 7");
    QVERIFY(!entry.take("uuid").toString().isEmpty());
    QCOMPARE(entry,
             QJsonObject({{"ok", true},
                          {"classification", QString("plant")},
                          {"name", QString("temp")},
                          {"storage", QString("disk")},
                          {"category", QString("float")},
                          {"persistence", named("Persistent", 1)},
                          {"capacity", QString("3")},
                          {"status", named("Loaded", 3)},
                          {"count", 3},
                          {"first", QString("200")},
                          {"last", QString("18446744073709551615")}}));
    QVERIFY(shell->succeeds("entry - plant spare text:volt"));
    QCOMPARE(column(shell->ask("entries plant.s*").value("entries"), "name"), QStringList("spare"));

    const QJsonValue elements = shell->ask("elements plant.temp").value("elements");
    QCOMPARE(sorted(column(elements, "value")), QStringList({"2.5", "3.5", "4.5"}));
    QCOMPARE(sorted(column(shell->ask("range plant.temp 200 300").value("elements"), "value")),
             QStringList({"2.5", "3.5"}));
    QVERIFY(shell->ask("elements plant.temp Inactive").value("elements").toArray().isEmpty());

    // The next value of a full ring takes the place of the oldest.
    const int oldest = column(elements, "stamp").indexOf("200");
    QVERIFY(oldest >= 0);
    const QByteArray place = column(elements, "uuid").at(oldest).toUtf8();
    QCOMPARE(shell->ask("add plant.temp 5 400").value("uuid"), QJsonValue(QString(place)));
    QCOMPARE(shell->ask("element set plant.temp " + place + " 6").value("loaded"), QJsonValue(true));
    QCOMPARE(shell->ask("element unload plant.temp " + place).value("loaded"), QJsonValue(false));
    QCOMPARE(shell->ask("element load plant.temp " + place).value("loaded"), QJsonValue(true));
    QCOMPARE(column(shell->ask("range plant.temp 400 400").value("elements"), "value"), QStringList("6"));

    QCOMPARE(shell->ask("strategy plant.temp last {\"limit\":1}").value("type"), QJsonValue("last"));
    QCOMPARE(shell->ask("strategy plant.temp").value("type"), QJsonValue("last"));
    QCOMPARE(shell->ask("strategy plant.temp none").value("type"), QJsonValue(""));

    QCOMPARE(shell->ask("remove entry plant.spare").value("removed"), QJsonValue(1));
    QVERIFY(shell->succeeds("remove storage disk"));
    QVERIFY(shell->ask("storages").value("storages").toArray().isEmpty());
    QCOMPARE(shell->finish(), 0);
    QCOMPARE(readRecording({"history", file, "plant.temp", "--to", "400"}).output,
             QString("300 3.5\n400 6\n"));
}

void RecordingToolTest::theShellRefusesOddData()
{
    QCOMPARE(runTool({"shell"}, "storages\nentries\nremove entry a.b\n").output.count("does not run"), 3);
    const auto shell = recorder("a.sqlite");
    QVERIFY(shell && shell->succeeds("entry disk plant temp float"));
    for (const char *failing :
         {"storage sqlite disk b.sqlite", "storage nonsense b", "entry none plant a float",
          "add plant.none 1", "elements none", "element load plant.temp none", "strategy plant.temp nonsense",
          "strategy plant.temp last nonsense", "add plant.temp \"x\"", "add plant.temp [1]",
          "remove entry plant.none", "remove storage none"}) {
        QVERIFY2(shell->ask(failing).contains("error"), failing);
    }
    QVERIFY(shell->ask("elements plant.temp").value("elements").toArray().isEmpty());
    QCOMPARE(shell->ask("strategy plant.temp").value("type"), QJsonValue(""));
    QCOMPARE(column(shell->ask("storages").value("storages"), "name"), QStringList("disk"));
    QCOMPARE(shell->finish(), 1);
    for (const char *wrong :
         {"storage memory a x y", "entry - a b nonsense", "entry - a c float -1", "add a.b word",
          "add a.b 1 -1", "range a.b 1 x", "elements a.b nonsense", "remove nonsense a"}) {
        const QByteArray commands = QByteArray("start\nentry - a b float\n") + wrong;
        QVERIFY2(runTool({"shell"}, commands).exitCode == 2, wrong);
    }
}

void RecordingToolTest::recordingsAreRead()
{
    const QString file = record();
    QVERIFY(!file.isEmpty());
    QCOMPARE(readRecording({"history", file}).output,
             QString("plant.note 1 250 250\nplant.temp 3 200 18446744073709551615\n"));
    QCOMPARE(readRecording({"history", file, "plant.temp"}).output,
             QString("200 2.5\n300 3.5\n18446744073709551615 4.5\n"));
    QCOMPARE(readRecording({"history", file, "plant.temp", "--every", "101"}).output,
             QString("200 2.5\n18446744073709551615 4.5\n"));
    QCOMPARE(readRecording({"history", file, "plant.temp", "--from", "201", "--to", "300"}).output,
             QString("300 3.5\n"));
    QCOMPARE(readRecording({"export", file, "--csv"}).output,
             QString("entry,stamp,active,value\n"
                     "\"plant.note\",250,true,\"a \"\"b\"\", c\"\n"
                     "\"plant.temp\",200,true,2.5\n"
                     "\"plant.temp\",300,true,3.5\n"
                     "\"plant.temp\",18446744073709551615,true,4.5\n"));
    const QJsonArray all
        = QJsonDocument::fromJson(readRecording({"export", file, "--json"}).output.toUtf8()).array();
    QCOMPARE(all.size(), 4);
    QCOMPARE(all.first().toObject(),
             QJsonObject({{"entry", QString("plant.note")},
                          {"stamp", 250},
                          {"active", true},
                          {"value", QString("a \"b\", c")}}));
}

void RecordingToolTest::badRecordingsFail()
{
    const QByteArray content = "no recording";
    const QString broken = folder->filePath("broken.sqlite");
    QFile odd(broken);
    QVERIFY(odd.open(QIODevice::WriteOnly) && odd.write(content) == content.size());
    odd.close();
    const QString file = record();
    for (const QStringList &failing : {QStringList{"history", folder->filePath("none.sqlite")},
                                       {"history", folder->path()},
                                       {"export", broken, "--csv"},
                                       {"history", file, "plant.none"}}) {
        const Outcome outcome = readRecording(failing);
        QVERIFY2(outcome.exitCode == 1, qPrintable(failing.join(' ')));
        QVERIFY(outcome.output.isEmpty() && outcome.errors.contains("tessellum: "));
    }
    for (const QStringList &wrong : {QStringList{"history"},
                                     {"history", file, "--from"},
                                     {"history", file, "--every", "-1"},
                                     {"history", file, "--json"},
                                     {"export", file},
                                     {"export", file, "--csv", "--json"}}) {
        QVERIFY2(readRecording(wrong).exitCode == 2, qPrintable(wrong.join(' ')));
    }
    QVERIFY(odd.open(QIODevice::ReadOnly));
    QCOMPARE(odd.readAll(), content);
    QVERIFY(!QFile::exists(folder->filePath("none.sqlite")));
}

void RecordingToolTest::aStoragePluginNeedsItsSuffix()
{
    ShellProcess shell;
    QVERIFY(shell.succeeds("start"));
    for (const QString &suffix : {QString("bp"), QString("sp")}) {
        const QString place = folder->filePath(suffix);
        QVERIFY(QDir().mkdir(place));
        QVERIFY(QFile::copy(MEMORY_PLUGIN, place + "/memory." + suffix));
        QVERIFY(shell.succeeds("plugins " + place.toUtf8()));
        QCOMPARE(shell.ask("storages").value("types").toArray().contains("memory"), suffix == "sp");
    }
}

QTEST_GUILESS_MAIN(RecordingToolTest)
#include "RecordingToolTest.moc"
