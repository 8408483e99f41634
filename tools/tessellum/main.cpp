#include "ConversionCommands.h"
#include "DownloadCommand.h"
#include "Host.h"
#include "Shell.h"
#include "StorageCommands.h"
#include "ToolError.h"
#include "ValueCommands.h"

#include <QCoreApplication>

#include <cstdio>
#include <iostream>
#include <limits>
#include <string>

using namespace Tessellum::Tool;

namespace {

QString usage()
{
    return QStringLiteral(
        "usage: tessellum tree SOURCE [PATTERN]      print the values of a file or a running process\n"
        "       tessellum get SOURCE PATH            print one value\n"
        "       tessellum set SOURCE PATH VALUE      set one value, and save a file\n"
        "       tessellum watch URL [PATTERN] [--count N]\n"
        "                                            print what changes in a process, one object a line\n"
        "       tessellum history FILE.sqlite [ENTRY] [--from STAMP] [--to STAMP] [--every SPAN]\n"
        "                                            print the entries, or the values of one\n"
        "       tessellum export FILE.sqlite --csv|--json\n"
        "                                            print all values\n"
        "       tessellum download URL FILE          fetch a URL into a file, with a bar on a terminal\n"
        "       tessellum shell                      read commands from standard input\n"
        "       tessellum host --config FILE.json [--serve ws://ADDRESS:PORT]\n"
        "                      [--storage TYPE NAME LOCATION]... [--serve-storage NAME URL]...\n"
        "                      [--log LEVEL]         hold values and offer them to other processes\n"
        "       tessellum format VALUE --spec FILE.json [--locale LOCALE] [--prefix PREFIX]\n"
        "                                            show a value with its unit, by best fit or in a prefix\n"
        "       tessellum parse TEXT [--locale LOCALE]\n"
        "                                            read a value with its prefix and unit\n"
        "       tessellum duration TEXT              read a duration, print its seconds\n"
        "       tessellum validate FILE.json SCHEMA.json\n"
        "                                            tell whether a file keeps to a JSON Schema\n"
        "       tessellum --help\n");
}

QString help()
{
    return usage()
        + QStringLiteral(
               "\n"
               "Values are JSON; on a command line a text needs quotes around its quotes: '\"text\"'.\n"
               "A path is written with dots, a.b.c; the elements of an array \"a\" are <a>.0, <a>.1.\n"
               "A pattern is a path with the wildcards * and ?; \"a.*\" is all that lies below a.\n"
               "Time stamps are those of the recording, such as milliseconds since 1970; SPAN is so many of\n"
               "them. Storage plug-ins come from the folder of this installation, or from --plugins FOLDER.\n"
               "Exit codes: 0, 1 if an operation failed, 2 for a wrong usage. Log lines go to standard "
               "error.\n"
               "\n"
               "SOURCE is a JSON file, or the URL of a running process: ws://HOST:PORT/?path=PATH, with the\n"
               "path of the subtree that is meant. Paths and patterns are those within the subtree. The\n"
               "command fails if nobody answers within --timeout SECONDS, which are 5, or within the\n"
               "milliseconds of an item timeout=MS of the URL. An item id=ID is the name under which the\n"
               "process lists this client. A watch tells \"create\", \"update\", \"delete\" and \"status\" "
               "until\n"
               "it is interrupted or has told N changes; it fails if the connection is lost.\n"
               "\n"
               "A download follows redirects; FILE is written when all has come, and otherwise stays as it\n"
               "was. The bar goes to standard error.\n"
               "\n"
               "A host holds the values of NAME.json at host.NAME until SIGINT, SIGTERM or \"quit\" ends "
               "it.\n"
               "With --serve it offers its tree at ADDRESS and PORT (0 takes a free one, 0.0.0.0 is all\n"
               "addresses): ?path=host is all of it. --serve-storage does so with a storage. It writes one "
               "line\n"
               "{\"ready\":true,\"path\":...,\"port\":...,\"storage_ports\":{...}} once it serves, then "
               "reads\n"
               "commands as the shell does; the end of its input does not end it.\n"
               "\n"
               "FILE.json of format describes a unit; LOCALE is a name such as de_DE, whose notation "
               "of\n"
               "numbers is tried first, and which is the system's if not given; PREFIX is k, m and the "
               "like.\n"
               "\n"
               "The shell reads one command a line. Arguments stand between blanks; one in double quotes is\n"
               "a JSON string, one that begins with a bracket a JSON array or object. It writes one JSON\n"
               "object a line: {\"ok\":true,...} or {\"error\":\"text\",...} for each command, and\n"
               "{\"notify\":...} for what a watch hears, as it comes. Points and levels are given by name "
               "or\n"
               "number; points are Done where none is given, and All for a watch. Its exit code is the\n"
               "gravest of its commands.\n")
        + Shell::Help();
}

void print(const QString &text, std::FILE *file)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), file);
}

quint64 stampOf(const QString &text)
{
    bool isNumber = false;
    const quint64 stamp = text.toULongLong(&isNumber);
    if (!isNumber)
        FailUsage(QStringLiteral("%1 is no time stamp").arg(text));
    return stamp;
}

/*! Reads "FILE [ENTRY] [--option VALUE]..." from the third argument on; what is no option of a history is
 * left in \a flags. */
HistoryRequest historyRequest(const QStringList &arguments, QStringList &flags)
{
    HistoryRequest request;
    request.plugins = DefaultPluginFolder();
    QStringList words;
    for (int i = 2; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == QLatin1String("--from"))
            request.from = stampOf(arguments.value(++i));
        else if (argument == QLatin1String("--to"))
            request.to = stampOf(arguments.value(++i));
        else if (argument == QLatin1String("--every"))
            request.every = stampOf(arguments.value(++i));
        else if (argument == QLatin1String("--plugins"))
            request.plugins = arguments.value(++i);
        else
            (argument.startsWith(QLatin1String("--")) ? flags : words).append(argument);
    }
    if (words.isEmpty() || words.size() > 2)
        FailUsage(usage());
    request.file = words.at(0);
    request.entry = words.value(1);
    return request;
}

void runOnRecording(const QString &command, const QStringList &arguments, QTextStream &out)
{
    QStringList flags;
    const HistoryRequest request = historyRequest(arguments, flags);
    const bool asJson = flags == QStringList{QStringLiteral("--json")};
    if (command == QLatin1String("history") && flags.isEmpty())
        PrintHistory(request, out);
    else if (command == QLatin1String("export") && (asJson || flags == QStringList{QStringLiteral("--csv")}))
        ExportData(request, asJson, out);
    else
        FailUsage(usage());
}

/*! Takes "--name NUMBER" out of \a arguments; \a fallback if it is not there. */
double takeNumber(QStringList &arguments, const char *name, double fallback)
{
    const int index = arguments.indexOf(QLatin1String(name));
    if (index < 0)
        return fallback;
    bool isNumber = false;
    const double number = arguments.value(index + 1).toDouble(&isNumber);
    if (!isNumber || number < 0 || number > std::numeric_limits<int>::max())
        FailUsage(QStringLiteral("%1 takes a number").arg(QLatin1String(name)));
    arguments.erase(arguments.begin() + index, arguments.begin() + index + 2);
    return number;
}

/*! False if these are no arguments of a command on values. */
bool runOnValues(const QString &command, QStringList arguments, QTextStream &out)
{
    ValueSource source;
    source.timeoutMs = static_cast<qint64>(takeNumber(arguments, "--timeout", -1) * 1000);
    const bool isWatch = command == QLatin1String("watch");
    const int most = isWatch ? static_cast<int>(takeNumber(arguments, "--count", 0)) : 0;
    source.text = arguments.value(2);
    const int count = arguments.size() - 2;
    if (command == QLatin1String("tree") && (count == 1 || count == 2))
        PrintTree(source, arguments.value(3, QStringLiteral("*")), out);
    else if (command == QLatin1String("get") && count == 2)
        PrintValue(source, arguments.at(3), out);
    else if (command == QLatin1String("set") && count == 3)
        SetValue(source, arguments.at(3), arguments.at(4));
    else if (isWatch && (count == 1 || count == 2))
        WatchValues(source, arguments.value(3, QStringLiteral("*")), most);
    else
        return false;
    return true;
}

int runShell()
{
    return Shell().run([](std::string &line) { return static_cast<bool>(std::getline(std::cin, line)); });
}

int run(const QStringList &arguments)
{
    const QString command = arguments.value(1);
    const int count = arguments.size() - 2;
    QString text;
    QTextStream out(&text);
    if (command == QLatin1String("--help") && count == 0) {
        out << help();
    } else if (command == QLatin1String("history") || command == QLatin1String("export")) {
        runOnRecording(command, arguments, out);
    } else if (command == QLatin1String("download") && count == 2) {
        DownloadFile(arguments.at(2), arguments.at(3));
    } else if (command == QLatin1String("shell") && count == 0) {
        return runShell();
    } else if (command == QLatin1String("host")) {
        RunHost(ParseHostRequest(arguments.mid(2)));
    } else if (!runOnValues(command, arguments, out)
               && !RunConversionCommand(command, arguments.mid(2), out)) {
        print(usage(), stderr);
        return WrongUsage;
    }
    out.flush();
    print(text, stdout);
    return Success;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    try {
        return run(QCoreApplication::arguments());
    } catch (const ToolError &error) {
        print(QStringLiteral("tessellum: %1\n").arg(error.text), stderr);
        return error.code;
    }
}
