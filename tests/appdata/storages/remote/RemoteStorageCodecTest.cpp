#include <appdata/storages/remote/RemoteStorageCodec.h>
#include <shared/conversion/FlatJson.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <limits>

using namespace Tessellum::AppData;
using namespace Tessellum::AppData::Storages::utils;
using Data::Elements::ElementUpdateData;
using Data::Entries::EntryCategory;
using Data::Entries::EntrySerializeInformation;
using Shared::Conversion::FlatMember;

namespace {

QByteArray QtBinary(const QJsonObject &object)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return QJsonDocument(object).toBinaryData();
    QT_WARNING_POP
}

EntrySerializeInformation Info()
{
    return {"load", "machine", EntryCategory(CategoryType::Unit, "ms"), "disk", PersistenceType::Persistent,
            7};
}

ElementUpdateData Element()
{
    ElementUpdateData values;
    values.setActive(false);
    values.setTimestamp(std::numeric_limits<quint64>::max());
    values.setRawData(QByteArray("\0\x01", 2));
    return values;
}

const auto Modes = {RemoteStorageMode::Text, RemoteStorageMode::Binary};

} // namespace

class RemoteStorageCodecTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void messagesToTheLetter()
    {
        const RemoteStorageMessage init{"init", "disk", QStringLiteral("me"), {{SupportsBinaryData, true}}};
        const QByteArray serialized = QByteArray::fromHex("0000000a0000000004006d0065");
        const QString text = ComposeRemoteStorageText(init);
        QCOMPARE(
            text,
            QStringLiteral("{\"command\":\"init\",\"data\":\"%1\",\"options\":{\"supportsBinaryData\":true},"
                           "\"path\":\"disk\"}")
                .arg(QString::fromLatin1(qCompress(serialized, 0).toHex())));
        const QByteArray binary = ComposeRemoteStorageBinary(init);
        QCOMPARE(binary,
                 QtBinary({{"command", "init"},
                           {"path", "disk"},
                           {"data", QString::fromLatin1(serialized.toHex())},
                           {"options", QJsonObject{{"supportsBinaryData", true}}}}));
        for (const auto &back : {ParseRemoteStorageText(text), ParseRemoteStorageBinary(binary)}) {
            QCOMPARE(back.command, init.command);
            QCOMPARE(back.path, init.path);
            QCOMPARE(back.data, init.data);
            QCOMPARE(back.options, init.options);
        }
        QVERIFY(
            ComposeRemoteStorageText({WordOfCommand(RemoteStorageCommand::PathMap), "a", {}, {}}).isEmpty());
    }

    void binaryJsonIsQts()
    {
        const QString longText(40000, 'x');
        const QByteArray bytes = Shared::Conversion::WriteFlatBinaryJson(
            {FlatMember::Text(QStringLiteral("\u20ac"), "a"), FlatMember::Text("abc", longText),
             FlatMember::Text("b", QStringLiteral("\u20ac")), FlatMember::Text("", "")});
        QCOMPARE(bytes,
                 QtBinary({{QStringLiteral("\u20ac"), "a"},
                           {"abc", longText},
                           {"b", QStringLiteral("\u20ac")},
                           {"", ""}}));
        QCOMPARE(QtBinary({}), QByteArray());
    }

    void onlyOneOption()
    {
        const auto read = [](const char *frame) { return ParseRemoteStorageText(frame).options; };
        QCOMPARE(read("{\"command\":\"x\",\"options\":{\"supportsBinaryData\":true,\"b\":1}}"),
                 (QVariantHash{{SupportsBinaryData, true}}));
        QCOMPARE(read("{\"command\":\"x\",\"options\":{\"b\":true}}"),
                 (QVariantHash{{SupportsBinaryData, false}}));
        QCOMPARE(read("{\"command\":\"x\",\"options\":[7]}"), (QVariantHash{{SupportsBinaryData, false}}));
        QVERIFY(read("{\"command\":\"x\"}").isEmpty());
    }

    void elements()
    {
        QCOMPARE(EncodeElement({}, RemoteStorageMode::Text), QVariant("{}"));
        QCOMPARE(EncodeElement({}, RemoteStorageMode::Binary), QVariant(QByteArray()));
        for (const auto mode : Modes) {
            const auto back = DecodeElement(EncodeElement(Element(), mode), mode);
            QVERIFY(back);
            QCOMPARE(back->getUpdateTypes(), Element().getUpdateTypes());
            for (const auto type : back->getUpdateTypes())
                QCOMPARE(back->value(type), Element().value(type));
            QVERIFY(DecodeElement(QByteArray(), mode)->isEmpty());
        }
        QVERIFY(DecodeElement(QByteArray("{\"active\":true}"), RemoteStorageMode::Text)
                    ->contains(DataElementUpdateType::Active));
        for (const auto *bad :
             {"{\"timestamp\":\"-1\"}", "{\"timestamp\":\" 1\"}", "{\"timestamp\":7}", "{\"active\":\"x\"}",
              "{\"data\":\"00\"}", "[]", "{\"timestamp\":\"18446744073709551616\"}", "{\"timestamp\":\"\"}"})
            QVERIFY2(!DecodeElement(QString(bad), RemoteStorageMode::Text), bad);
    }

    void entryDocuments()
    {
        for (const auto mode : Modes) {
            const QString document = EncodeEntryDocument(
                Info(),
                {{"b", EncodeElementDocument(Element(), mode)}, {"a", EncodeElementDocument({}, mode)}},
                mode);
            const auto contents = DecodeContents(EncodeContents({{"uuid", document}}, mode), mode);
            QCOMPARE(contents, (QList<QPair<QString, QString>>{{"uuid", document}}));
            const auto entry = DecodeEntryDocument(document, mode);
            QVERIFY(entry);
            QCOMPARE(entry->elements.size(), 2);
            QCOMPARE(entry->elements[0].first, QString("a"));
            QCOMPARE(entry->elements[1].second.getUpdateTypes(), Element().getUpdateTypes());
            const auto info = DecodeEntryInfo(EncodeEntryInfo(Info(), mode), mode);
            QVERIFY(info && info->category == Info().category && info->storageName == "disk"
                    && info->persistence == PersistenceType::Persistent && info->capacity == 7);
            QCOMPARE(entry->info.name, info->name);
            QVERIFY(!DecodeEntryDocument("", mode));
            const QHash<QString, QString> map{{"a", "b"}};
            QCOMPARE(DecodePathMap(EncodePathMap(map, mode), mode).value(), map);
        }
        QCOMPARE(EncodeContents({}, RemoteStorageMode::Text), QVariant("{}"));
        QVERIFY(EncodeContents({}, RemoteStorageMode::Binary).isValid());
        // What does not fit into binary JSON is told.
        ElementUpdateData large;
        large.setRawData(QByteArray(5 << 20, 'x'));
        QVERIFY(!EncodeElement(large, RemoteStorageMode::Binary).isValid());
        QVERIFY(EncodeElement(large, RemoteStorageMode::Text).isValid());
        large.setRawData(QByteArray(32 << 20, 'x'));
        QVERIFY(!EncodeElement(large, RemoteStorageMode::Text).isValid());
    }

    void badFrames()
    {
        // Cut anywhere and with any byte changed a frame is read without harm.
        const RemoteStorageMessage message{"create-element",
                                           "a.b",
                                           EncodeElement(Element(), RemoteStorageMode::Binary),
                                           {{SupportsBinaryData, true}}};
        const QByteArray frame = ComposeRemoteStorageBinary(message);
        for (int at = 0; at < frame.size(); ++at) {
            QVERIFY(!ParseRemoteStorageBinary(frame.left(at)).isValid());
            for (const int value : {0, 1, 0x7f, 0xff}) {
                QByteArray changed = frame;
                changed[at] = char(value);
                DecodeElement(ParseRemoteStorageBinary(changed).data, RemoteStorageMode::Binary);
            }
        }
        for (const QByteArray &data : {QByteArray("000000090000000000"), QByteArray("0000000a007ffffffe00"),
                                       QByteArray("0000000c00ffff"), QByteArray("0")})
            QVERIFY(!DecodeRemoteVariant(data, RemoteStorageMode::Binary).isValid());
        QVERIFY(DecodeRemoteVariant("0000000c00ffffffff", RemoteStorageMode::Binary).isValid());
        QVERIFY(!ParseRemoteStorageText(QString(1 << 20, 'x')).isValid());
    }
};

QTEST_GUILESS_MAIN(RemoteStorageCodecTest)
#include "RemoteStorageCodecTest.moc"
