#include "RunningLibrary.h"
#include "Shell.h"

#include <shared/logging/LogHandler.h>

#include <QJsonArray>

namespace Tessellum::Tool {

Shell::Shell()
    : watches(lines)
{ }

Shell::~Shell()
{
    watches.clear();
    uninitializeLibrary();
}

int Shell::run(std::istream &input)
{
    int gravest = Success;
    std::string line;
    while (std::getline(input, line)) {
        const ShellCommand command = ParseShellCommand(QByteArray::fromStdString(line));
        if (command.name == QLatin1String("quit"))
            break;
        if (!command.name.isEmpty() || !command.error.isEmpty())
            gravest = qMax(gravest, answer(command));
    }
    return gravest;
}

int Shell::answer(const ShellCommand &command)
{
    try {
        QJsonObject result = execute(command);
        result.insert(QStringLiteral("ok"), true);
        lines.write(result);
        return Success;
    } catch (const ToolError &error) {
        QJsonObject result = error.details;
        result.insert(QStringLiteral("error"), error.text);
        lines.write(result);
        return error.code;
    }
}

QJsonObject Shell::execute(const ShellCommand &command)
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
        {"start", "", 0, 0, &Shell::start},
        {"stop", "", 0, 0, &Shell::stop},
        {"backend", "TYPE NAME [DATA [ACCESS]]", 2, 4, &Shell::createBackend},
        {"backends", "", 0, 0, &Shell::listBackends},
        {"save", "NAME", 1, 1, &Shell::saveBackend},
        {"query", "PATTERN", 1, 1, &Shell::query},
        {"get", "PATH [METATYPE]", 1, 2, &Shell::get},
        {"create", "PATH [VALUE [POINT [ACCESS]]]", 1, 4, &Shell::create},
        {"update", "PATH VALUE [POINT]", 2, 3, &Shell::update},
        {"delete", "PATH [POINT]", 1, 2, &Shell::remove},
        {"watch", "create|update|delete PATTERN [POINT]", 2, 3, &Shell::watch},
        {"unwatch", "[NUMBER]", 0, 1, &Shell::unwatch},
        {"validations", "", 0, 0, &Shell::listValidations},
        {"assign", "PATTERN VALIDATION", 2, 2, &Shell::assignValidation},
        {"unassign", "PATTERN VALIDATION", 2, 2, &Shell::removeValidation},
        {"log", "verbose|debug|log|warning|critical|fatal", 1, 1, &Shell::setLogLevel},
        {"locale", "[NAME]", 0, 1, &Shell::locale},
        {"help", "", 0, 0, &Shell::help},
    };
    return entries;
}

QString Shell::Help()
{
    QString text;
    for (const Entry &entry : Entries())
        text += QStringLiteral("  %1 %2\n")
                    .arg(QString::fromLatin1(entry.name), QString::fromLatin1(entry.usage));
    return text + QStringLiteral("  quit\n");
}

QJsonObject Shell::help(const Arguments &)
{
    QJsonArray commands;
    for (const QString &line : Help().split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        commands.append(line.trimmed());
    return {{QStringLiteral("commands"), commands}};
}

QJsonObject Shell::start(const Arguments &)
{
    const int result = initializeLibrary();
    const QJsonObject object{{QStringLiteral("result"), result}};
    if (result != 0)
        Fail(result > 0 ? QStringLiteral("the library runs already") : QStringLiteral("the start failed"),
             object);
    return object;
}

QJsonObject Shell::stop(const Arguments &)
{
    watches.clear();
    const int result = uninitializeLibrary();
    const QJsonObject object{{QStringLiteral("result"), result}};
    if (result != 1)
        Fail(QStringLiteral("the library does not run"), object);
    return object;
}

QJsonObject Shell::setLogLevel(const Arguments &arguments)
{
    using Shared::Logging::LogMessageType;
    const LogMessageType level = arguments.enumerator(0, LogMessageType::log);
    Shared::Logging::LogHandler::SetLogLevel(level);
    return {{QStringLiteral("level"), EnumJson(level)}};
}

QJsonObject Shell::locale(const Arguments &arguments)
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
    QJsonArray registered;
    for (const QLocale &locale : localization->getRegisteredLocales())
        registered.append(locale.name());
    return {{QStringLiteral("default"), localization->defaultLocale().name()},
            {QStringLiteral("registered"), registered}};
}

} // namespace Tessellum::Tool
