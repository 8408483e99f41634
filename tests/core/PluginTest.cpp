#include <appconfig/interfaces/RepositoryInterface.h>
#include <core/CoreInterface.h>
#include <core/Library.h>

#include <QTemporaryDir>
#include <QtTest>

#include <support/Files.h>
#include <support/LogCapture.h>

using namespace Tessellum;
using Notification::CreatePoint;

namespace {

QVariant readInternal(const QString &path)
{
    const auto query = std::const_pointer_cast<const AppConfig::Interfaces::AttributesQueryInterface>(
        getCoreInterface()->getAppConfigRepository()->getQueryInterface());
    QVariant value;
    const auto attribute = query->getAttribute(QStringLiteral("internal.") + path);
    return attribute && attribute->getValue(value, 0) ? value : QVariant();
}

bool createBackend(const QString &type, const QString &name, const QVariant &data = QVariant())
{
    return getCoreInterface()->getAppConfigRepository()->getBackendInterface()->createBackend(
        type, name, {data, QString(), 3}, CreatePoint::Done);
}

} // namespace

/*! Plug-ins, good and bad, as an application loads them. What was loaded stays from one test to the next. */
class PluginTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { uninitializeLibrary(); }

    void pathsCountOnce()
    {
        QTemporaryDir folder;
        QCOMPARE(addPluginSearchPath(QString()), -2);
        QCOMPARE(addPluginSearchPath(folder.path()), 0);
        QCOMPARE(addPluginSearchPath(folder.path()), -1);
        QCOMPARE(addPluginSearchPath(folder.path() + '/'), 0);
        QCOMPARE(addPluginSearchPath(folder.filePath("none")), 0);
        QCOMPARE(initializeLibrary(), 0);
        QCOMPARE(addPluginSearchPath(folder.path()), -1);
    }

    void pluginBeforeTheStartServesEveryRun()
    {
        QTemporaryDir plugins;
        TestSupport::Files values;
        QVERIFY(QFile::copy(FOLDER_BACKEND, plugins.filePath("folder.bp")));
        const QString value = values.write("8080\n", "net.port");
        QCOMPARE(addPluginSearchPath(plugins.path()), 0);
        for (int run = 0; run < 2; ++run) {
            QCOMPARE(initializeLibrary(), 0);
            QCOMPARE(readInternal("types.backends.folder"), QVariant("Backend: folder"));
            QCOMPARE(readInternal("modules.information.FolderBackend.FileVersion"), QVariant("1.0"));
            QVERIFY(readInternal("names.modules.FolderBackend").isValid());
            QVERIFY(createBackend("folder", "f", values.path()));
            const auto repository = getCoreInterface()->getAppConfigRepository();
            QVariant port;
            QVERIFY(repository->getQueryInterface()->getValue("f.net.port", port, QMetaType::Int));
            QCOMPARE(port, QVariant(8080 + run));
            QVERIFY(repository->getManipulationInterface()->createAttribute("f.net.port", 8081,
                                                                            CreatePoint::Done, 3));
            QVERIFY(repository->getBackendInterface()->saveBackend("f"));
            QVERIFY(!createBackend("folder", "g", values.filePath("none")));
            QCOMPARE(uninitializeLibrary(), 1);
        }
        QCOMPARE(values.read(value), QByteArray("8081"));
    }

    void badFilesArePassedOver()
    {
        TestSupport::Files plugins;
        QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), plugins.filePath("program.so")));
        QVERIFY(QFile::copy(LIBRARY_WITHOUT_ENTRY, plugins.filePath("library.so")));
        QVERIFY(QFile::copy(FOLDER_BACKEND, plugins.filePath("folder.txt")));
        QVERIFY(QDir(plugins.path()).mkdir("folder.bp"));
        plugins.write("no library", "text.bp");
        const QByteArray plugin = plugins.read(FOLDER_BACKEND);
        for (int part = 0; part < 32; ++part)
            plugins.write(plugin.left(plugin.size() / 64 * part), QString("cut%1.bp").arg(part));
        QCOMPARE(initializeLibrary(), 0);
        const TestSupport::LogCapture log;
        QCOMPARE(addPluginSearchPath(plugins.path()), 0);
        QCOMPARE(log.lines(), QStringList());
    }

    void badPluginsHarmNothing()
    {
        QCOMPARE(initializeLibrary(), 0);
        for (const bool returns : {false, true}) {
            QTemporaryDir plugins;
            const QString file = plugins.filePath("odd.so");
            QVERIFY(QFile::copy(ODD_PLUGIN, file));
            qputenv("ODD_PLUGIN_RETURNS", "1");
            if (!returns)
                qunsetenv("ODD_PLUGIN_RETURNS");
            const TestSupport::LogCapture log;
            QCOMPARE(addPluginSearchPath(plugins.path()), 0);
            QCOMPARE(
                log.lines().filter("loadPluginFiles() catched exception of plug-in '" + file + "'").size(),
                returns ? 0 : 1);
            QCOMPARE(readInternal("modules.information.Odd.ModulePath").isValid(), returns);
        }
        qunsetenv("ODD_PLUGIN_RETURNS");
        for (const char *type : {"odd_empty", "odd_null", "odd_throwing"}) {
            QCOMPARE(readInternal(QString("types.backends.%1").arg(type)),
                     QVariant(QString("Backend: %1").arg(type)));
            QVERIFY(!createBackend(type, "odd_backend"));
        }
        QString hash;
        QVERIFY(getLibraryHash(&hash));
        QVERIFY(readInternal("types.backends." + hash).isValid());
        QVERIFY(createBackend("memory", "odd_backend"));
    }
};

QTEST_GUILESS_MAIN(PluginTest)
#include "PluginTest.moc"
