#include <QElapsedTimer>
#include <QProcess>
#include <QtTest>

/*! However an application ends, its process ends cleanly and soon. */
class ExitTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void processEnds_data();
    void processEnds();
};

void ExitTest::processEnds_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<QByteArray>("output");
    QTest::newRow("without a stop") << QStringLiteral("no-stop") << QByteArray();
    QTest::newRow("stop in a static destructor")
        << QStringLiteral("late-stop") << QByteArray("late stop 0\n");
    QTest::newRow("exit inside a handler") << QStringLiteral("exit-in-handler") << QByteArray();
    QTest::newRow("a handler that never ends") << QStringLiteral("endless-handler") << QByteArray();
    QTest::newRow("fork before the start") << QStringLiteral("fork-before-start") << QByteArray();
    QTest::newRow("without an application object") << QStringLiteral("no-application") << QByteArray();
}

void ExitTest::processEnds()
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

QTEST_GUILESS_MAIN(ExitTest)
#include "ExitTest.moc"
