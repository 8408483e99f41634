#include <shared/synchronization/Factory.h>
#include <shared/synchronization/Singleton.h>

#include <QtTest>

#include <set>
#include <thread>
#include <vector>

namespace {

using IntCreator = std::function<std::shared_ptr<int>()>;
using IntFactory = Shared::Factory<int, QString, std::shared_ptr<int>, IntCreator>;

IntCreator makes(int value)
{
    return [value] { return std::make_shared<int>(value); };
}

std::atomic<int> singletonsMade{0};

class OnlyOne : public Shared::Singleton<OnlyOne>
{
    friend class Shared::Singleton<OnlyOne>;
    OnlyOne() { ++singletonsMade; }
};

} // namespace

class GenericsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void factoryKeepsTheFirst();
    void creatorMayRegister();
    void singletonIsMadeOnce();
};

void GenericsTest::factoryKeepsTheFirst()
{
    IntFactory factory;
    const QString key = QStringLiteral("a");
    QVERIFY(factory.registerProduct(key, makes(1)));
    QVERIFY(!factory.registerProduct(key, makes(2)));
    QCOMPARE(*factory.getRegisteredProducts().value(key)(), 1);
    QCOMPARE(*factory.getCreator(key)(), 1);
    QCOMPARE(factory.getRegisteredProductIdentifier(), QList<QString>{key});
    QVERIFY(factory.isProductRegistered(key));
    QVERIFY(factory.unregisterProduct(key));
    QVERIFY(!factory.unregisterProduct(key));
    QVERIFY(!factory.isProductRegistered(key));
    QVERIFY(!factory.getCreator(key));
}

void GenericsTest::creatorMayRegister()
{
    IntFactory factory;
    factory.registerProduct(QStringLiteral("a"), [&factory] {
        factory.registerProduct(QStringLiteral("b"), makes(2));
        return std::make_shared<int>(1);
    });
    factory.getCreator(QStringLiteral("a"))();
    QVERIFY(factory.isProductRegistered(QStringLiteral("b")));
}

void GenericsTest::singletonIsMadeOnce()
{
    std::vector<OnlyOne *> seen(8);
    std::vector<std::thread> threads;
    for (OnlyOne *&place : seen)
        threads.emplace_back([&place] { place = OnlyOne::getInstance(); });
    for (std::thread &thread : threads)
        thread.join();
    QVERIFY(seen.front());
    QCOMPARE(std::set<OnlyOne *>(seen.begin(), seen.end()).size(), size_t(1));
    QCOMPARE(singletonsMade.load(), 1);
}

QTEST_GUILESS_MAIN(GenericsTest)
#include "GenericsTest.moc"
