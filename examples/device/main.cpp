#include "common/Steps.h"
#include "DeviceRun.h"
#include "Simulation.h"

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
        "Sets and measures a power supply, which is simulated in a second process, over TCP and UDP. Ends "
        "with 0 if every step held."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("units"), QStringLiteral("The units of the quantities."), QStringLiteral("file"),
         QCoreApplication::applicationDirPath() + QStringLiteral("/units.json")},
        {QStringLiteral("locale"), QStringLiteral("How values are shown, de_DE without it."),
         QStringLiteral("name"), QStringLiteral("de_DE")},
        {QStringLiteral("set"),
         QStringLiteral("What a person types, as voltage=\"12,5 V\"; current and frequency are the others. "
                        "May be given again."),
         QStringLiteral("quantity=text")},
        {QStringLiteral("readings"), QStringLiteral("How often to measure, 50 without it."),
         QStringLiteral("number"), QStringLiteral("50")},
        {QStringLiteral("patience"), QStringLiteral("How long to wait for an answer, 10000 without it."),
         QStringLiteral("milliseconds"), QStringLiteral("10000")},
        {QStringLiteral("tcp"), QStringLiteral("With --udp: a supply that runs already."),
         QStringLiteral("ADDRESS:PORT")},
        {QStringLiteral("udp"), QStringLiteral("With --tcp."), QStringLiteral("ADDRESS:PORT")},
        {QStringLiteral("fault"),
         QStringLiteral("What is wrong with the simulated one: %1.")
             .arg(Simulation::FaultNames().join(QStringLiteral(", "))),
         QStringLiteral("name"), QStringLiteral("none")},
        {QStringLiteral("simulate"), QStringLiteral("Be a simulated supply until a signal ends it.")},
        {QStringLiteral("end-with-input"), QStringLiteral("With --simulate: or until the input ends.")},
    });
}

/*! What was typed; the texts of a person who writes with a comma if there is nothing. Nothing for what is no
 * such pair. */
std::optional<QVector<QPair<QString, QString>>> typedTexts(const QStringList &pairs)
{
    QVector<QPair<QString, QString>> typed;
    for (const QString &pair : pairs.isEmpty()
             ? QStringList{QStringLiteral("voltage=5 mV"), QStringLiteral("voltage=12,5 V"),
                           QStringLiteral("current=250 mA"), QStringLiteral("frequency=1,5 kHz")}
             : pairs) {
        const int end = pair.indexOf(QLatin1Char('='));
        if (end <= 0)
            return std::nullopt;
        typed.append({pair.left(end), pair.mid(end + 1)});
    }
    return typed;
}

std::optional<DeviceOptions> readOptions(const QCommandLineParser &parser)
{
    DeviceOptions options;
    const QString locale = parser.value(QStringLiteral("locale"));
    const auto typed = typedTexts(parser.values(QStringLiteral("set")));
    const auto tcp = Address::Parse(parser.value(QStringLiteral("tcp")));
    const auto udp = Address::Parse(parser.value(QStringLiteral("udp")));
    options.unitsFile = parser.value(QStringLiteral("units"));
    options.locale = QLocale(locale);
    options.readings = parser.value(QStringLiteral("readings")).toInt();
    options.patienceMs = parser.value(QStringLiteral("patience")).toInt();
    options.fault = parser.value(QStringLiteral("fault"));
    // What names no locale gives one of another name.
    const bool isLocale = locale == QLatin1String("C") || options.locale != QLocale::c();
    const bool namesSupply = parser.isSet(QStringLiteral("tcp")) || parser.isSet(QStringLiteral("udp"));
    if (!typed || !isLocale || options.readings < 1 || options.patienceMs < 1
        || !Simulation::ParseFault(options.fault) || (namesSupply && !(tcp && udp))
        || !parser.positionalArguments().isEmpty())
        return std::nullopt;
    options.typed = *typed;
    if (namesSupply)
        options.addresses = SupplyAddresses{*tcp, *udp};
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
    if (parser.isSet(QStringLiteral("simulate")))
        return RunSimulation(options->fault, parser.isSet(QStringLiteral("end-with-input")));
    // What goes wrong is told by the steps.
    LogHandler::SetLogLevel(LogMessageType::critical);
    out << "The power supply" << Qt::endl;
    return TellEnd(out, DeviceRun(*options, out).run());
}
