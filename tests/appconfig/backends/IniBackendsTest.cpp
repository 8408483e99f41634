#include "RepositoryFixture.h"

#include <appconfig/attributes/Attribute.h>
#include <appconfig/backends/AutomaticConstraintsBackendLoader.h>
#include <appconfig/backends/ConstraintsBackend.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/RunningRepository.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <notification/utils/MakeNode.h>

#include <QtTest>

#include <support/Files.h>
#include <support/Literals.h>
#include <support/LogCapture.h>

using namespace Tessellum::AppConfig;
using Backends::ConstraintsBackend;
using Shared::Logging::LogMessageType;
using Tessellum::Notification::CreatePoint;
using Validation::AttributeValidationRepository;
using Validation::ValidationResult;

/*! INI files as attributes, and as constraints. */
class IniBackendsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { repository->unregisterBackendValidations(); }
    void makesRegistersAndHangsValidations()
    {
        TestSupport::LogCapture log;
        const auto constraints = backendOf("[volume]\nType=limit_int\nMinimum=0\nMaximum=100\nClipping=true\n"
                                           "[note]\nMinimum=3\n"
                                           "[ratio]\nType=limits\nMaximum=\"1.5\"\n");
        QVERIFY(load(constraints));
        QCOMPARE(repository->getValidationIds(), QStringList({"ratio", "volume"}));
        QCOMPARE(constraints->getNumberOfChildren(), quint64(2));

        const auto volume = repository->getValidation("volume"_s);
        QCOMPARE(std::static_pointer_cast<Shared::Hierarchy::HierarchyNode>(volume),
                 constraints->getChildById("volume"));
        QCOMPARE(volume->getNodePath()->getFullPath(), "limits.volume"_s);
        QCOMPARE(volume->getNumberOfChildren(), quint64(4));
        QVariant value(700);
        QCOMPARE(volume->validate(nullptr, value), ValidationResult::Adjusted);
        QCOMPARE(value, QVariant(100));

        const auto ratio = repository->getValidation("ratio"_s);
        QCOMPARE(ratio->validate(nullptr, value = 1.5), ValidationResult::Valid);
        QCOMPARE(ratio->validate(nullptr, value = 1.6), ValidationResult::Failed);
        QCOMPARE(log.lines(), QStringList());
    }

    void badSectionsStopNoOther()
    {
        const auto constraints = backendOf("[extra]\nType=limit\nUnit=V\n"
                                           "[empty key]\nType=limit\n=V\n"
                                           "[limit]\nType=limit\nMinimum=few\n"
                                           "[type]\nType=pattern\n"
                                           "[]\nType=limit\n"
                                           "[some.good]\nType=limit\n");
        QVERIFY(load(constraints));
        QVERIFY(!constraints->saveAttributes());
        QCOMPARE(repository->getValidationIds(), QStringList("good"));
        QCOMPARE(constraints->getNumberOfChildren(), quint64(1));
    }

    void failsWithoutAnyValidation()
    {
        TestSupport::LogCapture log;
        for (const char *content : {"", "[a]\nMinimum=1\n[b]\nUnit=V\n", "[a]\nType=none\n"})
            QVERIFY2(!load(backendOf(content)), content);
        QVERIFY(!load(backend(folder.filePath("absent.ini"))));
        QVERIFY(repository->getValidationIds().isEmpty());
        QCOMPARE(log.lines(), QStringList());
    }

    void loadsByItself()
    {
        using Backends::AutomaticConstraintsBackendLoader;
        RunningRepository run;
        const auto internal = run.provider().getInternalRoot();
        const QString file = folder.write("[limit]\nType=limit\n");
        {
            TestSupport::LogCapture log;
            QVERIFY(!AutomaticConstraintsBackendLoader(folder.filePath("none"), "constraints", internal));
            QCOMPARE(log.lines(), QStringList());
        }
        QVERIFY(AutomaticConstraintsBackendLoader(file, "constraints", internal));
        QTRY_COMPARE(run.provider().getBackendProvider()->getBackendNames(), QStringList("constraints"));
        const auto loaded = run.provider().getBackendProvider()->getBackend("constraints");
        QVERIFY(loaded && internal->findChildByRelativePath("constraints.limit"));
        QCOMPARE(loaded->getType(), QString("constraint"));
        QCOMPARE(loaded->getDescription(), "Automatically registered constraints from: '" + file + "'");
        QVERIFY(!run.provider().getBackendProvider()->saveBackend("constraints"));

        run.stop();
        TestSupport::LogCapture log;
        QVERIFY(!AutomaticConstraintsBackendLoader(file, "constraints", internal));
        QCOMPARE(log.lines(),
                 QStringList("WARNING AutomaticConstraintsBackendLoader() unable to load '" + file
                             + "' as constraints 'constraints' beneath 'internal'"));
    }

    void fileComesAndGoesWhole()
    {
        RepositoryFixture fixture;
        const QString file = folder.write("[net]\nport = 8080\nhost.name=\"a b\"\n[log]\nport=1\n");
        QVERIFY(fixture.create("inifile", "ini", file));
        QCOMPARE(
            fixture.values("ini"),
            RepositoryFixture::Values({{"net.port", "8080"}, {"net.host.name", "a b"}, {"log.port", "1"}}));
        QVERIFY(fixture.createAttribute("ini.net.port", 9));
        QVERIFY(fixture.createAttribute("ini.new.key", "x\ny"));
        QVERIFY(fixture.createAttribute("ini.loose", "in no section"));
        QVERIFY(fixture.backends().saveBackend("ini"));
        QCOMPARE(folder.read(file),
                 QByteArray("[log]\nport=\"1\"\n[net]\nhost.name=\"a b\"\nport=\"9\"\n[new]\nkey=\"x y\"\n"));

        QVERIFY(fixture.create("ini", "locked", file, 1));
        const auto attribute = fixture.repository().getQueryProvider()->findAttribute("locked.net.port");
        QVERIFY(attribute && attribute->getAccess() == 1);
    }

    void missingAndEmptyFiles()
    {
        RepositoryFixture fixture;
        const QString missing = folder.filePath("missing.ini");
        QVERIFY(fixture.create("ini_file", "none", missing));
        QCOMPARE(fixture.takeLog(LogMessageType::log),
                 QStringList("IniFileBackend::loadAttributesCreateDataInternal() ini file '" + missing
                             + "' does not exist, no attributes loaded"));
        QVERIFY(fixture.backends().saveBackend("none"));
        QVERIFY(QFile::exists(missing));
        QVERIFY(!fixture.create("ini", "empty", folder.write("[section]\n\n")));
        QVERIFY(fixture.create("ini", "folder", folder.path()));
        QVERIFY(!fixture.backends().saveBackend("folder"));
    }

    void oddLines()
    {
        RepositoryFixture fixture;
        const QString file
            = folder.write("early=1\n[a]\n=no key\nb..c=2\nno separator\nd=3\n[x\n[e.f]\ng==4\n\x01\xff=\n");
        QVERIFY(fixture.create("ini", "odd", file));
        QCOMPARE(fixture.values("odd").value("a.d"), QVariant("3"));
        QCOMPARE(fixture.values("odd").value("e.f.g"), QVariant("=4"));
        QVERIFY(fixture.backends().saveBackend("odd"));
        const QByteArray saved = folder.read(file);
        // What has no place in the tree stays in the file.
        for (const char *line : {"early=\"1\"", "=\"no key\"", "b..c=\"2\"", "d=\"3\"", "g=\"=4\""})
            QVERIFY2(saved.contains(line), line);
    }

private:
    std::shared_ptr<ConstraintsBackend> backend(const QString &file) const
    {
        return Tessellum::Notification::utils::MakeNode<ConstraintsBackend>(
            Backends::BackendCreateData("constraints"_s, "limits"_s, {file, QString(), 3}));
    }
    std::shared_ptr<ConstraintsBackend> backendOf(const QByteArray &content)
    {
        return backend(folder.write(content));
    }
    static bool load(const std::shared_ptr<ConstraintsBackend> &backend)
    {
        return backend->loadAttributes(
            Tessellum::AppConfig::utils::RepositoryProvider::getInstance()->getThreadPool(),
            CreatePoint::Done);
    }

    AttributeValidationRepository *repository = AttributeValidationRepository::getInstance();

    TestSupport::Files folder;
};

QTEST_GUILESS_MAIN(IniBackendsTest)
#include "IniBackendsTest.moc"
