#include "common/RecordingNames.h"
#include "Recording.h"

#include <appdata/data/entries/EntryProperties.h>
#include <appdata/EntryLoading.h>
#include <core/Library.h>

#include <QDeadlineTimer>

using namespace Tessellum;
using namespace Tessellum::AppData;
namespace Property = Tessellum::AppData::Data::Entries::EntryProperties;

namespace {

constexpr int LongestLoadMs = 60000;

} // namespace

Recording::Recording(const QString &pluginFolder)
    : plugins(pluginFolder)
{ }

Recording::~Recording()
{
    if (runs)
        stop();
}

bool Recording::start()
{
    runs = initializeLibrary() == 0 && getCoreInterface();
    // -1: the folder was named before, and its plug-ins stay.
    return runs && addPluginSearchPath(plugins) != -2
        && data()->getStorageTypes().contains(QStringLiteral("sqlite"));
}

bool Recording::stop()
{
    runs = false;
    return uninitializeLibrary() == 1;
}

bool Recording::open(const QString &file, int mode)
{
    Storages::StorageCreateDataDetails details;
    details.location = file;
    details.mode = mode;
    const auto storages = data()->getStorageInterface();
    if (!storages->addStorage(QStringLiteral("sqlite"), StorageName(), details,
                              Notification::CreatePoint::Done, QStringLiteral("The recording"))) {
        return false;
    }
    const auto storage = storages->getStorage(StorageName());
    QHash<QString, Data::Entries::EntrySerializeInformation> entries;
    storage->getQueryInterface()->getEntries(entries);
    for (const QString &uuid : entries.keys()) {
        if (!storage->getManipulationInterface()->loadDataEntry(uuid, LoadDataHint::OnDemand)
            || !WaitUntilLoaded(data()->getDataEntryInterface()->getDataEntry(uuid),
                                QDeadlineTimer(LongestLoadMs))) {
            return false;
        }
    }
    return true;
}

std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> Recording::configuration() const
{
    return getCoreInterface()->getAppConfigRepository();
}

std::shared_ptr<AppData::Interfaces::RepositoryInterface> Recording::data() const
{
    return getCoreInterface()->getAppDataRepository();
}

Recording::Entry Recording::series(const QString &storage, const QString &name, quint64 capacity)
{
    const auto entries = data()->getDataEntryInterface();
    for (const Entry &entry :
         entries->getDataEntries(RecordingNames::Classification() + QLatin1Char('.') + name)) {
        if (entry->getStorageName() == storage)
            return entry;
    }
    return entries->addDataEntryExtended(
        storage,
        {{Property::Classification(), RecordingNames::Classification()},
         {Property::Name(), name},
         {Property::CategoryType(), static_cast<quint32>(CategoryType::Float)},
         {Property::Persistence(), static_cast<quint32>(PersistenceType::Persistent)},
         {Property::Capacity(), capacity}});
}

QMap<QString, Series> Recording::readAll() const
{
    QMap<QString, Series> all;
    for (const Entry &entry : data()->getDataEntryInterface()->getDataEntries(RecordingNames::Classification()
                                                                              + QStringLiteral(".*"))) {
        if (entry->getStorageName() == StorageName())
            all.insert(entry->getName(), Series::Read(*entry));
    }
    return all;
}

const QString &Recording::StorageName()
{
    static const QString name = QStringLiteral("recording");
    return name;
}
