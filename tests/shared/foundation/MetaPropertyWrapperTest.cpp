#include <shared/foundation/MetaPropertyWrapper.h>

#include <QThread>
#include <QtTest>

#include <functional>
#include <support/Literals.h>
#include <thread>

using Shared::MetaPropertyWrapper;
using Shared::MetaPropertyWrapperPtr;

/*! One property that tells of its changes, and one that does not and takes 100 at most. */
class Owner : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text MEMBER text NOTIFY textChanged)
    Q_PROPERTY(int level READ level WRITE setLevel)
    Q_PROPERTY(int count READ level)

public:
    int level() const { return value; }
    void setLevel(int level)
    {
        writers.append(QThread::currentThread());
        value = qMin(level, 100);
    }
    MetaPropertyWrapperPtr wrap(const char *name)
    {
        const QMetaObject &type = staticMetaObject;
        return MetaPropertyWrapper::Create(type.property(type.indexOfProperty(name)), this);
    }

    QString text;
    int value = 0;
    QList<QThread *> writers;

Q_SIGNALS:
    void textChanged(const QString &text);
};

namespace {

constexpr auto untyped = QMetaType::UnknownType;

/*! What \a work returns on a thread of its own, while this one is blocked, and how long it took. */
template <class Work>
auto WhileBlocked(const Work &work, qint64 *milliseconds = nullptr)
{
    decltype(work()) result{};
    QElapsedTimer timer;
    timer.start();
    std::thread([&] { result = work(); }).join();
    if (milliseconds)
        *milliseconds = timer.elapsed();
    return result;
}

/*! The same, while this thread works on its events. */
template <class Work>
auto WhileServing(const Work &work)
{
    decltype(work()) result{};
    std::atomic<bool> ended{false};
    std::thread thread([&] {
        result = work();
        ended = true;
    });
    const bool inTime = QTest::qWaitFor([&] { return ended.load(); }, 30000);
    thread.join();
    if (!inTime)
        qFatal("the work did not end");
    return result;
}

QVariant Read(const MetaPropertyWrapperPtr &wrapper, QMetaType::Type type = untyped)
{
    QVariant value;
    return wrapper->readProperty(type, value) ? value : QVariant("failed");
}

/*! Whether \a read gives \a value without a wait for the blocked owner; a busy machine may hold up some
 * tries. */
bool IsQuick(const std::function<QVariant()> &read, const QVariant &value)
{
    qint64 milliseconds = 90;
    for (int i = 0; milliseconds >= 90 && i < 5; ++i) {
        if (WhileBlocked(read, &milliseconds) != value)
            return false;
    }
    return milliseconds < 90;
}

} // namespace

class MetaPropertyWrapperTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onTheOwnersThread()
    {
        Owner owner;
        const auto level = owner.wrap("level");
        QCOMPARE(level->name(), "level"_s);
        owner.value = 3;
        QCOMPARE(Read(level), QVariant(3));
        QCOMPARE(Read(level, QMetaType::QString), QVariant("3"));
        QCOMPARE(Read(level, QMetaType::QVariantMap), QVariant("failed"));

        QVERIFY(!level->writeProperty("no number"));
        QVERIFY(level->writeProperty("7"));
        QVERIFY(level->writeProperty(170));
        QCOMPARE(owner.value, 3);
        QCOMPARE(Read(level), QVariant(170)); // it counts at once
        QTRY_COMPARE(owner.value, 100);
        QCOMPARE(owner.writers.size(), 2);
        QCOMPARE(Read(level), QVariant(100));
    }

    void otherThreadsHearWhatIsThere()
    {
        Owner owner;
        const auto level = owner.wrap("level");
        const auto text = owner.wrap("text");
        owner.value = 5;
        owner.setProperty("text", "a");
        QCOMPARE(WhileServing([&] { return Read(level); }), QVariant(5));
        QCOMPARE(WhileServing([&] { return Read(text); }), QVariant("a"));
        // What the owner makes of a value is what is read back.
        QCOMPARE(WhileServing([&] { return level->writeProperty(170) ? Read(level) : QVariant(); }),
                 QVariant(100));
        QCOMPARE(owner.writers, QList<QThread *>{QThread::currentThread()});
    }

    void blockedOwnerHoldsNobodyUp()
    {
        Owner owner;
        const auto level = owner.wrap("level");
        const auto text = owner.wrap("text");
        owner.setProperty("text", "a");
        owner.value = 5; // the copy does not know
        qint64 milliseconds = 0;
        QVERIFY2(IsQuick([&] { return Read(text); }, "a"), "a property with a signal needs nobody");
        QCOMPARE(WhileBlocked([&] { return Read(level); }, &milliseconds), QVariant(0));
        QVERIFY(milliseconds >= 99);
        QVERIFY2(IsQuick([&] { return level->writeProperty("42") ? Read(level) : QVariant(); }, 42),
                 "the thread is known to be blocked");
        QCOMPARE(owner.value, 5);
        QCOMPARE(Read(level), QVariant(42));
        QTRY_COMPARE(owner.value, 42);
    }

    void refreshBeforeAWriteDoesNotBringTheOldValueBack()
    {
        Owner owner;
        const auto level = owner.wrap("level");
        QVERIFY(level->writeProperty(9));
        QMetaObject::invokeMethod(level.get(), "refresh", Qt::DirectConnection);
        QCOMPARE(WhileBlocked([&] { return Read(level); }), QVariant(9));
    }

    void changesAreTold()
    {
        Owner owner;
        const auto text = owner.wrap("text");
        const auto level = owner.wrap("level");
        QSignalSpy texts(text.get(), &MetaPropertyWrapper::propertyChanged);
        QSignalSpy levels(level.get(), &MetaPropertyWrapper::propertyChanged);
        owner.setProperty("text", "b");
        QCOMPARE(texts.size(), 1);
        QCOMPARE(texts.at(0).at(0).value<QVariant>(), QVariant("b"));
        owner.setProperty("other", 1);
        owner.setLevel(1);
        QVERIFY(levels.isEmpty());
        QDynamicPropertyChangeEvent dynamic("level");
        QCoreApplication::sendEvent(&owner, &dynamic);
        QCOMPARE(levels.size(), 1);
        QCOMPARE(texts.size(), 1);
    }

    void ownerOfAnotherThread()
    {
        QThread thread;
        thread.start();
        Owner owner;
        owner.value = 8;
        owner.moveToThread(&thread);
        const auto level = owner.wrap("level");
        QCOMPARE(level->thread(), &thread);
        QCOMPARE(Read(level), QVariant(8));
        QVERIFY(level->writeProperty(200));
        QCOMPARE(Read(level), QVariant(100));
        QCOMPARE(owner.writers, QList<QThread *>{&thread});
        thread.quit();
        QVERIFY(thread.wait());
    }

    void deadOwner()
    {
        auto owner = std::make_unique<Owner>();
        const auto level = owner->wrap("level");
        std::atomic<bool> reading{false};
        // The owner dies while a reader waits for its thread.
        bool found = true;
        std::thread reader([&] {
            reading = true;
            QVariant value;
            found = level->readProperty(untyped, value);
        });
        while (!reading)
            std::this_thread::yield();
        QVERIFY(level->writeProperty(1));
        owner.reset();
        reader.join();
        Q_UNUSED(found); // true if it came too early
        QVERIFY(!level->writeProperty(1));
        QCOMPARE(Read(level), QVariant("failed"));
        QCOMPARE(WhileBlocked([&] { return Read(level); }), QVariant("failed"));
        QVERIFY(!WhileBlocked([&] { return level->writeProperty(1); }));
        QCoreApplication::processEvents(); // the write that was under way
        QVERIFY(!MetaPropertyWrapper(QMetaProperty(), nullptr).writeProperty(1));
    }

    void lastPointerGoesElsewhere()
    {
        Owner owner;
        auto level = owner.wrap("level");
        const QPointer<MetaPropertyWrapper> wrapper(level.get());
        WhileBlocked([&] {
            const bool written = level->writeProperty(1);
            level.reset();
            return written;
        });
        QVERIFY(wrapper);
        QTRY_VERIFY(!wrapper);
        QObject parent;
        auto *const child = new MetaPropertyWrapper(QMetaProperty(), &owner, &parent);
        QCOMPARE(child->parent(), &parent);
    }
};

QTEST_GUILESS_MAIN(MetaPropertyWrapperTest)
#include "MetaPropertyWrapperTest.moc"
