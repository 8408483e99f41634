#include "../../support/RunningDataRepository.h"

#include <appdata/storages/remote/RemoteStorageSource.h>

#include <QtTest>

#include <support/LogCapture.h>

using namespace Tessellum::AppData;
using namespace Tessellum::AppData::Storages::utils;
using TestSupport::LogCapture;
using TestSupport::RunningDataRepository;
using TestSupport::StorageTwin;
using Values = Data::Elements::ElementUpdateData;

class RemoteStorageSourceTest : public QObject
{
    Q_OBJECT

private:
    static RemoteStorageMessage request(const QString &path, const QVariantHash &options = {})
    {
        RemoteStorageMessage message;
        message.command = QStringLiteral("init");
        message.path = path;
        message.data = QStringLiteral("id");
        message.options = options;
        return message;
    }
    static QVariantHash option(bool isBinary) { return {{QStringLiteral("supportsBinaryData"), isBinary}}; }

    std::unique_ptr<RunningDataRepository> run;
    std::shared_ptr<StorageTwin> twin;
    std::shared_ptr<Storages::Storage> storage;

private Q_SLOTS:
    void init()
    {
        run = std::make_unique<RunningDataRepository>();
        twin = StorageTwin::Make();
        storage = run->addStorage("disk", twin);
    }
    void cleanup()
    {
        storage.reset();
        twin.reset();
        run.reset();
    }

    void anAnswerToTheLetter();
    void theModeStaysWithoutAnOption();
    void whatBinaryJsonCannotHoldGoesOutAsText();
    void readingEndsWhereNoFrameHoldsMore();
    void whatTheMediumCannotReadIsLeftOut();
    void aChangeIsRenderedInTheModesThatAreNeeded();
};

void RemoteStorageSourceTest::anAnswerToTheLetter()
{
    QVERIFY(!RemoteStorageSource::MakeAnswer(request("nowhere"), false));
    const auto answer = RemoteStorageSource::MakeAnswer(request("disk"), false);
    QVERIFY(answer);
    QCOMPARE(answer->storage.lock(), storage);
    const QString text = std::get<QString>(answer->frame);
    // A stored zlib stream of the text {}, which stands in UTF-16 behind its type, null flag and length.
    QCOMPARE(text,
             QStringLiteral("{\"command\":\"init\",\"data\":\"0000000d"
                            "7801010d00f2ff0000000a0000000004007b007d02730107\","
                            "\"options\":{\"supportsBinaryData\":false},\"path\":\"disk\"}"));
}

void RemoteStorageSourceTest::theModeStaysWithoutAnOption()
{
    QVERIFY(RemoteStorageSource::MakeAnswer(request("disk"), true)->isBinary);
    QVERIFY(!RemoteStorageSource::MakeAnswer(request("disk"), false)->isBinary);
    QVERIFY(RemoteStorageSource::MakeAnswer(request("disk", option(true)), false)->isBinary);
    const auto answer = RemoteStorageSource::MakeAnswer(request("disk", option(false)), true);
    QCOMPARE(ParseRemoteStorageText(std::get<QString>(answer->frame)).options, option(false));
}

void RemoteStorageSourceTest::whatBinaryJsonCannotHoldGoesOutAsText()
{
    QVERIFY(twin->serializeEntry("e", run->record("load", "disk")));
    Values values;
    values.setActive(true);
    values.setTimestamp(1);
    values.setRawData(QByteArray(5 << 20, 'x'));
    QVERIFY(twin->serializeElement("e", "large", values));
    const LogCapture log;
    const auto answer = RemoteStorageSource::MakeAnswer(request("disk", option(true)), false);
    QVERIFY(answer && !answer->isBinary);
    QCOMPARE(log.lines().filter("RemoteStorageSource::MakeAnswer()").size(), 1);
    const auto message = ParseRemoteStorageText(std::get<QString>(answer->frame));
    QCOMPARE(message.options, option(false));
    const auto documents = DecodeContents(message.data, RemoteStorageMode::Text);
    const auto entry = DecodeEntryDocument(documents.value(0).second, RemoteStorageMode::Text);
    QVERIFY(entry && entry->elements.size() == 1);
    QByteArray raw;
    QVERIFY(entry->elements.first().second.getRawData(raw));
    QCOMPARE(raw.size(), 5 << 20);
}

void RemoteStorageSourceTest::readingEndsWhereNoFrameHoldsMore()
{
    Values values;
    values.setTimestamp(1);
    values.setRawData(QByteArray(12 << 20, 'x')); // one for all; three of them are more than a text frame
    QVERIFY(twin->serializeEntry("e", run->record("load", "disk")));
    for (int element = 0; element < 20; ++element)
        QVERIFY(twin->serializeElement("e", QString::number(element), values));
    const auto answer = RemoteStorageSource::MakeAnswer(request("disk", option(true)), false);
    QVERIFY(answer && !answer->isBinary);
    QVERIFY(std::get<QString>(answer->frame).isEmpty());
    QCOMPARE(twin->calls(StorageTwin::Operation::DeserializeElement), 1 + 3);
}

void RemoteStorageSourceTest::whatTheMediumCannotReadIsLeftOut()
{
    QVERIFY(twin->serializeEntry("e", run->record("load", "disk")));
    for (int element = 0; element < 3; ++element)
        QVERIFY(twin->serializeElement("e", QString::number(element), run->value(quint64(element), 0)));
    twin->arrange(StorageTwin::Operation::DeserializeElement, StorageTwin::Fault::Throw, 2);
    const auto answer = RemoteStorageSource::MakeAnswer(request("disk"), false);
    const auto message = ParseRemoteStorageText(std::get<QString>(answer->frame));
    const auto documents = DecodeContents(message.data, RemoteStorageMode::Text);
    const auto entry = DecodeEntryDocument(documents.value(0).second, RemoteStorageMode::Text);
    QVERIFY(entry);
    QCOMPARE(entry->elements.size(), 2);
    QVERIFY(!storage->hasChild("e")); // nothing was attached for it
}

void RemoteStorageSourceTest::aChangeIsRenderedInTheModesThatAreNeeded()
{
    const auto payload = [](RemoteStorageMode mode) {
        return mode == RemoteStorageMode::Text ? QVariant(QStringLiteral("t")) : QVariant(QByteArray("b"));
    };
    const auto make = [&](bool text, bool binary) {
        return RemoteStorageSource::MakePush(RemoteStorageCommand::UpdateElement, "e.one", payload, text,
                                             binary);
    };
    QVERIFY(make(true, false).binary.isEmpty());
    QVERIFY(make(false, true).text.isEmpty());
    const auto both = make(true, true);
    QCOMPARE(ParseRemoteStorageText(both.text).data.toString(), QStringLiteral("t"));
    QCOMPARE(ParseRemoteStorageBinary(both.binary).data.toByteArray(), QByteArray("b"));
    const auto removal
        = RemoteStorageSource::MakePush(RemoteStorageCommand::DeleteEntry, "e", nullptr, true, false);
    QCOMPARE(removal.text, QStringLiteral("{\"command\":\"delete-entry\",\"path\":\"e\"}"));
    // What has no word is never sent.
    const auto map = RemoteStorageSource::MakePush(RemoteStorageCommand::PathMap, "e", payload, true, true);
    QVERIFY(map.text.isEmpty() && map.binary.isEmpty());
}

QTEST_GUILESS_MAIN(RemoteStorageSourceTest)
#include "RemoteStorageSourceTest.moc"
