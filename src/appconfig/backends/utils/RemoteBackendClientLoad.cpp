#include <appconfig/backends/utils/RemoteBackendClientLoad.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/utils/PoolWait.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QMutex>
#include <QMutexLocker>
#include <QUrlQuery>
#include <QWaitCondition>

#include <algorithm>

namespace Tessellum::AppConfig::Backends::utils {

using Attributes::AttributeCreateData;

namespace {

constexpr int SliceMilliseconds = 20;
constexpr ulong LongestTimeout = 1000000000; // a deadline counts in nanoseconds

/*! Nothing tells of the stop of the repository, so waits look for it. */
bool IsRepositoryRunning()
{
    return AppConfig::utils::RepositoryProvider::getInstance()->getThreadPool().isRunning();
}

QDeadlineTimer LimitOf(const QUrl &url)
{
    const QUrlQuery query(url);
    const QString key = QStringLiteral("timeout");
    if (!query.hasQueryItem(key))
        return QDeadlineTimer(QDeadlineTimer::Forever);
    return QDeadlineTimer(static_cast<qint64>(std::min(query.queryItemValue(key).toULong(), LongestTimeout)));
}

} // namespace

/*! Where the load's thread and the one that brings the answer meet. The mutex guards the fields. */
class RemoteBackendClientInitializationSynchronizer
{
public:
    using Values = RemoteSubtreeMirror::Values;

    /*! Returns when the load is over. */
    void give(const Values &given)
    {
        QMutexLocker locker(&mutex);
        values = given;
        isGiven = true;
        condition.wakeAll();
        while (!isLoadOver && IsRepositoryRunning())
            condition.wait(&mutex, QDeadlineTimer(SliceMilliseconds));
    }

    /*! False if \a limit ran out or nobody will give anything any more. */
    bool wait(const QDeadlineTimer &limit)
    {
        const Notification::utils::PlaceLender lender;
        const QMutexLocker locker(&mutex);
        // Without an application object the event thread delivers nothing.
        while (!isGiven && !limit.hasExpired() && IsRepositoryRunning() && QCoreApplication::instance())
            condition.wait(&mutex, std::min(limit, QDeadlineTimer(SliceMilliseconds)));
        return isGiven;
    }

    Values take()
    {
        const QMutexLocker locker(&mutex);
        while (!isGiven)
            condition.wait(&mutex);
        return values;
    }

    void endLoad()
    {
        const QMutexLocker locker(&mutex);
        isLoadOver = true;
        condition.wakeAll();
    }

private:
    QMutex mutex;
    QWaitCondition condition;
    bool isGiven = false;
    bool isLoadOver = false;
    Values values;
};

RemoteBackendClientLoad::RemoteBackendClientLoad(const RemoteBackendClientPtr &loadedClient)
    : client(loadedClient)
    , synchronizer(std::make_shared<RemoteBackendClientInitializationSynchronizer>())
{ }

RemoteBackendClientLoad::~RemoteBackendClientLoad()
{
    synchronizer->endLoad();
}

void RemoteBackendClientLoad::run(const QUrl &url, Attributes::AttributesCreateData &out)
{
    if (!client->requestInitialization(
            [waiter = synchronizer](const RemoteSubtreeMirror::Values &values) { waiter->give(values); }))
        return;
    // Nothing can be asked without a path, so no answer comes.
    const bool isAnswered = synchronizer->wait(client->hasPath() ? LimitOf(url) : QDeadlineTimer(qint64(0)));
    // An answer that is just being given is taken, since nobody else would.
    if (!isAnswered && client->cancelInitialization())
        return;
    const auto values = synchronizer->take();
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        out.append(AttributeCreateData(value.key(), client->makeDetails(value.key(), value.value())));
}

} // namespace Tessellum::AppConfig::Backends::utils
