#include <appconfig/attributes/Attribute.h>
#include <appconfig/backends/AutomaticConstraintsBackendLoader.h>
#include <appconfig/backends/ConstraintsBackend.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/utils/RunningRepository.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <notification/utils/MakeNode.h>

#include <QTemporaryDir>
#include <QtTest>

#include <support/Literals.h>
#include <support/LogCapture.h>

using namespace Tessellum::AppConfig;
using Backends::ConstraintsBackend;
using Tessellum::Notification::CreatePoint;
using Validation::AttributeValidationRepository;
using Validation::ValidationResult;

class ConstraintsBackendTest : public QObject
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
        QVERIFY(!load(backend(directory.filePath("absent.ini"))));
        QVERIFY(repository->getValidationIds().isEmpty());
        QCOMPARE(log.lines(), QStringList());
    }

    void loadsByItself()
    {
        using Backends::AutomaticConstraintsBackendLoader;
        RunningRepository run;
        const auto internal = run.provider().getInternalRoot();
        const QString file = fileOf("[limit]\nType=limit\n");
        {
            TestSupport::LogCapture log;
            QVERIFY(!AutomaticConstraintsBackendLoader(directory.filePath("none"), "constraints", internal));
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

private:
    std::shared_ptr<ConstraintsBackend> backend(const QString &file) const
    {
        return Tessellum::Notification::utils::MakeNode<ConstraintsBackend>(
            Backends::BackendCreateData("constraints"_s, "limits"_s, {file, QString(), 3}));
    }
    std::shared_ptr<ConstraintsBackend> backendOf(const QByteArray &content)
    {
        return backend(fileOf(content));
    }
    QString fileOf(const QByteArray &content)
    {
        QFile file(directory.filePath(QString::number(++files)));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write the test's file");
        return file.fileName();
    }
    static bool load(const std::shared_ptr<ConstraintsBackend> &backend)
    {
        return backend->loadAttributes(
            Tessellum::AppConfig::utils::RepositoryProvider::getInstance()->getThreadPool(),
            CreatePoint::Done);
    }

    AttributeValidationRepository *repository = AttributeValidationRepository::getInstance();
    QTemporaryDir directory;
    int files = 0;
};

QTEST_GUILESS_MAIN(ConstraintsBackendTest)
#include "ConstraintsBackendTest.moc"
