#include <QElapsedTimer>
#include <QProcess>
#include <QtTest>

/*! However an application ends, its process ends cleanly and soon. */
class ExitTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void processEnds()
    {
        const QPair<const char *, const char *> scenarios[]
            = {{"no-stop", ""},           {"late-stop", "late stop 0\n"}, // in a static destructor
               {"exit-in-handler", ""},   {"endless-handler", ""},
               {"fork-before-start", ""}, {"no-application", ""}};
        for (const auto &[scenario, output] : scenarios) {
            QProcess process;
            QElapsedTimer timer;
            timer.start();
            process.start(EXIT_SCENARIOS, {scenario});
            const auto endProcess = qScopeGuard([&process] {
                process.kill();
                process.waitForFinished();
            });
            QVERIFY2(process.waitForFinished(60000), scenario);
            QCOMPARE(process.exitStatus(), QProcess::NormalExit);
            QCOMPARE(process.exitCode(), 0);
            QCOMPARE(process.readAllStandardOutput(), QByteArray(output));
            QVERIFY2(timer.elapsed() < 30000, "the wait at exit has a limit of five seconds");
        }
    }
};

QTEST_GUILESS_MAIN(ExitTest)
#include "ExitTest.moc"
