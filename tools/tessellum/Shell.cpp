#include "RunningLibrary.h"
#include "Shell.h"

#include <shared/logging/LogHandler.h>

namespace Tessellum::Tool {

namespace {

constexpr int usageWidth = 46;

QString helpLine(const char *name, const char *usage, const char *meaning)
{
    const QString call = QStringLiteral("%1 %2").arg(QLatin1String(name), QLatin1String(usage));
    return QStringLiteral("  %1 %2\n").arg(call.leftJustified(usageWidth), QLatin1String(meaning));
}

} // namespace

Shell::Shell()
    : watches(lines)
{ }

Shell::~Shell()
{
    watches.clear();
    uninitializeLibrary();
}

int Shell::run(const std::function<bool(std::string &line)> &readLine)
{
    int gravest = Success;
    std::string line;
    while (!hasQuit && readLine(line)) {
        const ShellCommand command = ParseShellCommand(QByteArray::fromStdString(line));
        hasQuit = command.name == QLatin1String("quit");
        if (!hasQuit && (!command.name.isEmpty() || !command.error.isEmpty()))
            gravest = qMax(gravest, answer(command));
    }
    return gravest;
}

int Shell::answer(const ShellCommand &command)
{
    try {
        QVariantMap result = execute(command);
        result.insert(QStringLiteral("ok"), true);
        lines.write(result);
        return Success;
    } catch (const ToolError &error) {
        QVariantMap result = error.details;
        result.insert(QStringLiteral("error"), error.text);
        lines.write(result);
        return error.code;
    }
}

QVariantMap Shell::execute(const ShellCommand &command)
{
    if (!command.error.isEmpty())
        FailUsage(command.error);
    for (const Entry &entry : Entries()) {
        if (command.name == QLatin1String(entry.name)) {
            const Arguments arguments(command);
            if (arguments.size() < entry.least || arguments.size() > entry.most)
                FailUsage(QStringLiteral("usage: %1 %2").arg(command.name, QString::fromLatin1(entry.usage)));
            return (this->*entry.run)(arguments);
        }
    }
    FailUsage(QStringLiteral("%1 is no command, see help").arg(command.name));
}

const QVector<Shell::Entry> &Shell::Entries()
{
    static const QVector<Entry> entries = {
        {"start", "", "start the library", 0, 0, &Shell::start},
        {"stop", "", "end the watches and stop the library", 0, 0, &Shell::stop},
        {"backend", "TYPE NAME [DATA [ACCESS]]",
         "create a backend; DATA is what its type takes, such as a file", 2, 4, &Shell::createBackend},
        {"backends", "", "the backends, and the types that can be created", 0, 0, &Shell::listBackends},
        {"save", "NAME", "write a backend's values to its source", 1, 1, &Shell::saveBackend},
        {"query", "PATTERN", "the attributes that match", 1, 1, &Shell::query},
        {"get", "PATH [METATYPE]", "one value, converted to the type of that name or number", 1, 2,
         &Shell::get},
        {"create", "PATH [VALUE [POINT [ACCESS]]]",
         "create an attribute, or overwrite it; ACCESS: 1 read, 2 write, 3 both", 1, 4, &Shell::create},
        {"update", "PATH VALUE [POINT]", "set a value", 2, 3, &Shell::update},
        {"delete", "PATH [POINT]", "delete an attribute and all beneath it", 1, 2, &Shell::remove},
        {"watch", "create|update|delete PATTERN [POINT]", "tell what happens to matching paths", 2, 3,
         &Shell::watch},
        {"unwatch", "[NUMBER]", "end one watch, or all", 0, 1, &Shell::unwatch},
        {"validations", "", "the ids of the validations", 0, 0, &Shell::listValidations},
        {"assign", "PATTERN VALIDATION", "assign a validation to matching attributes", 2, 2,
         &Shell::assignValidation},
        {"unassign", "PATTERN VALIDATION", "take a validation from matching attributes", 2, 2,
         &Shell::removeValidation},
        {"storage", "TYPE NAME [LOCATION [MODE [HINT]]]",
         "add a storage; LOCATION is what its type takes, such as a file; HINT 0 attaches its entries", 2, 5,
         &Shell::addStorage},
        {"storages", "", "the storages with what they hold, and the types that can be added", 0, 0,
         &Shell::listStorages},
        {"entry", "STORAGE CLASSIFICATION NAME CATEGORY [CAPACITY]",
         "add an entry, or attach what the storage has: STORAGE is - for none, CATEGORY such as float or "
         "text:volt",
         4, 5, &Shell::addEntry},
        {"entries", "[PATTERN]", "the entries whose classification.name matches", 0, 1, &Shell::listEntries},
        {"add", "ENTRY VALUE [STAMP [POINT]]",
         "add a value; ENTRY is a uuid or classification.name, STAMP milliseconds since 1970", 2, 4,
         &Shell::addValue},
        {"elements", "ENTRY [MASK]", "the elements; MASK: Active, Inactive, All", 1, 2, &Shell::listElements},
        {"range", "ENTRY FIRST LAST [MASK]", "the elements with a stamp from FIRST to LAST", 3, 4,
         &Shell::listRange},
        {"element", "set ENTRY UUID VALUE [POINT] | load|unload ENTRY UUID",
         "change one element, read its value from the storage, or drop it from memory", 3, 5,
         &Shell::changeElement},
        {"strategy", "ENTRY [TYPE|none [PARAMETERS]]",
         "show or set what stays in memory; PARAMETERS such as {\"limit\":10}", 1, 3, &Shell::memoryStrategy},
        {"remove", "storage NAME | entry UUID|PATTERN", "take a storage away, or entries with their values",
         2, 2, &Shell::removeData},
        {"remote", "NAME URL",
         "mirror a subtree of another process as backend NAME; URL as ws://HOST:PORT/?path=PATH, with id=ID "
         "if "
         "that is not NAME",
         2, 2, &Shell::remote},
        {"control", "ID connect|close", "open or close the connection of the client with that id", 2, 2,
         &Shell::control},
        {"status", "", "the clients with their status, the peers with their address, the ports of servers", 0,
         0, &Shell::status},
        {"log", "verbose|debug|log|warning|critical|fatal", "set the least level that is logged", 1, 1,
         &Shell::setLogLevel},
        {"locale", "[NAME]", "the locales; with a name, set the default", 0, 1, &Shell::locale},
        {"plugins", "PATH", "load the plug-ins of a folder", 1, 1, &Shell::addPlugins},
        {"version", "", "the version record of the running library", 0, 0, &Shell::version},
        {"help", "", "this list", 0, 0, &Shell::help},
    };
    return entries;
}

QString Shell::Help()
{
    QString text;
    for (const Entry &entry : Entries())
        text += helpLine(entry.name, entry.usage, entry.meaning);
    return text + helpLine("quit", "", "end the shell");
}

QVariantMap Shell::help(const Arguments &)
{
    QVariantList commands;
    for (const QString &line : Help().split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        commands.append(line.simplified());
    return {{QStringLiteral("commands"), commands}};
}

QVariantMap Shell::start(const Arguments &)
{
    const int result = initializeLibrary();
    const QVariantMap object{{QStringLiteral("result"), result}};
    if (result != 0)
        Fail(result > 0 ? QStringLiteral("the library runs already") : QStringLiteral("the start failed"),
             object);
    return object;
}

QVariantMap Shell::stop(const Arguments &)
{
    watches.clear();
    const int result = uninitializeLibrary();
    const QVariantMap object{{QStringLiteral("result"), result}};
    if (result != 1)
        Fail(QStringLiteral("the library does not run"), object);
    return object;
}

QVariantMap Shell::setLogLevel(const Arguments &arguments)
{
    using Shared::Logging::LogMessageType;
    const LogMessageType level = arguments.enumerator(0, LogMessageType::log);
    Shared::Logging::LogHandler::SetLogLevel(level);
    return {{QStringLiteral("level"), EnumJson(level)}};
}

QVariantMap Shell::locale(const Arguments &arguments)
{
    std::weak_ptr<Core::CoreLocalizationInterface> weak;
    const auto localization = getLocalizationInterface(weak) ? weak.lock() : nullptr;
    if (!localization)
        Fail(QStringLiteral("the library does not run"));
    if (arguments.size() == 1) {
        const QLocale chosen(arguments.text(0));
        // Qt answers with the C locale for a name that it does not know.
        if (chosen == QLocale::c() && arguments.text(0) != QLatin1String("C"))
            Fail(QStringLiteral("%1 is no locale").arg(arguments.text(0)));
        localization->setDefaultLocale(chosen);
    }
    QVariantList registered;
    for (const QLocale &locale : localization->getRegisteredLocales())
        registered.append(locale.name());
    return {{QStringLiteral("default"), localization->defaultLocale().name()},
            {QStringLiteral("registered"), registered}};
}

QVariantMap Shell::version(const Arguments &)
{
    if (!getCoreInterface())
        Fail(QStringLiteral("the library does not run"));
    unsigned int count = 0;
    getVersionInformation(0, nullptr, nullptr, &count);
    QVariantMap record;
    for (unsigned int index = 0; index < count; ++index) {
        QString name;
        QString value;
        getVersionInformation(static_cast<int>(index), &value, &name, nullptr);
        record.insert(name, value);
    }
    return {{QStringLiteral("version"), record}};
}

QVariantMap Shell::addPlugins(const Arguments &arguments)
{
    const int result = addPluginSearchPath(arguments.text(0));
    const QVariantMap object{{QStringLiteral("result"), result}};
    if (result != 0)
        Fail(result == -1 ? QStringLiteral("the folder was given before")
                          : QStringLiteral("the folder has no name"),
             object);
    return object;
}

} // namespace Tessellum::Tool
