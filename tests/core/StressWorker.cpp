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
    using Action = void (StressWorker::*)();
    static constexpr std::pair<int, Action> actions[]
        = {{15, &StressWorker::create},       {35, &StressWorker::updateOwn},
           {10, &StressWorker::updateShared}, {5, &StressWorker::updateRefused},
           {8, &StressWorker::remove},        {5, &StressWorker::move},
           {10, &StressWorker::read},         {7, &StressWorker::toggleHandler},
           {3, &StressWorker::assign},        {2, &StressWorker::save}}; // of a hundred
    found = repository();
    int dice = random.bounded(100);
    for (const auto &[chances, action] : actions) {
        dice -= chances;
        if (found && dice < 0) {
            (this->*action)();
            break;
        }
    }
    found.reset();
}

QString StressWorker::randomOwnPath()
{
    return model.isEmpty() ? QString() : std::next(model.cbegin(), random.bounded(model.size())).key();
}

void StressWorker::create()
{
    const QString path = "%1.a.n%2"_s.arg(prefix()).arg(random.bounded(50));
    const qlonglong value = nextValue();
    const quint64 begun = StressClock::next();
    const bool created
        = found->getManipulationInterface()->createAttribute(path, value, CreatePoint::Done, 3);
    if (!created || stopping)
        return;
    model.insert(path, value);
    record.add({StressKind::Create, path, 0, begun, {int(CreatePoint::Begin), int(CreatePoint::Done)}});
}

void StressWorker::update(const QString &path, bool own)
{
    if (path.isEmpty())
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
    QVector<int> points{int(UpdatePoint::Check), int(UpdatePoint::Apply)};
    if (own)
        points.append(int(UpdatePoint::Done));
    record.add({StressKind::Update, path, value, begun, points});
}

void StressWorker::updateOwn()
{
    update(randomOwnPath(), true);
}

void StressWorker::updateShared()
{
    update("stress.shared.k%1"_s.arg(random.bounded(10)), false);
}

void StressWorker::updateRefused()
{
    const QString path = "stress.limited"_s;
    const qlonglong value = -nextValue();
    const quint64 begun = StressClock::next();
    const UpdateResult result
        = found->getManipulationInterface()->updateAttribute(path, value, UpdatePoint::Done);
    if (result == UpdateResult::CheckFailed && !stopping)
        record.add({StressKind::Update, path, value, begun, {int(UpdatePoint::Check)}});
}

void StressWorker::remove()
{
    const QString path = randomOwnPath();
    if (path.isEmpty())
        return;
    record.forgetLastPoints(path);
    const quint64 begun = StressClock::next();
    const bool deleted = found->getManipulationInterface()->deleteAttribute(path, DeletePoint::Done);
    if (!deleted || stopping)
        return;
    model.remove(path);
    record.add({StressKind::Delete, path, 0, begun, {int(DeletePoint::Begin), int(DeletePoint::Done)}});
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

void StressWorker::read()
{
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
    if (registrations.size() >= most || (!registrations.isEmpty() && random.bounded(3) == 0)) {
        const Registration registration = registrations.takeAt(random.bounded(registrations.size()));
        registration.handler->endedEarly = true;
        return;
    }
    const auto notifications = found->getNotificationInterface();
    const int which = random.bounded(4);
    const QString pattern = which == 0 ? "stress.*"_s : prefix() + ".a.n?"_s;
    const auto make = [&](StressKind kind, auto point, auto all) {
        return std::make_shared<StressHandler>(kind, pattern, int(point), int(all));
    };
    const auto hear = [](const std::shared_ptr<StressHandler> &handler) {
        return [handler](const QString &path, const auto &point, const bool &) {
            handler->hear(path, int(point), 0);
        };
    };
    std::shared_ptr<StressHandler> handler;
    std::shared_ptr<Notification::Interfaces::NotificationHandleInterface> handle;
    if (which < 2) {
        const UpdatePoint points[]
            = {UpdatePoint::Check, UpdatePoint::Apply, UpdatePoint::Done, UpdatePoint::All};
        const UpdatePoint point = points[random.bounded(4)];
        handler = make(StressKind::Update, point, UpdatePoint::All);
        handle = notifications->registerUpdateHandler(
            pattern,
            [handler](const QString &path, const UpdatePoint &reported, const UpdateResult &,
                      const QVariant &,
                      const QVariant &now) { handler->hear(path, int(reported), now.toLongLong()); },
            point);
    } else if (which == 2) {
        handler = make(StressKind::Create, CreatePoint::All, CreatePoint::All);
        handle = notifications->registerCreateHandler(pattern, hear(handler), CreatePoint::All);
    } else {
        handler = make(StressKind::Delete, DeletePoint::Done, DeletePoint::All);
        handle = notifications->registerDeleteHandler(pattern, hear(handler), DeletePoint::Done);
    }
    if (!handle)
        return;
    handler->registered = StressClock::next();
    record.add(handler);
    registrations.append({handler, handle});
}

void StressWorker::assign()
{
    found->getValidationInterface()->assignValidation("stress.*"_s, "not_negative"_s);
}

void StressWorker::save()
{
    found->getBackendInterface()->saveBackend("stress"_s);
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
