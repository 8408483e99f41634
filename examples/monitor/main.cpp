#include "common/Steps.h"
#include "Monitor.h"

#include <shared/logging/LogHandler.h>

#include <QCommandLineParser>
#include <QCoreApplication>

using Shared::Logging::LogHandler;
using Shared::Logging::LogMessageType;

namespace {

constexpr int usageError = 2;

void addOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "Shows what a recorder records, which runs in another process: recorder --serve tells its "
        "addresses. Ends with 0 if everything that was asked for was seen."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("for"),
         QStringLiteral("How long to show it, 10 without it; SIGINT or SIGTERM end it earlier."),
         QStringLiteral("seconds"), QStringLiteral("10")},
        {QStringLiteral("interval"),
         QStringLiteral("Have the recorder take a value each so many milliseconds, and see it do so."),
         QStringLiteral("milliseconds")},
        {QStringLiteral("at"),
         QStringLiteral("When to ask for that, if values have come by then; 3 without it."),
         QStringLiteral("seconds"), QStringLiteral("3")},
        {QStringLiteral("expect-restart"), QStringLiteral("See the recorder go and come back.")},
    });
    parser.addPositionalArgument(QStringLiteral("configuration"),
                                 QStringLiteral("ADDRESS:PORT of the recorder's configuration."));
    parser.addPositionalArgument(QStringLiteral("data"), QStringLiteral("ADDRESS:PORT of its values."));
}

/*! An option's number times \a factor as a whole one, \a preset where it is missing; nothing for what is no
 * number from \a least on. */
std::optional<int> number(const QCommandLineParser &parser, const QString &option, double factor, int least,
                          int preset)
{
    constexpr double most = 1e9;
    const QString text = parser.value(option);
    if (text.isEmpty())
        return preset;
    bool isNumber = false;
    const double value = text.toDouble(&isNumber) * factor;
    return isNumber && value >= least && value <= most ? std::make_optional(static_cast<int>(value))
                                                       : std::nullopt;
}

std::optional<MonitorOptions> readOptions(const QCommandLineParser &parser)
{
    constexpr double milliseconds = 1000;
    const QStringList arguments = parser.positionalArguments();
    const auto configuration = Address::Parse(arguments.value(0));
    const auto data = Address::Parse(arguments.value(1));
    const auto duration = number(parser, QStringLiteral("for"), milliseconds, 1, 0);
    const auto changeAfter = number(parser, QStringLiteral("at"), milliseconds, 0, 0);
    const auto interval = number(parser, QStringLiteral("interval"), 1, 1, 0);
    if (arguments.size() != 2 || !configuration || !data || !duration || !changeAfter || !interval)
        return std::nullopt;
    MonitorOptions options;
    options.mirror = {*configuration, *data};
    options.durationMs = *duration;
    options.intervalMs = *interval;
    options.changeAfterMs = *changeAfter;
    options.expectsRestart = parser.isSet(QStringLiteral("expect-restart"));
    return options;
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

    const auto options = readOptions(parser);
    if (!options) {
        out << parser.helpText();
        return usageError;
    }
    // What becomes of the connections is told below, where log lines would spoil the picture.
    LogHandler::SetLogLevel(LogMessageType::critical);
    out << "The monitor" << Qt::endl;
    return TellEnd(out, Monitor(*options, out).run());
}
