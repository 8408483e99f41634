#include <appconfig/utils/RunningRepository.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <appconfig/validation/LimitsValidation.h>
#include <notification/utils/MakeNode.h>

#include <QtTest>

using namespace Tessellum::AppConfig;
using namespace Tessellum::AppConfig::Validation;
using Tessellum::Notification::utils::MakeNode;

namespace {

template <class T>
bool makes(const QString &type)
{
    const auto made
        = AttributeValidationRepository::getInstance()->createValidation(type, QStringLiteral("id"));
    return made && made->getValidationId() == QLatin1String("id")
        && std::dynamic_pointer_cast<LimitsValidation<T>>(made);
}

} // namespace

class AttributeValidationRepositoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createsByTypeKey();
    void typeKeysInAnyCaseIfSoSet();
    void registersAnIdOnce();
    void forgetsWhatBackendsRegistered();
    void listsTheNamesWhileTheRepositoryRuns();

private:
    AttributeValidationRepository *repository = AttributeValidationRepository::getInstance();
};

void AttributeValidationRepositoryTest::createsByTypeKey()
{
    for (const QString key : {"limits", "limit"}) {
        QVERIFY(makes<double>(key));
        QVERIFY(makes<double>(key + "_double"));
        QVERIFY(makes<float>(key + "_float"));
        QVERIFY(makes<signed char>(key + "_signed_char"));
        QVERIFY(makes<short>(key + "_short"));
        QVERIFY(makes<int>(key + "_int"));
        QVERIFY(makes<long long>(key + "_qlonglong"));
    }
    QCOMPARE(repository->getRegisteredProductIdentifier().size(), 14);
    QVERIFY(!repository->createValidation(QStringLiteral("Limits"), QStringLiteral("id")));
    QVERIFY(!repository->createValidation(QString(), QStringLiteral("id")));
}

void AttributeValidationRepositoryTest::typeKeysInAnyCaseIfSoSet()
{
    Attributes::AttributeCreateData setting;
    setting.name = QStringLiteral("repository.names_ignore_case");
    const auto root = RunningRepository::provider().getInternalRoot();
    for (bool ignoring : {true, false}) {
        setting.details.value = ignoring;
        QVERIFY(Attributes::CreateAttributeInHierarchy(root, setting));
        QCOMPARE(makes<int>(QStringLiteral("LIMIT_Int")), ignoring);
    }
}

void AttributeValidationRepositoryTest::registersAnIdOnce()
{
    const auto first = MakeNode<LimitsValidation<int>>(QStringLiteral("once"));
    QVERIFY(!repository->registerValidation(nullptr));
    QVERIFY(!repository->registerValidation(MakeNode<LimitsValidation<int>>(QString())));
    QVERIFY(!repository->getValidation(QStringLiteral("once")));
    QVERIFY(repository->registerValidation(first));
    QVERIFY(!repository->registerValidation(first));
    QVERIFY(!repository->registerValidation(MakeNode<LimitsValidation<int>>(QStringLiteral("once"))));
    QCOMPARE(repository->getValidation(QStringLiteral("once")),
             std::shared_ptr<AttributeValidationInterface>(first));
    QVERIFY(repository->registerValidation(MakeNode<LimitsValidation<int>>(QStringLiteral("a"))));
    QCOMPARE(repository->getValidationIds(), QStringList({"a", "once"}));
    QVERIFY(repository->unregisterValidation(QStringLiteral("a")));
    QVERIFY(!repository->unregisterValidation(QStringLiteral("a")));
    QVERIFY(repository->unregisterValidation(QStringLiteral("once")));
}

void AttributeValidationRepositoryTest::forgetsWhatBackendsRegistered()
{
    const auto node = [](const char *id) { return MakeNode<LimitsValidation<int>>(QString(id)); };
    const auto backend = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>(QStringLiteral("backend"));
    QVERIFY(repository->registerValidation(node("kept")));
    QVERIFY(repository->registerBackendValidation(node("file"), backend));
    QVERIFY(!repository->registerBackendValidation(node("kept"), backend));
    repository->unregisterBackendValidations();
    QCOMPARE(repository->getValidationIds(), QStringList("kept"));
    const auto other = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>(QStringLiteral("other"));
    const auto fresh = node("file");
    QVERIFY(repository->registerBackendValidation(node("file"), backend));
    QVERIFY(!repository->registerBackendValidation(fresh, other));
    backend->setDeleteFlag();
    QVERIFY(repository->registerBackendValidation(fresh, other));
    QCOMPARE(repository->getValidation("file"),
             std::shared_ptr<Validation::AttributeValidationInterface>(fresh));
    repository->unregisterBackendValidations();
    QVERIFY(repository->unregisterValidation(QStringLiteral("kept")));
}

void AttributeValidationRepositoryTest::listsTheNamesWhileTheRepositoryRuns()
{
    RunningRepository running;
    const auto list = RunningRepository::provider().getListPattern("names", "validations");
    QVERIFY(list);
    const auto validation = MakeNode<LimitsValidation<int>>(QStringLiteral("listed"));
    QVERIFY(repository->registerValidation(validation));
    QVERIFY(!repository->registerValidation(validation));
    QCOMPARE(list->getElements(), QStringList("listed"));
    // The entry tells the place, also when the validation is hung somewhere later.
    const auto parent = MakeNode<Shared::Hierarchy::HierarchyNodeInstance>(QStringLiteral("p"));
    QVERIFY(parent->addChild(validation, nullptr));
    QVariant place;
    QVERIFY(list->getElement(QStringLiteral("listed"))->getValue(place, QMetaType::QString));
    QCOMPARE(place, QVariant("p.listed"));
    running.stop();
    QVERIFY(repository->unregisterValidation(QStringLiteral("listed")));
}

QTEST_GUILESS_MAIN(AttributeValidationRepositoryTest)
#include "AttributeValidationRepositoryTest.moc"
