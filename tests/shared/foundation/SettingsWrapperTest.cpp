#include <shared/foundation/SettingsWrapper.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>

#include <QtTest>

using Shared::Hierarchy::HierarchyNode;
using Shared::Hierarchy::HierarchyNodeInstance;
using Wrapper = Shared::SettingsWrapper::SettingsWrapper;

class SettingsWrapperTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAndWrites();
    void withoutRoot();
    void missingReader();

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
        const NodePointer section = makeNode(QStringLiteral("section"));
        root->addChild(section);
        section->addChild(makeNode(QStringLiteral("key")));
        return root;
    }

    const QString section = QStringLiteral("section");
    const QString key = QStringLiteral("key");
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

void SettingsWrapperTest::readsAndWrites()
{
    Wrapper settings(nullptr, makeTree(), reader, writer);
    QCOMPARE(settings.getPathFromSectionAndKey(section, key), QStringLiteral("section.key"));
    QVERIFY(settings.hasEntry(section, key));
    QVERIFY(!settings.hasEntry(section, section));
    QVERIFY(settings.getRootNode().lock());

    QVERIFY(settings.writeSetting<int>(section, key, 7));
    QCOMPARE(settings.readSetting<int>(section, key, 1), 7);
    QCOMPARE(settings.readSetting<QString>(section, key, QString()), QStringLiteral("7"));
    QCOMPARE(settings.readSetting<bool>(section, key, false), true);
    // A value that does not convert is no missing value.
    QVERIFY(settings.writeSetting<QString>(section, key, QStringLiteral("x")));
    QCOMPARE(settings.readSetting<int>(section, key, 1), 0);
    QCOMPARE(settings.readSetting<int>(section, section, 1), 1);
    QVERIFY(!settings.writeSetting<int>(section, section, 1));
}

void SettingsWrapperTest::withoutRoot()
{
    Wrapper settings(nullptr, nullptr, {}, {});
    QVERIFY(!settings.hasEntry(section, key));
    QCOMPARE(settings.readSetting<int>(section, key, 3), 3);
    QVERIFY(!settings.writeSetting<bool>(section, key, true));
    QVERIFY(settings.getRootNode().expired());
}

void SettingsWrapperTest::missingReader()
{
    const Wrapper settings(nullptr, makeTree(), {}, {});
    QVERIFY_EXCEPTION_THROWN(settings.readSetting<int>(section, key, 3), std::bad_function_call);
}

QTEST_GUILESS_MAIN(SettingsWrapperTest)
#include "SettingsWrapperTest.moc"
