#include <shared/foundation/SettingsWrapper.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QtTest>

#include <support/Literals.h>

using Shared::Hierarchy::HierarchyNode;
using Shared::Hierarchy::HierarchyNodeInstance;
using Wrapper = Shared::SettingsWrapper::SettingsWrapper;

class SettingsWrapperTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAndWrites()
    {
        Wrapper settings(nullptr, makeTree(), reader, writer);
        QCOMPARE(settings.getPathFromSectionAndKey(section, key), "section.key"_s);
        QVERIFY(settings.hasEntry(section, key));
        QVERIFY(!settings.hasEntry(section, section));
        QVERIFY(settings.getRootNode().lock());

        QVERIFY(settings.writeSetting<int>(section, key, 7));
        QCOMPARE(settings.readSetting<int>(section, key, 1), 7);
        QCOMPARE(settings.readSetting<QString>(section, key, QString()), "7"_s);
        QCOMPARE(settings.readSetting<bool>(section, key, false), true);
        // A value that does not convert is no missing value.
        QVERIFY(settings.writeSetting<QString>(section, key, "x"_s));
        QCOMPARE(settings.readSetting<int>(section, key, 1), 0);
        QCOMPARE(settings.readSetting<int>(section, section, 1), 1);
        QVERIFY(!settings.writeSetting<int>(section, section, 1));
    }

    void withoutRoot()
    {
        Wrapper settings(nullptr, nullptr, {}, {});
        QVERIFY(!settings.hasEntry(section, key));
        QCOMPARE(settings.readSetting<int>(section, key, 3), 3);
        QVERIFY(!settings.writeSetting<bool>(section, key, true));
        QVERIFY(settings.getRootNode().expired());
    }

private:
    using NodePointer = std::shared_ptr<HierarchyNode>;
    static NodePointer makeNode(const QString &id)
    {
        return NodePointer(new HierarchyNodeInstance(id), &HierarchyNode::Release);
    }
    // A tree with the setting "section.key".
    static NodePointer makeTree()
    {
        const NodePointer root = makeNode(QString());
        const NodePointer section = makeNode("section"_s);
        root->addChild(section);
        section->addChild(makeNode("key"_s));
        return root;
    }

    const QString section = "section"_s;
    const QString key = "key"_s;
    QVariant stored;
    const Wrapper::Reader reader = [this](const std::shared_ptr<const HierarchyNode> &node, QVariant &value) {
        value = stored;
        return node != nullptr;
    };
    const Wrapper::Writer writer = [this](const NodePointer &node, const QVariant &value) {
        stored = value;
        return node->getId() == key;
    };
};

QTEST_GUILESS_MAIN(SettingsWrapperTest)
#include "SettingsWrapperTest.moc"
