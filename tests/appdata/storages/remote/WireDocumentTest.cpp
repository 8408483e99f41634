// docs/wire.md shows what really travels. TESSELLUM_DOCS is the folder, else the working directory has it.
#include <appconfig/backends/utils/RemoteMessage.h>
#include <appdata/storages/remote/RemoteStorageCodec.h>

#include <QFile>
#include <QtTest>

using namespace Tessellum::AppConfig::Backends::utils;
using namespace Tessellum::AppData;
using namespace Tessellum::AppData::Storages::utils;

namespace {

Data::Elements::ElementUpdateData Element()
{
    Data::Elements::ElementUpdateData values;
    values.setActive(true);
    values.setTimestamp(1000);
    values.setRawData("ab");
    return values;
}

Data::Entries::EntrySerializeInformation Info()
{
    return {"load",
            "machine",
            Data::Entries::EntryCategory(CategoryType::Unit, "ms"),
            "disk",
            PersistenceType::Persistent,
            7};
}

QVariant Contents(RemoteStorageMode mode)
{
    const QString element = EncodeElementDocument(Element(), mode);
    return EncodeContents({{"e", EncodeEntryDocument(Info(), {{"1", element}}, mode)}}, mode);
}

/*! Both frames of one message, by mode. */
void addFrames(const QString &command, const QString &path, const QVariant (&data)[2],
               const QVariantHash &options)
{
    const QByteArray name = command.toLatin1();
    QTest::newRow(name + " text")
        << ComposeRemoteStorageText({command, path, data[0], options}).toUtf8().toHex();
    QTest::newRow(name + " binary") << ComposeRemoteStorageBinary({command, path, data[1], options}).toHex();
}

} // namespace

class WireDocumentTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void example_data()
    {
        QTest::addColumn<QByteArray>("hex");
        const auto value = [](const char *name, const QVariant &shown) {
            QTest::newRow(name) << SerializeValue(shown).toHex();
        };
        value("invalid", {});
        value("bool", true);
        value("int", 5);
        value("double", 0.5);
        value("string", "ab");
        value("bytes", QByteArray("ab"));
        value("strings", QStringList{"a", "b"});
        value("list", QVariantList{5, "a"});
        value("map", QVariantMap{{"a", 1}, {"b", 2}});
        const auto message = [](const char *name, RemoteCommand command, const QVariant &data) {
            const QString frame = ComposeRemoteMessage({command, "net.port", SerializeValue(data)});
            QTest::newRow(name) << frame.toUtf8().toHex();
        };
        message("init", RemoteCommand::Init, "me");
        message("init answer", RemoteCommand::Init, ComposeRemoteSubtree({{"port", SerializeValue(5)}}));
        message("read", RemoteCommand::Read, {});
        message("write", RemoteCommand::Write, 5);
        message("create", RemoteCommand::Create, 5);
        message("update", RemoteCommand::Update, 5);
        message("delete", RemoteCommand::Delete, {});
        message("rewrite", RemoteCommand::Rewrite, {});
        const auto text = RemoteStorageMode::Text;
        const auto binary = RemoteStorageMode::Binary;
        QTest::newRow("storage init")
            << ComposeRemoteStorageText({"init", "disk", "me", {{SupportsBinaryData, true}}})
                   .toUtf8()
                   .toHex();
        addFrames("init", "disk", {Contents(text), Contents(binary)}, {{SupportsBinaryData, true}});
        const QVariant element[]{EncodeElement(Element(), text), EncodeElement(Element(), binary)};
        addFrames("create-element", "e.1", element, {});
        addFrames("update-element", "e.1", element, {});
        addFrames("create-entry", "disk.e", {EncodeEntryInfo(Info(), text), EncodeEntryInfo(Info(), binary)},
                  {});
        addFrames("delete-entry", "e", {QVariant(), QVariant()}, {});
    }
    void example()
    {
        QFETCH(QByteArray, hex);
        QFile document(qEnvironmentVariable("TESSELLUM_DOCS", "docs") + "/wire.md");
        QVERIFY(document.open(QIODevice::ReadOnly));
        QVERIFY2(document.readAll().contains("\n    " + hex + '\n'), hex);
    }
};

QTEST_GUILESS_MAIN(WireDocumentTest)
#include "WireDocumentTest.moc"
