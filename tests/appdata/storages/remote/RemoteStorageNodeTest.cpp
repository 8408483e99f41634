#include "../../support/RemoteEnds.h"

#include <appdata/storages/remote/RemoteStorageConnections.h>

#include <QtTest>

using namespace Tessellum::AppData;
using namespace Tessellum::AppData::Storages::utils;
using TestSupport::CacheNode;
using Values = Data::Elements::ElementUpdateData;

namespace {

RemoteStorageNode::EntryRecord record(const QString &name)
{
    return {name,    QStringLiteral("plant"),   {CategoryType::Float, QString()},
            "place", PersistenceType::Volatile, 3};
}

Values values(quint64 timestamp, const QByteArray &raw)
{
    Values result;
    result.setTimestamp(timestamp);
    result.setRawData(raw);
    return result;
}

quint64 timestampOf(const std::optional<Values> &stored)
{
    quint64 timestamp = 0;
    return stored && stored->getTimestamp(timestamp) ? timestamp : 0;
}

} // namespace

// What a node and a server's table of peers keep, without a network.
class RemoteStorageNodeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void elementsStayWithTheirEntryInTheOrderOfArrival();
    void onlyTheEntriesAreForgottenForANewConnection();
    void aLimitIsAPositiveNumber();
    void bytesOnTheirWayBoundWhatAPeerGets();
    void whatComesDuringAnAnswerWaitsBehindIt();
};

void RemoteStorageNodeTest::elementsStayWithTheirEntryInTheOrderOfArrival()
{
    CacheNode node;
    QVERIFY(!node.storeElement("e", "z", values(1, "1")));
    node.storeEntry("e", record("load"));
    for (const QString &name : {QString("z"), QString("a"), QString("m")})
        QVERIFY(node.storeElement("e", name, values(1, "1")));
    QVERIFY(node.storeElement("e", "z", values(2, "2"))); // keeps its place
    node.storeEntry("e", record("renamed")); // keeps its elements
    QCOMPARE(node.readElementNames("e"), (QStringList{"z", "a", "m"}));
    RemoteStorageNode::EntryRecord info;
    QVERIFY(node.readEntry("e", info) && info.name == QLatin1String("renamed"));
    QVERIFY(!node.readEntry("f", info) && info.name == QLatin1String("renamed"));

    Values active;
    active.setActive(false);
    QVERIFY(node.changeElement("e", "z", active));
    QVERIFY(!node.changeElement("e", "b", active) && !node.changeElement("f", "z", active));
    const auto stored = node.readElement("e", "z");
    bool isActive = true;
    QByteArray raw;
    QCOMPARE(timestampOf(stored), quint64(2));
    QVERIFY(stored->getActive(isActive) && !isActive && stored->getRawData(raw));
    QCOMPARE(raw, QByteArray("2"));
    QVERIFY(!node.readElement("e", "b") && !node.readElement("f", "z"));

    QVERIFY(node.dropEntry("e") && !node.dropEntry("e"));
    QVERIFY(node.readElementNames("e").isEmpty() && node.readElements("e").isEmpty());
}

void RemoteStorageNodeTest::onlyTheEntriesAreForgottenForANewConnection()
{
    CacheNode node;
    node.storeEntry("e", record("load"));
    node.setMapping("theirs", "e");
    QCOMPARE(node.mapPath("theirs"), QStringLiteral("e"));
    QCOMPARE(node.mapPath("e"), QString());
    node.clearEntries();
    QVERIFY(node.readEntries().isEmpty());
    QCOMPARE(node.getMap(), (QHash<QString, QString>{{"theirs", "e"}}));
    node.storeEntry("e", record("load"));
    node.clear();
    QVERIFY(node.readEntries().isEmpty() && node.getMap().isEmpty());
}

void RemoteStorageNodeTest::aLimitIsAPositiveNumber()
{
    for (const char *const query : {"", "?limit=", "?limit=0", "?limit=-5", "?limit=many"})
        QCOMPARE(CacheNode(QUrl(QStringLiteral("ws://x:1/") + query)).getLimit(7), qint64(7));
    QCOMPARE(CacheNode(QUrl("ws://x:1/?id=a&limit=4096")).getLimit(7), qint64(4096));
}

void RemoteStorageNodeTest::bytesOnTheirWayBoundWhatAPeerGets()
{
    constexpr qint64 most = 2097152;
    QVERIFY(JudgeDelivery(-1, most) == RemoteStorageDelivery::Send);
    QVERIFY(JudgeDelivery(-1, most + 1) == RemoteStorageDelivery::Drop);
    QVERIFY(JudgeDelivery(2000, 0) == RemoteStorageDelivery::Send);
    QVERIFY(JudgeDelivery(2001, 0) == RemoteStorageDelivery::Close);

    RemoteStorageConnections peers;
    peers.add("p", nullptr, "address");
    QVERIFY(peers.beginDelivery("p").decision == RemoteStorageDelivery::Send);
    peers.noteWritten("p", 100); // a part, before the send has returned
    peers.endDelivery("p", most + 101);
    QVERIFY(peers.beginDelivery("p").decision == RemoteStorageDelivery::Drop);
    peers.noteWritten("p", 1);
    QVERIFY(peers.beginDelivery("p").decision == RemoteStorageDelivery::Send);
    peers.endDelivery("p", 1);
    // Frames have heads, so that more is written than was sent: nothing is saved up.
    peers.noteWritten("p", 2 * most);
    QVERIFY(peers.beginDelivery("p").decision == RemoteStorageDelivery::Send);
    peers.endDelivery("p", most + 1);
    QVERIFY(peers.beginDelivery("p").decision == RemoteStorageDelivery::Drop);
}

void RemoteStorageNodeTest::whatComesDuringAnAnswerWaitsBehindIt()
{
    RemoteStorageConnections peers;
    peers.add("p", nullptr, "address");
    QVERIFY(!peers.hold("p", QString("early")) && !peers.hold("q", QString("early")));
    QVERIFY(!peers.beginAnswer("q"));
    QCOMPARE(peers.beginAnswer("p")->address, QStringLiteral("address"));
    QVERIFY(peers.hold("p", QString("one")) && peers.hold("p", QByteArray("two")));
    peers.noteAnswer("p", {}, true);
    QVERIFY(peers.getModes() == (QList<QPair<QString, bool>>{{"p", true}}));
    const QList<RemoteStorageFrame> expected{QString("one"), QByteArray("two")};
    QVERIFY(peers.takeHeld("p") == expected);
    QVERIFY(peers.hold("p", QString("three"))); // before the two have been handed on
    QCOMPARE(peers.takeHeld("p").size(), 1);
    QVERIFY(peers.takeHeld("p").isEmpty());
    QVERIFY(!peers.hold("p", QString("late")));
    // A slow answer keeps no more than a slow socket would.
    peers.beginAnswer("p");
    for (int frame = 0; frame < 10; ++frame)
        QVERIFY(peers.hold("p", QByteArray(1 << 20, 'x')));
    QCOMPARE(peers.takeHeld("p").size(), 2);
}

QTEST_GUILESS_MAIN(RemoteStorageNodeTest)
#include "RemoteStorageNodeTest.moc"
