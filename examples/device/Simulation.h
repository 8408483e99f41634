#pragma once

#include "FrameReader.h"
#include "Quantities.h"

#include <QTcpServer>
#include <QUdpSocket>

class QTcpSocket;

/*! What is wrong with a simulated supply, for those who want to see what becomes of it. */
enum class SupplyFault {
    None,
    ByteByByte, ///< it sends each byte by itself
    Joined, ///< it sends an old answer before and behind each
    Silent, ///< it answers nothing
    HangsUp, ///< it closes within an answer
    Huge, ///< its headers tell of 2^31 bytes
    Overfull, ///< its headers tell of less with padding than without
};

/*! A power supply that is none: it takes settings, and measures them with a little ripple. Serves any number
 * of TCP connections and UDP peers on one thread with an event loop. */
class Simulation : public QObject
{
    Q_OBJECT

public:
    explicit Simulation(SupplyFault fault);

    /*! Listens at free ports of this machine. */
    bool listen();
    quint16 tcpPort() const { return server.serverPort(); }
    quint16 udpPort() const { return datagrams.localPort(); }

    /*! Nothing for a text that names no fault. */
    static std::optional<SupplyFault> ParseFault(const QString &name);
    static QStringList FaultNames();

private:
    void serve(QTcpSocket &socket);
    void serveDatagrams();
    SupplyFrame answer(const SupplyFrame &request);
    bool set(const QByteArray &payload);
    Quantities::Reading measure();
    void send(QTcpSocket &socket, const SupplyFrame &frame) const;

    const SupplyFault fault;
    QTcpServer server;
    QUdpSocket datagrams;
    QVector<qint32> settings;
    int measured = 0; // how often
};
