#include "utils/RunningRepository.h"

#include <appconfig/attributes/AttributeReference.h>
#include <appconfig/ManagedRepository.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <notification/RepositoryLocks.h>
#include <notification/utils/PoolWait.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QtTest>

#include <support/Literals.h>

using namespace Tessellum;
using namespace Tessellum::AppConfig;
using Attributes::AttributeReference;
using Interfaces::AttributesQueryInterface;
using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

class CustomData : public Interfaces::CustomAttributeDataInterface
{
public:
    bool read(const QVariant &stored, QVariant &out) override
    {
        ++reads;
        out = onRead ? onRead() : stored;
        return true;
    }
    bool write(QVariant &stored, const QVariant &in) override
    {
        stored = in.toInt() * 10;
        return true;
    }

    std::function<QVariant()> onRead;
    std::atomic<int> reads{0};
};

class NeverValid : public Validation::AttributeValidationInterface
{
public:
    using AttributeValidationInterface::AttributeValidationInterface;
    QString getValidationId() const override
    {
        // An application's function may use the repository, whose lock it must find free.
        if (Core::appConfigLock().tryLockForWrite(30000))
            Core::appConfigLock().unlock();
        else
            ranLocked = true;
        return getId();
    }
    Validation::ValidationResult validate(const std::shared_ptr<Core::CoreLocalizationInterface> &,
                                          QVariant &) override
    {
        return Validation::ValidationResult::Failed;
    }

    mutable std::atomic<bool> ranLocked{false};
};

} // namespace

class ManagedRepositoryTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        run = std::make_unique<RunningRepository>();
        localization = std::make_shared<TessellumLocalizationInterfaceProvider>(QLocale::c());
        repository = std::make_unique<ManagedRepository>(localization, &Core::appConfigLock());
    }

    void cleanup()
    {
        repository.reset();
        run.reset();
    }

    void attributesLiveFromCreateToDelete()
    {
        QVERIFY(create("device.gain", 1));
        QCOMPARE(read("device.gain", QMetaType::Double), QVariant(1.0));
        QVERIFY(!read("device").isValid());
        QVERIFY(repository->getQueryInterface()->getAttribute("device"));
        QVERIFY(create("device.serial", "A7", 1));
        QCOMPARE(update("device.serial", "B"), UpdateResult::ApplyFailed);
        QVERIFY(!create(QString(), 1));

        const auto kept = repository->getQueryInterface()->getAttribute("device.gain");
        const auto found = repository->getQueryInterface()->queryAttributes("device.g*");
        QCOMPARE(found.size(), 1);
        QVERIFY(!std::dynamic_pointer_cast<AttributeReference>(found.first())->setValue("changed"));
        QVERIFY(repository->getManipulationInterface()->deleteAttribute("device", DeletePoint::Done));
        QVERIFY(!repository->getQueryInterface()->getAttribute("device.gain"));
        QTRY_VERIFY(kept->isDeleteFlagSet());
        QCOMPARE(update("device.gain", 3), UpdateResult::NodeGone);
    }

    void customDataServesTheAskedAccess()
    {
        const auto manipulation = repository->getManipulationInterface();
        const auto data = std::make_shared<CustomData>();
        const QVariant expected[] = {{}, 7, {}, 50, {}}; // an access that is none gives none
        for (int access = 0; access <= 4; ++access) {
            const QString path = "custom%1"_s.arg(access);
            QVERIFY(manipulation->createAttribute(path, 7, data, CreatePoint::Done, access));
            QCOMPARE(update(path, 5), access & 2 ? UpdateResult::Ok : UpdateResult::ApplyFailed);
            QCOMPARE(read(path), expected[access]);
        }
        const int reads = data->reads;
        read("custom3", QMetaType::QString);
        QCOMPARE(data->reads - reads, 1);
        QVERIFY(!manipulation->createAttribute("none", 1, nullptr, CreatePoint::Done, 3));
    }

    void aReaderMayUpdateAnotherPath()
    {
        const auto data = std::make_shared<CustomData>();
        data->onRead = [this] { return QVariant(int(update("counter", 1))); };
        QVERIFY(create("counter", 0));
        QVERIFY(repository->getManipulationInterface()->createAttribute("reader", {}, data, CreatePoint::Done,
                                                                        3));
        QCOMPARE(read("reader"), QVariant(int(UpdateResult::Ok)));
        QCOMPARE(read("counter"), QVariant(1));
        // The task of this update reads too, on a thread of the pool that its own update needs.
        QCOMPARE(update("reader", 1), UpdateResult::Ok);
    }

    void updatesCreateWhatIsMissingIfTheSettingsSaySo()
    {
        QCOMPARE(update("new.value", 1), UpdateResult::NodeGone); // the setting is not there
        run->setAutomaticCreate(false);
        QCOMPARE(update("new.value", 1), UpdateResult::NodeGone);
        QVERIFY(!repository->getQueryInterface()->getAttribute("new"));

        run->setAutomaticCreate(true);
        QCOMPARE(update("new.value", 1), UpdateResult::Ok);
        QCOMPARE(read("new.value"), QVariant(1));
        QCOMPARE(update("internal.repository.other", 1), UpdateResult::NodeGone);

        // What an update starts that found nothing, just before another thread created the attribute.
        QVERIFY(create("raced", 5, 1));
        const auto observer = run->provider().getManipulationProvider()->startAutomaticCreate("raced");
        QVERIFY(Notification::utils::WaitForSuccess(run->provider().getThreadPool(), observer));
        QCOMPARE(read("raced"), QVariant(5));
        QCOMPARE(repository->getQueryInterface()->getAttribute("raced")->getAccess(), 1U);
    }

    void onlyAttributesAreDeleted()
    {
        TestBackend::registerType("plain");
        QVERIFY(createBackend("plain", "store"));
        const auto manipulation = repository->getManipulationInterface();
        for (const char *path : {"store", "internal", "internal.names", "missing", ""})
            QVERIFY2(!manipulation->deleteAttribute(path, DeletePoint::Done), path);
        QVERIFY(repository->getBackendInterface()->hasBackend("store"));
        QVERIFY(run->provider().getRoot()->hasChild("internal"));
    }

    void backendsAreCreatedFoundAndSaved()
    {
        TestBackend::registerType("plain");
        const auto backends = repository->getBackendInterface();
        QVERIFY(repository->getBackendTypes().contains("plain"));
        QVERIFY(createBackend("plain", "store", "A store"));
        QVERIFY(!createBackend("plain", "store"));
        QCOMPARE(backends->getBackendNames(), QStringList("store"));
        QVERIFY(backends->hasBackend("store") && !backends->hasBackend("other"));
        QCOMPARE(backends->getBackendDescription("store"), QString("A store"));
        QCOMPARE(backends->getBackendDescription("other"), QString());
        QVERIFY(backends->saveBackend("store") && backends->saveBackend("other"));

        const auto inner = run->provider().getBackendProvider()->startCreateBackend(
            "plain", "deep.inner", {}, CreatePoint::Done, run->provider().getInternalRoot());
        QVERIFY(Notification::utils::WaitForSuccess(run->provider().getThreadPool(), inner));
        QCOMPARE(backends->getBackend("inner")->getType(), QString("plain"));
    }

    void aSaveHoldsNoLockAndEndsExceptions()
    {
        QVERIFY(create("x", 4));
        TestBackend::registerType("reading", [this](TestBackend &backend) {
            backend.onSave
                = [this] { return read("x") == QVariant(4) && update("x", 5) == UpdateResult::Ok; };
        });
        TestBackend::registerType("throwing", [](TestBackend &backend) {
            backend.onSave = []() -> bool { throw std::runtime_error("disk"); };
        });
        QVERIFY(createBackend("reading", "reading") && createBackend("throwing", "throwing"));
        QVERIFY(repository->getBackendInterface()->saveBackend("reading"));
        QVERIFY(!repository->getBackendInterface()->saveBackend("throwing"));
    }

    void aRemovedBackendAnswersEmpty()
    {
        TestBackend::registerType("plain");
        const auto backends = repository->getBackendInterface();
        QVERIFY(create("parent", 1));
        QVERIFY(createBackend("plain", "parent.store", "A store"));
        const auto before = backends->getBackend("store");
        QVERIFY(repository->getManipulationInterface()->deleteAttribute("parent", DeletePoint::Done));
        QTRY_COMPARE(before->getId(), QString());
        QTRY_VERIFY(!backends->hasBackend("store"));
        QVERIFY(backends->getBackend("store"));
        QCOMPARE(backends->getBackend("store")->getDescription(), QString());
    }

    void validationsAreAssignedAndRemoved()
    {
        const auto known = Validation::AttributeValidationRepository::getInstance();
        const auto validation = Notification::utils::MakeNode<NeverValid>("never"_s);
        QVERIFY(known->registerValidation(validation));
        for (const char *path : {"a.x", "a.y", "b"})
            QVERIFY(create(path, 0));
        const auto validations = repository->getValidationInterface();
        QCOMPARE(validations->getValidationIds(), QStringList("never"));
        QCOMPARE(validations->assignValidation("a.*", "never"), 2);
        QCOMPARE(validations->assignValidation("a.*", "never"), 0);
        QCOMPARE(validations->assignValidation("a.*", "unknown"), 0);
        QCOMPARE(update("a.x", 1), UpdateResult::CheckFailed);
        QCOMPARE(update("b", 1), UpdateResult::Ok);
        QCOMPARE(validations->removeValidation("*", "never"), 2);
        QCOMPARE(update("a.x", 1), UpdateResult::Ok);
        QVERIFY(!validation->ranLocked);
        QVERIFY(known->unregisterValidation("never"));
    }

    void aPathMayBeDeeperThanAStack()
    {
        const QString path = "a."_s.repeated(100000) + QLatin1Char('a');
        QVERIFY(create(path, 1));
        QCOMPARE(read(path), QVariant(1));
        QCOMPARE(update(path, 2), UpdateResult::Ok);
        QCOMPARE(repository->getQueryInterface()->queryAttributes(path).size(), 1);
        QCOMPARE(repository->getQueryInterface()->queryAttributes("*").size(), 100001);
        QVERIFY(repository->getManipulationInterface()->deleteAttribute("a", DeletePoint::Done));
        QVERIFY(!read("a").isValid());
        // The stop lets go of such a tree as well.
        QVERIFY(create(path, 1));
    }

    void everythingAnswersEmptyAfterAStop()
    {
        QVERIFY(create("a", 1));
        const auto notifications = repository->getNotificationInterface();
        QVERIFY(notifications);
        QVERIFY(!run->provider().getNotificationInterface());
        const auto reference = repository->getQueryInterface()->getAttribute("a");
        QVERIFY(!repository->isExpired());

        const auto expectEmpty = [&] {
            QVERIFY(repository->isExpired());
            QVERIFY(!read("a").isValid());
            QVERIFY(!repository->getQueryInterface()->getAttribute("a"));
            QVERIFY(repository->getQueryInterface()->queryAttributes("*").isEmpty());
            QVERIFY(!create("b", 1));
            QCOMPARE(update("a", 2), UpdateResult::NodeGone);
            QVERIFY(!repository->getManipulationInterface()->deleteAttribute("a", DeletePoint::Done));
            const auto backends = repository->getBackendInterface();
            QVERIFY(!createBackend("plain", "store") && backends->getBackendNames().isEmpty());
            QVERIFY(!backends->getBackend("store") && !backends->saveBackend("store"));
            QCOMPARE(repository->getValidationInterface()->assignValidation("*", "never"), 0);
            QVERIFY(!notifications->registerCreateHandler(
                "*", [](auto &...) {}, CreatePoint::All));
        };
        run->stop();
        QCOMPARE(reference->getId(), QString());
        expectEmpty();
        run = std::make_unique<RunningRepository>();
        expectEmpty();
    }

private:
    bool create(const QString &path, const QVariant &value, int access = 3)
    {
        return repository->getManipulationInterface()->createAttribute(path, value, CreatePoint::Done,
                                                                       access);
    }
    UpdateResult update(const QString &path, const QVariant &value)
    {
        return repository->getManipulationInterface()->updateAttribute(path, value, UpdatePoint::Done);
    }
    QVariant read(const QString &path, int metaType = 0)
    {
        QVariant value;
        return repository->getQueryInterface()->getValue(path, value, metaType) ? value : QVariant();
    }
    bool createBackend(const QString &type, const QString &name, const QString &description = {})
    {
        Backends::BackendCreateDataDetails details;
        details.description = description;
        return repository->getBackendInterface()->createBackend(type, name, details, CreatePoint::Done);
    }

    std::unique_ptr<RunningRepository> run;
    std::shared_ptr<TessellumLocalizationInterfaceProvider> localization;
    std::unique_ptr<ManagedRepository> repository;
};

QTEST_GUILESS_MAIN(ManagedRepositoryTest)
#include "ManagedRepositoryTest.moc"
