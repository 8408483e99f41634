#include "Program.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

using ExampleSupport::Program;

/*! The device example with a simulated supply in a second process. */
class DeviceTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void setsAndMeasures();
    void showsUnderALocale();
    void takesWhatTheDeviceDoes_data();
    void takesWhatTheDeviceDoes();
    void findsADeviceThatRuns();
    void tellsWhatCannotBeRead();
};

void DeviceTest::setsAndMeasures()
{
    Program device(DEVICE, {"--readings", "20"});
    QVERIFY(device.tells("3 and 3 messages"));
    QVERIFY(device.tells("ok      the supply says what it is: Simulated supply"));
    QVERIFY(device.tells("ok      voltage: \"5 mV\" is set as 5,000 mV: Ok"));
    QVERIFY(device.tells("ok      voltage: \"12,5 V\" is set as 12,50 V: Ok"));
    QVERIFY(device.tells("ok      current: \"250 mA\" is set as 250,0 mA: Ok"));
    QVERIFY(device.tells("ok      frequency: \"1,5 kHz\" is set as 1,500 kHz: Ok"));
    QVERIFY(device.tells("ok      voltage of 61,00 V: Refused"));
    QVERIFY(device.tells("ok      20 readings over UDP"));
    QVERIFY(device.tells("ok      what was measured is what was set"));
    QCOMPARE(device.exitCode(), 0);
    QVERIFY(device.tells("every step held"));
}

void DeviceTest::showsUnderALocale()
{
    Program device(
        DEVICE,
        {"--readings", "1", "--locale", "en_US", "--set", "current=0,0125 A", "--set", "voltage=1 kV"});
    QVERIFY(device.tells("\"0,0125 A\" is set as 12.50 mA: Ok"));
    QVERIFY(device.tells("\"1 kV\" is set as > 60.00 V: Ok"));
    QCOMPARE(device.exitCode(), 0);
}

void DeviceTest::takesWhatTheDeviceDoes_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("outcome");
    QTest::newRow("one byte at a time") << "bytes"
                                        << "Simulated supply";
    QTest::newRow("everything at once, and too much") << "joined"
                                                      << "Simulated supply";
    QTest::newRow("nothing") << "silent"
                             << "TimedOut";
    QTest::newRow("the end in the middle") << "hangs-up"
                                           << "Disconnected";
    QTest::newRow("a size of 2^31") << "huge"
                                    << "Malformed";
    QTest::newRow("padded below payload") << "overfull"
                                          << "Malformed";
}

void DeviceTest::takesWhatTheDeviceDoes()
{
    QFETCH(const QString, fault);
    QFETCH(const QString, outcome);
    const bool isTaken = outcome.startsWith("Simulated");
    QStringList arguments{"--readings", "3", "--fault", fault};
    if (fault == "silent")
        arguments << "--patience"
                  << "200";
    Program device(DEVICE, arguments);
    const QString line = device.lineWith("the supply says what it is");
    QVERIFY2(line.startsWith(isTaken ? "ok" : "FAILED") && line.contains(outcome), qPrintable(line));
    QVERIFY(device.tells("ok      disconnected from the supply"));
    QCOMPARE(device.exitCode(), isTaken ? 0 : 1);
}

void DeviceTest::findsADeviceThatRuns()
{
    Program supply(DEVICE, {"--simulate"});
    const QByteArray ready = supply.lineWith("ready ").mid(6).toUtf8();
    const QJsonObject where = QJsonDocument::fromJson(ready).object();
    const QStringList arguments{
        "--readings", "1", "--tcp", where.value("tcp").toString(), "--udp", where.value("udp").toString()};
    for (int round = 0; round < 2; ++round)
        QCOMPARE(Program(DEVICE, arguments).exitCode(), 0);
    QCOMPARE(supply.end(), 0);
    Program alone(DEVICE, arguments);
    QVERIFY(alone.tells("FAILED  connected over TCP"));
    QCOMPARE(alone.exitCode(), 1);
}

void DeviceTest::tellsWhatCannotBeRead()
{
    Program device(DEVICE, {"--set", "voltage=5 mA"});
    QVERIFY(device.tells("FAILED  voltage: \"5 mA\" cannot be read"));
    QCOMPARE(device.exitCode(), 1);
    QCOMPARE(Program(DEVICE, {"--units", "/nowhere"}).exitCode(), 1);
    for (const QStringList &wrong : {QStringList{"--locale", "xx"}, {"--set", "5"}, {"--fault", "all"}})
        QCOMPARE(Program(DEVICE, wrong).exitCode(), 2);
}

QTEST_GUILESS_MAIN(DeviceTest)
#include "DeviceTest.moc"
