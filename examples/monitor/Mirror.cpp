#include "common/RecordingNames.h"
#include "Mirror.h"

#include <core/Library.h>

#include <QCoreApplication>

using namespace Tessellum;
using Notification::CreatePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

const QString backendName = QStringLiteral("mirror");
const QString storageName = QStringLiteral("mirror");

/*! Names this process among those that mirror the recorder. */
QString clientId()
{
    return QStringLiteral("monitor%1").arg(QCoreApplication::applicationPid());
}

} // namespace

Mirror::Mirror(const MirrorOptions &mirrorOptions)
    : options(mirrorOptions)
{ }

Mirror::~Mirror()
{
    if (runs)
        stop();
}

bool Mirror::start()
{
    runs = initializeLibrary() == 0 && getCoreInterface();
    if (!runs)
        return false;
    configuration = getCoreInterface()->getAppConfigRepository();
    data = getCoreInterface()->getAppDataRepository();
    return registerHandlers() && addMirrors();
}

bool Mirror::stop()
{
    runs = false;
    handles.clear();
    configuration.reset();
    data.reset();
    return uninitializeLibrary() == 1;
}

bool Mirror::addMirrors()
{
    const QString id = clientId();
    for (const auto &group : {QStringList{QStringLiteral("appconfig"), QStringLiteral("backends")},
                              QStringList{QStringLiteral("appdata"), QStringLiteral("storages")}}) {
        const QStringList path = group + QStringList{QStringLiteral("remote_clients"), id};
        connections.append({configuration->getPathFromPathElements(path), {}});
    }

    AppConfig::Backends::BackendCreateDataDetails backend;
    backend.data = options.configuration.toUrl({{QStringLiteral("id"), id},
                                                {QStringLiteral("path"), RecordingNames::Root()},
                                                {QStringLiteral("timeout"), QStringLiteral("5000")}});
    AppData::Storages::StorageCreateDataDetails storage;
    storage.location = options.data.toUrl(
        {{QStringLiteral("id"), id}, {QStringLiteral("path"), RecordingNames::ServedStorage()}});
    return configuration->getBackendInterface()->createBackend(QStringLiteral("remote-backend-client"),
                                                               backendName, backend, CreatePoint::Done)
        && data->getStorageInterface()->addStorage(QStringLiteral("remote-storage-client"), storageName,
                                                   storage, CreatePoint::Done,
                                                   QStringLiteral("What the recorder serves"));
}

bool Mirror::registerHandlers()
{
    const auto notifications = data->getNotificationInterface();
    // A value that overwrites the oldest of a full ring is an update.
    handles.append(notifications->registerCreateHandler(
        RecordingNames::ValuesPattern(),
        [this](const QString &, const CreatePoint &, const bool &done) { arrivals += done ? 1 : 0; },
        CreatePoint::Done));
    handles.append(notifications->registerUpdateHandler(
        RecordingNames::ValuesPattern(),
        [this](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
               const QVariant &) { arrivals += result == UpdateResult::Ok ? 1 : 0; },
        UpdatePoint::Done));
    return handles.at(0) && handles.at(1);
}

bool Mirror::keepConnected()
{
    bool are = true;
    for (Connection &connection : connections)
        are = keepConnected(connection) && are;
    return are;
}

bool Mirror::keepConnected(Connection &connection) const
{
    constexpr qint64 patienceMs = 500;
    QVariant status;
    configuration->getQueryInterface()->getValue(
        configuration->getPathFromPathElements({connection.path, QStringLiteral("status")}), status,
        QMetaType::QString);
    if (status == QLatin1String("established"))
        return true;
    // The first connection is under way without having been asked for.
    if (!connection.sinceAsked.isValid()) {
        connection.sinceAsked.start();
    } else if (connection.sinceAsked.elapsed() >= patienceMs) {
        connection.sinceAsked.start();
        configuration->getManipulationInterface()->updateAttribute(
            configuration->getPathFromPathElements({connection.path, QStringLiteral("control")}),
            QStringLiteral("connect"), UpdatePoint::All);
    }
    return false;
}

QString Mirror::settingPath(const char *name) const
{
    return configuration->getPathFromPathElements({backendName, RecordingNames::Setting(name)});
}

QVariant Mirror::setting(const char *name) const
{
    QVariant value;
    configuration->getQueryInterface()->getValue(settingPath(name), value, 0);
    return value;
}

bool Mirror::set(const char *name, const QVariant &value)
{
    return configuration->getManipulationInterface()->updateAttribute(settingPath(name), value,
                                                                      UpdatePoint::Done)
        == UpdateResult::Ok;
}

QStringList Mirror::seriesNames() const
{
    QStringList names;
    const auto entries = data->getDataEntryInterface()->getDataEntries(RecordingNames::Classification()
                                                                       + QStringLiteral(".*"));
    for (const auto &entry : entries)
        names.append(entry->getName());
    names.removeDuplicates();
    names.sort();
    return names;
}

std::shared_ptr<AppData::Interfaces::DataEntryInterface> Mirror::series(const QString &name) const
{
    return data->getDataEntryInterface()->getDataEntry(RecordingNames::Classification(), name);
}
