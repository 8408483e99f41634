#include <QElapsedTimer>
#include <QProcess>
#include <QtTest>

#include <support/Literals.h>

/*! However an application ends, its process ends cleanly and soon. */
class ExitTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void processEnds_data()
    {
        QTest::addColumn<QString>("scenario");
        QTest::addColumn<QByteArray>("output");
        QTest::newRow("without a stop") << "no-stop"_s << QByteArray();
        QTest::newRow("stop in a static destructor") << "late-stop"_s << QByteArray("late stop 0\n");
        QTest::newRow("exit inside a handler") << "exit-in-handler"_s << QByteArray();
        QTest::newRow("a handler that never ends") << "endless-handler"_s << QByteArray();
        QTest::newRow("fork before the start") << "fork-before-start"_s << QByteArray();
        QTest::newRow("without an application object") << "no-application"_s << QByteArray();
    }

    void processEnds()
    {
        QFETCH(QString, scenario);
        QFETCH(QByteArray, output);
        QProcess process;
        QElapsedTimer timer;
        timer.start();
        process.start(QStringLiteral(EXIT_SCENARIOS), {scenario});
        const auto endProcess = qScopeGuard([&process] {
            process.kill();
            process.waitForFinished();
        });
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(process.readAllStandardOutput(), output);
        QVERIFY2(timer.elapsed() < 30000, "the wait at exit has a limit of five seconds");
    }
};

QTEST_GUILESS_MAIN(ExitTest)
#include "ExitTest.moc"
