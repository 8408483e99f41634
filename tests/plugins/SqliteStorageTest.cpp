#include <notification/RepositoryHierarchyThreadProvider.h>

#include <QtTest>

#include <array>
#include <plugins/support/LoadedStorages.h>
#include <plugins/support/SqlProcesses.h>
#include <plugins/support/StorageRecords.h>
#include <random>
#include <support/Files.h>
#include <support/FullDisk.h>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <unistd.h>

using namespace TestSupport;

namespace {

// Another connection is about to write to the file.
class LockedFile
{
public:
    explicit LockedFile(const QString &file)
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "lock");
        other.setDatabaseName(file);
        if (!other.open() || !QSqlQuery(other).exec("BEGIN IMMEDIATE"))
            qFatal("the file is not locked");
    }
    ~LockedFile() { QSqlDatabase::removeDatabase("lock"); }
    Q_DISABLE_COPY_MOVE(LockedFile)
};

} // namespace

// What the file is to others, and what becomes of it when things go wrong.
class SqliteStorageTest : public QObject
{
    Q_OBJECT

private:
    static std::shared_ptr<StorageImplementation> make(const QString &file, qint32 mode = 0)
    {
        return MakeStorage(SQLITE_PLUGIN, "sqlite"_s, file, mode);
    }

    static QVariantList sql(const QString &file, const QStringList &statements)
    {
        return RunSql("QSQLITE", QString(), file, statements);
    }
    static void write(QProcess &writer, const QString &file, int mode, const QString &entry,
                      const QStringList &count = {})
    {
        writer.start(STORAGE_WRITER,
                     QStringList{SQLITE_PLUGIN, "sqlite", file, QString::number(mode), entry} + count);
    }
    // All values from the first one on, without a gap, and at least up to the one that is known to be
    // written.
    static void checkWritten(const QString &file, const QString &entry, qint64 lastSaid)
    {
        const auto storage = make(file);
        QVERIFY(storage->connectStorage());
        QStringList uuids;
        const quint64 count = storage->getElementIds(entry, uuids);
        QVERIFY2(qint64(count) > lastSaid,
                 qPrintable(QStringLiteral("%1 elements, said %2").arg(count).arg(lastSaid)));
        const QList<qulonglong> stamps = Stamps(storage, entry);
        for (int index = 0; index < uuids.size(); ++index) {
            QCOMPARE(stamps.at(index), quint64(index));
            QCOMPARE(storage->getElementRawData(entry, uuids.at(index)), QByteArray::number(index));
        }
    }

    std::unique_ptr<Files> folder;

private Q_SLOTS:
    void init() { folder = std::make_unique<Files>(); }
    void cleanup()
    {
        // A storage that was let go of closes its file on the event thread, and takes the log's files away.
        Tessellum::Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
        folder.reset();
    }

    void sortsStampsInTheFile()
    {
        const QString file = folder->filePath("a.sqlite");
        const auto storage = MakeStorage(SQLITE_PLUGIN, "SQLite"_s, QUrl::fromLocalFile(file));
        QVERIFY(storage && storage->connectStorage());
        QVERIFY(storage->serializeEntry("e", Record()));
        const QList<quint64> stamps{~quint64(0), 0, quint64(1) << 63, (quint64(1) << 63) - 1, 5};
        for (const quint64 stamp : stamps) {
            QVERIFY(storage->serializeElement("e", QString::number(stamp), Values(stamp, "x")));
        }
        QVERIFY(storage->disconnectStorage());
        QCOMPARE(sql(file, {"SELECT uuid FROM tessellum_elements ORDER BY stamp"_s}),
                 (QVariantList{"0"_s, "5"_s, "9223372036854775807"_s, "9223372036854775808"_s,
                               "18446744073709551615"_s}));
        QCOMPARE(sql(file, {"PRAGMA journal_mode"_s}).value(0).toString(), "wal"_s);
    }

    void refusesOtherFiles()
    {
        const auto refuses = [this](const QString &file, const QString &text) {
            const QByteArray before = folder->read(file);
            const auto storage = make(file);
            const LogCapture log;
            QVERIFY(!storage->connectStorage());
            QVERIFY(!storage->isConnected());
            QVERIFY(!storage->serializeEntry(Uuid(), Record()));
            QCOMPARE(log.lines().value(0),
                     "WARNING SqlStorage::connectStorage() cannot open '%1': %2"_s.arg(file, text));
            // Before the end of the text and the tables: only the journal's mode may have changed.
            if (!text.contains("table"))
                QCOMPARE(folder->read(file), before);
        };
        refuses(folder->path(), "unable to open database file");
        refuses(folder->filePath("a/b"), "unable to open database file");
        refuses(folder->write(QByteArray(2000, 'x')), "file is not a database");
        const QPair<const char *, const char *> tables[]
            = {{"CREATE TABLE notes (text)", "the file is a database of another program"},
               {"CREATE TABLE tessellum_schema (version)", "the tables have no version"},
               {"CREATE TABLE tessellum_schema AS SELECT 2 AS version",
                "the tables are of version 2, newer than 1"},
               {"CREATE TABLE tessellum_schema AS SELECT 1 AS version", "no such table: tessellum_entries"}};
        for (const auto &[statement, expected] : tables) {
            const QString file = folder->filePath(Uuid());
            sql(file, {statement});
            refuses(file, expected);
        }
    }

    void survivesEveryCut()
    {
        const QString file = folder->filePath("whole");
        const QString entry = Uuid();
        {
            const auto storage = make(file);
            QVERIFY(storage->connectStorage() && storage->serializeEntry(entry, Record()));
            for (quint64 number = 0; number < 300; ++number)
                QVERIFY(storage->serializeElement(entry, Uuid(), Values(number, QByteArray(50, 'x'))));
            QVERIFY(storage->disconnectStorage());
        }
        const QByteArray whole = folder->read(file);
        QVERIFY(whole.size() > 20000);
        for (int size : {1, 15, 16, 99, 100, 101, 4095, 4096, 4097, 12288, 20000, whole.size() - 1}) {
            const QString cut = folder->write(whole.left(size));
            const LogCapture log;
            QVERIFY(!make(cut)->connectStorage());
            QCOMPARE(log.lines().size(), 1);
            QCOMPARE(folder->read(cut), whole.left(size));
        }
    }

    // A process that ends with its storage connected loses nothing, and ends well.
    void survivesTheEndOfTheProcess()
    {
        const QString file = folder->filePath("a");
        const QString entry = Uuid();
        QProcess child;
        write(child, file, 0, entry, {"3000"});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
        checkWritten(file, entry, 2999);
    }

    void refusesReadOnlyFile()
    {
        // Nothing is read-only for root, so a child without its rights tries.
        const QString file = folder->filePath("a");
        const auto storage = make(file);
        QVERIFY(storage->connectStorage());
        QVERIFY(storage->disconnectStorage());
        QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        QVERIFY(QFile::setPermissions(folder->path(), QFile::Permissions(0x5555)));
        QStringList command{STORAGE_WRITER, SQLITE_PLUGIN, "sqlite"_s, file, "0"_s, "e"_s};
        if (geteuid() == 0) {
            // Root still, for what it reads may lie where nobody else may look.
            command = QStringList{"setpriv"_s, "--bounding-set=-dac_override,-dac_read_search"_s} + command;
        }
        QProcess child;
        child.start(command.takeFirst(), command);
        QVERIFY(child.waitForFinished(60000));
        QVERIFY(QFile::setPermissions(folder->path(), QFile::Permissions(0x7777)));
        const QByteArray output = child.readAllStandardOutput() + child.readAllStandardError();
        QVERIFY2(output.contains("refused"), output.constData());
        QVERIFY2(output.contains("readonly database"), output.constData());
    }

    void writesAgainAfterALock()
    {
        const QString file = folder->filePath("a");
        const auto storage = make(file);
        const QString entry = Uuid();
        QVERIFY(storage->connectStorage() && storage->serializeEntry(entry, Record()));
        int taken = 0;
        const LogCapture log;
        {
            const LockedFile lock(file);
            // Those that are taken before the lock shows are kept.
            while (storage->serializeElement(entry, Uuid(), Values(1, "x")))
                ++taken;
            QStringList uuids;
            QCOMPARE(storage->getElementIds(entry, uuids), quint64(taken));
            QVERIFY(!storage->serializeElement(entry, Uuid(), Values(1, "x")));
        }
        QVERIFY(storage->serializeElement(entry, Uuid(), Values(2, "y")));
        const QStringList lines = log.lines().filter("database is locked");
        QCOMPARE(lines.size(), 2); // the writer's, and the first refusal's
        QVERIFY(lines.first().startsWith("WARNING "));

        QVERIFY(storage->disconnectStorage());
        QCOMPARE(sql(file, {"SELECT count(*) FROM tessellum_elements"_s}).value(0).toInt(), taken + 1);
    }

    void tellsOfALockAtOnce()
    {
        const QString file = folder->filePath("a");
        const auto storage = make(file, 1);
        const QString entry = Uuid();
        const QString refused = Uuid();
        QVERIFY(storage->connectStorage() && storage->serializeEntry(entry, Record()));
        {
            const LockedFile lock(file);
            QVERIFY(!storage->serializeElement(entry, refused, Values(1, "x")));
            QCOMPARE(storage->getElementRawData(entry, refused), QByteArray());
        }
        QVERIFY(storage->serializeElement(entry, "after"_s, Values(2, "y")));
        QStringList uuids;
        storage->getElementIds(entry, uuids);
        QCOMPARE(uuids, QStringList{"after"_s});
    }

    void writesAgainAfterAFullDisk()
    {
        const QString file = folder->filePath("a");
        const auto storage = make(file, 1);
        const QString entry = Uuid();
        const auto write = [&](const QByteArray &bytes) {
            return storage->serializeElement(entry, Uuid(), Values(1, bytes));
        };
        QVERIFY(storage->connectStorage() && storage->serializeEntry(entry, Record()));
        const LogCapture log;
        int taken = 0;
        {
            const FullDisk full(200000);
            while (taken < 1000 && write(QByteArray(4000, 'x')))
                ++taken;
            QVERIFY(!write(QByteArray(4000, 'x')));
        }
        QVERIFY(taken < 1000);
        QVERIFY(
            log.lines().first().startsWith("WARNING SqlWriter::tell() storage 'test' cannot be written: "));
        QVERIFY(write("after"));
        QStringList uuids;
        QCOMPARE(storage->getElementIds(entry, uuids), quint64(taken + 1));
        QVERIFY(storage->disconnectStorage());
        QCOMPARE(sql(file, {"PRAGMA integrity_check"}), QVariantList{"ok"});
    }

    // One index of an entry's elements in each of them knows its own alone.
    void twoProcessesWriteToOneEntry()
    {
        constexpr int number = 3000;
        const QString file = folder->filePath("a");
        const QString entry = Uuid();
        std::array<QProcess, 2> children;
        for (QProcess &child : children) {
            child.setProcessChannelMode(QProcess::MergedChannels);
            write(child, file, 0, entry, {QString::number(number)});
        }
        for (QProcess &child : children) {
            QVERIFY(child.waitForFinished(60000));
            QCOMPARE(child.exitStatus(), QProcess::NormalExit);
            QVERIFY2(child.exitCode() == 0, child.readAll().constData());
        }
        const auto storage = make(file);
        QVERIFY(storage->connectStorage());
        QStringList uuids;
        QCOMPARE(storage->getElementIds(entry, uuids), quint64(2 * number));
        QVector<int> sums(number, 0);
        for (const QString &uuid : qAsConst(uuids))
            ++sums[storage->getElementRawData(entry, uuid).toInt()];
        QCOMPARE(sums.count(2), number);
        QVERIFY(storage->disconnectStorage());
        QCOMPARE(sql(file, {"SELECT count(*) FROM tessellum_entries"_s}), QVariantList{1});
        QCOMPARE(sql(file, {"PRAGMA integrity_check"}), QVariantList{"ok"});
    }

    // A child is killed while it writes.
    void keepsWhatWasCommitted()
    {
        std::minstd_rand random(std::random_device{}());
        const QString file = folder->filePath("a");
        for (int round = 0; round < 10; ++round) {
            const int mode = round % 2;
            const QString entry = Uuid();
            QProcess child;
            write(child, file, mode, entry);
            QByteArray said = KillWriter(child, int(random() % 3000) + 1);
            said.truncate(said.lastIndexOf('\n'));
            const qint64 last = said.mid(said.lastIndexOf('\n') + 1).toLongLong();
            checkWritten(file, entry, mode == 1 ? last : -1);
        }
        QCOMPARE(sql(file, {"PRAGMA integrity_check"}), QVariantList{"ok"});
    }
};

QTEST_GUILESS_MAIN(SqliteStorageTest)
#include "SqliteStorageTest.moc"
