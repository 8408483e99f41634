#include "common/Series.h"
#include "common/Steps.h"
#include "DeviceRun.h"

#include <core/Library.h>
#include <shared/communication/connections/MakeConnection.h>
#include <shared/communication/connections/TcpConnection.h>
#include <shared/communication/connections/UdpConnection.h>
#include <shared/conversion/UnitParsing.h>
#include <shared/foundation/JsonFile.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonObject>
#include <QMetaEnum>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Tessellum;
using namespace Shared::Communication::Connections;
using namespace Shared::Conversion::UnitConversion;
using Notification::CreatePoint;
using Notification::UpdatePoint;

namespace {

const QString classification = QStringLiteral("supply");

QString settingPath(const QString &quantity)
{
    return QStringLiteral("supply.settings.") + quantity;
}

QString measuredPath(const QString &quantity)
{
    return QStringLiteral("supply.measured.") + quantity;
}

QString nameOf(Supply::Status status)
{
    return QLatin1String(QMetaEnum::fromType<Supply::Status>().valueToKey(static_cast<int>(status)));
}

} // namespace

DeviceRun::DeviceRun(const DeviceOptions &deviceOptions, QTextStream &output)
    : options(deviceOptions)
    , out(output)
{ }

DeviceRun::~DeviceRun() = default;

bool DeviceRun::run()
{
    bool held = runSteps();
    held = disconnectFromSupply() && held;
    entries.clear();
    configuration.reset();
    return runs && step(QStringLiteral("the library stopped"), uninitializeLibrary() == 1) && held;
}

bool DeviceRun::runSteps()
{
    if (!startLibrary() || !readUnits() || !connectToSupply() || !identify())
        return false;
    for (const auto &typed : options.typed) {
        if (!setTyped(typed.first, typed.second))
            return false;
    }
    return isRefused() && takeReadings() && compare();
}

bool DeviceRun::step(const QString &what, bool held)
{
    return TellStep(out, what, held);
}

bool DeviceRun::startLibrary()
{
    runs = initializeLibrary() == 0 && getCoreInterface();
    if (!runs)
        return step(QStringLiteral("the library started"), false);
    configuration = getCoreInterface()->getAppConfigRepository();
    const bool hasBackend = configuration->getBackendInterface()->createBackend(
        QStringLiteral("memory"), QStringLiteral("supply"), AppConfig::Backends::BackendCreateDataDetails(),
        CreatePoint::Done);
    const auto data = getCoreInterface()->getAppDataRepository()->getDataEntryInterface();
    for (const QString &name : Quantities::Names()) {
        entries.insert(name,
                       data->addDataEntry(QString(), classification, name, AppData::CategoryType::Float, {},
                                          AppData::PersistenceType::Volatile, false));
    }
    return step(QStringLiteral("the library started, with %1 entries").arg(entries.size()),
                hasBackend && !entries.values().contains(nullptr));
}

bool DeviceRun::readUnits()
{
    const QJsonObject document = Shared::LoadJsonFromFile(options.unitsFile, nullptr).object();
    bool areValid = true;
    for (const QString &name : Quantities::Names()) {
        const auto unit
            = Specification::ParseSpecificationFromJson(name, document.value(name).toObject(), {});
        areValid = areValid && unit.getUnitSpecification().isValid();
        units.emplace(name, unit);
    }
    return step(QStringLiteral("units of %1 from %2")
                    .arg(Quantities::Names().join(QStringLiteral(", ")), options.unitsFile),
                areValid);
}

bool DeviceRun::connectToSupply()
{
    constexpr unsigned int timeout = 10; // seconds
    const auto where = options.addresses ? options.addresses : simulation.start(options.fault);
    if (!where)
        return step(QStringLiteral("a supply is simulated in another process"), false);
    if (!options.addresses) {
        step(QStringLiteral("process %1 simulates a supply, this one is %2")
                 .arg(simulation.id())
                 .arg(QCoreApplication::applicationPid()),
             true);
    }
    SupplyMessage::RegisterAll();
    const auto protocol = QAbstractSocket::AnyIPProtocol;
    control = std::make_unique<Supply>(
        MakeConnection<TcpConnection>(where->tcp.host, static_cast<unsigned short>(where->tcp.port), timeout,
                                      protocol),
        true);
    readout = std::make_unique<Supply>(
        MakeConnection<UdpConnection>(where->udp.host, static_cast<unsigned short>(where->udp.port), timeout,
                                      protocol),
        false);
    const bool areConnected = control->connectToDevice(QStringLiteral("control"))
        && readout->connectToDevice(QStringLiteral("readout"));
    return step(QStringLiteral("connected over TCP to %1, over UDP to %2; %3 and %4 messages")
                    .arg(where->tcp.toString(), where->udp.toString())
                    .arg(control->messageCount())
                    .arg(readout->messageCount()),
                areConnected && control->messageCount() == SupplyMessage::Names().size()
                    && readout->messageCount() == SupplyMessage::Names().size());
}

bool DeviceRun::disconnectFromSupply()
{
    const bool areClosed = (!control || control->close(QStringLiteral("the run has ended")))
        && (!readout || readout->close(QStringLiteral("the run has ended")));
    control.reset();
    readout.reset();
    const bool hasEnded = simulation.id() == 0 || simulation.end();
    return step(QStringLiteral("disconnected from the supply"), areClosed && hasEnded);
}

bool DeviceRun::identify()
{
    const auto answer = control->ask(Identify, {}, options.patienceMs);
    const bool held = answer.status == Supply::Status::Ok;
    return step(QStringLiteral("the supply says what it is: %1")
                    .arg(held ? QString::fromUtf8(answer.payload) : nameOf(answer.status)),
                held);
}

Supply::Status DeviceRun::set(int quantity, double value)
{
    constexpr double most = std::numeric_limits<qint32>::max();
    const auto whole = static_cast<qint32>(std::lround(std::clamp(value, -most, most)));
    const Quantities::Setting setting{static_cast<quint8>(quantity), whole};
    return control->ask(Set, setting.toBytes(), options.patienceMs).status;
}

bool DeviceRun::update(const QString &path, double value)
{
    return configuration->getManipulationInterface()->updateAttribute(path, value, UpdatePoint::Done)
        == Notification::UpdateResult::Ok;
}

bool DeviceRun::setTyped(const QString &quantity, const QString &text)
{
    const auto known = units.find(quantity);
    double value = 0;
    SiPrefix prefix = SiPrefix::None;
    QString unit;
    if (known == units.end() || !ParseStringToSiPrefixUnitAndValue(text, value, &prefix, &unit)
        || unit != known->second.getUnitSpecification().unitString)
        return step(QStringLiteral("%1: \"%2\" cannot be read").arg(quantity, text), false);
    value = ConvertValueToTargetPrefix(value, prefix, known->second.getUnitSpecification().inputPrefix);
    const QString told = shown(quantity, value, true);
    known->second.clipToRange(value, {{QStringLiteral("clipping"), true}});
    const auto status = set(Quantities::Names().indexOf(quantity), value);
    return step(QStringLiteral("%1: \"%2\" is set as %3: %4").arg(quantity, text, told, nameOf(status)),
                status == Supply::Status::Ok && update(settingPath(quantity), value));
}

bool DeviceRun::isRefused()
{
    constexpr double tooMuch = 61000;
    const auto status = set(0, tooMuch);
    return step(QStringLiteral("%1 of %2: %3")
                    .arg(Quantities::Names().constFirst(), shown(Quantities::Names().constFirst(), tooMuch),
                         nameOf(status)),
                status == Supply::Status::Refused);
}

std::optional<Quantities::Reading> DeviceRun::read()
{
    constexpr int attempts = 3; // a datagram may get lost
    for (int i = 0; i < attempts; ++i) {
        const auto answer = readout->ask(Read, {}, options.patienceMs);
        if (answer.status == Supply::Status::Ok)
            return Quantities::Reading::Parse(answer.payload);
    }
    return std::nullopt;
}

bool DeviceRun::takeReadings()
{
    int kept = 0;
    for (int i = 0; i < options.readings; ++i) {
        const auto reading = read();
        kept += reading && reading->isOn && keep(*reading) ? 1 : 0;
    }
    return step(QStringLiteral("%1 readings over UDP went into attributes and entries").arg(kept),
                kept == options.readings);
}

bool DeviceRun::keep(const Quantities::Reading &reading)
{
    const auto now = static_cast<quint64>(QDateTime::currentMSecsSinceEpoch());
    bool held = true;
    for (int i = 0; i < reading.values.size(); ++i) {
        const QString name = Quantities::Names().at(i);
        const double value = reading.values.at(i);
        const auto series = entries.value(name)->getManipulationInterface();
        held = update(measuredPath(name), value)
            && !series
                    ->addDataElementValue(now, AppData::ElementValueKind::ParsedValue, value,
                                          CreatePoint::Done)
                    .isEmpty()
            && held;
    }
    return held;
}

bool DeviceRun::compare()
{
    constexpr double tolerance = 0.01;
    constexpr int nameWidth = 12;
    constexpr int valueWidth = 14;
    constexpr int sparklineWidth = 40;
    bool held = true;
    for (const QString &name : Quantities::Names()) {
        const auto points = Series::Read(*entries.value(name)).points;
        QVariant wanted;
        QVariant last;
        const auto query = configuration->getQueryInterface();
        held = query->getValue(measuredPath(name), last, QMetaType::Double)
            && points.size() == options.readings && held;
        const bool isSet = query->getValue(settingPath(name), wanted, QMetaType::Double);
        held = held && std::all_of(points.cbegin(), points.cend(), [&](const Series::Point &point) {
                   return std::abs(point.value - wanted.toDouble()) <= tolerance * wanted.toDouble();
               });
        out << QStringLiteral("          %1 set %2  measured %3  %4")
                   .arg(name, -nameWidth)
                   .arg(isSet ? shown(name, wanted.toDouble()) : QStringLiteral("never"), valueWidth)
                   .arg(shown(name, last.toDouble()), valueWidth)
                   .arg(Sparkline(points, sparklineWidth))
            << Qt::endl;
    }
    return step(QStringLiteral("what was measured is what was set"), held);
}

QString DeviceRun::shown(const QString &quantity, double value, bool isClipped) const
{
    const Specification::Options clipping{{QStringLiteral("clipping"), true}};
    return units.at(quantity).bestFitConversion(options.locale, value,
                                                isClipped ? clipping : Specification::Options());
}
