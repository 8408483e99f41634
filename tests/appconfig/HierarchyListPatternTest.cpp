#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/HierarchyListPattern.h>

#include <QSemaphore>
#include <QtTest>

#include <random>
#include <support/AttributeTree.h>
#include <support/Threads.h>

using namespace TestSupport;
using Tessellum::Core::HierarchyListPattern;

namespace {

struct ListInTree : AttributeTree
{
    ListInTree() { root->addChild(list); }

    QString text() const { return value("list"_s).toString(); }
    QString joined() const { return list->getElements().join(QLatin1Char(';')); }
    // Until nothing is under way: all tasks of this tree, and what the global pool was given by them.
    void settle() { pool.waitForDone(); }

    const std::shared_ptr<HierarchyListPattern> list = MakeNode<HierarchyListPattern>(&pool, "list"_s);
};

} // namespace

class HierarchyListPatternTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void adds()
    {
        ListInTree tree;
        QCOMPARE(tree.list->getListSeparator(), ";"_s);
        QVERIFY(tree.list->addElementToList("a"_s, 1, false));
        QVERIFY(tree.list->hasElement("a"_s)); // at once
        QVERIFY(tree.list->addElementToList("x.y"_s, 2, false));
        QVERIFY(tree.list->addElementToList("a"_s, 3, false));
        tree.settle();
        QCOMPARE(tree.list->getElements(), (QStringList{"a"_s, "x.y"_s}));
        QCOMPARE(tree.text(), "a;x.y"_s);
        QCOMPARE(tree.value("list.a"_s), QVariant(3));
        QVERIFY(tree.list->getElement("x.y"_s));
        QVERIFY(!tree.list->getElement("b"));
        for (int i = 0; i < 3; ++i)
            QVERIFY(tree.list->addElementToList("a", i, true)); // under a name that is free
        tree.settle();
        QCOMPARE(tree.text(), "a;x.y;a1;a2;a3"_s);
        QCOMPARE(tree.value("list.a2"), QVariant(1));
    }

    void removes()
    {
        ListInTree tree;
        Notes notes;
        const auto handle = tree.notifications.registerDeleteHandler(
            "*",
            [&](const QString &path, const DeletePoint &, const bool &result) {
                notes.add(result ? path : "");
            },
            DeletePoint::Done);
        tree.list->addElementToList("a"_s, 1, false);
        tree.list->addElementToList("b"_s, 2, false);
        QVERIFY(tree.list->removeElementFromList("a"_s));
        QVERIFY(!tree.list->hasElement("a"_s));
        QVERIFY(!tree.list->removeElementFromList("a"_s));
        QCOMPARE(notes.sorted(1), QStringList("list.a"));
        tree.settle();
        QCOMPARE(tree.text(), "b"_s);
        QVERIFY(tree.list->removeElementFromList("b"_s));
        tree.settle();
        QCOMPARE(tree.text(), QString());
    }

    void refusesEmptyNames()
    {
        ListInTree tree;
        const LogCapture log;
        QVERIFY(!tree.list->addElementToList(QString(), 1, true));
        QVERIFY(!tree.list->removeElementFromList(QString()));
        QCOMPARE(log.lines(),
                 (QStringList{"WARNING HierarchyListPattern::addElementToList() adding elements with "
                              "empty name is not supported"_s,
                              "WARNING HierarchyListPattern::removeElementFromList() removing "
                              "elements without name is not supported"_s}));
        tree.settle();
        QVERIFY(!tree.list->hasValue());
    }

    void removalAndAdditionAtOnce()
    {
        ListInTree tree;
        for (int round = 0; round < 200; ++round) {
            tree.list->addElementToList("a"_s, round, false);
            tree.list->removeElementFromList("a"_s);
        }
        tree.list->addElementToList("a"_s, "last"_s, false);
        tree.settle();
        QCOMPARE(tree.text(), "a"_s);
        QCOMPARE(tree.value("list.a"_s), QVariant("last"_s));
    }

    void foreignUpdateIsAPlainOne()
    {
        ListInTree tree;
        tree.list->addElementToList("a"_s, 1, false);
        tree.settle();
        tree.pool.startUpdateTask(tree.list, "a"_s, UpdatePoint::Done)->wait();
        QCOMPARE(tree.text(), "a"_s);
        tree.pool.startUpdateTask(tree.list, "other"_s, UpdatePoint::Done)->wait();
        QCOMPARE(tree.text(), "other"_s);
        tree.list->addElementToList("b"_s, 1, false);
        tree.settle();
        QCOMPARE(tree.text(), "a;b"_s);
        // Also where it brings back a text that was the list's own.
        const QVariant own = tree.value("list"_s);
        tree.list->addElementToList("c"_s, 1, false);
        tree.settle();
        tree.pool.startUpdateTask(tree.list, own, UpdatePoint::Done)->wait();
        QCOMPARE(tree.text(), "a;b"_s);
    }

    void everyChangeIsToldWithItsText()
    {
        constexpr int additions = 10000;
        ListInTree tree;
        QSemaphore calls;
        std::atomic<int> wrong{0};
        const auto handle = tree.notifications.registerUpdateHandler(
            "list"_s,
            [&](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
                const QVariant &text) {
                if (result != UpdateResult::Ok || !text.toString().startsWith("n0"_s))
                    ++wrong;
                calls.release();
            },
            UpdatePoint::All);
        for (int i = 0; i < additions; ++i)
            tree.list->addElementToList("n%1"_s.arg(i), i, false);
        QVERIFY(calls.tryAcquire(3 * additions, 60000));
        QCOMPARE(wrong.load(), 0);
        tree.settle();
        QCOMPARE(tree.text(), tree.joined());
        QCOMPARE(tree.list->getElements().size(), additions);
    }

    void settlesUnderThreads()
    {
        ListInTree tree;
        std::atomic<int> additions{0};
        std::atomic<int> removals{0};
        InThreads(4, [&](int thread) {
            std::minstd_rand random(unsigned(thread) + 1);
            for (int change = 0; change < 500; ++change) {
                // Renaming additions of one name by all threads: each must get a name of its own.
                const QStringList names = random() % 3 == 0 ? tree.list->getElements() : QStringList();
                if (names.isEmpty())
                    additions += tree.list->addElementToList("n"_s, change, true) ? 1 : 0;
                else if (tree.list->removeElementFromList(names.at(int(random() % uint(names.size())))))
                    ++removals;
            }
        });
        tree.settle();
        QCOMPARE(tree.list->getElements().size(), additions - removals);
        QCOMPARE(tree.text(), tree.joined());
    }
};

QTEST_GUILESS_MAIN(HierarchyListPatternTest)

#include "HierarchyListPatternTest.moc"
