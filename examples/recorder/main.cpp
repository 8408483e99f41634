#include "CrashCheck.h"
#include "Recorder.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>

namespace {

constexpr int usageError = 2;

void addOptions(QCommandLineParser &parser)
{
    const QString here = QCoreApplication::applicationDirPath();
    parser.setApplicationDescription(
        QStringLiteral("Records this machine's values into a SQLite file, restarts, and reads them back."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("config"), QStringLiteral("Interval, capacity and memory strategy."),
         QStringLiteral("file"), here + QStringLiteral("/recorder.json")},
        {QStringLiteral("database"),
         QStringLiteral("Record into this file, which stays; without it into a temporary one."),
         QStringLiteral("file")},
        {QStringLiteral("plugins"), QStringLiteral("The folder of the storage plug-ins."),
         QStringLiteral("folder"), here + QStringLiteral("/../../plugins")},
        {QStringLiteral("seconds"), QStringLiteral("How long to record."), QStringLiteral("seconds"),
         QStringLiteral("3")},
        {QStringLiteral("crash"),
         QStringLiteral("Start a child that writes, kill it hard, and check what came back, in both modes.")},
        {QStringLiteral("write-until-killed"), QStringLiteral("Be that child.")},
        {QStringLiteral("mode"), QStringLiteral("The mode of the child's storage."), QStringLiteral("number"),
         QStringLiteral("0")},
    });
}

bool checkCrashes(const QString &plugins, const QTemporaryDir &folder, QTextStream &out)
{
    bool held = true;
    for (const int mode : {0, 1}) {
        const CrashOptions options{plugins, folder.filePath(QStringLiteral("crash%1.sqlite").arg(mode)),
                                   mode};
        held = KillAndCheck(options, out) && held;
    }
    return held;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    addOptions(parser);
    parser.process(application);
    QTextStream out(stdout);
    out.setCodec("UTF-8");

    bool isNumber = false;
    const double seconds = parser.value(QStringLiteral("seconds")).toDouble(&isNumber);
    if (!isNumber || seconds <= 0) {
        out << "--seconds takes a number above 0" << Qt::endl;
        return usageError;
    }
    const QString plugins = parser.value(QStringLiteral("plugins"));
    if (parser.isSet(QStringLiteral("write-until-killed"))) {
        return WriteUntilKilled({plugins, parser.value(QStringLiteral("database")),
                                 parser.value(QStringLiteral("mode")).toInt()});
    }
    const QTemporaryDir temporary;
    bool held = false;
    if (parser.isSet(QStringLiteral("crash"))) {
        out << "A recorder that is killed" << Qt::endl;
        held = checkCrashes(plugins, temporary, out);
    } else {
        out << "The recorder" << Qt::endl;
        RecorderOptions options;
        options.plugins = plugins;
        options.configurationFile = parser.value(QStringLiteral("config"));
        options.databaseFile = parser.isSet(QStringLiteral("database"))
            ? parser.value(QStringLiteral("database"))
            : temporary.filePath(QStringLiteral("recording.sqlite"));
        options.durationMs = static_cast<int>(seconds * 1000);
        held = Recorder(options, out).run();
    }
    out << (held ? "every step held" : "a step did NOT hold") << Qt::endl;
    return held ? 0 : 1;
}
