#include "common/Steps.h"
#include "CrashCheck.h"
#include "Recorder.h"

#include <shared/logging/LogHandler.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <optional>

using Shared::Logging::LogHandler;
using Shared::Logging::LogMessageType;

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
        {QStringLiteral("constraints"), QStringLiteral("What the interval may be."), QStringLiteral("file"),
         here + QStringLiteral("/constraints.ini")},
        {QStringLiteral("seconds"),
         QStringLiteral("How long to record: 3 without it, or until SIGINT or SIGTERM with --serve."),
         QStringLiteral("seconds")},
        {QStringLiteral("serve"),
         QStringLiteral(
             "Let other processes, for instance the monitor, mirror configuration and values, and tell "
             "where in a line \"ready\".")},
        {QStringLiteral("crash"),
         QStringLiteral("Start a child that writes, kill it hard, and check what came back, in both modes.")},
        {QStringLiteral("write-until-killed"), QStringLiteral("Be that child.")},
        {QStringLiteral("mode"), QStringLiteral("The mode of the child's storage."), QStringLiteral("number"),
         QStringLiteral("0")},
    });
    parser.addPositionalArgument(
        QStringLiteral("ADDRESS:PORT"),
        QStringLiteral("With --serve: where to listen for the configuration and for the values; 127.0.0.1:0, "
                       "which takes a free port, where left out."),
        QStringLiteral("[ADDRESS:PORT [ADDRESS:PORT]]"));
}

/*! Nothing for arguments that are no addresses. */
std::optional<ServingOptions> servingOptions(const QStringList &arguments)
{
    constexpr int servers = 2;
    QVector<Address> addresses;
    for (const QString &argument : arguments) {
        const auto address = Address::Parse(argument);
        if (!address)
            return std::nullopt;
        addresses.append(*address);
    }
    while (addresses.size() < servers)
        addresses.append({QStringLiteral("127.0.0.1"), 0});
    return addresses.size() == servers ? std::make_optional(ServingOptions{addresses.at(0), addresses.at(1)})
                                       : std::nullopt;
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

    const bool serves = parser.isSet(QStringLiteral("serve"));
    double seconds = serves ? 0 : 3;
    if (parser.isSet(QStringLiteral("seconds"))) {
        seconds = parser.value(QStringLiteral("seconds")).toDouble();
        if (!(seconds > 0)) {
            out << "--seconds takes a number above 0" << Qt::endl;
            return usageError;
        }
    }
    const auto serving = servingOptions(parser.positionalArguments());
    if (!serving || (!serves && !parser.positionalArguments().isEmpty())) {
        out << "--serve takes at most two of the kind ADDRESS:PORT" << Qt::endl;
        return usageError;
    }
    const QString plugins = parser.value(QStringLiteral("plugins"));
    if (parser.isSet(QStringLiteral("write-until-killed"))) {
        return WriteUntilKilled({plugins, parser.value(QStringLiteral("database")),
                                 parser.value(QStringLiteral("mode")).toInt()});
    }
    std::optional<QTemporaryDir> temporary; // only where it is used: a killed process leaves it
    if (parser.isSet(QStringLiteral("crash")) || !parser.isSet(QStringLiteral("database")))
        temporary.emplace();
    bool held = false;
    if (parser.isSet(QStringLiteral("crash"))) {
        out << "A recorder that is killed" << Qt::endl;
        held = checkCrashes(plugins, *temporary, out);
    } else {
        // Who connects and leaves is the business of those who do.
        LogHandler::SetLogLevel(LogMessageType::warning);
        out << "The recorder" << Qt::endl;
        RecorderOptions options;
        options.plugins = plugins;
        options.configurationFile = parser.value(QStringLiteral("config"));
        options.constraintsFile = parser.value(QStringLiteral("constraints"));
        options.serving = serves ? serving : std::nullopt;
        options.databaseFile = parser.isSet(QStringLiteral("database"))
            ? parser.value(QStringLiteral("database"))
            : temporary->filePath(QStringLiteral("recording.sqlite"));
        options.durationMs = static_cast<int>(seconds * 1000);
        held = Recorder(options, out).run();
    }
    return TellEnd(out, held);
}
