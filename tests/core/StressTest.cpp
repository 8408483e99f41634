#include "core/StressModel.h"
#include "core/StressRuns.h"

#include <appconfig/interfaces/RepositoryInterface.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/NotificationThreadPool.h>
#include <shared/hierarchy/HierarchyNode.h>

#include <QRandomGenerator>

#include <support/Files.h>
#include <support/Literals.h>

using namespace Tessellum;
using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> repository()
{
    Core::CoreInterface *const core = getCoreInterface();
    return core ? core->getAppConfigRepository() : nullptr;
}

/*!
 * Does what an application could do, at random, in a part of the tree of its own and in a shared one. What
 * was acknowledged in its own part is its model; only the main thread reads it, while the gate is closed.
 */
class StressWorker : public QThread
{
public:
    StressWorker(int workerNumber, StressGate &workerGate, StressRecord &workerRecord)
        : number(workerNumber)
        , gate(workerGate)
        , record(workerRecord)
        , random(static_cast<quint32>(workerNumber) + 1)
    { }

    /*! For the main thread, with the gate closed. */
    void beginRun()
    {
        model.clear();
        registrations.clear();
    }
    QString findDifference() const
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
    QString prefix() const { return "stress.w%1"_s.arg(number); }
    /*! Set before a stop begins: what ends later is not taken for acknowledged. */
    static inline std::atomic<bool> stopping{false};

protected:
    void run() override
    {
        while (gate.pass())
            doSomething();
        registrations.clear();
    }

private:
    void doSomething()
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
    void create()
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
    void update(const QString &path, bool own)
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
        // The last point tells the value that stands there by then, in the shared part perhaps another
        // thread's.
        QVector<int> points{int(UpdatePoint::Check), int(UpdatePoint::Apply)};
        if (own)
            points.append(int(UpdatePoint::Done));
        record.add({StressKind::Update, path, value, begun, points});
    }
    void updateOwn() { update(randomOwnPath(), true); }
    void updateShared() { update("stress.shared.k%1"_s.arg(random.bounded(10)), false); }
    void updateRefused()
    {
        const QString path = "stress.limited"_s;
        const qlonglong value = -nextValue();
        const quint64 begun = StressClock::next();
        const UpdateResult result
            = found->getManipulationInterface()->updateAttribute(path, value, UpdatePoint::Done);
        if (result == UpdateResult::CheckFailed && !stopping)
            record.add({StressKind::Update, path, value, begun, {int(UpdatePoint::Check)}});
    }
    void remove()
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
    void move()
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
    void read()
    {
        const auto query = found->getQueryInterface();
        for (const auto &attribute : query->queryAttributes(prefix() + ".a.*"_s)) {
            QVariant value;
            attribute->getValue(value, QMetaType::QString);
        }
        QVariant value;
        query->getValue("stress.limited"_s, value, QMetaType::Double);
    }
    void toggleHandler()
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
    void assign() { found->getValidationInterface()->assignValidation("stress.*"_s, "not_negative"_s); }
    void save() { found->getBackendInterface()->saveBackend("stress"_s); }
    QString randomOwnPath()
    {
        return model.isEmpty() ? QString() : std::next(model.cbegin(), random.bounded(model.size())).key();
    }
    static qlonglong nextValue()
    {
        static std::atomic<qlonglong> last{0};
        return ++last;
    }

    const int number;
    StressGate &gate;
    StressRecord &record;
    QRandomGenerator random;
    std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> found; // during an operation
    QHash<QString, qlonglong> model;
    struct Registration
    {
        std::shared_ptr<StressHandler> handler;
        std::shared_ptr<Notification::Interfaces::NotificationHandleInterface> handle;
    };
    QList<Registration> registrations;
};

} // namespace

/*! Eight threads do everything at once, with starts and stops in between; nothing hangs and nothing is lost.
 */
class StressTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void everythingAtOnce()
    {
        folder.write("[not_negative]\nType=limit_double\nMinimum=0\n", "limits.ini");
        StressGate gate(stressWorkerCount);
        for (int i = 0; i < stressWorkerCount; ++i)
            workers.append(std::make_shared<StressWorker>(i, gate, record));
        const auto dropWorkers = qScopeGuard([this] { workers.clear(); });
        int operations = 0;
        int heard = 0;
        RunStress(
            gate, workers, [this] { return startRun(); },
            [&] {
                compare();
                operations += record.operationCount();
                heard += record.heardCount();
            });
        QVERIFY(operations > 0 && heard > 0);
    }

private:
    bool startRun()
    {
        record.clear();
        const auto repository = getCoreInterface()->getAppConfigRepository();
        const auto backends = repository->getBackendInterface();
        AppConfig::Backends::BackendCreateDataDetails file;
        file.data = folder.filePath("stress.json"_s);
        AppConfig::Backends::BackendCreateDataDetails limits;
        limits.data = folder.filePath("limits.ini"_s);
        bool ok = backends->createBackend("memory"_s, "stress"_s, {}, Notification::CreatePoint::Done)
            && backends->createBackend("json"_s, "file"_s, file, Notification::CreatePoint::Done)
            && backends->createBackend("constraints"_s, "limits"_s, limits, Notification::CreatePoint::Done);
        const auto manipulation = repository->getManipulationInterface();
        ok = manipulation->createAttribute("stress.limited"_s, 0, Notification::CreatePoint::Done, 3) && ok;
        for (const auto &worker : qAsConst(workers)) {
            worker->beginRun();
            for (const QString &part : {".a"_s, ".b"_s})
                ok = manipulation->createAttribute(worker->prefix() + part, QVariant(),
                                                   Notification::CreatePoint::Done, 3)
                    && ok;
        }
        return repository->getValidationInterface()->assignValidation("stress.limited"_s, "not_negative"_s)
            == 1
            && ok;
    }
    void compare()
    {
        AppConfig::utils::RepositoryProvider *const provider
            = AppConfig::utils::RepositoryProvider::getInstance();
        QVERIFY(provider->getThreadPool().waitForDone(60000));
        QVERIFY(Notification::NotificationThreadPool().waitForDone(60000));
        QCOMPARE(record.findDifference(), QString());
        for (const auto &[names, list] : provider->getListPatterns()) {
            QVariant text;
            list->getValue(text, 0);
            QCOMPARE(text.toString(), list->getElements().join(QLatin1Char(';')));
        }
    }

    TestSupport::Files folder;
    StressRecord record;
    QVector<std::shared_ptr<StressWorker>> workers;
};

QTEST_GUILESS_MAIN(StressTest)
#include "StressTest.moc"
