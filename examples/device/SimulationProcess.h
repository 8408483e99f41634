#pragma once

#include "common/Address.h"

#include <QProcess>

#include <optional>

/*! Where a supply listens. */
struct SupplyAddresses
{
    Address tcp;
    Address udp;

    /*! "ready {...}", and what such a line says. */
    QString toLine() const;
    static std::optional<SupplyAddresses> ParseLine(const QByteArray &line);
};

/*! This program once more, as a simulated supply in a process of its own, which ends with this object. */
class SimulationProcess
{
public:
    ~SimulationProcess();

    /*! Starts it with \a fault; where it listens, or nothing. */
    std::optional<SupplyAddresses> start(const QString &fault);
    qint64 id() const { return process.processId(); }
    /*! Whether it ended as it should when its input ended. */
    bool end();

private:
    QProcess process;
};

/*! Is that process: serves until its input ends or a signal ends it. \a endsWithInput is false where a person
 * starts it. Returns the exit code. */
int RunSimulation(const QString &fault, bool endsWithInput);
