#include <notification/RepositoryHierarchyThreadProvider.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QtTest>

#include <thread>

using Shared::Hierarchy::HierarchyNodeInstance;
using Tessellum::Core::RepositoryHierarchyThreadProvider;
using Tessellum::Notification::utils::MakeNode;

namespace {

std::atomic<int> alive = 0;
std::atomic<bool> diedElsewhere = false;

class CountedNode : public HierarchyNodeInstance
{
public:
    explicit CountedNode(std::shared_ptr<CountedNode> nextNode)
        : next(std::move(nextNode))
    {
        ++alive;
    }
    ~CountedNode() override
    {
        if (QThread::currentThread() != thread())
            diedElsewhere = true;
        if (next) // dies one round later
            std::thread([moved = std::move(next)] {}).join();
        --alive;
    }

private:
    std::shared_ptr<CountedNode> next;
};

} // namespace

class RepositoryHierarchyThreadProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nodesLiveAndDieOnTheEventThread()
    {
        std::shared_ptr<CountedNode> chain;
        for (int i = 0; i < 50; ++i)
            chain = MakeNode<CountedNode>(std::move(chain));
        QCOMPARE(chain->thread(), provider->getThread());
        QVERIFY(provider->getThread()->isRunning());
        QCOMPARE(alive, 50);
        chain.reset();
        QVERIFY(provider->barrier());
        QCOMPARE(alive, 0);
        QVERIFY(!diedElsewhere);
    }

    void barrierOnTheEventThread()
    {
        QSemaphore passed;
        const auto node = MakeNode<HierarchyNodeInstance>();
        QMetaObject::invokeMethod(
            node.get(),
            [&] {
                provider->barrier(); // would wait for itself
                if (!provider->quitAndJoin())
                    passed.release();
            },
            Qt::QueuedConnection);
        QVERIFY(passed.tryAcquire(1, 30000));
    }

    void startsAgainAfterTheEnd()
    {
        QThread *const thread = provider->getThread();
        for (int i = 0; i < 20; ++i) {
            const auto node = MakeNode<CountedNode>(nullptr);
            QVERIFY(provider->quitAndJoin());
            QVERIFY(!thread->isRunning());
            QVERIFY(provider->barrier()); // nothing to wait for
            QCOMPARE(provider->getThread(), thread);
            QVERIFY(thread->isRunning());
        }
        QVERIFY(provider->barrier());
        QCOMPARE(alive, 0);
        QVERIFY(provider->quitAndJoin());
    }

private:
    RepositoryHierarchyThreadProvider *const provider = RepositoryHierarchyThreadProvider::getInstance();
};

QTEST_GUILESS_MAIN(RepositoryHierarchyThreadProviderTest)
#include "RepositoryHierarchyThreadProviderTest.moc"
