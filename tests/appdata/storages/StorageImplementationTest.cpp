#include <appdata/storages/Storage.h>
#include <appdata/support/StorageTwin.h>

#include <QtTest>

#include <support/LogCapture.h>

using namespace Tessellum::AppData;
using namespace Tessellum::AppData::Storages;
using Tessellum::AppData::Data::Elements::ElementUpdateData;
using TestSupport::StorageTwin;
using Operation = StorageTwin::Operation;
using Fault = StorageTwin::Fault;

namespace {

// Leaves updateElement() as it comes and writes down what it calls.
class DefaultUpdates : public StorageTwin
{
public:
    bool updateElement(const QString &entryUuid, const QString &elementUuid,
                       const ElementValues &values) override
    {
        return StorageImplementation::updateElement(entryUuid, elementUuid, values);
    }
    bool updateElementValue(const QString &, const QString &, const UpdateType &type,
                            const QVariant &) override
    {
        updated.append(type);
        return type != refused;
    }

    QList<UpdateType> updated;
    UpdateType refused = UpdateType::Unknown;
};

std::shared_ptr<Storage> MakeProvider(const std::shared_ptr<StorageTwin> &twin)
{
    StorageCreateDataDetails details;
    details.implementation = twin;
    return Tessellum::Notification::utils::MakeNode<Storage>(
        StorageCreateData(QStringLiteral("name"), QStringLiteral("twin"), QStringLiteral("label"), details));
}

} // namespace

class StorageImplementationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void updatesGoThroughTheKeysInOrderUntilOneFails();
    void aMediumThatThrowsHasNoEntryTypes();
};

void StorageImplementationTest::updatesGoThroughTheKeysInOrderUntilOneFails()
{
    DefaultUpdates medium;
    ElementUpdateData values;
    values.setRawData("raw");
    values.setTimestamp(7);
    values.setActive(true);
    QVERIFY(medium.updateElement(QStringLiteral("entry"), QStringLiteral("element"), values));
    const QList<DataElementUpdateType> all{DataElementUpdateType::Active, DataElementUpdateType::Timestamp,
                                           DataElementUpdateType::RawData};
    QCOMPARE(medium.updated, all);

    medium.refused = DataElementUpdateType::Timestamp;
    QVERIFY(!medium.updateElement(QStringLiteral("entry"), QStringLiteral("element"), values));
    QCOMPARE(medium.updated.mid(3), all.mid(0, 2));
}

void StorageImplementationTest::aMediumThatThrowsHasNoEntryTypes()
{
    const auto twin = StorageTwin::Make();
    const auto provider = MakeProvider(twin);
    for (const Fault fault : {Fault::Throw, Fault::ThrowInt}) {
        const TestSupport::LogCapture log;
        twin->arrange(Operation::GetEntryTypes, fault);
        QCOMPARE(provider->getEntryTypes(), QStringList());
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.lines().constFirst().startsWith(QLatin1String("CRITICAL StorageInterfaceProvider")));
    }
}

QTEST_GUILESS_MAIN(StorageImplementationTest)

#include "StorageImplementationTest.moc"
