#include "../../support/RunningDataRepository.h"

#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appdata/utils/RepositoryDataEntryProvider.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryStorageProvider.h>

#include <QtTest>

using namespace Tessellum::AppData;
using Tessellum::AppConfig::Attributes::Attribute;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::UpdatePoint;
using TestSupport::RunningDataRepository;

// A server and a client of it, both made by their type keys, in one process.
class RemoteStorageTest : public QObject
{
    Q_OBJECT

private:
    static QVariant shown(const QString &path)
    {
        const auto attribute = std::dynamic_pointer_cast<Attribute>(
            RunningRepository::provider().getRoot()->findChildByRelativePath(path));
        QVariant value;
        if (attribute)
            attribute->getValue(value, QMetaType::UnknownType);
        return value;
    }
    static QString clientStatus()
    {
        return shown(QStringLiteral("appdata.storages.remote_clients.watcher.status")).toString();
    }
    static void control(const QString &command)
    {
        RunningRepository::provider().getManipulationProvider()->updateAttribute(
            QStringLiteral("appdata.storages.remote_clients.watcher.control"), command, UpdatePoint::Done);
    }
    static bool addStorage(const QString &type, const QString &name, const QString &url)
    {
        Storages::StorageCreateDataDetails details;
        details.location = QUrl(url);
        return RunningDataRepository::provider().getStorageProvider()->addStorage(type, name, details,
                                                                                  CreatePoint::Done, name);
    }

    static int portOf(const QString &name)
    {
        return shown(QStringLiteral("appdata.storages.remote_server_ports.") + name).toInt();
    }
    static bool addClient(const QString &name)
    {
        return addStorage(
            "remote-storage-client", name,
            QStringLiteral("ws://127.0.0.1:%1/?id=%2&path=served").arg(portOf("served")).arg(name));
    }
    static std::shared_ptr<Data::Entries::Entry> onlyEntryOf(const QString &storage)
    {
        const auto entries = Tessellum::AppData::utils::FindStorage(storage)->getChildren(false);
        return entries.size() == 1 ? std::dynamic_pointer_cast<Data::Entries::Entry>(entries.first())
                                   : nullptr;
    }

private Q_SLOTS:
    void aClientMirrorsAServerOverReconnects();
    void clientsOfBothModesGetTheSame();
};

void RemoteStorageTest::aClientMirrorsAServerOverReconnects()
{
    constexpr int count = 2000;
    RunningDataRepository run;
    QVERIFY(addStorage("remote-storage-server", "served", "ws://x:0/?bind=127.0.0.1"));
    const QString portPath = QStringLiteral("appdata.storages.remote_server_ports.served");
    QTRY_VERIFY(shown(portPath).toInt() != 0);
    const auto entry = run.addEntry(run.record("load", "served"));
    QVERIFY(entry);
    const auto values = entry->getManipulationInterface();
    values->addDataElementValue(1, ElementValueKind::ParsedValue, 2.5, CreatePoint::Done);

    QVERIFY(
        addStorage("remote-storage-client", "mirror",
                   QStringLiteral("ws://127.0.0.1:%1/?id=watcher&path=served").arg(shown(portPath).toInt())));
    const auto mirror = Tessellum::AppData::utils::FindStorage("mirror");
    QTRY_COMPARE(mirror->getChildren(false).size(), 1);
    const auto copy = std::dynamic_pointer_cast<Data::Entries::Entry>(mirror->getChildren(false).first());
    QTRY_COMPARE(copy->getNumberOfChildren(), quint64(1));
    QCOMPARE(run.parsed(copy, 0), 2.5);
    QTRY_COMPARE(clientStatus(), QStringLiteral("established"));
    for (int index = 1; index < count; ++index)
        values->addDataElementValue(quint64(index), ElementValueKind::ParsedValue, double(index),
                                    CreatePoint::All);
    QTRY_COMPARE_WITH_TIMEOUT(copy->getNumberOfChildren(), quint64(count), 30000);

    // What changes meanwhile comes with the next contents, and nothing comes twice.
    control(QStringLiteral("close"));
    QTRY_COMPARE(clientStatus(), QStringLiteral("disconnected"));
    QTRY_VERIFY(!shown(QStringLiteral("appdata.storages.remote_server.watcher")).isValid());
    run.element(entry, 0)->getManipulationInterface()->setData(ElementValueKind::ParsedValue, 99.0,
                                                               UpdatePoint::Done);
    control(QStringLiteral("connect"));
    QTRY_COMPARE_WITH_TIMEOUT(run.parsed(copy, 0), 99.0, 30000);
    QCOMPARE(copy->getNumberOfChildren(), quint64(count));
    QCOMPARE(mirror->getChildren(false).size(), 1);

    QVERIFY(run.provider().getDataEntryProvider()->removeDataEntry(entry->getUuid()));
    QTRY_COMPARE(mirror->getChildren(false).size(), 0);
    QVERIFY(run.provider().getStorageProvider()->removeStorage("served"));
    QTRY_VERIFY(!shown(portPath).isValid());
    QTRY_COMPARE(clientStatus(), QStringLiteral("disconnected"));
}

void RemoteStorageTest::clientsOfBothModesGetTheSame()
{
    RunningDataRepository run;
    QVERIFY(addStorage("remote-storage-server", "served", "ws://x:0/?bind=127.0.0.1"));
    QTRY_VERIFY(portOf("served") != 0);
    const auto entry
        = run.addEntry(run.record("load", "served", 0, RunningDataRepository::CategoryType::Binary));
    const auto values = entry->getManipulationInterface();
    values->addDataElementValue(1, ElementValueKind::RawData, QByteArray("one"), CreatePoint::Done);
    QVERIFY(run.element(entry, 0)->getManipulationInterface()->setActive(false, UpdatePoint::Done));
    const QStringList clients{"binary", "text"};
    QVERIFY(addClient("binary"));
    QTRY_VERIFY(onlyEntryOf("binary") && onlyEntryOf("binary")->getNumberOfChildren() == 1);
    // Qt's binary JSON does not hold this, so that the second client gets text.
    const QByteArray large(1200000, 'x');
    values->addDataElementValue(2, ElementValueKind::RawData, large, CreatePoint::Done);
    QVERIFY(addClient("text"));
    for (const QString &client : clients) {
        QTRY_VERIFY_WITH_TIMEOUT(onlyEntryOf(client) && onlyEntryOf(client)->getNumberOfChildren() == 2,
                                 30000);
        const auto copy = onlyEntryOf(client);
        QCOMPARE(copy->getName(), QStringLiteral("load"));
        quint64 bytes = 0;
        int inactive = 0;
        for (quint64 index = 0; index < 2; ++index) {
            bytes += quint64(run.element(copy, index)->getQueryInterface()->getRawData().size());
            inactive += run.element(copy, index)->isActive() ? 0 : 1;
        }
        QCOMPARE(bytes, quint64(large.size() + 3));
        QCOMPARE(inactive, 1);
        QTRY_VERIFY(shown("appdata.storages.remote_server." + client).isValid());
    }
    QVERIFY(run.element(entry, 1)->getManipulationInterface()->setData(
        ElementValueKind::RawData, QByteArray("small"), UpdatePoint::Done));
    values->addDataElementValue(3, ElementValueKind::RawData, QByteArray("three"), CreatePoint::Done);
    const auto total = [&](const QString &client) {
        int bytes = 0;
        const auto copy = onlyEntryOf(client);
        for (quint64 index = 0; copy && index < copy->getNumberOfChildren(); ++index)
            bytes += run.element(copy, index)->getQueryInterface()->getRawData().size();
        return bytes;
    };
    for (const QString &client : clients)
        QTRY_COMPARE(total(client), 3 + 5 + 5);
    QVERIFY(run.provider().getStorageProvider()->removeStorage("served"));
    for (const QString &client : clients)
        QTRY_VERIFY(!shown("appdata.storages.remote_server." + client).isValid());
    QTRY_VERIFY(!shown("appdata.storages.remote_server_ports.served").isValid());
}

QTEST_GUILESS_MAIN(RemoteStorageTest)
#include "RemoteStorageTest.moc"
