#include "core/StressWorker.h"

#include <appconfig/utils/RepositoryProvider.h>
#include <core/Library.h>
#include <shared/hierarchy/HierarchyNode.h>

#include <support/Literals.h>

using namespace Tessellum;
using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

std::atomic<bool> StressWorker::stopping{false};

bool StressGate::pass()
{
    QMutexLocker locker(&mutex);
    if (!closed)
        return !ended;
    ++waiting;
    changed.wakeAll();
    while (closed)
        changed.wait(&mutex);
    --waiting;
    return !ended;
}

void StressGate::close()
{
    QMutexLocker locker(&mutex);
    closed = true;
    while (waiting < workers)
        changed.wait(&mutex);
}

void StressGate::open()
{
    const QMutexLocker locker(&mutex);
    closed = false;
    changed.wakeAll();
}

void StressGate::end()
{
    const QMutexLocker locker(&mutex);
    ended = true;
    closed = false;
    changed.wakeAll();
}

namespace {

std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> repository()
{
    Core::CoreInterface *const core = getCoreInterface();
    return core ? core->getAppConfigRepository() : nullptr;
}

template <class Point>
int numberOf(Point point)
{
    return static_cast<int>(point);
}

} // namespace

StressWorker::StressWorker(int workerNumber, StressGate &workerGate, StressRecord &workerRecord)
    : number(workerNumber)
    , gate(workerGate)
    , record(workerRecord)
    , random(static_cast<quint32>(workerNumber) + 1)
{ }

void StressWorker::run()
{
    while (gate.pass())
        doSomething();
    registrations.clear();
}

void StressWorker::beginRun()
{
    model.clear();
    registrations.clear();
}

qlonglong StressWorker::nextValue()
{
    static std::atomic<qlonglong> last{0};
    return ++last;
}

void StressWorker::doSomething()
{
    const int dice = random.bounded(100);
    if (dice < 15)
        create();
    else if (dice < 50)
        update(randomOwnPath(), true);
    else if (dice < 60)
        update("stress.shared.k%1"_s.arg(random.bounded(10)), false);
    else if (dice < 65)
        updateRefused();
    else if (dice < 73)
        remove();
    else if (dice < 78)
        move();
    else if (dice < 88)
        read();
    else if (dice < 95)
        toggleHandler();
    else if (dice < 98)
        assign();
    else if (const auto found = repository())
        found->getBackendInterface()->saveBackend("stress"_s);
}

QString StressWorker::randomOwnPath()
{
    return model.isEmpty() ? QString() : std::next(model.cbegin(), random.bounded(model.size())).key();
}

void StressWorker::create()
{
    const auto found = repository();
    if (!found)
        return;
    const QString path = "%1.a.n%2"_s.arg(prefix()).arg(random.bounded(50));
    const qlonglong value = nextValue();
    const quint64 begun = StressClock::next();
    const bool created
        = found->getManipulationInterface()->createAttribute(path, value, CreatePoint::Done, 3);
    if (!created || stopping)
        return;
    model.insert(path, value);
    record.add(
        {StressKind::Create, path, 0, begun, {numberOf(CreatePoint::Begin), numberOf(CreatePoint::Done)}});
}

void StressWorker::update(const QString &path, bool own)
{
    const auto found = repository();
    if (!found || path.isEmpty())
        return;
    const qlonglong value = nextValue();
    const quint64 begun = StressClock::next();
    const UpdateResult result
        = found->getManipulationInterface()->updateAttribute(path, value, UpdatePoint::Done);
    if (result != UpdateResult::Ok || stopping)
        return;
    if (own)
        model.insert(path, value);
    // The last point tells the value that stands there by then, in the shared part perhaps another thread's.
    QVector<int> points{numberOf(UpdatePoint::Check), numberOf(UpdatePoint::Apply)};
    if (own)
        points.append(numberOf(UpdatePoint::Done));
    record.add({StressKind::Update, path, value, begun, points});
}

void StressWorker::updateRefused()
{
    const auto found = repository();
    const QString path = "stress.limited"_s;
    if (!found)
        return;
    const qlonglong value = -nextValue();
    const quint64 begun = StressClock::next();
    const UpdateResult result
        = found->getManipulationInterface()->updateAttribute(path, value, UpdatePoint::Done);
    if (result == UpdateResult::CheckFailed && !stopping)
        record.add({StressKind::Update, path, value, begun, {numberOf(UpdatePoint::Check)}});
}

void StressWorker::remove()
{
    const auto found = repository();
    const QString path = randomOwnPath();
    if (!found || path.isEmpty())
        return;
    record.forgetLastPoints(path);
    const quint64 begun = StressClock::next();
    const bool deleted = found->getManipulationInterface()->deleteAttribute(path, DeletePoint::Done);
    if (!deleted || stopping)
        return;
    model.remove(path);
    record.add(
        {StressKind::Delete, path, 0, begun, {numberOf(DeletePoint::Begin), numberOf(DeletePoint::Done)}});
}

void StressWorker::move()
{
    const QString path = randomOwnPath();
    const auto root = AppConfig::utils::RepositoryProvider::getInstance()->getRoot();
    const auto node = root && !path.isEmpty() ? root->findChildByRelativePath(path) : nullptr;
    const bool isInA = path.contains(".a."_s);
    const QString target = prefix() + (isInA ? ".b"_s : ".a"_s);
    const auto parent = root ? root->findChildByRelativePath(target) : nullptr;
    const QString moved = target + QLatin1Char('.') + path.section(QLatin1Char('.'), -1);
    // A refused move leaves a node without a parent, so a taken place is not tried.
    if (!node || !parent || model.contains(moved))
        return;
    record.forgetLastPoints(path);
    if (node->setParent(parent, false) && !stopping)
        model.insert(moved, model.take(path));
}

void StressWorker::read() const
{
    const auto found = repository();
    if (!found)
        return;
    const auto query = found->getQueryInterface();
    for (const auto &attribute : query->queryAttributes(prefix() + ".a.*"_s)) {
        QVariant value;
        attribute->getValue(value, QMetaType::QString);
    }
    QVariant value;
    query->getValue("stress.limited"_s, value, QMetaType::Double);
}

void StressWorker::toggleHandler()
{
    constexpr int most = 4;
    const auto found = repository();
    if (!found)
        return;
    if (registrations.size() >= most || (!registrations.isEmpty() && random.bounded(3) == 0)) {
        const Registration registration = registrations.takeAt(random.bounded(registrations.size()));
        registration.handler->endedEarly = true;
        return;
    }
    const auto notifications = found->getNotificationInterface();
    const int which = random.bounded(4);
    const QString pattern = which == 0 ? "stress.*"_s : prefix() + ".a.n?"_s;
    std::shared_ptr<StressHandler> handler;
    std::shared_ptr<Notification::Interfaces::NotificationHandleInterface> handle;
    if (which < 2) {
        const UpdatePoint points[]
            = {UpdatePoint::Check, UpdatePoint::Apply, UpdatePoint::Done, UpdatePoint::All};
        const UpdatePoint point = points[random.bounded(4)];
        handler = std::make_shared<StressHandler>(StressKind::Update, pattern, numberOf(point),
                                                  numberOf(UpdatePoint::All));
        handle = notifications->registerUpdateHandler(
            pattern,
            [handler](const QString &path, const UpdatePoint &reported, const UpdateResult &,
                      const QVariant &,
                      const QVariant &now) { handler->hear(path, numberOf(reported), now.toLongLong()); },
            point);
    } else if (which == 2) {
        handler = std::make_shared<StressHandler>(StressKind::Create, pattern, numberOf(CreatePoint::All),
                                                  numberOf(CreatePoint::All));
        handle = notifications->registerCreateHandler(
            pattern,
            [handler](const QString &path, const CreatePoint &reported, const bool &) {
                handler->hear(path, numberOf(reported), 0);
            },
            CreatePoint::All);
    } else {
        handler = std::make_shared<StressHandler>(StressKind::Delete, pattern, numberOf(DeletePoint::Done),
                                                  numberOf(DeletePoint::All));
        handle = notifications->registerDeleteHandler(
            pattern,
            [handler](const QString &path, const DeletePoint &reported, const bool &) {
                handler->hear(path, numberOf(reported), 0);
            },
            DeletePoint::Done);
    }
    if (!handle)
        return;
    handler->registered = StressClock::next();
    record.add(handler);
    registrations.append({handler, handle});
}

void StressWorker::assign() const
{
    if (const auto found = repository())
        found->getValidationInterface()->assignValidation("stress.*"_s, "not_negative"_s);
}

QString StressWorker::findDifference() const
{
    const auto query = repository()->getQueryInterface();
    for (auto it = model.cbegin(); it != model.cend(); ++it) {
        QVariant value;
        if (!query->getValue(it.key(), value, 0) || value.toLongLong() != it.value())
            return "%1 is %2 and should be %3"_s.arg(it.key(), value.toString()).arg(it.value());
    }
    int present = 0;
    for (const auto &attribute : query->queryAttributes(prefix() + ".*"_s))
        present += attribute->hasValue() ? 1 : 0;
    if (present != model.size())
        return "%1 holds %2 values and should hold %3"_s.arg(prefix()).arg(present).arg(model.size());
    return QString();
}
