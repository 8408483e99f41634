#include "RepositoryFixture.h"

#include <shared/foundation/VersionInformation.h>

#include <QtTest>

using Shared::VersionInformation::Identifier;
using Shared::VersionInformation::VersionInformation;

class VersionInformationBackendTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void recordBecomesAttributes();
    void otherDataFails();
};

void VersionInformationBackendTest::recordBecomesAttributes()
{
    RepositoryFixture fixture;
    const VersionInformation record("me", ":/Tessellum.vft", "/m.so");
    QVERIFY(fixture.create("version_file", "v", QVariant::fromValue(record), 1));
    const auto values = fixture.values("v");
    QCOMPARE(values.size(), 13);
    QCOMPARE(values.value("ProductName"), QVariant("Tessellum library"));
    QCOMPARE(values.value("LegalTrademarks"), QVariant(""));
    QCOMPARE(values.value("ModulePath"), QVariant("/m.so"));
    QCOMPARE(values.value("RawVersionInformation").value<VersionInformation>().getVersionIdentifier(),
             QString("me"));

    auto *const query = fixture.repository().getQueryProvider().get();
    QVariant value;
    QVERIFY(!query->getValue("v.RawVersionInformation", value, QMetaType::QString));
    QCOMPARE(query->findAttribute("v.FileVersion")->getAccess(), 1u);
    QVERIFY(!fixture.backends().saveBackend("v"));
}

void VersionInformationBackendTest::otherDataFails()
{
    RepositoryFixture fixture;
    QVERIFY(!fixture.create("version", "text", "1.0"));
    QVERIFY(!fixture.create("version", "nothing"));
    QVERIFY(fixture.create("version_information_file", "empty", QVariant::fromValue(VersionInformation())));
}

QTEST_GUILESS_MAIN(VersionInformationBackendTest)
#include "VersionInformationBackendTest.moc"
