#include <appdata/storages/remote/RemoteStorage.h>
#include <appdata/support/StorageTwin.h>

#include <QTemporaryDir>
#include <QtTest>

#include <plugins/support/LoadedStorages.h>
#include <plugins/support/PostgresServer.h>
#include <plugins/support/StorageRecords.h>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <support/Threads.h>
#include <vector>

using namespace TestSupport;
using Tessellum::AppData::DataElementUpdateType;
using Tessellum::AppData::LoadDataHint;

// What each storage keeps to, whatever its medium.
class StorageContractTest : public QObject
{
    Q_OBJECT

private:
    // With nothing in it.
    std::shared_ptr<StorageImplementation> make()
    {
        QFETCH_GLOBAL(QString, type);
        QFETCH_GLOBAL(QString, plugin);
        QFETCH_GLOBAL(int, mode);
        const QString name = "medium%1"_s.arg(++made);
        if (type == "twin")
            return StorageTwin::Make();
        if (type == "remote-storage-server") {
            Tessellum::AppData::Storages::StorageCreateDataDetails details;
            details.location = QUrl("ws://x:0/?bind=127.0.0.1"_s);
            return Tessellum::Notification::utils::MakeNode<Tessellum::AppData::Storages::RemoteStorage>(
                StorageCreateData(name, type, QString(), details));
        }
        const QVariant location = plugin == QLatin1String(POSTGRESQL_PLUGIN)
            ? QVariant(server.url(name))
            : QVariant(folder.filePath(name));
        return MakeStorage(plugin, type, location, mode);
    }

    std::shared_ptr<StorageImplementation> open()
    {
        const auto storage = make();
        return storage && storage->connectStorage() ? storage : nullptr;
    }

    static ElementValues read(const std::shared_ptr<StorageImplementation> &storage, const QString &entry,
                              const QString &element, LoadDataHint hint = LoadDataHint::LoadAtOnce)
    {
        ElementValues values;
        if (!storage->deserializeElement(entry, element, values, hint))
            values.setTimestamp(42424242);
        return values;
    }

    static quint64 stampOf(const ElementValues &values)
    {
        quint64 stamp = 0;
        values.getTimestamp(stamp);
        return stamp;
    }

    QTemporaryDir folder;
    PostgresServer server;
    int made = 0;

private Q_SLOTS:
    // Each of the tests is run with each medium.
    void initTestCase_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("plugin");
        QTest::addColumn<int>("mode");
        const auto row = [](const QString &type, const QString &plugin, int mode) {
            QTest::addRow("%s, mode %d", qPrintable(type), mode) << type << plugin << mode;
        };
        row("twin", QString(), 0);
        row("remote-storage-server", QString(), 0);
        row("memory", MEMORY_PLUGIN, 0);
        row("volatile", MEMORY_PLUGIN, 0);
        row("sqlite", SQLITE_PLUGIN, 0);
        row("SQLite", SQLITE_PLUGIN, 1);
        row("postgresql", POSTGRESQL_PLUGIN, 0);
        row("PostgreSQL", POSTGRESQL_PLUGIN, 1);
    }

    void initTestCase()
    {
        QVERIFY(folder.isValid());
        QVERIFY(server.start());
    }

    void keepsEntries()
    {
        const auto storage = open();
        QVERIFY(storage);
        QVERIFY(storage->connectStorage());
        const QString odd = "'); DROP TABLE x;-- \"ä\u00e9\U0001F600\\"_s;
        const EntryRecord record = Record(odd);
        QVERIFY(storage->serializeEntry(odd, Record()));
        QVERIFY(storage->serializeEntry("b", EntryRecord()));
        QVERIFY(storage->serializeEntry(odd, record)); // replaces

        // Twice: as it is queued, and as the medium has it.
        for (int round = 0; round < 2; ++round) {
            QHash<QString, EntryRecord> entries{{"left over"_s, EntryRecord()}};
            QCOMPARE(storage->getEntries(entries), quint64(2));
            QCOMPARE(entries.size(), 2);
            EntryRecord found;
            QVERIFY(storage->deserializeEntry(odd, found));
            for (const EntryRecord &each : {found, entries.value(odd)}) {
                QCOMPARE(each.name, record.name);
                QCOMPARE(each.classification, record.classification);
                QVERIFY(each.category == record.category);
                QCOMPARE(each.storageName, record.storageName);
                QCOMPARE(each.persistence, record.persistence);
                QCOMPARE(each.capacity, record.capacity);
            }
            QVERIFY(storage->disconnectStorage());
            QVERIFY(storage->connectStorage());
        }
    }

    void keepsElements()
    {
        const auto storage = open();
        QVERIFY(storage);
        const QString entry = Uuid();
        QByteArray allBytes;
        for (int byte = 0; byte < 256; ++byte)
            allBytes.append(char(byte));
        const QByteArray large(100000, '\x80');
        QVERIFY(storage->serializeEntry(entry, Record()));
        const QList<quint64> stamps{0, 1, (quint64(1) << 63) - 1, quint64(1) << 63, ~quint64(0)};
        const QList<QByteArray> bytes{allBytes, QByteArray(), large, QByteArray("\0", 1), allBytes};
        QStringList uuids;
        for (int index = 0; index < stamps.size(); ++index) {
            uuids.append(index == 0 ? "no uuid, 'quoted'"_s : Uuid());
            QVERIFY(storage->serializeElement(entry, uuids.last(),
                                              Values(stamps.at(index), bytes.at(index), index % 2 == 0)));
        }
        uuids.append(Uuid());
        ElementValues sparse;
        sparse.setParsedData(1.5);
        sparse.setTimestamp(7);
        QVERIFY(storage->serializeElement(entry, uuids.last(), sparse));
        // A repeated one replaces the values and keeps its place.
        QVERIFY(storage->serializeElement(entry, uuids.first(), Values(stamps.first(), allBytes)));

        for (int round = 0; round < 2; ++round) {
            QStringList found{"left over"_s};
            QCOMPARE(storage->getElementIds(entry, found), quint64(uuids.size()));
            QCOMPARE(found, uuids);
            for (int index = 0; index < stamps.size(); ++index) {
                ElementValues values = read(storage, entry, uuids.at(index), LoadDataHint::OnDemand);
                bool active = index % 2 != 0;
                QVERIFY(values.getActive(active));
                QCOMPARE(active, index % 2 == 0);
                QCOMPARE(stampOf(values), stamps.at(index));
                QVERIFY(!values.contains(DataElementUpdateType::RawData));
                QByteArray raw("other");
                QVERIFY(read(storage, entry, uuids.at(index)).getRawData(raw));
                QCOMPARE(raw, bytes.at(index));
                QCOMPARE(storage->getElementRawData(entry, uuids.at(index)), bytes.at(index));
            }
            // What was not given is not there.
            QCOMPARE(read(storage, entry, uuids.last()).getUpdateTypes(),
                     QList<DataElementUpdateType>{DataElementUpdateType::Timestamp});
            QVERIFY(storage->disconnectStorage());
            QVERIFY(storage->connectStorage());
        }
    }

    void changesElements()
    {
        const auto storage = open();
        QVERIFY(storage);
        const QString entry = Uuid();
        const QString element = Uuid();
        QVERIFY(storage->serializeEntry(entry, Record()));
        QVERIFY(storage->serializeElement(entry, element, Values(1, "one")));
        for (int round = 0; round < 2; ++round) {
            const quint64 stamp = (quint64(1) << 63) + quint64(round);
            const QByteArray raw = QByteArray::number(round);
            QVERIFY(storage->updateElement(entry, element, Values(stamp, "before", false)));
            QVERIFY(storage->updateElementValue(entry, element, DataElementUpdateType::RawData, raw));
            QVERIFY(storage->updateElementValue(entry, element, DataElementUpdateType::Active, true));
            QVERIFY(storage->updateElementValue(entry, element, DataElementUpdateType::ParsedData, 3.5));
            QVERIFY(storage->updateElement(entry, element, ElementValues()));
            for (int look = 0; look < 2; ++look) {
                const ElementValues values = read(storage, entry, element);
                bool active = false;
                QVERIFY(values.getActive(active) && active);
                QCOMPARE(stampOf(values), stamp);
                QCOMPARE(storage->getElementRawData(entry, element), raw);
                QVERIFY(!values.contains(DataElementUpdateType::ParsedData));
                QVERIFY(storage->disconnectStorage());
                QVERIFY(storage->connectStorage());
            }
        }
    }

    void answersTheUnknown()
    {
        const auto storage = open();
        QVERIFY(storage);
        QFETCH_GLOBAL(QString, type);
        QCOMPARE(storage->getEntryTypes().contains(type), true);
        const QString entry = Uuid();
        QVERIFY(storage->serializeEntry(entry, Record()));
        const LogCapture log;
        EntryRecord record;
        ElementValues values;
        QStringList uuids;
        QVERIFY(!storage->deserializeEntry(Uuid(), record));
        QVERIFY(!storage->removeEntry(Uuid()));
        QVERIFY(!storage->serializeElement(Uuid(), Uuid(), Values(1, "x")));
        QCOMPARE(storage->getElementIds(Uuid(), uuids), quint64(0));
        QVERIFY(!storage->deserializeElement(entry, Uuid(), values, LoadDataHint::OnDemand));
        QVERIFY(values.isEmpty());
        QCOMPARE(storage->getElementRawData(entry, Uuid()), QByteArray());
        QVERIFY(!storage->updateElement(entry, Uuid(), Values(1, "x")));
        QVERIFY(!storage->updateElementValue(Uuid(), Uuid(), DataElementUpdateType::Active, true));
        QCOMPARE(log.lines(), QStringList());
    }

    void removesEntries()
    {
        const auto storage = open();
        QVERIFY(storage);
        const QString entry = Uuid();
        const QString element = Uuid();
        for (int round = 0; round < 3; ++round) {
            QStringList uuids;
            EntryRecord record;
            QVERIFY(storage->serializeEntry(entry, Record()));
            QCOMPARE(storage->getElementIds(entry, uuids), quint64(0));
            QCOMPARE(storage->getElementRawData(entry, element), QByteArray());
            QVERIFY(!storage->updateElement(entry, element, Values(1, "x")));
            QVERIFY(storage->serializeElement(entry, element, Values(1, "x")));
            if (round == 1) {
                QVERIFY(storage->disconnectStorage());
                QVERIFY(storage->connectStorage());
            }
            QCOMPARE(storage->getElementIds(entry, uuids), quint64(1));
            QVERIFY(storage->removeEntry(entry));
            QVERIFY(!storage->deserializeEntry(entry, record));
            QVERIFY(!storage->removeEntry(entry));
            QVERIFY(!storage->serializeElement(entry, element, Values(1, "x")));
            QCOMPARE(storage->getElementRawData(entry, element), QByteArray());
        }
    }

    void answersWhileClosed()
    {
        const auto storage = make();
        QVERIFY(storage);
        QVERIFY(!storage->isConnected());
        QVERIFY(!storage->serializeEntry(Uuid(), Record()));
        QHash<QString, EntryRecord> entries;
        QCOMPARE(storage->getEntries(entries), quint64(0));
        QVERIFY(storage->disconnectStorage());
        QVERIFY(storage->connectStorage());
        QTRY_VERIFY(storage->isConnected()); // a server listens a moment later
        QCOMPARE(storage->getEntries(entries), quint64(0));
    }

    void keepsWhatManyThreadsWrite()
    {
        QFETCH_GLOBAL(int, mode);
        constexpr int Threads = 4;
        const int count = mode == 0 ? 700 : 60;
        const auto storage = open();
        QVERIFY(storage);
        std::vector<QString> entries;
        for (int number = 0; number < Threads; ++number) {
            entries.push_back(Uuid());
            QVERIFY(storage->serializeEntry(entries.back(), Record()));
        }
        std::atomic<int> wrong{0};
        const auto work = [&](const QString &entry) {
            QStringList uuids;
            for (int index = 0; index < count; ++index) {
                uuids.append(Uuid());
                const bool added
                    = storage->serializeElement(entry, uuids.last(), Values(quint64(index), "first"));
                // What was written is seen at once, and older values as they became.
                const QString &older = uuids.at(index / 2);
                const QByteArray raw = QByteArray::number(index);
                const bool changed
                    = storage->updateElementValue(entry, older, DataElementUpdateType::RawData, raw);
                if (!added || !changed || storage->getElementRawData(entry, older) != raw
                    || stampOf(read(storage, entry, older, LoadDataHint::OnDemand)) != quint64(index / 2))
                    ++wrong;
            }
            QStringList found;
            storage->getElementIds(entry, found);
            if (found != uuids)
                ++wrong;
        };
        InThreads(Threads, [&](int number) { work(entries[size_t(number)]); });
        QCOMPARE(wrong.load(), 0);

        QVERIFY(storage->disconnectStorage());
        QVERIFY(storage->connectStorage());
        for (const QString &entry : entries) {
            QStringList found;
            QCOMPARE(storage->getElementIds(entry, found), quint64(count));
            for (int index = 0; index < count; ++index) {
                const int last = std::min(2 * index + 1, count - 1);
                const QByteArray raw
                    = index < (count + 1) / 2 ? QByteArray::number(last) : QByteArray("first");
                QCOMPARE(storage->getElementRawData(entry, found.at(index)), raw);
            }
        }
    }
};

QTEST_GUILESS_MAIN(StorageContractTest)
#include "StorageContractTest.moc"
