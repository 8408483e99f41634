#include "../RepositoryFixture.h"

#include <appconfig/backends/utils/RemoteSubtreeSource.h>

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

using namespace Tessellum::AppConfig::Backends::utils;
using Tessellum::Notification::DeletePoint;
using Tessellum::Notification::UpdatePoint;

namespace {

QString Encoded(const QVariant &value)
{
    return EncodeSerialized(SerializeValue(value));
}

QVariant Decoded(const QJsonObject &message)
{
    return DeserializeValue(DecodeSerialized(message.value("data"_s).toString()));
}

/*! "command path value", the value in Qt's text form; without one if "data" is left out. */
QString Summary(const QString &frame)
{
    const QJsonObject message = QJsonDocument::fromJson(frame.toUtf8()).object();
    QString text
        = message.value("command"_s).toString() + QLatin1Char(' ') + message.value("path"_s).toString();
    if (message.contains("data"_s))
        text += QLatin1Char(' ') + Decoded(message).toString();
    return text;
}

/*! A source with its worker, and what it has sent. */
class Peer
{
public:
    Peer()
        : worker(Tessellum::AppConfig::utils::RepositoryProvider::getInstance()->getFrameWorkers().make())
        , source(std::make_shared<RemoteSubtreeSource>(
              worker, [this](const QString &frame) { add(frames, frame); },
              [this](const QString &id) { add(ids, id); }))
    { }
    ~Peer()
    {
        settle();
        source.reset();
        settle();
    }
    Q_DISABLE_COPY(Peer)

    void tell(const QString &command, const QString &path, const QVariant &value = QVariant())
    {
        QJsonObject message{{"command"_s, command}, {"path"_s, path}};
        if (value.isValid())
            message.insert("data"_s, Encoded(value));
        receive(QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact)));
    }
    void receive(const QString &frame)
    {
        worker->post([held = source, frame] { held->receive(frame); });
        settle();
    }
    /*! Until the worker has done all that is posted so far. */
    void settle()
    {
        QSemaphore done;
        if (worker->post([&done] { done.release(); }))
            done.acquire();
    }

    QStringList take()
    {
        const QMutexLocker locker(&mutex);
        return std::exchange(frames, {});
    }
    QStringList takeSummaries()
    {
        QStringList texts;
        for (const QString &frame : take())
            texts.append(Summary(frame));
        return texts;
    }
    /*! Waits for a frame with \a summary; those before it and itself. */
    QStringList until(const QString &summary)
    {
        QStringList texts;
        const QDeadlineTimer deadline(20000);
        while (!texts.contains(summary) && !deadline.hasExpired()) {
            QTest::qWait(1);
            texts += takeSummaries();
        }
        return texts;
    }

    QStringList ids; // guarded by mutex

private:
    void add(QStringList &list, const QString &text)
    {
        const QMutexLocker locker(&mutex);
        list.append(text);
    }

    QMutex mutex;
    QStringList frames;
    std::shared_ptr<Tessellum::Notification::utils::FrameWorker> worker;
    std::shared_ptr<RemoteSubtreeSource> source;
};

} // namespace

class RemoteSubtreeSourceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        fixture = std::make_unique<RepositoryFixture>();
        QVERIFY(fixture->createAttribute("plant"_s, 0));
        QVERIFY(fixture->createAttribute("plant.speed"_s, 5));
        QVERIFY(fixture->createAttribute("plant.motor.name"_s, "m1"_s));
    }
    void cleanup() { fixture.reset(); }

    void initToTheLetter()
    {
        Peer peer;
        peer.tell("init"_s, "plant"_s, "panel"_s);
        const QStringList frames = peer.take();
        QCOMPARE(frames.size(), 1);
        // "motor" was made on the way to its name and has no value.
        const QJsonObject subtree{
            {"motor"_s, Encoded(QVariant())}, {"motor.name"_s, Encoded("m1"_s)}, {"speed"_s, Encoded(5)}};
        const QJsonObject expected{
            {"command"_s, "init"_s},
            {"path"_s, "plant"_s},
            {"data"_s, Encoded(QString::fromUtf8(QJsonDocument(subtree).toJson(QJsonDocument::Compact)))}};
        QCOMPARE(frames.constFirst(),
                 QString::fromUtf8(QJsonDocument(expected).toJson(QJsonDocument::Compact)));
        QCOMPARE(peer.ids, QStringList("panel"_s));
    }

    void answersWithWhatIsInForce()
    {
        QVERIFY(fixture->createAttribute("plant.fixed"_s, 7, 1));
        Peer peer;
        peer.tell("read"_s, "speed"_s);
        QVERIFY(peer.take().isEmpty()); // before "init" nobody is asked
        peer.tell("init"_s, "plant"_s);
        peer.take();

        peer.tell("read"_s, "speed"_s);
        peer.tell("read"_s, "missing"_s);
        peer.tell("write"_s, "fixed"_s, 8); // cannot be written
        peer.tell("rewrite"_s, "speed"_s);
        peer.tell("write"_s, "missing"_s, 8);
        QCOMPARE(peer.takeSummaries(),
                 (QStringList{"read speed 5"_s, "write fixed 7"_s, "write speed 5"_s, "write missing"_s}));
    }

    void whoWritesHearsTheAnswerAndOthersTheUpdate()
    {
        Peer writer;
        Peer other;
        writer.tell("init"_s, "plant"_s);
        other.tell("init"_s, "plant"_s);
        writer.take();
        other.take();

        writer.tell("write"_s, "speed"_s, 6);
        QCOMPARE(writer.until("update speed 6"_s), (QStringList{"write speed 6"_s, "update speed 6"_s}));
        QCOMPARE(other.until("update speed 6"_s), QStringList("update speed 6"_s));
        // The type counts, not what the values look like.
        writer.tell("write"_s, "speed"_s, "6"_s);
        QCOMPARE(other.until("update speed 6"_s), QStringList("update speed 6"_s));

        // Nobody hears of a rewrite but who asked; the last line is told for sure after anything before it.
        other.tell("rewrite"_s, "speed"_s);
        writer.tell("write"_s, "motor.name"_s, "m2"_s);
        QCOMPARE(other.until("update motor.name m2"_s),
                 (QStringList{"write speed 6"_s, "update motor.name m2"_s}));
    }

    void theLastFrameIsTheLastValue()
    {
        Peer peer;
        peer.tell("init"_s, "plant"_s);
        peer.take();
        const auto tree = fixture->repository().getManipulationProvider();
        for (int value = 100; value < 400; ++value)
            tree->updateAttribute("plant.speed"_s, value, UpdatePoint::Done);
        const QStringList heard = peer.until("update speed 399"_s);
        QCOMPARE(heard.constLast(), "update speed 399"_s);
        QVERIFY(heard.size() <= 300);
        for (int i = 1; i < heard.size(); ++i)
            QVERIFY(heard.at(i - 1).section(QLatin1Char(' '), 2).toInt()
                    < heard.at(i).section(QLatin1Char(' '), 2).toInt());
        // NaN equals itself: it is told once.
        tree->updateAttribute("plant.speed"_s, qQNaN(), UpdatePoint::Done);
        tree->updateAttribute("plant.speed"_s, qQNaN(), UpdatePoint::Done);
        tree->updateAttribute("plant.motor.name"_s, "end"_s, UpdatePoint::Done);
        QCOMPARE(peer.until("update motor.name end"_s).filter("speed"_s), QStringList("update speed nan"_s));
    }

    void tellsWhatComesAndGoes()
    {
        Peer peer;
        peer.tell("init"_s, "plant"_s);
        peer.take();
        const auto tree = fixture->repository().getManipulationProvider();
        QVERIFY(fixture->createAttribute("plant.new"_s, "n"_s));
        QCOMPARE(peer.until("create new n"_s), QStringList("create new n"_s));
        QVERIFY(fixture->createAttribute("plantation.other"_s, 1));
        QVERIFY(tree->deleteAttribute("plant.new"_s, DeletePoint::Done));
        QCOMPARE(peer.until("delete new"_s), QStringList("delete new"_s));
    }

    void aSecondInitReplacesTheFirst()
    {
        Peer peer;
        QVERIFY(fixture->createAttribute("hall"_s, 0));
        QVERIFY(fixture->createAttribute("hall.light"_s, 1));
        peer.tell("init"_s, "plant"_s, "a"_s);
        peer.tell("init"_s, "hall"_s, "b"_s);
        peer.take();
        QCOMPARE(peer.ids, (QStringList{"a"_s, "b"_s}));
        const auto tree = fixture->repository().getManipulationProvider();
        tree->updateAttribute("plant.speed"_s, 9, UpdatePoint::Done);
        tree->updateAttribute("hall.light"_s, 2, UpdatePoint::Done);
        QCOMPARE(peer.until("update light 2"_s), QStringList("update light 2"_s));
    }

    void whatIsNoBusinessOfAPeerIsDropped()
    {
        Peer peer;
        peer.tell("init"_s, "nowhere"_s);
        QVERIFY(peer.take().isEmpty());
        peer.tell("init"_s, "plant"_s);
        peer.take();
        for (const auto &command : {"create"_s, "update"_s, "delete"_s, "steal"_s, ""_s})
            peer.tell(command, "speed"_s, 1);
        peer.tell("read"_s, ""_s);
        for (const auto &frame : {""_s, "junk"_s, "[]"_s, "{\"command\":7,\"path\":{}}"_s})
            peer.receive(frame);
        QVERIFY(peer.take().isEmpty());
        peer.tell("read"_s, "speed"_s);
        QCOMPARE(peer.takeSummaries(), QStringList("read speed 5"_s));
    }

private:
    std::unique_ptr<RepositoryFixture> fixture;
};

QTEST_GUILESS_MAIN(RemoteSubtreeSourceTest)
#include "RemoteSubtreeSourceTest.moc"
