#include "ToolRunner.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace ToolSupport;

class ConversionToolTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(folder.isValid());
        unit = write("unit.json", R"({"unit": {"baseUnit": "Hz", "allowedSiPrefixes": ["", "k", "M"]},
                                      "format": {"default": "0;f;2"}})");
    }

    void commands_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("output");
        const auto row = [](const QStringList &arguments, int exitCode, const QString &output = {}) {
            QTest::newRow(qPrintable(arguments.join(' '))) << arguments << exitCode << output;
        };
        row({"format", "1500000", "--spec", unit}, 0, "1.50 MHz\n");
        row({"format", "1500000,5", "--spec", unit, "--locale", "de_DE", "--prefix", "k"}, 0,
            "1.500,00 kHz\n");
        row({"format", "1500", "--spec", unit, "--prefix", ""}, 0, "1,500.00 Hz\n");
        row({"format", "--locale", "de_DE", "--spec", unit, "-1,234"}, 0, "-1,23 Hz\n");
        row({"format", "x", "--spec", unit}, 2);
        row({"format", "1", "--spec", unit, "--prefix", "x"}, 2);
        row({"format", "1", "--spec", unit, "--locale", "xx"}, 2);
        row({"format", "1", "--spec", unit, "--spec", unit}, 2);
        row({"format", "1", "--spec"}, 2);
        row({"format", "1"}, 2);
        row({"format", "1", "--spec", "/no/such/file"}, 1);
        row({"format", "1", "--spec", write("no.json", "{")}, 1);
        row({"format", "1", "--spec", write("list.json", "[]")}, 1);

        row({"parse", "1,5 kHz"}, 0, "{\"base\":1500,\"prefix\":\"k\",\"unit\":\"Hz\",\"value\":1.5}\n");
        row({"parse", "1,234 V"}, 0, "{\"base\":1234,\"prefix\":\"\",\"unit\":\"V\",\"value\":1234}\n");
        row({"parse", "1,234 V", "--locale", "de_DE"}, 0,
            "{\"base\":1.234,\"prefix\":\"\",\"unit\":\"V\",\"value\":1.234}\n");
        row({"parse", "kHz"}, 1);
        row({"parse", "1", "2"}, 2);
        row({"parse", "1", "--prefix", "k"}, 2);

        row({"duration", "1.5h"}, 0, "5400\n");
        row({"duration", "2 ms"}, 0, "0.002\n");
        row({"duration", "-1s"}, 1);
        row({"duration"}, 2);

        const QString schema = write("schema.json", R"({"type": "object", "required": ["unit"]})");
        row({"validate", unit, schema}, 0);
        row({"validate", schema, schema}, 1);
        row({"validate", "/no/such/file", schema}, 1);
        row({"validate", unit}, 2);
    }

    void commands()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        const Outcome outcome = runTool(arguments);
        QTEST(outcome.output, "output");
        QCOMPARE(outcome.exitCode, exitCode);
        QCOMPARE(outcome.errors.isEmpty(), exitCode == 0);
    }

private:
    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(folder.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(content);
        return file.fileName();
    }

    QTemporaryDir folder;
    QString unit;
};

QTEST_GUILESS_MAIN(ConversionToolTest)
#include "ConversionToolTest.moc"
