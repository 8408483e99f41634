#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <csignal>
#include <plugins/support/LoadedStorages.h>
#include <plugins/support/StorageRecords.h>
#include <random>
#include <support/LogCapture.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace TestSupport;
using Tessellum::AppData::LoadDataHint;

// What the file is to others, and what becomes of it when things go wrong.
class SqliteStorageTest : public QObject
{
    Q_OBJECT

private:
    std::shared_ptr<StorageImplementation> make(const QString &file, qint32 mode = 0);
    static QByteArray contents(const QString &file);
    // One column of what a connection of the test's own reads or does.
    QVariantList sql(const QString &file, const QStringList &statements);
    void checkWritten(const QString &file, const QString &entry, qint64 lastSaid);

    std::unique_ptr<QTemporaryDir> folder;

private Q_SLOTS:
    void init() { folder = std::make_unique<QTemporaryDir>(); }

    void sortsStampsInTheFile();
    void refusesOtherFiles_data();
    void refusesOtherFiles();
    void survivesEveryCut();
    void survivesTheEndOfTheProcess();
    void refusesReadOnlyFile();
    void writesAgainAfterALock();
    void tellsOfALockAtOnce();
    void writesAgainAfterAFullDisk();
    void twoProcessesWriteToOneEntry();
    void keepsWhatWasCommitted_data();
    void keepsWhatWasCommitted();
};

std::shared_ptr<StorageImplementation> SqliteStorageTest::make(const QString &file, qint32 mode)
{
    return MakeStorage(QStringLiteral(SQLITE_PLUGIN), QStringLiteral("sqlite"), file, mode);
}

QByteArray SqliteStorageTest::contents(const QString &file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

QVariantList SqliteStorageTest::sql(const QString &file, const QStringList &statements)
{
    QVariantList values;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("test"));
        database.setDatabaseName(file);
        database.open();
        QSqlQuery query(database);
        for (const QString &statement : statements) {
            if (!query.exec(statement))
                qWarning("%s", qPrintable(query.lastError().text()));
        }
        while (query.next())
            values.append(query.value(0));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("test"));
    return values;
}

void SqliteStorageTest::sortsStampsInTheFile()
{
    const QString file = folder->filePath(QStringLiteral("a.sqlite"));
    const auto storage
        = MakeStorage(QStringLiteral(SQLITE_PLUGIN), QStringLiteral("SQLite"), QUrl::fromLocalFile(file));
    QVERIFY(storage && storage->connectStorage());
    QVERIFY(storage->serializeEntry(QStringLiteral("e"), Record()));
    const QList<quint64> stamps{~quint64(0), 0, quint64(1) << 63, (quint64(1) << 63) - 1, 5};
    for (const quint64 stamp : stamps) {
        QVERIFY(storage->serializeElement(QStringLiteral("e"), QString::number(stamp), Values(stamp, "x")));
    }
    QVERIFY(storage->disconnectStorage());
    QCOMPARE(sql(file, {QStringLiteral("SELECT uuid FROM tessellum_elements ORDER BY stamp")}),
             (QVariantList{QStringLiteral("0"), QStringLiteral("5"), QStringLiteral("9223372036854775807"),
                           QStringLiteral("9223372036854775808"), QStringLiteral("18446744073709551615")}));
    QCOMPARE(sql(file, {QStringLiteral("PRAGMA journal_mode")}).value(0).toString(), QStringLiteral("wal"));
}

void SqliteStorageTest::refusesOtherFiles_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("text");

    QTest::newRow("folder") << QStringLiteral("folder") << QStringLiteral("unable to open database file");
    QTest::newRow("missing folder") << QStringLiteral("nowhere")
                                    << QStringLiteral("unable to open database file");
    QTest::newRow("text") << QStringLiteral("text") << QStringLiteral("file is not a database");
    QTest::newRow("other tables") << QStringLiteral("CREATE TABLE notes (text)")
                                  << QStringLiteral("the file is a database of another program");
    QTest::newRow("no version") << QStringLiteral("CREATE TABLE tessellum_schema (version)")
                                << QStringLiteral("the tables have no version");
    QTest::newRow("newer") << QStringLiteral("CREATE TABLE tessellum_schema AS SELECT 2 AS version")
                           << QStringLiteral("the tables are of version 2, newer than 1");
    QTest::newRow("odd tables") << QStringLiteral("CREATE TABLE tessellum_schema AS SELECT 1 AS version")
                                << QStringLiteral("no such table: tessellum_entries");
}

void SqliteStorageTest::refusesOtherFiles()
{
    QFETCH(QString, kind);
    QFETCH(QString, text);
    QString file = folder->filePath(QStringLiteral("x"));
    if (kind == QLatin1String("folder")) {
        QVERIFY(QDir().mkpath(file));
    } else if (kind == QLatin1String("nowhere")) {
        file = folder->filePath(QStringLiteral("a/b"));
    } else if (kind == QLatin1String("text")) {
        QFile written(file);
        QVERIFY(written.open(QIODevice::WriteOnly));
        written.write(QByteArray(2000, 'x'));
    } else {
        sql(file, {kind});
    }
    const QByteArray before = contents(file);
    const auto storage = make(file);
    const LogCapture log;
    QVERIFY(!storage->connectStorage());
    QVERIFY(!storage->isConnected());
    QVERIFY(!storage->serializeEntry(Uuid(), Record()));
    QCOMPARE(log.lines().value(0),
             QStringLiteral("WARNING SqlStorage::connectStorage() cannot open '%1': %2").arg(file, text));
    // Before the end of the text and the tables: only the journal's mode may have changed.
    if (!kind.contains(QLatin1String("tessellum")))
        QCOMPARE(contents(file), before);
}

void SqliteStorageTest::survivesEveryCut()
{
    const QString file = folder->filePath(QStringLiteral("whole"));
    const QString entry = Uuid();
    {
        const auto storage = make(file);
        QVERIFY(storage->connectStorage() && storage->serializeEntry(entry, Record()));
        for (quint64 number = 0; number < 300; ++number)
            QVERIFY(storage->serializeElement(entry, Uuid(), Values(number, QByteArray(50, 'x'))));
        QVERIFY(storage->disconnectStorage());
    }
    const QByteArray whole = contents(file);
    QVERIFY(whole.size() > 20000);
    for (int size : {1, 15, 16, 99, 100, 101, 4095, 4096, 4097, 12288, 20000, whole.size() - 1}) {
        const QString cut = folder->filePath(QStringLiteral("cut%1").arg(size));
        QFile written(cut);
        QVERIFY(written.open(QIODevice::WriteOnly));
        written.write(whole.left(size));
        written.close();
        const LogCapture log;
        QVERIFY(!make(cut)->connectStorage());
        QCOMPARE(log.lines().size(), 1);
        QCOMPARE(contents(cut), whole.left(size));
    }
}

void SqliteStorageTest::refusesReadOnlyFile()
{
    // Nothing is read-only for root, so a child without its rights tries.
    const QString file = folder->filePath(QStringLiteral("a"));
    const auto storage = make(file);
    QVERIFY(storage->connectStorage());
    QVERIFY(storage->disconnectStorage());
    QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    QVERIFY(QFile::setPermissions(folder->path(), QFile::Permissions(0x5555)));
    QStringList command{QStringLiteral(STORAGE_WRITER),
                        QStringLiteral(SQLITE_PLUGIN),
                        QStringLiteral("sqlite"),
                        file,
                        QStringLiteral("0"),
                        QStringLiteral("e")};
    if (geteuid() == 0) {
        command = QStringList{QStringLiteral("setpriv"), QStringLiteral("--reuid=65534"),
                              QStringLiteral("--regid=65534"), QStringLiteral("--clear-groups")}
            + command;
    }
    QProcess child;
    child.start(command.takeFirst(), command);
    QVERIFY(child.waitForFinished(60000));
    QVERIFY(QFile::setPermissions(folder->path(), QFile::Permissions(0x7777)));
    const QByteArray output = child.readAllStandardOutput() + child.readAllStandardError();
    QVERIFY2(output.contains("refused"), output.constData());
    QVERIFY2(output.contains("readonly database"), output.constData());
}

void SqliteStorageTest::writesAgainAfterALock()
{
    const QString file = folder->filePath(QStringLiteral("a"));
    const auto storage = make(file);
    const QString entry = Uuid();
    QVERIFY(storage->connectStorage() && storage->serializeEntry(entry, Record()));
    int taken = 0;
    const LogCapture log;
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("lock"));
        other.setDatabaseName(file);
        QVERIFY(other.open() && QSqlQuery(other).exec(QStringLiteral("BEGIN IMMEDIATE")));
        // Those that are taken before the lock shows are kept.
        while (storage->serializeElement(entry, Uuid(), Values(1, "x")))
            ++taken;
        QStringList uuids;
        QCOMPARE(storage->getElementIds(entry, uuids), quint64(taken));
        QVERIFY(!storage->serializeElement(entry, Uuid(), Values(1, "x")));
        other.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("lock"));
    QVERIFY(storage->serializeElement(entry, Uuid(), Values(2, "y")));
    const QStringList lines = log.lines().filter(QStringLiteral("database is locked"));
    QCOMPARE(lines.size(), 2); // the writer's, and the first refusal's
    QVERIFY(lines.first().startsWith(QLatin1String("WARNING ")));

    QVERIFY(storage->disconnectStorage());
    QCOMPARE(sql(file, {QStringLiteral("SELECT count(*) FROM tessellum_elements")}).value(0).toInt(),
             taken + 1);
}

void SqliteStorageTest::tellsOfALockAtOnce()
{
    const QString file = folder->filePath(QStringLiteral("a"));
    const auto storage = make(file, 1);
    const QString entry = Uuid();
    const QString refused = Uuid();
    QVERIFY(storage->connectStorage() && storage->serializeEntry(entry, Record()));
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("lock"));
        other.setDatabaseName(file);
        QVERIFY(other.open() && QSqlQuery(other).exec(QStringLiteral("BEGIN IMMEDIATE")));
        QVERIFY(!storage->serializeElement(entry, refused, Values(1, "x")));
        QCOMPARE(storage->getElementRawData(entry, refused), QByteArray());
        other.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("lock"));
    QVERIFY(storage->serializeElement(entry, QStringLiteral("after"), Values(2, "y")));
    QStringList uuids;
    storage->getElementIds(entry, uuids);
    QCOMPARE(uuids, QStringList{QStringLiteral("after")});
}

void SqliteStorageTest::writesAgainAfterAFullDisk()
{
    const QString file = folder->filePath(QStringLiteral("a"));
    const auto storage = make(file, 1);
    const QString entry = Uuid();
    QVERIFY(storage->connectStorage() && storage->serializeEntry(entry, Record()));
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit limit = before;
    limit.rlim_cur = 200000;
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const LogCapture log;
    int taken = 0;
    while (taken < 1000 && storage->serializeElement(entry, Uuid(), Values(1, QByteArray(4000, 'x'))))
        ++taken;
    QVERIFY(!storage->serializeElement(entry, Uuid(), Values(1, QByteArray(4000, 'x'))));
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
    QVERIFY(taken < 1000);
    QVERIFY(log.lines().first().startsWith(
        QLatin1String("WARNING SqlWriter::tell() storage 'test' cannot be written: ")));
    QVERIFY(storage->serializeElement(entry, Uuid(), Values(1, "after")));
    QStringList uuids;
    QCOMPARE(storage->getElementIds(entry, uuids), quint64(taken + 1));
    QVERIFY(storage->disconnectStorage());
    QCOMPARE(sql(file, {QStringLiteral("PRAGMA integrity_check")}), QVariantList{QStringLiteral("ok")});
}

void SqliteStorageTest::keepsWhatWasCommitted_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("groups") << 0;
    QTest::newRow("each by itself") << 1;
}

// A child is killed while it writes.
void SqliteStorageTest::keepsWhatWasCommitted()
{
    QFETCH(int, mode);
    const QString file = folder->filePath(QStringLiteral("a"));
    std::minstd_rand random(std::random_device{}());
    for (int round = 0; round < 5; ++round) {
        const QString entry = Uuid();
        QProcess child;
        child.start(
            QStringLiteral(STORAGE_WRITER),
            {QStringLiteral(SQLITE_PLUGIN), QStringLiteral("sqlite"), file, QString::number(mode), entry});
        QByteArray said;
        const int enough = int(random() % 3000) + 1;
        while (said.size() < enough) {
            QVERIFY(child.waitForReadyRead(60000));
            said += child.readAllStandardOutput();
        }
        kill(pid_t(child.processId()), SIGKILL);
        QVERIFY(child.waitForFinished(60000));
        said += child.readAllStandardOutput();
        said.truncate(said.lastIndexOf('\n'));
        const qint64 last = said.mid(said.lastIndexOf('\n') + 1).toLongLong();
        checkWritten(file, entry, mode == 1 ? last : -1);
    }
    QCOMPARE(sql(file, {QStringLiteral("PRAGMA integrity_check")}), QVariantList{QStringLiteral("ok")});
}

// A process that ends with its storage connected loses nothing, and ends well.
void SqliteStorageTest::survivesTheEndOfTheProcess()
{
    const QString file = folder->filePath(QStringLiteral("a"));
    const QString entry = Uuid();
    QProcess child;
    child.start(QStringLiteral(STORAGE_WRITER),
                {QStringLiteral(SQLITE_PLUGIN), QStringLiteral("sqlite"), file, QStringLiteral("0"), entry,
                 QStringLiteral("3000")});
    QVERIFY(child.waitForFinished(60000));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), 0);
    checkWritten(file, entry, 2999);
}

// One index of an entry's elements in each of them knows its own alone.
void SqliteStorageTest::twoProcessesWriteToOneEntry()
{
    constexpr int number = 3000;
    const QString file = folder->filePath(QStringLiteral("a"));
    const QString entry = Uuid();
    std::array<QProcess, 2> children;
    for (QProcess &child : children) {
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.start(QStringLiteral(STORAGE_WRITER),
                    {QStringLiteral(SQLITE_PLUGIN), QStringLiteral("sqlite"), file, QStringLiteral("0"),
                     entry, QString::number(number)});
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
    QCOMPARE(sql(file, {QStringLiteral("SELECT count(*) FROM tessellum_entries")}), QVariantList{1});
    QCOMPARE(sql(file, {QStringLiteral("PRAGMA integrity_check")}), QVariantList{QStringLiteral("ok")});
}

// All values from the first one on, without a gap, and at least up to the one that is known to be written.
void SqliteStorageTest::checkWritten(const QString &file, const QString &entry, qint64 lastSaid)
{
    const auto storage = make(file);
    QVERIFY(storage->connectStorage());
    QStringList uuids;
    const quint64 count = storage->getElementIds(entry, uuids);
    QVERIFY2(qint64(count) > lastSaid, qPrintable(QString::number(count)));
    for (int index = 0; index < uuids.size(); ++index) {
        ElementValues values;
        quint64 stamp = 0;
        QVERIFY(storage->deserializeElement(entry, uuids.at(index), values, LoadDataHint::OnDemand));
        QVERIFY(values.getTimestamp(stamp));
        QCOMPARE(stamp, quint64(index));
        QCOMPARE(storage->getElementRawData(entry, uuids.at(index)), QByteArray::number(index));
    }
}

QTEST_GUILESS_MAIN(SqliteStorageTest)
#include "SqliteStorageTest.moc"
