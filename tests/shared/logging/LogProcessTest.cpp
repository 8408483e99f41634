#include "LogProcessChild.h"
#include "LogSegments.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QtTest>

#include <csignal>
#include <memory>
#include <support/Literals.h>
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
    child->start(QCoreApplication::applicationFilePath(), {"--child"_s, scenario});
    return child;
}

Outcome Finish(QProcess &child)
{
    Outcome outcome;
    if (!child.waitForFinished(patience)) {
        child.kill();
        child.waitForFinished(patience);
        outcome.output = "did not end"_s;
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
    void cleanup()
    {
        for (const QString &key : LogSegments::segmentKeys)
            QVERIFY2(!LogSegments::Exists(key), "a segment was left behind");
    }

    void whatAProcessSaysAndHowItEnds_data()
    {
        QTest::addColumn<int>("exitCode"); // of a crash: the signal, negative
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("lines");
        const auto row = [](const char *scenario, int exitCode, const QString &output, const QString &lines) {
            QTest::newRow(scenario) << exitCode << output << lines;
        };
        row("lines", 0, {}, "[TESSELLUM LOG] text \u00e4\n[ WARNING] bare\n[CORE WARNING] named\n");
        row("fatal", -SIGABRT, "Tessellum/FATAL/fatal text\n"_s.repeated(2),
            "[TESSELLUM FATAL] fatal text\n");
        row("fatal inside a filter", -SIGABRT, {}, "[TESSELLUM FATAL] from a filter\n");
        row("qt messages", 0, "/WARNING/a warning\n/LOG/a critical message\n",
            "[ WARNING] a warning\n[ LOG] a critical message\n");
        row("own qt handler", 0, "own: a warning\n", {});
        row("exit", 0, "Tessellum/LOG/in time\nTessellum/WARNING/at exit\nclosed\n",
            "[TESSELLUM LOG] in time\n[TESSELLUM WARNING] at exit\ntoo late for Qt's messages\n");
        row("exit inside a filter", 7, {}, {});
        row("closed pipe", 0, "alive\n", {});
        row("no use", 0, {}, {});
        const QString text = "[TESSELLUM LOG] text\n";
        for (const char *records : {"unmapped records", "misaligned records", "records of a dead namesake"})
            row(records, 0, "Tessellum/LOG/text\n", text);
        row("records of another kind", 0, {}, text);
        row("small segments", 0, {}, text);
    }

    void whatAProcessSaysAndHowItEnds()
    {
        QFETCH(int, exitCode);
        const Outcome outcome = Run(QString::fromLatin1(QTest::currentDataTag()));
        QCOMPARE(outcome.crashed, exitCode < 0);
        QCOMPARE(outcome.exitCode, qAbs(exitCode));
        QTEST(outcome.output, "output");
        QTEST(outcome.lines, "lines");
        if (exitCode < 0) {
            // What it left does not harm the next one, who takes it away.
            QCOMPARE(Run("lines"_s).exitCode, 0);
            LogSegments::RemoveAll();
        }
    }

    void aProcessKilledInsideTheSectionLetsOthersOn()
    {
        const std::unique_ptr<QProcess> hanging = Start("hang inside"_s);
        QVERIFY(WaitForOutput(*hanging));
        const std::unique_ptr<QProcess> waiting = Start("lines"_s);
        QVERIFY(waiting->waitForStarted(patience));
        hanging->kill();
        QVERIFY(hanging->waitForFinished(patience));
        QCOMPARE(Finish(*waiting).exitCode, 0);
        LogSegments::RemoveAll();
    }

    void theSemaphoreIsTheOneThatQtFinds()
    {
        QSystemSemaphore semaphore(LogSegments::semaphoreKey, 1, QSystemSemaphore::Create);
        QVERIFY(semaphore.acquire());
        const std::unique_ptr<QProcess> child = Start("lines"_s);
        QVERIFY(child->waitForStarted(patience));
        QVERIFY(!child->waitForFinished(600));
        QVERIFY(semaphore.release());
        QCOMPARE(Finish(*child).exitCode, 0);
    }

    void aSemaphoreWithoutItsCountGetsIt()
    {
        // What a process leaves that dies between making the semaphore and giving it its count.
        const QSystemSemaphore maker(LogSegments::semaphoreKey, 1, QSystemSemaphore::Create);
        const QDir directory(QDir::tempPath());
        const QStringList files = directory.entryList({"qipc_systemsem_*"_s}, QDir::Files);
        QCOMPARE(files.size(), 1);
        const key_t key = ftok(QFile::encodeName(directory.filePath(files.first())).constData(), 'Q');
        QVERIFY(semctl(semget(key, 1, 0600), 0, IPC_RMID) == 0);
        QVERIFY(semget(key, 1, 0600 | IPC_CREAT | IPC_EXCL) >= 0);
        QCOMPARE(Run("lines"_s).lines.count(QLatin1Char('\n')), 3);
    }

    void recordsOfOtherProcessesAreOverwritten()
    {
        LogSegments::Segment segment(LogSegments::sinkKey);
        QVERIFY(segment.isHeld());
        segment.write({QCoreApplication::applicationPid(), 64});

        const std::unique_ptr<QProcess> first = Start("wait and log"_s);
        QVERIFY(WaitForOutput(*first));
        QCOMPARE(segment.read().processId, first->processId());
        QVERIFY(segment.read().address != 64);

        const std::unique_ptr<QProcess> second = Start("wait and log"_s);
        QVERIFY(WaitForOutput(*second));
        QCOMPARE(segment.read().processId, second->processId());

        for (QProcess *child : {first.get(), second.get()}) {
            child->write("\n");
            child->closeWriteChannel();
            QCOMPARE(Finish(*child).output, "ready\nTessellum/LOG/after the wait\n"_s);
        }
    }

    void anotherUsersObjectsDoNotSilence()
    {
        if (geteuid() != 0)
            QSKIP("takes the right to become another user");
        const std::unique_ptr<QProcess> owner = Start("wait and log"_s);
        QVERIFY(WaitForOutput(*owner));
        const Outcome other = Run("other user"_s);
        QCOMPARE(other.exitCode, 0);
        QCOMPARE(other.output, "Tessellum/LOG/text\n"_s);
        QCOMPARE(other.lines, "[TESSELLUM LOG] text\n"_s);
        owner->write("\n");
        owner->closeWriteChannel();
        QCOMPARE(Finish(*owner).exitCode, 0);
    }

    void manyProcessesAtOnce()
    {
        // Each that ends takes the semaphore from under the others.
        for (int round = 0; round < 4; ++round) {
            std::vector<std::unique_ptr<QProcess>> children;
            for (int count = 0; count < 6; ++count)
                children.push_back(Start("many lines"_s));
            for (const auto &child : children) {
                const Outcome outcome = Finish(*child);
                QCOMPARE(outcome.exitCode, 0);
                QCOMPARE(outcome.lines.count("[TESSELLUM LOG] line\n"_s), 100);
            }
        }
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--child"_s)
        return RunLogProcessChild(arguments.value(2));
    const LogSegments::OwnObjects ownObjects;
    LogProcessTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "LogProcessTest.moc"
