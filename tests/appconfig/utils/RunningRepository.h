#pragma once

#include <appconfig/attributes/Attribute.h>
#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/backends/Backend.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/RepositoryHierarchyThreadProvider.h>
#include <notification/utils/MakeNode.h>

#include <support/Literals.h>

/*!
 * One run of the configuration repository: started by the constructor, with its internal tree linked in if
 * that is wanted, and stopped by the destructor.
 */
class RunningRepository
{
public:
    using Provider = Tessellum::AppConfig::utils::RepositoryProvider;
    using Node = Shared::Hierarchy::HierarchyNode;
    using PlainNode = Shared::Hierarchy::HierarchyNodeInstance;

    explicit RunningRepository(bool linksInternalTree = true)
    {
        std::shared_ptr<Node> noKeeper;
        provider().setRepositoryActive(noKeeper, false);
        if (!linksInternalTree)
            return;
        const auto root = provider().getInternalRoot();
        for (const auto &[names, list] : provider().getListPatterns()) {
            if (!root->hasChild(names.first))
                root->addChild(Tessellum::Notification::utils::MakeNode<PlainNode>(names.first));
            root->getChildById(names.first)->addChild(list);
        }
        provider().addRootLink("internal"_s, root, true);
    }
    ~RunningRepository() { stop(); }

    void stop()
    {
        std::shared_ptr<Node> keeper;
        provider().setRepositoryActive(keeper, true);
        keeper.reset();
        Tessellum::Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
    }

    static Provider &provider() { return *Provider::getInstance(); }

    // The value at \a path, invalid where there is no attribute.
    static QVariant value(const QString &path)
    {
        const auto attribute = std::dynamic_pointer_cast<Tessellum::AppConfig::Attributes::Attribute>(
            provider().getRoot()->findChildByRelativePath(path));
        QVariant value;
        return attribute && attribute->getValue(value, QMetaType::UnknownType) ? value : QVariant();
    }

    static void setAutomaticCreate(bool enabled)
    {
        Tessellum::AppConfig::Attributes::AttributeCreateData data;
        data.name = "repository.automatic_create_through_updates"_s;
        data.details.value = enabled;
        Tessellum::AppConfig::Attributes::CreateAttributeInHierarchy(provider().getInternalRoot(), data);
    }
};

/*! A backend of the test with functions in place of a source; each may be left empty. */
class TestBackend : public Tessellum::AppConfig::Backends::Backend
{
public:
    using AttributesCreateData = Tessellum::AppConfig::Attributes::AttributesCreateData;
    using Backend::Backend;

    static void registerType(const QString &type, const std::function<void(TestBackend &)> &prepare = {})
    {
        RunningRepository::provider().registerProduct(
            type, [prepare](const Tessellum::AppConfig::Backends::BackendCreateData &data) {
                const auto backend = Tessellum::Notification::utils::MakeNode<TestBackend>(data);
                if (prepare)
                    prepare(*backend);
                return backend;
            });
    }

    QStringList getTypeKeys() const override { return {"test"_s}; }
    bool saveAttributes() override { return !onSave || onSave(); }
    bool loadAttributesCreateDataInternal(AttributesCreateData &out,
                                          const Tessellum::Notification::CreatePoint &) override
    {
        out = values;
        return !onLoad || onLoad(out);
    }

    AttributesCreateData values;
    std::function<bool(AttributesCreateData &)> onLoad;
    std::function<bool()> onSave;
};
