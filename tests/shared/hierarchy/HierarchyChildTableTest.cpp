#include "HierarchyTree.h"

#include <shared/hierarchy/utils/HierarchyChildTable.h>

#include <QtTest>

#include <random>
#include <support/Literals.h>

using Shared::Hierarchy::utils::HierarchyChildTable;
using namespace HierarchyTree;

class HierarchyChildTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesWithAList_data()
    {
        QTest::addColumn<int>("differentIds");
        QTest::newRow("searched one by one") << 6;
        QTest::newRow("around the first index") << 14;
        QTest::newRow("indexed") << 500;
    }

    // Random additions and removals, compared to the simplest thing that does the same.
    void agreesWithAList()
    {
        QFETCH(int, differentIds);
        std::mt19937 random(1);
        HierarchyChildTable table;
        QStringList model;
        for (int step = 0; step < 4000; ++step) {
            const QString id = "node%1"_s.arg(random() % uint(differentIds));
            const int place = model.indexOf(id);
            const auto found = table.find(id);
            QCOMPARE(found != nullptr, place >= 0);
            QCOMPARE(table.position(id), place < 0 ? ~quint64(0) : quint64(place));
            if (place < 0) {
                table.append(id, make(id));
                model.append(id);
            } else if (random() % 3 != 0) {
                QCOMPARE((*found)->getId(), id);
                QCOMPARE(table.take(id)->getId(), id);
                model.removeAt(place);
            }
            QCOMPARE(table.size(), quint64(model.size()));
            if (!model.isEmpty()) {
                const int index = int(random() % uint(model.size()));
                QCOMPARE((*table.at(quint64(index)))->getId(), model.at(index));
            }
            QVERIFY(!table.at(quint64(model.size())));
        }
        QStringList order;
        table.forEach([&order](const NodePointer &node) { order.append(node->getId()); });
        QCOMPARE(order, model);
        QCOMPARE(idsOf(table.takeAll()), model);
        QCOMPARE(table.size(), quint64(0));
        QVERIFY(!table.find("node1"_s));
    }
};

QTEST_GUILESS_MAIN(HierarchyChildTableTest)
#include "HierarchyChildTableTest.moc"
