#include <appconfig/utils/RunningRepository.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <appconfig/validation/LimitsValidation.h>
#include <notification/utils/MakeNode.h>

#include <QtTest>

#include <support/Literals.h>

using namespace Tessellum::AppConfig;
using namespace Tessellum::AppConfig::Validation;
using Tessellum::Notification::utils::MakeNode;

namespace {

template <class T>
bool makes(const QString &type)
{
    const auto made = AttributeValidationRepository::getInstance()->createValidation(type, "id"_s);
    return made && made->getValidationId() == QLatin1String("id")
        && std::dynamic_pointer_cast<LimitsValidation<T>>(made);
}

} // namespace

class AttributeValidationRepositoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createsByTypeKey()
    {
        for (const QString key : {"limits", "limit"}) {
            QVERIFY(makes<double>(key));
            QVERIFY(makes<signed char>(key + "_signed_char"));
            QVERIFY(makes<int>(key + "_int"));
        }
        QCOMPARE(repository->getRegisteredProductIdentifier().size(), 14);
        QVERIFY(!repository->createValidation("Limits"_s, "id"_s));
    }

    void typeKeysInAnyCaseIfSoSet()
    {
        Attributes::AttributeCreateData setting;
        setting.name = "repository.names_ignore_case"_s;
        const auto root = RunningRepository::provider().getInternalRoot();
        for (bool ignoring : {true, false}) {
            setting.details.value = ignoring;
            QVERIFY(Attributes::CreateAttributeInHierarchy(root, setting));
            QCOMPARE(makes<int>("LIMIT_Int"_s), ignoring);
        }
    }

    void registersAnIdOnce()
    {
        const auto first = node("once");
        QVERIFY(!repository->registerValidation(nullptr) && !repository->registerValidation(node("")));
        QVERIFY(repository->registerValidation(first));
        QVERIFY(!repository->registerValidation(node("once")));
        QCOMPARE(repository->getValidation("once"_s), first);
        QVERIFY(repository->registerValidation(node("a")));
        QCOMPARE(repository->getValidationIds(), QStringList({"a", "once"}));
        QVERIFY(repository->unregisterValidation("a"_s) && !repository->unregisterValidation("a"_s));
        QVERIFY(repository->unregisterValidation("once"_s));
    }

    void forgetsWhatBackendsRegistered()
    {
        RunningRepository running;
        const auto backend = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>("backend"_s);
        QVERIFY(repository->registerValidation(node("kept")));
        QVERIFY(repository->registerBackendValidation(node("file"), backend));
        QVERIFY(!repository->registerBackendValidation(node("kept"), backend));
        running.stop();
        QCOMPARE(repository->getValidationIds(), QStringList("kept"));
        const auto other = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>("other"_s);
        const auto fresh = node("file");
        QVERIFY(repository->registerBackendValidation(node("file"), backend));
        QVERIFY(!repository->registerBackendValidation(fresh, other));
        backend->setDeleteFlag();
        QVERIFY(repository->registerBackendValidation(fresh, other));
        QCOMPARE(repository->getValidation("file"), fresh);
        repository->unregisterBackendValidations();
        QVERIFY(repository->unregisterValidation("kept"_s));
    }

    void listsTheNamesWhileTheRepositoryRuns()
    {
        RunningRepository running;
        const auto list = RunningRepository::provider().getListPattern("names", "validations");
        QVERIFY(list);
        const auto validation = node("listed");
        QVERIFY(repository->registerValidation(validation));
        QVERIFY(!repository->registerValidation(validation));
        QCOMPARE(list->getElements(), QStringList("listed"));
        // The entry tells the place, also when the validation is hung somewhere later.
        const auto parent = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>("p"_s);
        QVERIFY(parent->addChild(validation, nullptr));
        QVariant place;
        QVERIFY(list->getElement("listed"_s)->getValue(place, QMetaType::QString));
        QCOMPARE(place, QVariant("p.listed"));
        running.stop();
        QVERIFY(repository->unregisterValidation("listed"_s));
    }

private:
    static std::shared_ptr<AttributeValidationInterface> node(const char *id)
    {
        return MakeNode<LimitsValidation<int>>(QString(id));
    }

    AttributeValidationRepository *repository = AttributeValidationRepository::getInstance();
};

QTEST_GUILESS_MAIN(AttributeValidationRepositoryTest)
#include "AttributeValidationRepositoryTest.moc"
