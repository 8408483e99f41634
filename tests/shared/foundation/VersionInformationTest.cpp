#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/utils/AttributeNodeVisitors.h>
#include <notification/utils/MakeNode.h>
#include <shared/foundation/VersionInformation.h>

#include <QTemporaryDir>
#include <QtTest>

using namespace Shared::VersionInformation;
using Shared::SettingsWrapper::SettingsWrapper;

class VersionInformationTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void versionFile()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("a.vft"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Version]\r\nLegalCopyright=\xc2\xa9 A,B,   C\r\nComments=\r\nFileVersion=1.2\r\n"
                   "[Other]\r\nProductName=X\r\n");
        file.close();
        VersionInformation record("module", file.fileName(), "/m.so");
        const QPair<Identifier, QString> expected[]
            = {{Identifier::LegalCopyright, QString::fromUtf8("\xc2\xa9 A, B, C")},
               {Identifier::FileVersion, "1.2"},
               {Identifier::Comments, QString()},
               {Identifier::ProductName, QString()}};
        for (const auto &[identifier, value] : expected)
            QCOMPARE(record.getVersionInformationByIdentifier(identifier), value);
        QVERIFY(!record.addVersionInformationData("other", folder.filePath("none"), QString()));
        QCOMPARE(record.getVersionInformationByIdentifier(Identifier::FileVersion), QString("1.2"));
        QCOMPARE(record.getVersionIdentifier(), QString("other"));
        QVERIFY(!record.addModuleFilePath(QString()));
        QCOMPARE(record.getModuleFilePath(), QString("/m.so"));
    }

    void theLibrarysOwn()
    {
        const VersionInformation record("Tessellum", ":/Tessellum.vft", QString());
        const auto value = [&record](Identifier identifier) {
            return record.getVersionInformationByIdentifier(identifier);
        };
        QCOMPARE(value(Identifier::FileDescription), QString("Tessellum library"));
        QVERIFY(QRegularExpression("^\\d+\\.\\d+\\.\\d+$").match(value(Identifier::FileVersion)).hasMatch());
        QVERIFY(QDateTime::fromString(value(Identifier::Comments), "yyyy/MM/dd hh:mm:ss").isValid());
        QVERIFY(value(Identifier::LegalCopyright).contains(", "));
        QFile file(":/Tessellum.vft");
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY(text.startsWith("[Version]\r\nComments="));
        QCOMPARE(text.count('\n'), text.count("\r\n"));
    }

    void modules()
    {
        const VersionInformation own(QStringLiteral("no such file"));
        QCOMPARE(own.getModuleFilePath(), QCoreApplication::applicationFilePath());
        QCOMPARE(own.getVersionIdentifier(), QString("VersionInformationTest"));
        QTemporaryDir folder;
        QFile file(folder.filePath("libx.so.1"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const VersionInformation other(file.fileName());
        QCOMPARE(other.getModuleFilePath(), file.fileName());
        QCOMPARE(other.getVersionIdentifier(), QString("libx"));
    }

    void settings()
    {
        using namespace Tessellum::AppConfig;
        const auto root = Tessellum::Notification::utils::MakeNode<Shared::Hierarchy::HierarchyNodeInstance>(
            QStringLiteral("root"));
        const auto add = [&root](const char *path, const char *value) {
            Attributes::AttributeCreateData::AttributeCreateDataDetails details;
            details.value = QString(value);
            return Attributes::CreateAttributeInHierarchy(root, {path, details});
        };
        QVERIFY(add("A.Version.FileVersion", "1") && add("A.Version.ModulePath", "/a"));
        QVERIFY(add("modules.information.A.FileVersion", "2") && add("modules.information.A.Comments", "c"));
        const auto wrapper = std::make_shared<const SettingsWrapper>(
            nullptr, root, utils::AttributeNodeReadVisitor<QString>(),
            utils::AttributeNodeWriteVisitor<QString>());
        const VersionInformation record(wrapper, "A.");
        QCOMPARE(record.getVersionInformationByIdentifier(Identifier::FileVersion), QString("1"));
        QCOMPARE(record.getVersionInformationByIdentifier(Identifier::Comments), QString("c"));
        QCOMPARE(record.getModuleFilePath(), QString("/a"));
        QCOMPARE(record.getVersionIdentifier(), QString("A"));
        QVERIFY(VersionInformation(wrapper, "B.")
                    .getVersionInformationByIdentifier(Identifier::Comments)
                    .isEmpty());
        const VersionInformation none(std::shared_ptr<const SettingsWrapper>(), "A.");
        QVERIFY(none.getModuleFilePath().isEmpty() && !none.isDefaultConstructed());
    }
};

QTEST_GUILESS_MAIN(VersionInformationTest)
#include "VersionInformationTest.moc"
