#include <appconfig/interfaces/RepositoryInterface.h>
#include <core/CoreInterface.h>
#include <core/Library.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace Tessellum;

namespace {

/*! What the copy of this program does: 0 if each of its runs loads the constraints beside it. */
int runCopy()
{
    for (int run = 0; run < 3; ++run) {
        if (initializeLibrary() != 0)
            return 1;
        const auto repository = getCoreInterface()->getAppConfigRepository();
        // The backend's name is listed once its validations are there.
        const bool loaded = QTest::qWaitFor(
            [&repository] { return repository->getBackendInterface()->hasBackend("constraints"); }, 30000);
        if (!loaded || !repository->getValidationInterface()->getValidationIds().contains("small"))
            return 2;
        if (uninitializeLibrary() != 1)
            return 3;
    }
    return 0;
}

} // namespace

/*! The file "constraints.ini" beside the library is loaded at each start. */
class AutomaticConstraintsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void fileBesideTheLibraryIsLoaded()
    {
        QTemporaryDir folder;
        const QString copy = folder.filePath("copy");
        QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), copy));
        QFile file(folder.filePath("constraints.ini"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("[small]\nType=limit_int\nMaximum=9\n") > 0);
        file.close();
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
    AutomaticConstraintsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "AutomaticConstraintsTest.moc"
