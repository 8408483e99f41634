#include "common/EndSignals.h"
#include "Simulation.h"
#include "SimulationProcess.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>
#include <QTextStream>

#include <array>
#include <unistd.h>

namespace {

constexpr int patienceMs = 30000;
const QString readyWord = QStringLiteral("ready ");

} // namespace

QString SupplyAddresses::toLine() const
{
    const QJsonObject where{{QStringLiteral("tcp"), tcp.toString()}, {QStringLiteral("udp"), udp.toString()}};
    return readyWord + QString::fromUtf8(QJsonDocument(where).toJson(QJsonDocument::Compact));
}

std::optional<SupplyAddresses> SupplyAddresses::ParseLine(const QByteArray &line)
{
    const QJsonObject where = QJsonDocument::fromJson(line.mid(readyWord.size())).object();
    const auto tcp = Address::Parse(where.value(QStringLiteral("tcp")).toString());
    const auto udp = Address::Parse(where.value(QStringLiteral("udp")).toString());
    return tcp && udp ? std::make_optional(SupplyAddresses{*tcp, *udp}) : std::nullopt;
}

SimulationProcess::~SimulationProcess()
{
    process.kill();
    process.waitForFinished(patienceMs);
}

std::optional<SupplyAddresses> SimulationProcess::start(const QString &fault)
{
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(
        QCoreApplication::applicationFilePath(),
        {QStringLiteral("--simulate"), QStringLiteral("--fault"), fault, QStringLiteral("--end-with-input")});
    while (!process.canReadLine()) {
        if (!process.waitForReadyRead(patienceMs))
            return std::nullopt;
    }
    return SupplyAddresses::ParseLine(process.readLine());
}

bool SimulationProcess::end()
{
    process.closeWriteChannel();
    return process.waitForFinished(patienceMs) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

int RunSimulation(const QString &fault, bool endsWithInput)
{
    const auto parsed = Simulation::ParseFault(fault);
    Simulation simulation(parsed.value_or(SupplyFault::None));
    if (!parsed || !simulation.listen())
        return 1;
    const EndSignals endSignals;
    QObject::connect(&endSignals, &EndSignals::raised, QCoreApplication::instance(), &QCoreApplication::quit);
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    input.setEnabled(endsWithInput);
    QObject::connect(&input, &QSocketNotifier::activated, QCoreApplication::instance(), [] {
        std::array<char, 256> ignored{};
        if (read(STDIN_FILENO, ignored.data(), ignored.size()) <= 0)
            QCoreApplication::quit();
    });
    const QString here = QStringLiteral("127.0.0.1");
    QTextStream(stdout)
        << SupplyAddresses{{here, simulation.tcpPort()}, {here, simulation.udpPort()}}.toLine() << Qt::endl;
    return endSignals.wereRaised() ? 0 : QCoreApplication::exec();
}
