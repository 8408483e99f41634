#include <appconfig/backends/utils/RemoteUpdateQueue.h>
#include <appconfig/backends/utils/RemoteValueCodec.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/RepositoryProvider.h>

#include <QMutexLocker>

#include <utility>

namespace Tessellum::AppConfig::Backends::utils {

using AppConfig::utils::RepositoryProvider;
using Notification::UpdatePoint;

RemoteValue ToRemoteValue(const QVariant &value)
{
    return {value.isValid() ? SerializeValue(value) : QByteArray(), value};
}

void RemoteUpdateQueue::add(const QString &key, const QString &path, const RemoteValue &value)
{
    {
        const QMutexLocker locker(&mutex);
        Updates &updates = table[key];
        updates.path = path;
        updates.values.enqueue(value);
        ++pending;
        pendingBytes += value.bytes.size();
        if (updates.values.size() > 1)
            return;
    }
    goOn(key, Update{path, value.value});
}

bool RemoteUpdateQueue::takeEcho(const QString &key, const QByteArray &bytes)
{
    const QMutexLocker locker(&mutex);
    const auto updates = table.find(key);
    if (updates == table.end() || updates->isEchoed)
        return false;
    updates->isEchoed = updates->values.head().bytes == bytes;
    return updates->isEchoed;
}

void RemoteUpdateQueue::waitForAtMost(int values)
{
    const QMutexLocker locker(&mutex);
    while (pending > values || pendingBytes > MaximumSerialized)
        fewer.wait(&mutex);
}

/*! Until something is started, whose end goes on, or nothing is left. */
void RemoteUpdateQueue::goOn(const QString &key, std::optional<Update> update, bool mayCreate)
{
    while (update && !start(key, *update, mayCreate)) {
        update = next(key);
        mayCreate = true;
    }
}

bool RemoteUpdateQueue::start(const QString &key, const Update &update, bool mayCreate)
{
    const auto provider = RepositoryProvider::getInstance()->getManipulationProvider();
    if (!provider || update.path.isEmpty())
        return false;
    const auto started = provider->startUpdateAttribute(update.path, update.value, UpdatePoint::All);
    if (started.observer) {
        started.observer->whenEnded([self = shared_from_this(), key] { self->goOn(key, self->next(key)); });
        return true;
    }
    if (started.nodeFound || !mayCreate)
        return false;
    const auto created = provider->startAutomaticCreate(update.path);
    if (created)
        created->whenEnded([self = shared_from_this(), key, update] { self->goOn(key, update, false); });
    return created != nullptr;
}

/*! Takes off the update that is over. */
std::optional<RemoteUpdateQueue::Update> RemoteUpdateQueue::next(const QString &key)
{
    const QMutexLocker locker(&mutex);
    const auto updates = table.find(key);
    pendingBytes -= updates->values.dequeue().bytes.size();
    updates->isEchoed = false;
    --pending;
    fewer.wakeAll();
    if (!updates->values.isEmpty())
        return Update{updates->path, updates->values.head().value};
    table.erase(updates);
    return std::nullopt;
}

} // namespace Tessellum::AppConfig::Backends::utils
