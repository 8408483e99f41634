#include "../../support/RemoteEnds.h"
#include "../../support/RunningDataRepository.h"

#include <appdata/storages/remote/RemoteStorage.h>
#include <appdata/storages/remote/RemoteStorageMirror.h>
#include <appdata/utils/RepositoryDataEntryProvider.h>
#include <appdata/utils/RepositoryLookup.h>

#include <QtTest>

#include <algorithm>
#include <support/LogCapture.h>
#include <thread>
#include <tuple>

using namespace Tessellum::AppData;
using namespace Tessellum::AppData::Storages;
using namespace Tessellum::AppData::Storages::utils;
using Data::Entries::Entry;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::UpdatePoint;
using Tessellum::Notification::utils::MakeEventThreadObject;
using Tessellum::Notification::utils::MakeNode;
using TestSupport::CacheNode;
using TestSupport::LogCapture;
using TestSupport::RunningDataRepository;
using TestSupport::SourceStorage;
using Values = Data::Elements::ElementUpdateData;

namespace {

// What a client's storage is, on that node.
class MirrorStorage : public RemoteStorage
{
public:
    explicit MirrorStorage(const std::shared_ptr<CacheNode> &ownNode)
        : RemoteStorage(StorageCreateData())
        , end(ownNode)
    { }

private:
    NodePtr makeNode() const override { return end; }

    const std::shared_ptr<CacheNode> end;
};

using Content = QList<std::tuple<quint64, bool, QByteArray>>;

// The elements of an entry as its medium has them. The contents of a storage come in no order.
Content contentOf(const StorageImplementation &medium, const QString &entry)
{
    Content content;
    QStringList elements;
    medium.getElementIds(entry, elements);
    for (const QString &element : elements) {
        Values values;
        quint64 timestamp = 0;
        bool active = false;
        QByteArray raw;
        medium.deserializeElement(entry, element, values, LoadDataHint::LoadAtOnce);
        values.getTimestamp(timestamp);
        values.getActive(active);
        values.getRawData(raw);
        content.append({timestamp, active, raw});
    }
    std::sort(content.begin(), content.end());
    return content;
}

} // namespace

// Source and mirror back to back.
class RemoteStorageMirrorTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RunningDataRepository> run;
    std::shared_ptr<SourceStorage> source;
    std::shared_ptr<CacheNode> node;
    std::shared_ptr<MirrorStorage> medium;
    std::shared_ptr<Storage> mirrored;
    std::unique_ptr<RemoteStorageMirror> mirror;

    // Hands over what was sent, and answers how much that was.
    int pump()
    {
        const auto sent = source->takeSent();
        for (const auto &message : sent)
            mirror->take(message, source->mode);
        mirror->flush();
        return sent.size();
    }
    void initialize()
    {
        RemoteStorageMessage request;
        request.command = QStringLiteral("init");
        request.path = QStringLiteral("served");
        const auto answer
            = RemoteStorageSource::MakeAnswer(request, source->mode == RemoteStorageMode::Binary);
        QVERIFY(answer);
        mirror->take(SourceStorage::Parse(answer->frame), source->mode);
        mirror->flush();
    }
    void send(const QString &path, RemoteStorageCommand command, const QVariant &data)
    {
        RemoteStorageMessage message;
        message.command = WordOfCommand(command);
        message.path = path;
        message.data = data;
        mirror->take(message, source->mode);
        mirror->flush();
    }
    std::shared_ptr<Entry> copyOf(const QString &remote) const
    {
        return std::dynamic_pointer_cast<Entry>(mirrored->getChildById(node->mapPath(remote)));
    }
    std::shared_ptr<Data::Elements::Element> copyOf(const QString &entry, const QString &element) const
    {
        return std::dynamic_pointer_cast<Data::Elements::Element>(
            copyOf(entry)->getChildById(node->mapPath(element)));
    }
    static double numberOf(const std::shared_ptr<Data::Elements::Element> &element)
    {
        return element->getQueryInterface()->getParsedData()->toDouble();
    }
    Values values(quint64 timestamp, double number, bool active = true) const
    {
        Values result;
        result.setActive(active);
        result.setTimestamp(timestamp);
        result.setRawData(run->raw(number));
        return result;
    }
    // Whether each entry of the source has its copy with the same elements, and nothing else is there.
    bool isMirrored() const
    {
        QHash<QString, StorageImplementation::EntryRecord> theirs;
        QHash<QString, StorageImplementation::EntryRecord> ours;
        if (source->getEntries(theirs) != medium->getEntries(ours)
            || theirs.size() != mirrored->getChildren(false).size())
            return false;
        return std::all_of(theirs.keyBegin(), theirs.keyEnd(), [&](const QString &remote) {
            const auto copy = copyOf(remote);
            return copy && ours.value(copy->getId()).name == theirs.value(remote).name
                && contentOf(*source, remote) == contentOf(*medium, copy->getId())
                && quint64(contentOf(*source, remote).size()) == copy->getNumberOfChildren();
        });
    }

private Q_SLOTS:
    void init()
    {
        run = std::make_unique<RunningDataRepository>();
        source = MakeNode<SourceStorage>();
        run->addStorage("served", source);
        node = MakeEventThreadObject<CacheNode>();
        medium = MakeNode<MirrorStorage>(node);
        StorageCreateData data("mirror", "remote-storage-client", QString(), {});
        data.implementation = medium;
        QVERIFY(Tessellum::Notification::utils::WaitForSuccess(
            run->pool(),
            run->pool().startCreateTask(run->provider().getRoot(), "mirror", QVariant::fromValue(data),
                                        CreatePoint::Done)));
        mirrored = Tessellum::AppData::utils::FindStorage("mirror");
        QVERIFY(mirrored);
        mirror = std::make_unique<RemoteStorageMirror>(*node, "mirror", 1 << 20);
    }
    void cleanup()
    {
        mirror.reset();
        mirrored.reset();
        medium.reset();
        node.reset();
        source.reset();
        run.reset();
    }

    void eachChangeIsOneMessage_data();
    void eachChangeIsOneMessage();
    void anotherConnectionCreatesNothingTwice_data() { eachChangeIsOneMessage_data(); }
    void anotherConnectionCreatesNothingTwice();
    void theNewestOfManyChangesHolds();
    void aFullEntryOverwritesItsOldest();
    void aPeerFillsNoMemory();
    void whatIsNotMirroredIsOutOfReach();
    void aStopEndsWhatIsOnItsWay();
};

void RemoteStorageMirrorTest::eachChangeIsOneMessage_data()
{
    QTest::addColumn<bool>("isBinary");
    QTest::newRow("text") << false;
    QTest::newRow("binary") << true;
}

void RemoteStorageMirrorTest::eachChangeIsOneMessage()
{
    QFETCH(bool, isBinary);
    source->mode = isBinary ? RemoteStorageMode::Binary : RemoteStorageMode::Text;
    const auto entry = run->addEntry(run->record("load", "served", 7));
    QVERIFY(entry);
    QCOMPARE(pump(), 1);
    QVERIFY(isMirrored());
    const auto copy = copyOf(entry->getId());
    QVERIFY(copy->getId() != entry->getId());
    StorageImplementation::EntryRecord record;
    QVERIFY(medium->deserializeEntry(copy->getId(), record));
    QCOMPARE(record.storageName, QStringLiteral("mirror"));
    QCOMPARE(record.classification, QStringLiteral("plant"));
    QCOMPARE(record.capacity, quint64(7));
    QVERIFY(record.persistence == PersistenceType::Persistent
            && record.category.getType() == CategoryType::Float);

    const auto manipulation = entry->getManipulationInterface();
    manipulation->addDataElementValue(~quint64(0), ElementValueKind::ParsedValue, 2.5, CreatePoint::Done);
    QCOMPARE(pump(), 1);
    QVERIFY(isMirrored());
    QCOMPARE(run->parsed(copy, 0), 2.5);
    const auto element = run->element(entry, 0)->getManipulationInterface();
    QVERIFY(element->setActive(false, UpdatePoint::Done));
    QVERIFY(element->setData(ElementValueKind::ParsedValue, 3.5, UpdatePoint::Done));
    QCOMPARE(pump(), 2);
    QVERIFY(isMirrored());
    QVERIFY(!run->element(copy, 0)->isActive());
    QCOMPARE(run->element(copy, 0)->getTimestamp(), ~quint64(0));
    QCOMPARE(run->parsed(copy, 0), 3.5);
    // Also where it has to be read again, by the names of this side.
    QCOMPARE(medium->getElementRawData(copy->getId(), run->element(copy, 0)->getId()), run->raw(3.5));

    QVERIFY(run->provider().getDataEntryProvider()->removeDataEntry(entry->getId()));
    QCOMPARE(pump(), 1);
    QVERIFY(isMirrored());
    QVERIFY(node->getMap().isEmpty());
}

void RemoteStorageMirrorTest::anotherConnectionCreatesNothingTwice()
{
    QFETCH(bool, isBinary);
    source->mode = isBinary ? RemoteStorageMode::Binary : RemoteStorageMode::Text;
    for (int entry = 0; entry < 3; ++entry) {
        const QString uuid = QStringLiteral("e%1").arg(entry);
        QVERIFY(source->serializeEntry(uuid, run->record(uuid, "served")));
        for (int element = 0; element < 50; ++element) {
            QVERIFY(source->serializeElement(uuid, QStringLiteral("%1-%2").arg(uuid).arg(element),
                                             values(quint64(element), element, element % 2 == 0)));
        }
    }
    const auto early = source->takeSent();
    initialize();
    QVERIFY(isMirrored());
    const auto copy = copyOf("e1");
    QVERIFY(!copyOf("e1", "e1-1")->isActive() && copyOf("e1", "e1-2")->isActive());

    // What the contents hold already is pushed again where it was done while they were read.
    for (const auto &message : early)
        mirror->take(message, source->mode);
    mirror->flush();
    QVERIFY(isMirrored());

    QVERIFY(source->updateElement("e1", "e1-1", values(1, 99)));
    QVERIFY(source->removeEntry("e0"));
    QVERIFY(source->serializeEntry("e3", run->record("e3", "served")));
    source->takeSent(); // the connection is lost
    QVERIFY(run->remove(copyOf("e0")));
    node->clearEntries();
    for (int connection = 0; connection < 2; ++connection) {
        initialize();
        QVERIFY(isMirrored());
        QCOMPARE(copyOf("e1"), copy);
        QCOMPARE(numberOf(copyOf("e1", "e1-1")), 99.0);
        QVERIFY(copyOf("e1", "e1-1")->isActive());
        QVERIFY(node->mapPath("e0").isEmpty() && node->mapPath("e0-7").isEmpty());
    }
}

void RemoteStorageMirrorTest::theNewestOfManyChangesHolds()
{
    QVERIFY(source->serializeEntry("e", run->record("load", "served")));
    for (int round = 0; round < 20; ++round) {
        for (int element = 0; element < 50; ++element) {
            const QString name = QString::number(element);
            QVERIFY(round == 0 ? source->serializeElement("e", name, values(1, element))
                               : source->updateElement("e", name, values(quint64(round), round + element)));
        }
    }
    QCOMPARE(pump(), 1001);
    QVERIFY(isMirrored());
    const auto copy = copyOf("e");
    for (int element = 0; element < 50; ++element)
        QCOMPARE(run->parsed(copy, quint64(element)), double(19 + element));
    // Created and gone again before anything was waited for.
    QVERIFY(source->serializeEntry("f", run->record("brief", "served")));
    QVERIFY(source->serializeElement("f", "one", values(1, 1)));
    QVERIFY(source->removeEntry("f"));
    QCOMPARE(pump(), 3);
    QVERIFY(isMirrored());
}

void RemoteStorageMirrorTest::aFullEntryOverwritesItsOldest()
{
    const auto entry = run->addEntry(run->record("ring", "served", 3));
    const auto manipulation = entry->getManipulationInterface();
    for (int number = 0; number < 5; ++number) {
        manipulation->addDataElementValue(quint64(number + 1), ElementValueKind::ParsedValue, double(number),
                                          CreatePoint::Done);
    }
    QCOMPARE(pump(), 6);
    QVERIFY(isMirrored());
    // A peer whose entry holds more than it said.
    for (int number = 0; number < 5; ++number)
        send(entry->getId() + QStringLiteral(".more%1").arg(number), RemoteStorageCommand::CreateElement,
             EncodeElement(values(quint64(number + 10), number), source->mode));
    QCOMPARE(copyOf(entry->getId())->getNumberOfChildren(), quint64(3));
    QCOMPARE(node->getMap().size(), 1 + 3); // a name for each copy, however many came
}

void RemoteStorageMirrorTest::aPeerFillsNoMemory()
{
    mirror = std::make_unique<RemoteStorageMirror>(*node, "mirror", 4096);
    const QVariant document = EncodeElement(values(5, 2.5), source->mode);
    const LogCapture log;
    for (const QString entry : {"e", "f"}) {
        send(entry, RemoteStorageCommand::CreateEntry,
             EncodeEntryInfo(run->record(entry, "served"), source->mode));
        for (int element = 0; element < 40; ++element)
            send(entry + '.' + entry + QString::number(element), RemoteStorageCommand::CreateElement,
                 document);
        const auto kept = int(copyOf(entry)->getNumberOfChildren());
        QVERIFY(kept > 8 && kept < 16);
        Values large;
        large.setRawData(QByteArray(4096, 'x'));
        send(entry + '.' + entry + '0', RemoteStorageCommand::UpdateElement,
             EncodeElement(large, source->mode));
        QCOMPARE(numberOf(copyOf(entry, entry + '0')), 2.5);
        QCOMPARE(node->getMap().size(), 1 + kept);
        send(entry, RemoteStorageCommand::DeleteEntry, QVariant());
        QVERIFY(node->getMap().isEmpty());
    }
    QCOMPARE(log.lines().filter("RemoteStorageMirror::tellOfBound()").size(), 1);
    // What comes to nothing keeps no name.
    auto record = run->record("odd", "served");
    record.category = {CategoryType::Custom, QStringLiteral("nobody's")};
    send("g", RemoteStorageCommand::CreateEntry, EncodeEntryInfo(record, source->mode));
    send("g.one", RemoteStorageCommand::CreateElement, document);
    QVERIFY(node->mapPath("one").isEmpty());
}

void RemoteStorageMirrorTest::whatIsNotMirroredIsOutOfReach()
{
    const auto own = run->addEntry(run->record("own", "mirror"));
    const auto other = run->addEntry(run->record("other", "served"));
    source->takeSent();
    QVERIFY(own && other);
    const QVariant document = EncodeElement(values(5, 2.5), source->mode);
    for (const auto &entry : {own, other}) {
        send(entry->getId(), RemoteStorageCommand::DeleteEntry, QVariant());
        send(entry->getId() + ".one", RemoteStorageCommand::CreateElement, document);
        QCOMPARE(entry->getNumberOfChildren(), quint64(0));
    }
    QCOMPARE(mirrored->getChildren(false).size(), 1);
    QVERIFY(!other->isDeleteFlagSet());
    // Nothing is made of what has no name, no entry of the peer's, or no contents.
    send("", RemoteStorageCommand::CreateEntry, EncodeEntryInfo(run->record("load", "served"), source->mode));
    send("served.e", RemoteStorageCommand::CreateEntry, QVariant());
    QCOMPARE(mirrored->getChildren(false).size(), 1);
    send("served.e", RemoteStorageCommand::CreateEntry,
         EncodeEntryInfo(run->record("load", "served"), source->mode));
    QCOMPARE(mirrored->getChildren(false).size(), 2);
    send("e.one", RemoteStorageCommand::UpdateElement, document);
    send("e", RemoteStorageCommand::CreateElement, document);
    send("e.one", RemoteStorageCommand::CreateElement, QVariant("no document"));
    send("e.one", RemoteStorageCommand::CreateElement, EncodeElement({}, source->mode));
    QCOMPARE(copyOf("e")->getNumberOfChildren(), quint64(0));
    send("e.one", RemoteStorageCommand::CreateElement, document);
    QCOMPARE(copyOf("e")->getNumberOfChildren(), quint64(1));
}

void RemoteStorageMirrorTest::aStopEndsWhatIsOnItsWay()
{
    QVERIFY(source->serializeEntry("e", run->record("load", "served")));
    for (int element = 0; element < 3000; ++element)
        QVERIFY(source->serializeElement("e", QString::number(element), values(1, element)));
    std::thread peer([this] { pump(); });
    run->provider().endTasks();
    peer.join(); // or this test ends by its time-out
    send("e.late", RemoteStorageCommand::CreateElement, EncodeElement(values(5, 2.5), source->mode));
}

QTEST_GUILESS_MAIN(RemoteStorageMirrorTest)
#include "RemoteStorageMirrorTest.moc"
