#include <appconfig/backends/utils/RemoteMessage.h>

#include <QDataStream>
#include <QDate>
#include <QJsonArray>
#include <QJsonObject>
#include <QLine>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimeZone>
#include <QtTest>
#include <QUrl>
#include <QUuid>

#include <limits>

using namespace Tessellum::AppConfig::Backends::utils;

namespace {

QByteArray Bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

QVariant NestedLists(int levels)
{
    QVariant value(1);
    for (int level = 0; level < levels; ++level)
        value = QVariantList{value};
    return value;
}

} // namespace

class RemoteCodecTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void valuesComeBack_data()
    {
        QTest::addColumn<QVariant>("value");
        const QList<QVariant> values{
            true,
            -5,
            5U,
            Q_INT64_C(-5000000000),
            std::numeric_limits<quint64>::max(),
            0.1,
            1.5F,
            QVariant::fromValue<short>(-3),
            QChar('x'),
            QString(),
            QVariant(QVariant::Int),
            QStringLiteral("\u20ac and \U0001F600"),
            QByteArray("\0\xff", 2),
            QStringList{"a", "b"},
            QVariant::fromValue(QByteArrayList{"a", "b"}),
            QVariantMap{{"a", 1}, {"b", QVariantList{2, QVariant()}}},
            QVariantHash{{"a", 1}, {"b", "x"}, {"c", QVariantHash{{"d", 1}, {"e", 2}}}},
            QBitArray(11, true),
            QDate(2024, 2, 29),
            QTime(1, 2, 3),
            QDateTime(QDate(2024, 2, 29), QTime(1, 2, 3), Qt::UTC),
            QDateTime(QDate(2024, 2, 29), QTime(1, 2, 3), QTimeZone("Europe/Berlin")),
            QDateTime(QDate(2024, 2, 29), QTime(1, 2, 3), QTimeZone(3600)),
            QDateTime(QDate(2024, 2, 29), QTime(1, 2, 3), QTimeZone("Own", 60, "Own", "O")),
            QDateTime(),
            QUrl("ws://host:1/?path=a"),
            QUuid("{67C8770B-44F1-410A-AB9A-F9B5446F13EE}"),
            QLine(1, 2, 3, 4),
            QSizeF(1, 2),
            QRegularExpression("a+"),
            QJsonObject{{"a", 1}, {"b", QJsonArray{0.1, true, QJsonValue(), "x", Q_INT64_C(1) << 40}}},
            QJsonArray{1, QJsonObject()},
            QJsonDocument(QJsonArray{"a"}),
            QJsonValue(1.5),
            QJsonValue("a"),
            QJsonValue(QJsonObject{{"a", 1}}),
            NestedLists(64),
        };
        for (const auto &value : values)
            QTest::addRow("%d %s", int(values.indexOf(value)), value.typeName()) << value;
    }
    void valuesComeBack()
    {
        QFETCH(QVariant, value);
        const QByteArray bytes = SerializeValue(value);
        const QVariant read = DeserializeValue(bytes);
        QCOMPARE(read.userType(), value.userType());
        QCOMPARE(read, value);
        QCOMPARE(read.isNull(), value.isNull());
        QCOMPARE(SerializeValue(read), bytes);
        QCOMPARE(DecodeSerialized(EncodeSerialized(bytes)), bytes);
        // Cut anywhere, or with a byte too much, it is nothing.
        for (int length = 0; length < bytes.size(); ++length)
            QVERIFY2(!DeserializeValue(bytes.left(length)).isValid(), QByteArray::number(length));
        QVERIFY(!DeserializeValue(bytes + '\0').isValid());
        QDataStream stream(bytes);
        QVariant byQt;
        stream >> byQt;
        QCOMPARE(byQt, value);
    }

    void handMadeBytes()
    {
        QCOMPARE(SerializeValue(5), Bytes("000000020000000005"));
        QCOMPARE(SerializeValue("ab"), Bytes("0000000a000000000400610062"));
        QCOMPARE(SerializeValue({}), Bytes("0000000001"));
        const double nan = std::numeric_limits<double>::quiet_NaN();
        QCOMPARE(SerializeValue(DeserializeValue(SerializeValue(nan))), SerializeValue(nan));
    }

    void hostileBytes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("list count") << Bytes("00000009007fffffff");
        QTest::newRow("map count") << Bytes("0000000800ffffffff");
        QTest::newRow("string list count") << Bytes("0000000b00ffffffff");
        QTest::newRow("string length") << Bytes("0000000a007ffffffe0061");
        QTest::newRow("odd string length") << Bytes("0000000a0000000001610000");
        QTest::newRow("bit array") << Bytes("0000000d00ffffffff");
        QTest::newRow("user type") << QByteArray(Bytes("00000400000000000b") + "NoSuchType\0" + "x");
        QTest::newRow("pointer") << Bytes("00000027000000000000000000");
        QTest::newRow("type of this process") << Bytes("000004010000000000");
        QTest::newRow("easing curve") << Bytes("0000001d000000007fcdd6f1964000");
        QTest::newRow("json") << QByteArray(Bytes("0000002e0000000005") + "{\"a\":");
        QTest::newRow("deep json") << Bytes("0000002f0000100000") + QByteArray(2048, '[')
                + QByteArray(2048, ']');
        QTest::newRow("65 levels") << SerializeValue(NestedLists(65));
        QTest::newRow("200,000 levels") << Bytes("000000090000000001").repeated(200000);
        QTest::newRow("200,000 variants") << Bytes("0000002900").repeated(200000);
        QTest::newRow("junk") << QByteArray(1 << 20, 'x');
    }
    void hostileBytes()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!DeserializeValue(bytes).isValid());
    }

    void zonesNameNoFiles()
    {
        QTemporaryDir directory;
        QVERIFY(QFile::copy("/usr/share/zoneinfo/Europe/Berlin", directory.filePath("zone")));
        const QString outside = "../../.." + directory.filePath("zone");
        QVERIFY(QTimeZone(outside.toLatin1()).isValid()); // Qt takes it
        for (const bool isOwn : {false, true}) {
            for (const QString &id : {outside, directory.filePath("zone"), QString("Europe/../Europe/Berlin"),
                                      QString("No/Where"), QString(), QString(100, QLatin1Char('a'))}) {
                QByteArray bytes;
                QDataStream stream(&bytes, QIODevice::WriteOnly);
                stream.setVersion(QDataStream::Qt_5_15);
                stream << quint32(QMetaType::QVariantList) << quint8(0) << quint32(1)
                       << quint32(QMetaType::QDateTime) << quint8(0) << QDate(2024, 2, 29) << QTime(1, 2, 3)
                       << quint8(Qt::TimeZone);
                if (isOwn)
                    stream << QString("OffsetFromUtc");
                stream << id;
                if (isOwn)
                    stream << 60 << id << id << 0 << id;
                const bool isLegal = isOwn && id == "No/Where";
                QCOMPARE(DeserializeValue(bytes).isValid(), isLegal);
            }
        }
    }

    void theLastOfTheValuesOfAKeyCounts()
    {
        const QByteArray pairs = Bytes("0000000002"
                                       "000000020061"
                                       "000000020000000001"
                                       "000000020061"
                                       "000000020000000002");
        QCOMPARE(DeserializeValue(Bytes("00000008") + pairs), QVariant(QVariantMap{{"a", 2}}));
        QCOMPARE(DeserializeValue(Bytes("0000001c") + pairs), QVariant(QVariantHash{{"a", 2}}));
        QMultiMap<QString, QVariant> several{{"a", 1}};
        several.insert("a", 2);
        QCOMPARE(SerializeValue(QVariantMap(several)), SerializeValue(QVariantMap{{"a", 2}}));
        const QByteArray json("{\"b\":\"x\",\"a\":[1],\"a\":{\"c\":1,\"c\":2}}");
        QCOMPARE(DeserializeValue(Bytes("0000002e00000000") + char(json.size()) + json).toJsonObject(),
                 (QJsonObject{{"a", QJsonObject{{"c", 2}}}, {"b", "x"}}));
        QCOMPARE(ParseRemoteMessage("{\"path\":\"a\",\"command\":\"init\",\"path\":\"b\"}").path,
                 QString("b"));
    }

    void messagesToTheLetter()
    {
        const RemoteMessage message{RemoteCommand::Write, "net.port", SerializeValue(5)};
        const QString frame = ComposeRemoteMessage(message);
        QCOMPARE(frame,
                 QStringLiteral("{\"command\":\"write\",\"data\":\"%1\",\"path\":\"net.port\"}")
                     .arg(QString::fromLatin1(qCompress(message.data).toHex())));
        QCOMPARE(ComposeRemoteMessage({RemoteCommand::Rewrite, "a\"\n\x01", {}}),
                 QStringLiteral("{\"command\":\"rewrite\",\"path\":\"a\\\"\\n\\u0001\"}"));
        QCOMPARE(ComposeRemoteMessage({RemoteCommand::Read, {}, {}}), QString());
        const auto back = ParseRemoteMessage(frame);
        QCOMPARE(back.command, message.command);
        QCOMPARE(back.path, message.path);
        QCOMPARE(back.data, message.data);
        QVERIFY(ComposeRemoteMessage({RemoteCommand::Update, "a", SerializeValue({})})
                == QStringLiteral("{\"command\":\"update\",\"path\":\"a\"}"));
    }

    void badFrames_data()
    {
        QTest::addColumn<QString>("frame");
        for (const auto *frame :
             {"", "[]", "5", "{", "{\"command\":\"init\"}", "{\"command\":\"init\",\"path\":\"\"}",
              "{\"command\":\"jump\",\"path\":\"a\"}", "{\"command\":5,\"path\":\"a\"}",
              "{\"command\":\"init\",\"path\":{\"a\":\"b\"}}", "{\"command\":\"init\",\"path\":\"a\"}x"})
            QTest::newRow(frame) << QString(frame);
        QTest::newRow("deep") << "{\"command\":\"init\",\"path\":\"a\",\"x\":" + QString(200000, '[');
    }
    void badFrames()
    {
        QFETCH(QString, frame);
        QVERIFY(!ParseRemoteMessage(frame).isValid());
    }

    void escapedHalvesOfPairs()
    {
        const auto pathOf = [](const char *escaped) {
            return ParseRemoteMessage(QStringLiteral("{\"command\":\"read\",\"path\":\"%1\"}").arg(escaped))
                .path;
        };
        QCOMPARE(pathOf("\\ud83d\\ude00"), QStringLiteral("\U0001F600"));
        QCOMPARE(pathOf("\\ude00"), QString(QChar(0xde00)));
        QCOMPARE(pathOf("\\ud83d"), QString());
    }

    void damagedDataIsNull()
    {
        // The last one announces one byte and holds 200 MB.
        QByteArray bomb = qCompress(QByteArray(200000000, '\0'));
        bomb.replace(0, 4, Bytes("00000001"));
        for (const QByteArray &data : {QByteArray("0"), QByteArray("0x"), QByteArray("ffffffff789c"),
                                       bomb.toHex(), qCompress(QByteArray(1000, 'x')).toHex().left(20)}) {
            const auto message
                = ParseRemoteMessage("{\"command\":\"write\",\"path\":\"a\",\"data\":\"" + data + "\"}");
            QVERIFY(message.isValid());
            QVERIFY(message.data.isNull());
        }
    }

    void subtree()
    {
        RemoteSubtree subtree;
        for (int i = 0; i < 100000; ++i)
            subtree.insert(QStringLiteral("device.%1").arg(i), SerializeValue(i));
        subtree.insert("none", SerializeValue({}));
        QCOMPARE(ParseRemoteSubtree(ComposeRemoteSubtree(subtree)), subtree);
        QCOMPARE(ComposeRemoteSubtree({}), QStringLiteral("{}"));
        QCOMPARE(ParseRemoteSubtree("{\"a\":\"zz\",\"b\":7}"),
                 (RemoteSubtree{{"a", SerializeValue({})}, {"b", SerializeValue({})}}));
        QVERIFY(ParseRemoteSubtree("{\"a\":\"\"").isEmpty());
        // Three values of 30 MiB, of which a peer may have two.
        const QString large = EncodeSerialized(SerializeValue(QByteArray(30 << 20, 'x')));
        const auto read
            = ParseRemoteSubtree("{\"a\":\"" + large + "\",\"b\":\"" + large + "\",\"c\":\"" + large + "\"}");
        QVERIFY(read["a"].size() > 30 << 20 && read["b"].size() > 30 << 20);
        QCOMPARE(read["c"], SerializeValue({}));
    }
};

QTEST_GUILESS_MAIN(RemoteCodecTest)
#include "RemoteCodecTest.moc"
