#include "Program.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

using ExampleSupport::Program;

/*! Recorder and monitor as two processes. */
class MonitorTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(folder->isValid());
    }
    void cleanup() { recorder.reset(); }

    void followsARecorderThatIsKilled();
    void tellsWhatItDidNotSee();

private:
    /*! Starts a recorder that serves at \a addresses and keeps those that it tells. */
    bool serve(const QStringList &addresses = {})
    {
        recorder = std::make_unique<Program>(RECORDER,
                                             QStringList{"--plugins", STORAGE_PLUGINS, "--database",
                                                         folder->filePath("recording.sqlite"), "--serve"}
                                                 + addresses);
        const QByteArray ready = recorder->lineWith("ready ").mid(6).toUtf8();
        const QJsonObject where = QJsonDocument::fromJson(ready).object();
        served = QStringList{where.value("configuration").toString(), where.value("data").toString()};
        return !served.first().isEmpty() && (addresses.isEmpty() || addresses == served);
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<Program> recorder;
    QStringList served;
};

void MonitorTest::followsARecorderThatIsKilled()
{
    QVERIFY(serve());
    Program monitor(
        MONITOR, QStringList{"--for", "300", "--interval", "250", "--at", "0", "--expect-restart"} + served);
    QVERIFY(monitor.tells("its values come"));
    QVERIFY(monitor.tells("the recorder follows: a value each 250 ms"));
    recorder->kill();
    QVERIFY(monitor.tells("the recorder has gone"));
    QVERIFY(serve(served));
    QVERIFY(monitor.tells("the recorder is back"));
    QVERIFY(monitor.tells("its values come again"));
    QCOMPARE(monitor.end(), 0);
    QCOMPARE(recorder->end(), 0);
    QVERIFY(recorder->tells("every step held"));
}

void MonitorTest::tellsWhatItDidNotSee()
{
    QVERIFY(serve());
    Program refused(MONITOR, QStringList{"--for", "300", "--interval", "1", "--at", "0"} + served);
    QVERIFY(refused.tells("the recorder refused that and keeps to 100 ms"));
    QCOMPARE(refused.end(), 1);
    QVERIFY(refused.tells("FAILED  the recorder took the interval of 1 ms"));
    recorder->kill();
    Program alone(MONITOR, QStringList{"--for", "0.5"} + served);
    QCOMPARE(alone.exitCode(), 1);
    QVERIFY(alone.tells("FAILED  the configuration was mirrored"));
}

QTEST_GUILESS_MAIN(MonitorTest)
#include "MonitorTest.moc"
