#include <appconfig/utils/RepositoryProvider.h>
#include <appdata/utils/RepositoryProvider.h>
#include <core/Library.h>
#include <core/utils/StartFault.h>
#include <notification/Observer.h>
#include <shared/hierarchy/HierarchyNode.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>

#include <QProcess>
#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <support/Files.h>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <support/Threads.h>

using namespace Tessellum;

namespace {

std::atomic<bool> startFault{false};
std::atomic<bool> startLogs{false};

QStringList pathsBeneath(const std::shared_ptr<const Shared::Hierarchy::HierarchyNode> &node)
{
    QStringList lines;
    for (const auto &child : node->getChildren(true)) {
        QVariant value;
        if (const auto attribute = std::dynamic_pointer_cast<const AppConfig::Attributes::Attribute>(child))
            attribute->getValue(value, 0);
        lines.append(child->getNodePath()->getFullPath() + QLatin1Char('=') + value.toString());
    }
    lines.sort();
    return lines;
}

auto repository()
{
    return getCoreInterface()->getAppConfigRepository();
}

bool create(const QString &path)
{
    return repository()->getManipulationInterface()->createAttribute(path, 1, Notification::CreatePoint::Done,
                                                                     3);
}

/*! Registered at the creation of "a". */
auto onCreation(const std::function<void()> &function)
{
    return repository()->getNotificationInterface()->registerCreateHandler(
        "a"_s, [function](auto &...) { function(); }, Notification::CreatePoint::Done);
}

/*! The internal tree once the texts of the lists have followed their elements. */
QStringList settledInternalTree()
{
    auto *const provider = AppConfig::utils::RepositoryProvider::getInstance();
    provider->getThreadPool().waitForDone(30000);
    return pathsBeneath(provider->getInternalRoot());
}

/*! What the copy of this program does: 0 if each of its runs loads the constraints beside it. */
int runCopy()
{
    for (int run = 0; run < 3; ++run) {
        if (initializeLibrary() != 0)
            return 1;
        // The backend's name is listed once its validations are there.
        const bool loaded = QTest::qWaitFor(
            [] { return repository()->getBackendInterface()->hasBackend("constraints"); }, 30000);
        if (!loaded || !repository()->getValidationInterface()->getValidationIds().contains("small"))
            return 2;
        if (uninitializeLibrary() != 1)
            return 3;
    }
    return 0;
}

} // namespace

// Takes the place of the library's own switch, which is always off.
bool Core::utils::IsStartFaultRequested()
{
    if (startLogs)
        Shared::Logging::FrameworkLog().warning() << "a step of the start";
    return startFault;
}

/*! The exported functions: their exact results, and the tree that a start leaves. */
class LibraryTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { uninitializeLibrary(); }

    void resultsOfStartAndStop()
    {
        QCOMPARE(uninitializeLibrary(), 0);
        QVERIFY(!getCoreInterface());
        QCOMPARE(initializeLibrary(), 0);
        QCOMPARE(initializeLibrary(), 1);
        Core::CoreInterface *const core = getCoreInterface();
        QVERIFY(core && core->getAppConfigRepository());
        Core::CoreInterface *seenByOtherThread = nullptr;
        TestSupport::InThreads(1, [&](int) { seenByOtherThread = getCoreInterface(); });
        QCOMPARE(seenByOtherThread, core);
        QCOMPARE(uninitializeLibrary(), 1);
        QVERIFY(!getCoreInterface() && !core->getAppConfigRepository());
        QCOMPARE(uninitializeLibrary(), 0);
    }

    void localesAndHash()
    {
        QString hash;
        QVERIFY(!getLibraryHash(nullptr));
        QVERIFY(getLibraryHash(&hash));
        QCOMPARE(hash, "7b1f3c9a5e2d4860c1a7f0e93b6d28547fa9c3e1026bd8f45a7e1c390d6b4f28"_s);

        std::weak_ptr<Core::CoreLocalizationInterface> locales;
        QVERIFY(!getLocalizationInterface(locales));
        QCOMPARE(initializeLibrary(), 0);
        QVERIFY(getLocalizationInterface(locales));
        QCOMPARE(locales.lock()->defaultLocale(), QLocale(QLocale::C, QLocale::AnyCountry));
        QVERIFY(!locales.lock()->isLocaleRegistered(locales.lock()->defaultLocale()));
    }

    void internalTree()
    {
        AppData::utils::RepositoryProvider::getInstance()->registerProduct(
            "own_storage"_s, [](const AppData::Storages::StorageCreateData &) { return nullptr; });
        QCOMPARE(initializeLibrary(), 0);
        const auto query = std::const_pointer_cast<const AppConfig::Interfaces::AttributesQueryInterface>(
            repository()->getQueryInterface());
        const auto read = [&](const QString &path) {
            QVariant value;
            const auto attribute = query->getAttribute("internal."_s + path);
            return attribute && attribute->getValue(value, 0) ? value : QVariant();
        };
        const char *const result = "Tessellum::Notification::CreateObserver::ResultType";
        const QPair<QString, QVariant> expected[]
            = {{"repository.update_threads", QThread::idealThreadCount()},
               {"repository.automatic_create_through_updates", true},
               {"repository.path_separator", "."},
               {"repository.list_separators", ";"},
               {"repository.names_ignore_case", true},
               {"types.backends.json", "Backend: json"},
               {"types.storages.own_storage", "Storage: own_storage"},
               {"types.validations.limit_int", "Validation: limit_int"},
               {"types.memory_strategy.last", "MemoryStrategy: last"},
               {"metatypes.repository.%1"_s.arg(QMetaType::type(result)), result}};
        for (const auto &[path, value] : expected)
            QCOMPARE(read(path), value);
        QCOMPARE(read("repository.library_hash").toString().size(), 64);
        QTRY_VERIFY(read("types.backends").toString().split(';').contains("json"));

        // Only reading passes the link.
        QVERIFY(!repository()->getQueryInterface()->getAttribute("internal.repository.list_separators"));
        QVERIFY(repository()->getQueryInterface()->queryAttributes("internal.*").isEmpty());
        QVERIFY(!create("internal.x"));
    }

    void metatypesInTheirOrder()
    {
        QCOMPARE(initializeLibrary(), 0);
        const auto list = AppConfig::utils::RepositoryProvider::getInstance()->getListPattern("metatypes"_s,
                                                                                              "repository"_s);
        QStringList names;
        for (const QString &number : list->getElements()) {
            QVariant value;
            QVERIFY(list->getElement(number)->getValue(value, QMetaType::QString));
            QCOMPARE(value.toString(), QString(QMetaType::typeName(number.toInt())));
            names.append(value.toString().remove("Tessellum::"));
        }
        const QStringList expected{"Notification::UpdateResult",
                                   "Notification::UpdatePoint",
                                   "Notification::CreatePoint",
                                   "Notification::DeletePoint",
                                   "Notification::CreateObserver::ResultType",
                                   "Notification::UpdateObserver::ResultType",
                                   "Notification::DeleteObserver::ResultType",
                                   "AppData::Data::Entries::EntryCategory",
                                   "AppData::Data::Elements::ElementSerializeInformation",
                                   "AppData::Data::Elements::ElementsSerializeInformation",
                                   "AppData::Data::Elements::ElementDeserializeInformation",
                                   "AppData::Data::Elements::ElementsDeserializeInformation",
                                   "AppData::Data::Elements::ElementUpdateData",
                                   "AppData::Data::Entries::EntryDeserializeInformation",
                                   "AppData::Data::Entries::EntrySerializeInformation",
                                   "AppData::Storages::StorageCreateData",
                                   "AppData::LoadStatus",
                                   "AppData::LoadDataHint"};
        QCOMPARE(names, expected);

        using Notification::CreateObserver;
        using Notification::CreatePoint;
        const auto report = QVariant::fromValue(CreateObserver::ResultType(CreatePoint::Done, true))
                                .value<QPair<QVariant, QVariant>>();
        QCOMPARE(report.first.value<CreatePoint>(), CreatePoint::Done);
        QCOMPARE(report.second, QVariant(true));
    }

    void versionInformation()
    {
        unsigned int count = 0;
        QString value = "old"_s;
        QString name;
        QVERIFY(!getVersionInformation(0, nullptr, &name, nullptr));
        QVERIFY(getVersionInformation(7, &value, &name, &count));
        QCOMPARE(count, 11u);
        QCOMPARE(value, QString());
        QCOMPARE(name, QString("ProductName"));

        QCOMPARE(initializeLibrary(), 0);
        QVERIFY(getVersionInformation(7, &value, nullptr, nullptr));
        QCOMPARE(value, QString("Tessellum library"));
        for (const int outside : {-1, 11}) {
            QVERIFY(getVersionInformation(outside, &value, &name, nullptr));
            QVERIFY(value.isEmpty() && name.isEmpty());
        }
        const auto modules
            = AppConfig::utils::RepositoryProvider::getInstance()->getListPattern("names"_s, "modules"_s);
        QCOMPARE(modules->getElements(), QStringList("Tessellum"));
        QVariant place;
        QVERIFY(modules->getElement("Tessellum")->getValue(place, QMetaType::QString));
        QCOMPARE(place, QVariant("internal.modules.information.Tessellum"));
        QVERIFY(repository()->getBackendInterface()->hasBackend("Tessellum"));
        QVERIFY(!repository()->getBackendInterface()->saveBackend("Tessellum"));
    }

    void everyStartGivesTheSameTree()
    {
        QCOMPARE(initializeLibrary(), 0);
        const QStringList expected = settledInternalTree();
        QVERIFY(expected.size() > 30);
        QCOMPARE(uninitializeLibrary(), 1);
        startFault = true;
        QCOMPARE(initializeLibrary(), -1);
        QCOMPARE(uninitializeLibrary(), 0);
        QVERIFY(!getCoreInterface());
        startFault = false;
        QCOMPARE(initializeLibrary(), 0);
        QCOMPARE(settledInternalTree(), expected);
        QVERIFY(create("a"));
        for (int i = 0; i < 10; ++i) {
            QCOMPARE(uninitializeLibrary(), 1);
            QCOMPARE(initializeLibrary(), 0);
            QCOMPARE(settledInternalTree(), expected);
        }
    }

    void stopInsideHandlerIsRefused()
    {
        QCOMPARE(initializeLibrary(), 0);
        const TestSupport::LogCapture log;
        std::atomic<int> result{-1};
        QSemaphore called;
        const auto handle = onCreation([&] {
            result = uninitializeLibrary();
            called.release();
        });
        QVERIFY(create("a"));
        QVERIFY(called.tryAcquire(1, 30000));
        QCOMPARE(result.load(), 2);
        QVERIFY(getCoreInterface());
        QCOMPARE(log.lines().filter("CRITICAL ").size(), 1);
    }

    void sinkOfAStartMayCallBoth()
    {
        const Qt::HANDLE starter = QThread::currentThreadId();
        QStringList heard;
        const QString sink = Shared::Logging::LogHandler::RegisterMessageSink(
            [&](const Shared::Logging::LogMessageContext &, const Shared::Logging::LogLevel &,
                const QString &text) {
                if (QThread::currentThreadId() == starter)
                    heard.append("%1 %2 %3"_s.arg(uninitializeLibrary()).arg(initializeLibrary()).arg(text));
            });
        startLogs = true;
        const int result = initializeLibrary();
        startLogs = false;
        QVERIFY(Shared::Logging::LogHandler::UnregisterMessageSink(sink));
        QCOMPARE(result, 0);
        QVERIFY(getCoreInterface());
        // The line of the refusal comes first: the sink hears it while it is still in its call.
        QCOMPARE(heard,
                 (QStringList{"2 1 uninitializeLibrary() called by a task or a handler, nothing done"_s,
                              "2 1 a step of the start"_s}));
    }

    void stopWaitsForTheRunningHandler()
    {
        using Notification::UpdateResult;
        QCOMPARE(initializeLibrary(), 0);
        const auto manipulation = repository()->getManipulationInterface();
        const auto update = [&manipulation] {
            return manipulation->updateAttribute("a"_s, 2, Notification::UpdatePoint::Done);
        };
        QSemaphore running;
        std::atomic<UpdateResult> updated{UpdateResult::NodeGone};
        const auto handle = onCreation([&] {
            running.release();
            while (getCoreInterface())
                std::this_thread::yield();
            updated = update(); // the tree stands as long as a handler runs
        });
        QVERIFY(create("a"));
        QVERIFY(running.tryAcquire(1, 30000));
        QCOMPARE(uninitializeLibrary(), 1);
        QCOMPARE(updated.load(), UpdateResult::Ok);
        QCOMPARE(update(), UpdateResult::NodeGone);
    }

    void threadsRace()
    {
        std::atomic<int> started{0};
        std::atomic<int> stopped{0};
        TestSupport::InThreads(4, [&](int) {
            for (int round = 0; round < 20; ++round) {
                started += initializeLibrary() == 0 ? 1 : 0;
                if (Core::CoreInterface *const core = getCoreInterface())
                    core->getAppConfigRepository();
                stopped += uninitializeLibrary() == 1 ? 1 : 0;
            }
        });
        const int last = uninitializeLibrary();
        QCOMPARE(stopped + last, started.load());
        QVERIFY(started > 0);
    }

    // The library's code is in this program, so that a copy of it finds the file at each of its starts.
    void fileBesideTheLibraryIsLoaded()
    {
        TestSupport::Files folder;
        const QString copy = folder.filePath("copy");
        QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), copy));
        folder.write("[small]\nType=limit_int\nMaximum=9\n", "constraints.ini");
        QProcess process;
        process.setWorkingDirectory(QDir::rootPath());
        process.start(copy, {"copy"});
        const auto endProcess = qScopeGuard([&process] {
            process.kill();
            process.waitForFinished();
        });
        QVERIFY(process.waitForFinished(100000));
        QCOMPARE(process.exitCode(), 0);
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (argc == 2 && qstrcmp(argv[1], "copy") == 0)
        return runCopy();
    LibraryTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "LibraryTest.moc"
