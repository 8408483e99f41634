#pragma once

#include "Quantities.h"
#include "SimulationProcess.h"
#include "Supply.h"

#include <appconfig/interfaces/RepositoryInterface.h>
#include <appdata/interfaces/RepositoryInterface.h>
#include <shared/conversion/Specification.h>

#include <QLocale>
#include <QMap>
#include <QTextStream>

#include <map>

/*! What the example is asked for. */
struct DeviceOptions
{
    QString unitsFile;
    QLocale locale; ///< under which values are shown
    QVector<QPair<QString, QString>> typed; ///< quantity and text, as a person types it
    int readings = 0;
    int patienceMs = 0; ///< for an answer
    QString fault; ///< of the simulated supply
    std::optional<SupplyAddresses> addresses; ///< of a supply that runs already; otherwise one is simulated
};

/*! Sets a power supply, measures it, and keeps settings and measured values in the trees. */
class DeviceRun
{
public:
    DeviceRun(const DeviceOptions &options, QTextStream &out);
    ~DeviceRun();
    Q_DISABLE_COPY_MOVE(DeviceRun)

    /*! Whether every step held. */
    bool run();

private:
    using Entry = std::shared_ptr<Tessellum::AppData::Interfaces::DataEntryInterface>;

    bool runSteps();
    bool startLibrary();
    bool readUnits();
    bool connectToSupply();
    bool identify();
    bool setTyped(const QString &quantity, const QString &text);
    bool isRefused();
    bool takeReadings();
    bool keep(const Quantities::Reading &reading);
    bool compare();
    bool disconnectFromSupply();

    std::optional<Quantities::Reading> read();
    Supply::Status set(int quantity, double value);
    bool update(const QString &path, double value);
    QString shown(const QString &quantity, double value, bool isClipped = false) const;
    bool step(const QString &what, bool held);

    const DeviceOptions options;
    QTextStream &out;
    std::shared_ptr<Tessellum::AppConfig::Interfaces::RepositoryInterface> configuration;
    std::map<QString, Shared::Conversion::UnitConversion::Specification> units;
    QMap<QString, Entry> entries;
    SimulationProcess simulation;
    std::unique_ptr<Supply> control; // over TCP
    std::unique_ptr<Supply> readout; // over UDP
    bool runs = false; // the library
};
