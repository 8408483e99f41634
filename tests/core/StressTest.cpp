#include "core/StressRuns.h"

#include <appconfig/utils/RepositoryProvider.h>
#include <notification/NotificationThreadPool.h>

#include <support/Files.h>
#include <support/Literals.h>

using namespace Tessellum;

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
    bool startRun();
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

bool StressTest::startRun()
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
    return repository->getValidationInterface()->assignValidation("stress.limited"_s, "not_negative"_s) == 1
        && ok;
}

QTEST_GUILESS_MAIN(StressTest)
#include "StressTest.moc"
