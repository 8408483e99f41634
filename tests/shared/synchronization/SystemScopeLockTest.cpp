#include <shared/synchronization/SystemScopeLock.h>

#include <QProcess>
#include <QtTest>

#include <cstdio>
#include <iostream>
#include <string>
#include <support/Literals.h>
#include <support/LogCapture.h>

using Shared::Synchronization::SystemScopeLock;

namespace {

constexpr int patience = 30000; // milliseconds
constexpr int markSize = 4096;

QString Key()
{
    return "SystemScopeLockTest/%1"_s.arg(QCoreApplication::applicationPid());
}

QString OwnMark()
{
    return "%1|%2"_s.arg(QCoreApplication::applicationPid()).arg(QCoreApplication::applicationFilePath());
}

/*! Another process with a lock of this key. */
class Child
{
public:
    explicit Child(const QString &key)
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QCoreApplication::applicationFilePath(), {"--child"_s, key});
    }
    ~Child() { kill(); }
    Q_DISABLE_COPY(Child)

    QString ask(const QString &command)
    {
        process.write(command.toUtf8() + '\n');
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead(patience))
                return "no answer"_s;
        }
        return QString::fromUtf8(process.readLine()).trimmed();
    }
    void kill()
    {
        process.kill();
        process.waitForFinished(patience);
    }
    qint64 id() const { return process.processId(); }

private:
    QProcess process;
};

int RunChild(const QString &key)
{
    SystemScopeLock lock(key, markSize);
    for (std::string command; std::getline(std::cin, command);) {
        if (command == "use")
            std::puts(lock.tryToUse() ? "mine" : "refused");
        else if (command == "clear")
            std::puts(lock.clear() ? "cleared" : "refused");
        std::fflush(stdout);
    }
    return 0;
}

} // namespace

class SystemScopeLockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ownerKilledHardIsNoObstacle()
    {
        SystemScopeLock lock(Key(), markSize);
        Child owner(Key());
        QCOMPARE(owner.ask("use"_s), "mine"_s);
        Child next(Key());
        QCOMPARE(next.ask("use"_s), "refused"_s);
        QCOMPARE(next.ask("clear"_s), "refused"_s);

        const QString mark = "%1|%2"_s.arg(owner.id()).arg(QCoreApplication::applicationFilePath());
        QCOMPARE(lock.getData(), mark);
        {
            const TestSupport::LogCapture log;
            QVERIFY(!lock.tryToUse());
            QCOMPARE(
                log.lines(),
                QStringList({"LOG SystemScopeLock::isInUse() process=%1 with id=%2 is currently running"_s
                                 .arg(QCoreApplication::applicationFilePath())
                                 .arg(owner.id()),
                             "LOG SystemScopeLock::tryToUse() could not use shared memory with key=" + Key()
                                 + " the memory is used through=" + mark}));
        }
        owner.kill();
        QVERIFY(!lock.isInUse());
        QCOMPARE(lock.getData(), mark);
        QCOMPARE(next.ask("use"_s), "mine"_s);
        QVERIFY(!lock.tryToUse());
        QCOMPARE(Child(Key()).ask("use"_s), "refused"_s);
        QCOMPARE(next.ask("clear"_s), "cleared"_s);
        QVERIFY(lock.tryToUse());
    }

    void markThatNobodyLookedAfter()
    {
        {
            Child owner(Key());
            QCOMPARE(owner.ask("use"_s), "mine"_s);
        }
        SystemScopeLock lock(Key(), markSize);
        QVERIFY(!lock.getData().isEmpty());
        QVERIFY(lock.tryToUse());
        QCOMPARE(lock.getData(), OwnMark());
    }

    void marksAndWhatIsWrittenInThem()
    {
        SystemScopeLock lock(Key(), markSize);
        QVERIFY(lock.isValid() && !lock.hasError() && lock.getErrorString().isEmpty());
        QVERIFY(lock.getData().isEmpty() && !lock.isInUse());
        QVERIFY(lock.tryToUse());
        QVERIFY(lock.isInUse() && !lock.tryToUse());
        QVERIFY(lock.clear());
        QVERIFY(lock.getData().isEmpty() && lock.tryToUse());

        SystemScopeLock second(Key(), 16); // the first one's size counts
        QVERIFY(second.isValid());
        const TestSupport::LogCapture log;
        QVERIFY(second.appendData("port=1"_s));
        const QString appended = OwnMark() + "|port=1";
        QCOMPARE(lock.getData(), appended);
        QVERIFY(!lock.clear());
        QCOMPARE(lock.getData(), appended);
        QCOMPARE(log.lines(),
                 QStringList({"LOG SystemScopeLock::appendData() new data=" + appended + ", appended=port=1",
                              "LOG SystemScopeLock::clear() current data=" + appended
                                  + ", expected data=" + OwnMark()}));
        QVERIFY(lock.isInUse());
    }

    void numbersOfOtherPrograms_data()
    {
        QTest::addColumn<QString>("mark");
        QTest::addColumn<bool>("used");
        const QString id = QString::number(QCoreApplication::applicationPid());
        const QString path = QCoreApplication::applicationFilePath();
        QTest::newRow("no path") << id << true;
        QTest::newRow("path") << id + '|' + path << true;
        QTest::newRow("further field") << id + '|' + path + "|x" << true;
        QTest::newRow("beginning of a path") << id + '|' + path.chopped(3) << false;
        QTest::newRow("another program") << id + "|/usr/bin/other" << false;
        QTest::newRow("no number") << "x|" + path << false;
        QTest::newRow("too large") << "4294967297|" + path << false;
        QTest::newRow("separators") << "||" << false;
    }
    void numbersOfOtherPrograms()
    {
        QFETCH(QString, mark);
        SystemScopeLock lock(Key(), markSize);
        // An empty first field is passed over.
        QVERIFY(lock.appendData(mark));
        QCOMPARE(lock.getData(), '|' + mark);
        QTEST(lock.isInUse(), "used");
    }

    void shortAndImpossibleSegments()
    {
        for (const int size : {1, 12}) {
            SystemScopeLock lock(Key(), size);
            QVERIFY(lock.isValid());
            QVERIFY(lock.tryToUse());
            QVERIFY(OwnMark().startsWith(lock.getData()));
            QCOMPARE(lock.getData().size(), size - 1);
            QCOMPARE(lock.isInUse(), size > 1);
        }
        for (const auto &[key, size] :
             {std::pair(QString(), 16), std::pair(Key(), 0), std::pair(Key(), -1)}) {
            SystemScopeLock lock(key, size);
            QVERIFY(!lock.isValid() && lock.hasError() && !lock.getErrorString().isEmpty());
            QVERIFY(!lock.tryToUse() && !lock.isInUse() && !lock.clear() && !lock.appendData("x"_s));
            QVERIFY(lock.getData().isEmpty());
        }
    }

    void cleanup()
    {
        QSharedMemory memory(Key());
        QVERIFY2(!memory.attach(QSharedMemory::ReadOnly), "a segment was left behind");
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--child"_s)
        return RunChild(arguments.value(2));
    SystemScopeLockTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SystemScopeLockTest.moc"
