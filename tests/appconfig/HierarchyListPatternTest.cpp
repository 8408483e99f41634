#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/HierarchyListPattern.h>

#include <QSemaphore>
#include <QtTest>

#include <random>
#include <support/AttributeTree.h>
#include <support/LogCapture.h>

using namespace Tessellum::AppConfig::Attributes;
using namespace Tessellum::Notification;
using Tessellum::Core::HierarchyListPattern;
using Tessellum::Notification::utils::MakeNode;
using TestSupport::AttributeTree;

namespace {

struct ListInTree : AttributeTree
{
    ListInTree() { root->addChild(list); }

    QString text() const { return value(QStringLiteral("list")).toString(); }
    QString joined() const { return list->getElements().join(QLatin1Char(';')); }
    // Until nothing is under way: all tasks of this tree, and what the global pool was given by them.
    void settle() { pool.waitForDone(); }

    const std::shared_ptr<HierarchyListPattern> list
        = MakeNode<HierarchyListPattern>(&pool, QStringLiteral("list"));
};

} // namespace

class HierarchyListPatternTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void adds();
    void removes();
    void renames();
    void refusesEmptyNames();
    void failedAddition();
    void removalAndAdditionAtOnce();
    void foreignUpdateIsAPlainOne();
    void everyChangeIsToldWithItsText();
    void settlesUnderThreads();
};

void HierarchyListPatternTest::adds()
{
    ListInTree tree;
    QCOMPARE(tree.list->getListSeparator(), QStringLiteral(";"));
    QVERIFY(tree.list->addElementToList(QStringLiteral("a"), 1, false));
    QVERIFY(tree.list->hasElement(QStringLiteral("a"))); // at once
    QVERIFY(tree.list->addElementToList(QStringLiteral("x.y"), 2, false));
    QVERIFY(tree.list->addElementToList(QStringLiteral("a"), 3, false));
    tree.settle();
    QCOMPARE(tree.list->getElements(), (QStringList{QStringLiteral("a"), QStringLiteral("x.y")}));
    QCOMPARE(tree.text(), QStringLiteral("a;x.y"));
    QCOMPARE(tree.value(QStringLiteral("list.a")), QVariant(3));
    QVERIFY(tree.list->getElement(QStringLiteral("x.y")));
    QVERIFY(!tree.list->getElement(QStringLiteral("b")));
}

void HierarchyListPatternTest::removes()
{
    ListInTree tree;
    QStringList heard;
    QSemaphore calls;
    const auto handle = tree.notifications.registerDeleteHandler(
        QStringLiteral("*"),
        [&](const QString &path, const DeletePoint &, const bool &result) {
            heard.append(result ? path : QString());
            calls.release();
        },
        DeletePoint::Done);
    tree.list->addElementToList(QStringLiteral("a"), 1, false);
    tree.list->addElementToList(QStringLiteral("b"), 2, false);
    QVERIFY(tree.list->removeElementFromList(QStringLiteral("a")));
    QVERIFY(!tree.list->hasElement(QStringLiteral("a")));
    QVERIFY(!tree.list->removeElementFromList(QStringLiteral("a")));
    QVERIFY(calls.tryAcquire(1, 20000));
    QCOMPARE(heard, QStringList{QStringLiteral("list.a")});
    tree.settle();
    QCOMPARE(tree.text(), QStringLiteral("b"));
    QVERIFY(tree.list->removeElementFromList(QStringLiteral("b")));
    tree.settle();
    QCOMPARE(tree.text(), QString());
}

void HierarchyListPatternTest::renames()
{
    ListInTree tree;
    for (int i = 0; i < 3; ++i)
        QVERIFY(tree.list->addElementToList(QStringLiteral("a"), i, true));
    tree.settle();
    QCOMPARE(tree.text(), QStringLiteral("a;a1;a2"));
    QCOMPARE(tree.value(QStringLiteral("list.a2")), QVariant(2));
}

void HierarchyListPatternTest::refusesEmptyNames()
{
    ListInTree tree;
    const TestSupport::LogCapture log;
    QVERIFY(!tree.list->addElementToList(QString(), 1, true));
    QVERIFY(!tree.list->removeElementFromList(QString()));
    QCOMPARE(
        log.lines(),
        (QStringList{QStringLiteral("WARNING HierarchyListPattern::addElementToList() adding elements with "
                                    "empty name is not supported"),
                     QStringLiteral("WARNING HierarchyListPattern::removeElementFromList() removing "
                                    "elements without name is not supported")}));
    tree.settle();
    QVERIFY(!tree.list->hasValue());
}

void HierarchyListPatternTest::failedAddition()
{
    // A list that takes no children: the failure shows in the log alone.
    class FullList : public HierarchyListPattern
    {
    public:
        using HierarchyListPattern::HierarchyListPattern;
        bool addChild(const std::shared_ptr<HierarchyNode> &, quint64 *) override { return false; }
    };
    AttributeTree tree;
    const auto list = MakeNode<FullList>(&tree.pool, QStringLiteral("full"));
    tree.root->addChild(list);
    const TestSupport::LogCapture log;
    QVERIFY(list->addElementToList(QStringLiteral("a"), 1, false));
    QCOMPARE(
        log.lines(),
        QStringList{QStringLiteral(
            "WARNING HierarchyListPattern::addElementToList() failed to add list entry a to the list full")});
}

void HierarchyListPatternTest::removalAndAdditionAtOnce()
{
    ListInTree tree;
    for (int round = 0; round < 200; ++round) {
        tree.list->addElementToList(QStringLiteral("a"), round, false);
        tree.list->removeElementFromList(QStringLiteral("a"));
    }
    tree.list->addElementToList(QStringLiteral("a"), QStringLiteral("last"), false);
    tree.settle();
    QCOMPARE(tree.text(), QStringLiteral("a"));
    QCOMPARE(tree.value(QStringLiteral("list.a")), QVariant(QStringLiteral("last")));
}

void HierarchyListPatternTest::foreignUpdateIsAPlainOne()
{
    ListInTree tree;
    tree.list->addElementToList(QStringLiteral("a"), 1, false);
    tree.settle();
    tree.pool.startUpdateTask(tree.list, QStringLiteral("a"), UpdatePoint::Done)->wait();
    QCOMPARE(tree.text(), QStringLiteral("a"));
    tree.pool.startUpdateTask(tree.list, QStringLiteral("other"), UpdatePoint::Done)->wait();
    QCOMPARE(tree.text(), QStringLiteral("other"));
    tree.list->addElementToList(QStringLiteral("b"), 1, false);
    tree.settle();
    QCOMPARE(tree.text(), QStringLiteral("a;b"));
    // Also where it brings back a text that was the list's own.
    const QVariant own = tree.value(QStringLiteral("list"));
    tree.list->addElementToList(QStringLiteral("c"), 1, false);
    tree.settle();
    tree.pool.startUpdateTask(tree.list, own, UpdatePoint::Done)->wait();
    QCOMPARE(tree.text(), QStringLiteral("a;b"));
}

void HierarchyListPatternTest::everyChangeIsToldWithItsText()
{
    constexpr int additions = 10000;
    ListInTree tree;
    QSemaphore calls;
    std::atomic<int> wrong{0};
    const auto handle = tree.notifications.registerUpdateHandler(
        QStringLiteral("list"),
        [&](const QString &, const UpdatePoint &, const UpdateResult &result, const QVariant &,
            const QVariant &text) {
            if (result != UpdateResult::Ok || !text.toString().startsWith(QStringLiteral("n0")))
                ++wrong;
            calls.release();
        },
        UpdatePoint::All);
    for (int i = 0; i < additions; ++i)
        tree.list->addElementToList(QStringLiteral("n%1").arg(i), i, false);
    QVERIFY(calls.tryAcquire(3 * additions, 60000));
    QCOMPARE(wrong.load(), 0);
    tree.settle();
    QCOMPARE(tree.text(), tree.joined());
    QCOMPARE(tree.list->getElements().size(), additions);
}

void HierarchyListPatternTest::settlesUnderThreads()
{
    constexpr int threadCount = 4;
    constexpr int changes = 500;
    ListInTree tree;
    std::atomic<int> additions{0};
    std::atomic<int> removals{0};
    std::vector<std::unique_ptr<QThread>> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back(QThread::create([&, thread] {
            std::minstd_rand random(thread + 1);
            for (int change = 0; change < changes; ++change) {
                // Renaming additions of one name by all threads: each must get a name of its own.
                if (random() % 3 != 0) {
                    additions += tree.list->addElementToList(QStringLiteral("n"), change, true) ? 1 : 0;
                } else {
                    const QStringList names = tree.list->getElements();
                    if (!names.isEmpty())
                        removals
                            += tree.list->removeElementFromList(names.at(random() % names.size())) ? 1 : 0;
                }
            }
        }));
        threads.back()->start();
    }
    for (const auto &thread : threads)
        QVERIFY(thread->wait(60000));
    tree.settle();
    QCOMPARE(tree.list->getElements().size(), additions - removals);
    QCOMPARE(tree.text(), tree.joined());
}

QTEST_GUILESS_MAIN(HierarchyListPatternTest)

#include "HierarchyListPatternTest.moc"
