#include "../RepositoryFixture.h"

#include <appconfig/backends/utils/RemoteSubtreeMirror.h>
#include <appconfig/backends/utils/RemoteSubtreeSource.h>
#include <shared/synchronization/ScopedLock.h>

#include <QDataStream>
#include <QtTest>

#include <atomic>
#include <cmath>
#include <vector>

using namespace Tessellum::AppConfig::Backends::utils;
using Tessellum::Notification::UpdatePoint;
using Tessellum::Notification::utils::FrameWorker;

namespace {

constexpr int Patience = 20000;

/*! Has stream operators but no comparison, and its contents on the heap. */
struct Reading
{
    QString unit;
};
QDataStream &operator<<(QDataStream &stream, const Reading &reading)
{
    return stream << reading.unit;
}
QDataStream &operator>>(QDataStream &stream, Reading &reading)
{
    return stream >> reading.unit;
}

std::shared_ptr<FrameWorker> MakeWorker()
{
    return Tessellum::AppConfig::utils::RepositoryProvider::getInstance()->getFrameWorkers().make();
}

QString Frame(RemoteCommand command, const QString &path, const QVariant &value = QVariant())
{
    return ComposeRemoteMessage({command, path, value.isValid() ? SerializeValue(value) : QByteArray()});
}

/*! A mirror beneath a node; its frames go to a source, or are kept. */
class Client
{
public:
    explicit Client(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &node)
        : worker(MakeWorker())
        , mirror(std::make_shared<RemoteSubtreeMirror>(
              node, [this](const QString &frame) { send(frame); },
              [this](const QString &path, const QVariant &initial) { return makeDetails(path, initial); }))
    { }
    Q_DISABLE_COPY_MOVE(Client)

    /*! Mirrors "plant" over a source on \a server. */
    void join(const std::shared_ptr<FrameWorker> &server, std::atomic<int> *messages)
    {
        count = messages;
        serverWorker = server;
        source = std::make_shared<RemoteSubtreeSource>(
            server,
            [this](const QString &frame) {
                ++*count;
                worker->post([held = mirror, frame] { held->receive(frame); });
            },
            [](const QString &) {});
        send(Frame(RemoteCommand::Init, "plant"_s, "a"_s));
    }
    /*! What it has sent, as "command path value". */
    QStringList take()
    {
        const QMutexLocker locker(&mutex);
        return std::exchange(sent, {});
    }

    RemoteSubtreeMirror::Details makeDetails(const QString &path, const QVariant &initial)
    {
        RemoteSubtreeMirror::Details details;
        details.reader = [held = mirror, path, initial](const QVariant &, QVariant &out) {
            if (!held->read(path, out))
                out = initial;
            return true;
        };
        details.writer
            = [held = mirror, path](QVariant &, const QVariant &in) { return held->write(path, in); };
        details.access = 3;
        details.valueSource = Tessellum::AppConfig::Attributes::AttributeValueSource::Functions;
        return details;
    }

    std::atomic<int> *count = nullptr; // of messages in both directions
    std::shared_ptr<FrameWorker> worker;
    std::shared_ptr<RemoteSubtreeMirror> mirror;

private:
    void send(const QString &frame)
    {
        const RemoteMessage message = ParseRemoteMessage(frame);
        const QString word = frame.section(QLatin1Char('"'), 3, 3);
        {
            const QMutexLocker locker(&mutex);
            sent.append(QStringList{word, message.path, DeserializeValue(message.data).toString()}
                            .join(QLatin1Char(' '))
                            .trimmed());
        }
        if (!source)
            return;
        ++*count;
        serverWorker->post([held = source, frame] { held->receive(frame); });
    }

    QMutex mutex;
    QStringList sent; // guarded by mutex
    std::shared_ptr<FrameWorker> serverWorker;
    std::shared_ptr<RemoteSubtreeSource> source;
};

} // namespace

Q_DECLARE_METATYPE(Reading)

class RemoteSubtreeMirrorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qRegisterMetaTypeStreamOperators<Reading>("Reading"); }
    void init()
    {
        fixture = std::make_unique<RepositoryFixture>();
        QVERIFY(fixture->createAttribute("plant"_s, 0));
        QVERIFY(fixture->createAttribute("plant.speed"_s, 5));
        QVERIFY(fixture->createAttribute("plant.mark"_s, 0));
        QVERIFY(fixture->createAttribute("panel"_s, 0));
        server = MakeWorker();
    }
    void cleanup()
    {
        fixture.reset(); // ends the workers
        clients.clear();
    }

    void oneChangeIsThreeMessagesForEachClient_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("2") << 2 << QVariant(6);
        QTest::newRow("20") << 20 << QVariant(6);
        QTest::newRow("NaN") << 3 << QVariant(std::nan(""));
        QTest::newRow("type") << 3 << QVariant("5"_s);
        QTest::newRow("user type") << 3 << QVariant::fromValue(Reading{"mm/s"_s});
        QTest::newRow("invalid") << 3 << QVariant();
    }
    void oneChangeIsThreeMessagesForEachClient()
    {
        QFETCH(int, number);
        QFETCH(QVariant, value);
        join(number);
        // By the other process: update, rewrite and its answer. By a client: write, its answer, update.
        for (const QString &path : {"plant.speed"_s, "panel.c1.speed"_s}) {
            const QVariant other = path.startsWith("plant"_s) ? value : QVariant(7);
            messages = 0;
            set(path, other);
            const QByteArray bytes = ToRemoteValue(other).bytes;
            QTRY_VERIFY_WITH_TIMEOUT(allShow("speed"_s, bytes), Patience);
            QTRY_COMPARE_WITH_TIMEOUT(messages.load(), 3 * number, Patience);
            passMarks();
            QCOMPARE(messages.load(), 3 * number);
            QCOMPARE(ToRemoteValue(this->value("plant.speed"_s)).bytes, bytes);
        }
        // Again the same value: an answer alone for who writes it, and nothing for the rest.
        messages = 0;
        set("panel.c0.speed"_s, 7);
        passMarks();
        QCOMPARE(messages.load(), 2);
        set("plant.speed"_s, 7);
        passMarks();
        QCOMPARE(messages.load(), 2);
    }

    void manyWritersSettleOnWhatTheServerAppliedLast()
    {
        const int number = 8;
        join(number);
        messages = 0;
        const int rounds = 20;
        std::vector<std::shared_ptr<Tessellum::Notification::UpdateObserver>> started;
        for (int round = 0; round < rounds; ++round) {
            for (int client = 0; client < number; ++client) {
                started.push_back(fixture->repository()
                                      .getManipulationProvider()
                                      ->startUpdateAttribute("panel.c%1.speed"_s.arg(client),
                                                             100 * round + client, UpdatePoint::Done)
                                      .observer);
            }
        }
        for (const auto &observer : started)
            observer->wait();
        // On the way there they may show the same for a moment, and not the next time one looks.
        QVERIFY(QTest::qWaitFor(
            [this] { return allShow("speed"_s, ToRemoteValue(value("plant.speed"_s)).bytes); }, Patience));
        passMarks();
        QVERIFY(allShow("speed"_s, ToRemoteValue(value("plant.speed"_s)).bytes));
        // Each write is answered and told to all, each of whom asks back once.
        const int writes = number * rounds;
        QVERIFY2(messages <= 2 * writes + 3 * writes * number, qPrintable(QString::number(messages)));
        // What was under way when all showed the same may still be asked and answered once each.
        int before = 0;
        for (int passes = 0; passes < 4 && before != messages; ++passes) {
            before = messages;
            passMarks();
        }
        QCOMPARE(messages.load(), before);
    }

    void sendsNoValueBackThatItHasReceived()
    {
        Client &client = receiveSubtree();
        const auto speed = fixture->node("panel.c0.speed"_s);
        {
            // Both are received before the tree has taken the first one.
            const Shared::Synchronization::ScopedLock lock(speed.get());
            client.mirror->receive(Frame(RemoteCommand::Update, "speed"_s, 6));
            client.mirror->receive(Frame(RemoteCommand::Update, "speed"_s, 7));
        }
        client.mirror->receive(Frame(RemoteCommand::Delete, "none"_s)); // waits for the updates before it
        QCOMPARE(client.take(), QStringList("rewrite speed"_s));
        QCOMPARE(value("panel.c0.speed"_s), QVariant(7));
        {
            const Shared::Synchronization::ScopedLock lock(speed.get());
            client.mirror->receive(Frame(RemoteCommand::Update, "speed"_s, 8));
            client.mirror->receive(Frame(RemoteCommand::Update, "speed"_s, 9));
            client.mirror->write("speed"_s, 10);
        }
        client.mirror->receive(Frame(RemoteCommand::Delete, "mark"_s));
        QCOMPARE(client.take(), QStringList("write speed 10"_s));
        QCOMPARE(value("panel.c0.speed"_s), QVariant(10));
        QVERIFY(!fixture->node("panel.c0.mark"_s));
        // What the application writes anew is a write, also if it was received before.
        set("panel.c0.speed"_s, 9);
        QCOMPARE(client.take(), QStringList("write speed 9"_s));
        client.mirror->receive(Frame(RemoteCommand::Rewrite, "speed"_s));
        client.mirror->receive(Frame(RemoteCommand::Delete, "none"_s));
        QCOMPARE(client.take(), QStringList("rewrite speed"_s));
    }

    void asksForWhatItDoesNotKnow()
    {
        Client &client = receiveSubtree();
        QVariant out = "untouched"_s;
        QVERIFY(!client.mirror->read("other"_s, out));
        QCOMPARE(client.take(), QStringList("read other"_s));
        QCOMPARE(out, QVariant("untouched"_s));
        QVERIFY(fixture->createAttribute("panel.c0.other"_s, 1));
        client.mirror->receive(Frame(RemoteCommand::Read, "other"_s, 2));
        QTRY_COMPARE_WITH_TIMEOUT(value("panel.c0.other"_s), QVariant(2), Patience);
    }

    void laterSubtreesAddAndRemove()
    {
        Client &client = receiveSubtree();
        client.mirror->receive(Frame(RemoteCommand::Create, "motor.name"_s, "m1"_s));
        QCOMPARE(value("panel.c0.motor.name"_s), QVariant("m1"_s));
        set("panel.c0.motor.name"_s, "m2"_s); // no mirror, so nobody hears of it
        QVERIFY(client.take().isEmpty());

        QVERIFY(fixture->createAttribute("panel.c0.own"_s, 1));
        client.mirror->receive(Subtree({{"speed"_s, 99}, {"new.one"_s, 3}, {""_s, 1}, {"a..b"_s, 1}}));
        QCOMPARE(fixture->values("panel.c0"_s).keys(), (QStringList{"new.one"_s, "own"_s, "speed"_s}));
        QCOMPARE(value("panel.c0.speed"_s), QVariant(5)); // keeps what it knew
        set("panel.c0.new.one"_s, 4);
        QCOMPARE(client.take(), QStringList("write new.one 4"_s));

        fixture->takeLog(Shared::Logging::LogMessageType::warning);
        for (const QString &damaged : {"[]"_s, "junk"_s, QString()})
            client.mirror->receive(Frame(RemoteCommand::Init, "plant"_s, damaged));
        for (const QString &frame : {""_s, "{}"_s, "junk"_s, Frame(RemoteCommand::Delete, "."_s)})
            client.mirror->receive(frame);
        QCOMPARE(fixture->values("panel.c0"_s).size(), 3);
    }

    void theFirstSubtreeGoesToWhoAwaitsIt()
    {
        Client client(fixture->node("panel"_s));
        RemoteSubtreeMirror::Values values;
        int calls = 0;
        const auto callback = [&](const RemoteSubtreeMirror::Values &given) {
            ++calls;
            values = given;
        };
        QVERIFY(client.mirror->requestInitialization(callback));
        QVERIFY(!client.mirror->requestInitialization(callback));
        QVERIFY(client.mirror->cancelInitialization());
        QVERIFY(!client.mirror->cancelInitialization());
        client.mirror->endInitialization();
        QCOMPARE(calls, 0);

        QVERIFY(client.mirror->requestInitialization(callback));
        client.mirror->receive(Subtree({{"speed"_s, 5}, {"none"_s, QVariant()}}));
        QCOMPARE(calls, 1);
        QCOMPARE(values, (RemoteSubtreeMirror::Values{{"none"_s, QVariant()}, {"speed"_s, 5}}));
        QVariant out = 1;
        QVERIFY(client.mirror->read("none"_s, out) && !out.isValid());
        QVERIFY(!fixture->node("panel.speed"_s)); // made by the load
    }

private:
    static QString Subtree(const QMap<QString, QVariant> &values)
    {
        RemoteSubtree subtree;
        for (auto value = values.cbegin(); value != values.cend(); ++value)
            subtree.insert(value.key(), SerializeValue(value.value()));
        return Frame(RemoteCommand::Init, "plant"_s, ComposeRemoteSubtree(subtree));
    }
    Client &addClient()
    {
        const QString path = "panel.c%1"_s.arg(clients.size());
        fixture->createAttribute(path, 0);
        clients.push_back(std::make_unique<Client>(fixture->node(path)));
        return *clients.back();
    }
    Client &receiveSubtree()
    {
        Client &client = addClient();
        client.mirror->receive(Subtree({{"speed"_s, 5}, {"mark"_s, 0}}));
        return client;
    }
    void join(int number)
    {
        for (int i = 0; i < number; ++i)
            addClient().join(server, &messages);
        QTRY_VERIFY_WITH_TIMEOUT(allShow("speed"_s, SerializeValue(5)), Patience);
        passMarks();
    }
    /*! What was under way when this began has arrived; the messages of the marks themselves do not count. */
    void passMarks()
    {
        for (int pass = 0; pass < 3; ++pass) {
            const int before = messages;
            set("plant.mark"_s, ++mark);
            QTRY_VERIFY_WITH_TIMEOUT(allShow("mark"_s, SerializeValue(mark)), Patience);
            QTRY_VERIFY_WITH_TIMEOUT(messages >= before + 3 * int(clients.size()), Patience);
            messages -= 3 * int(clients.size());
        }
    }
    bool allShow(const QString &name, const QByteArray &bytes)
    {
        for (std::size_t i = 0; i < clients.size(); ++i) {
            const QString path = "panel.c%1.%2"_s.arg(i).arg(name);
            if (!fixture->node(path) || ToRemoteValue(value(path)).bytes != bytes)
                return false;
        }
        return true;
    }
    void set(const QString &path, const QVariant &to)
    {
        fixture->repository().getManipulationProvider()->updateAttribute(path, to, UpdatePoint::Done);
    }
    QVariant value(const QString &path)
    {
        QVariant found;
        fixture->repository().getQueryProvider()->getValue(path, found, 0);
        return found;
    }

    std::unique_ptr<RepositoryFixture> fixture;
    std::atomic<int> messages = 0;
    int mark = 0;
    std::shared_ptr<FrameWorker> server;
    std::vector<std::unique_ptr<Client>> clients;
};

QTEST_GUILESS_MAIN(RemoteSubtreeMirrorTest)
#include "RemoteSubtreeMirrorTest.moc"
