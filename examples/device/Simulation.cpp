#include "Simulation.h"
#include "SupplyMessage.h"

#include <QHash>
#include <QNetworkDatagram>
#include <QTcpSocket>

#include <cmath>

namespace {

/*! The largest values that the output can have, in the units of the messages. */
constexpr qint32 limits[] = {60000, 5000000, 2000000};

const QHash<QString, SupplyFault> &faults()
{
    static const QHash<QString, SupplyFault> table{
        {QStringLiteral("none"), SupplyFault::None},
        {QStringLiteral("bytes"), SupplyFault::ByteByByte},
        {QStringLiteral("joined"), SupplyFault::Joined},
        {QStringLiteral("silent"), SupplyFault::Silent},
        {QStringLiteral("hangs-up"), SupplyFault::HangsUp},
        {QStringLiteral("huge"), SupplyFault::Huge},
        {QStringLiteral("overfull"), SupplyFault::Overfull},
    };
    return table;
}

} // namespace

Simulation::Simulation(SupplyFault simulatedFault)
    : fault(simulatedFault)
    , settings(Quantities::Names().size(), 0)
{
    connect(&server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *const socket = server.nextPendingConnection()) {
            socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
            serve(*socket);
        }
    });
    connect(&datagrams, &QUdpSocket::readyRead, this, &Simulation::serveDatagrams);
}

bool Simulation::listen()
{
    return server.listen(QHostAddress::LocalHost) && datagrams.bind(QHostAddress(QHostAddress::LocalHost));
}

std::optional<SupplyFault> Simulation::ParseFault(const QString &name)
{
    return faults().contains(name) ? std::make_optional(faults().value(name)) : std::nullopt;
}

QStringList Simulation::FaultNames()
{
    QStringList names = faults().keys();
    names.sort();
    return names;
}

void Simulation::serve(QTcpSocket &socket)
{
    connect(&socket, &QTcpSocket::disconnected, &socket, &QObject::deleteLater);
    connect(&socket, &QTcpSocket::readyRead, &socket,
            [this, &socket, reader = std::make_shared<FrameReader>()] {
                const auto requests = reader->take(socket.readAll());
                for (const SupplyFrame &request : requests)
                    send(socket, answer(request));
                if (reader->isDamaged())
                    socket.abort();
            });
}

void Simulation::serveDatagrams()
{
    while (datagrams.hasPendingDatagrams()) {
        const QNetworkDatagram datagram = datagrams.receiveDatagram();
        FrameReader reader;
        const auto requests = reader.take(datagram.data());
        for (const SupplyFrame &request : requests) {
            if (fault != SupplyFault::Silent)
                datagrams.writeDatagram(datagram.makeReply(answer(request).toBytes()));
        }
    }
}

SupplyFrame Simulation::answer(const SupplyFrame &request)
{
    SupplyFrame response{request.header, {}};
    response.header.direction = SupplyHeader::Direction::Response;
    switch (request.header.id) {
    case Identify:
        response.payload = "Simulated supply, 60 V, 5 A";
        break;
    case Read:
        response.payload = measure().toBytes();
        break;
    case Set:
        response.header.status = set(request.payload) ? Done : Refused;
        break;
    default:
        response.header.status = Refused;
    }
    return response;
}

bool Simulation::set(const QByteArray &payload)
{
    const auto setting = Quantities::Setting::Parse(payload);
    if (!setting || setting->value < 0 || setting->value > limits[setting->quantity])
        return false;
    settings[setting->quantity] = setting->value;
    return true;
}

Quantities::Reading Simulation::measure()
{
    constexpr double ripple = 0.002;
    constexpr double step = 0.4;
    const double factor = 1 + ripple * std::sin(step * ++measured);
    Quantities::Reading reading{true, settings};
    for (qint32 &value : reading.values)
        value = static_cast<qint32>(std::lround(value * factor));
    return reading;
}

void Simulation::send(QTcpSocket &socket, const SupplyFrame &frame) const
{
    constexpr int sizesAt = 8; // within the header
    constexpr int sizeBytes = 4;
    QByteArray bytes = frame.toBytes();
    switch (fault) {
    case SupplyFault::None:
        socket.write(bytes);
        break;
    case SupplyFault::ByteByByte:
        for (const char byte : qAsConst(bytes)) {
            socket.write(&byte, 1);
            socket.flush();
        }
        break;
    case SupplyFault::Joined: {
        SupplyFrame old = frame;
        --old.header.number;
        socket.write(old.toBytes() + bytes + old.toBytes());
        break;
    }
    case SupplyFault::Silent:
        break;
    case SupplyFault::HangsUp:
        socket.write(bytes.left(bytes.size() - 1));
        socket.disconnectFromHost();
        break;
    case SupplyFault::Huge:
        bytes.replace(sizesAt, 2 * sizeBytes, QByteArray::fromHex("8000000080000000"));
        socket.write(bytes);
        break;
    case SupplyFault::Overfull:
        bytes.replace(sizesAt, 2 * sizeBytes, QByteArray::fromHex("0000001000000004"));
        socket.write(bytes);
        break;
    }
}
