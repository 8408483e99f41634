#include "LogProcessChild.h"
#include "LogSegments.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QtTest>

#include <csignal>
#include <memory>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int patience = 30000; // milliseconds

struct Outcome
{
    int exitCode = -1;
    bool crashed = true;
    QString output;
    QString lines; /*!< of the debug output */
};

std::unique_ptr<QProcess> Start(const QString &scenario)
{
    auto child = std::make_unique<QProcess>();
    child->start(QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), scenario});
    return child;
}

Outcome Finish(QProcess &child)
{
    Outcome outcome;
    if (!child.waitForFinished(patience)) {
        child.kill();
        child.waitForFinished(patience);
        outcome.output = QStringLiteral("did not end");
        return outcome;
    }
    outcome.exitCode = child.exitCode();
    outcome.crashed = child.exitStatus() == QProcess::CrashExit;
    outcome.output = QString::fromUtf8(child.readAllStandardOutput());
    outcome.lines = QString::fromUtf8(child.readAllStandardError());
    return outcome;
}

Outcome Run(const QString &scenario)
{
    return Finish(*Start(scenario));
}

bool WaitForOutput(QProcess &child)
{
    return child.bytesAvailable() > 0 || child.waitForReadyRead(patience);
}

} // namespace

/*!
 * What takes a process of its own to show. The test itself does not log, so the named objects are the
 * children's.
 */
class LogProcessTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup();

    void linesOnStandardError();
    void aFatalMessageAbortsAfterTheSinks();
    void aFatalMessageOfAFilterAbortsAtOnce();
    void messagesOfQt();
    void anOwnQtHandlerStays();
    void theLogClosesLast();
    void exitInsideAFilter();
    void aClosedPipeDoesNotKill();
    void noUseNoObjects();
    void aProcessKilledInsideTheSectionLetsOthersOn();
    void theSemaphoreIsTheOneThatQtFinds();
    void aSemaphoreWithoutItsCountGetsIt();
    void recordsOfOtherProcessesAreOverwritten();
    void recordsWithoutProofAreNotFollowed_data();
    void recordsWithoutProofAreNotFollowed();
    void withoutSegmentsLinesAreLeft();
    void anotherUsersObjectsDoNotSilence();
    void manyProcessesAtOnce();
};

void LogProcessTest::cleanup()
{
    for (const QString &key : LogSegments::segmentKeys)
        QVERIFY2(!LogSegments::Exists(key), "a segment was left behind");
}

void LogProcessTest::linesOnStandardError()
{
    const Outcome outcome = Run(QStringLiteral("lines"));
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.lines,
             QStringLiteral("[TESSELLUM LOG] text \u00e4\n[ WARNING] bare\n[CORE WARNING] named\n"));
}

void LogProcessTest::aFatalMessageAbortsAfterTheSinks()
{
    const Outcome outcome = Run(QStringLiteral("fatal"));
    QVERIFY(outcome.crashed);
    QCOMPARE(outcome.exitCode, SIGABRT);
    QCOMPARE(outcome.output, QStringLiteral("Tessellum/FATAL/fatal text\n").repeated(2));
    QCOMPARE(outcome.lines, QStringLiteral("[TESSELLUM FATAL] fatal text\n"));

    // What it left does not harm the next one, who takes it away.
    QCOMPARE(Run(QStringLiteral("lines")).exitCode, 0);
    LogSegments::RemoveAll();
}

void LogProcessTest::aFatalMessageOfAFilterAbortsAtOnce()
{
    const Outcome outcome = Run(QStringLiteral("fatal inside a filter"));
    QVERIFY(outcome.crashed);
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.lines, QStringLiteral("[TESSELLUM FATAL] from a filter\n"));
    QCOMPARE(Run(QStringLiteral("lines")).exitCode, 0); // the section is free again
    LogSegments::RemoveAll();
}

void LogProcessTest::messagesOfQt()
{
    const Outcome outcome = Run(QStringLiteral("qt messages"));
    QCOMPARE(outcome.lines, QStringLiteral("[ WARNING] a warning\n[ LOG] a critical message\n"));
    QCOMPARE(outcome.output, QStringLiteral("/WARNING/a warning\n/LOG/a critical message\n"));
}

void LogProcessTest::anOwnQtHandlerStays()
{
    const Outcome outcome = Run(QStringLiteral("own qt handler"));
    QCOMPARE(outcome.lines, QString());
    QCOMPARE(outcome.output, QStringLiteral("own: a warning\n"));
}

void LogProcessTest::theLogClosesLast()
{
    const Outcome outcome = Run(QStringLiteral("exit"));
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.output, QStringLiteral("Tessellum/LOG/in time\nTessellum/WARNING/at exit\nclosed\n"));
    QVERIFY(!outcome.lines.contains(QStringLiteral("[TESSELLUM CRITICAL]")));
}

void LogProcessTest::exitInsideAFilter()
{
    const Outcome outcome = Run(QStringLiteral("exit inside a filter"));
    QVERIFY(!outcome.crashed);
    QCOMPARE(outcome.exitCode, 7);
}

void LogProcessTest::aClosedPipeDoesNotKill()
{
    QCOMPARE(Run(QStringLiteral("closed pipe")).output, QStringLiteral("alive\n"));
}

void LogProcessTest::noUseNoObjects()
{
    QCOMPARE(Run(QStringLiteral("no use")).exitCode, 0);
}

void LogProcessTest::aProcessKilledInsideTheSectionLetsOthersOn()
{
    const std::unique_ptr<QProcess> hanging = Start(QStringLiteral("hang inside"));
    QVERIFY(WaitForOutput(*hanging));
    const std::unique_ptr<QProcess> waiting = Start(QStringLiteral("lines"));
    QVERIFY(waiting->waitForStarted(patience));
    hanging->kill();
    QVERIFY(hanging->waitForFinished(patience));
    QCOMPARE(Finish(*waiting).exitCode, 0);
    LogSegments::RemoveAll();
}

void LogProcessTest::theSemaphoreIsTheOneThatQtFinds()
{
    QSystemSemaphore semaphore(LogSegments::semaphoreKey, 1, QSystemSemaphore::Create);
    QVERIFY(semaphore.acquire());
    const std::unique_ptr<QProcess> child = Start(QStringLiteral("lines"));
    QVERIFY(child->waitForStarted(patience));
    QVERIFY(!child->waitForFinished(600));
    QVERIFY(semaphore.release());
    QCOMPARE(Finish(*child).exitCode, 0);
}

void LogProcessTest::aSemaphoreWithoutItsCountGetsIt()
{
    // What a process leaves that dies between making the semaphore and giving it its count.
    const QSystemSemaphore maker(LogSegments::semaphoreKey, 1, QSystemSemaphore::Create);
    const QDir directory(QDir::tempPath());
    const QStringList files = directory.entryList({QStringLiteral("qipc_systemsem_*")}, QDir::Files);
    QCOMPARE(files.size(), 1);
    const key_t key = ftok(QFile::encodeName(directory.filePath(files.first())).constData(), 'Q');
    QVERIFY(semctl(semget(key, 1, 0600), 0, IPC_RMID) == 0);
    QVERIFY(semget(key, 1, 0600 | IPC_CREAT | IPC_EXCL) >= 0);
    QCOMPARE(Run(QStringLiteral("lines")).lines.count(QLatin1Char('\n')), 3);
}

void LogProcessTest::recordsOfOtherProcessesAreOverwritten()
{
    LogSegments::Segment segment(LogSegments::sinkKey);
    QVERIFY(segment.isHeld());
    segment.write({QCoreApplication::applicationPid(), 64});

    const std::unique_ptr<QProcess> first = Start(QStringLiteral("wait and log"));
    QVERIFY(WaitForOutput(*first));
    QCOMPARE(segment.read().processId, first->processId());
    QVERIFY(segment.read().address != 64);

    const std::unique_ptr<QProcess> second = Start(QStringLiteral("wait and log"));
    QVERIFY(WaitForOutput(*second));
    QCOMPARE(segment.read().processId, second->processId());

    for (QProcess *child : {first.get(), second.get()}) {
        child->write("\n");
        child->closeWriteChannel();
        QCOMPARE(Finish(*child).output, QStringLiteral("ready\nTessellum/LOG/after the wait\n"));
    }
}

void LogProcessTest::recordsWithoutProofAreNotFollowed_data()
{
    QTest::addColumn<QString>("sinkOutput");
    QTest::newRow("unmapped records") << QStringLiteral("Tessellum/LOG/text\n");
    QTest::newRow("misaligned records") << QStringLiteral("Tessellum/LOG/text\n");
    QTest::newRow("records of a dead namesake") << QStringLiteral("Tessellum/LOG/text\n");
    QTest::newRow("records of another kind") << QString();
}

void LogProcessTest::recordsWithoutProofAreNotFollowed()
{
    QFETCH(QString, sinkOutput);
    const Outcome outcome = Run(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.output, sinkOutput);
    QCOMPARE(outcome.lines, QStringLiteral("[TESSELLUM LOG] text\n"));
}

void LogProcessTest::withoutSegmentsLinesAreLeft()
{
    const Outcome outcome = Run(QStringLiteral("small segments"));
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.lines, QStringLiteral("[TESSELLUM LOG] text\n"));
}

void LogProcessTest::anotherUsersObjectsDoNotSilence()
{
    if (geteuid() != 0)
        QSKIP("takes the right to become another user");
    const std::unique_ptr<QProcess> owner = Start(QStringLiteral("wait and log"));
    QVERIFY(WaitForOutput(*owner));
    const Outcome other = Run(QStringLiteral("other user"));
    QCOMPARE(other.exitCode, 0);
    QCOMPARE(other.output, QStringLiteral("Tessellum/LOG/text\n"));
    QCOMPARE(other.lines, QStringLiteral("[TESSELLUM LOG] text\n"));
    owner->write("\n");
    owner->closeWriteChannel();
    QCOMPARE(Finish(*owner).exitCode, 0);
}

void LogProcessTest::manyProcessesAtOnce()
{
    // Each that ends takes the semaphore from under the others.
    for (int round = 0; round < 4; ++round) {
        std::vector<std::unique_ptr<QProcess>> children;
        for (int count = 0; count < 6; ++count)
            children.push_back(Start(QStringLiteral("many lines")));
        for (const auto &child : children) {
            const Outcome outcome = Finish(*child);
            QCOMPARE(outcome.exitCode, 0);
            QCOMPARE(outcome.lines.count(QStringLiteral("[TESSELLUM LOG] line\n")), 100);
        }
    }
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QStringLiteral("--child"))
        return RunLogProcessChild(arguments.value(2));
    const LogSegments::OwnObjects ownObjects;
    LogProcessTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "LogProcessTest.moc"
