#include <appconfig/attributes/Attribute.h>
#include <appconfig/utils/RunningRepository.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <appconfig/validation/LimitsValidation.h>
#include <appconfig/validation/ValidationContainer.h>
#include <notification/utils/MakeNode.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QtTest>

#include <cmath>
#include <support/Literals.h>
#include <support/Threads.h>

using namespace Tessellum::AppConfig::Validation;
using Shared::Hierarchy::HierarchyNodeInstance;
using Tessellum::AppConfig::Attributes::Attribute;
using Tessellum::Notification::utils::MakeNode;
using namespace Tessellum::AppConfig;

namespace {

template <class T>
std::shared_ptr<LimitsValidation<T>> limits(const QVariant &minimum, const QVariant &maximum, bool clipping)
{
    const auto validation = MakeNode<LimitsValidation<T>>("limits"_s);
    const bool made = validation->addChild(MakeNode<Attribute>("Minimum", minimum), nullptr)
        && validation->addChild(MakeNode<Attribute>("Maximum", maximum), nullptr)
        && validation->addChild(MakeNode<Attribute>("Clipping", clipping), nullptr);
    return made ? validation : nullptr;
}

// The value after the validation, or an invalid one if it was not adjusted.
template <class T>
QVariant adjusted(const std::shared_ptr<LimitsValidation<T>> &validation, QVariant value)
{
    return validation->validate(nullptr, value) == ValidationResult::Adjusted ? value : QVariant();
}

template <class T>
bool makes(const QString &type)
{
    const auto made = AttributeValidationRepository::getInstance()->createValidation(type, "id"_s);
    return made && made->getValidationId() == QLatin1String("id")
        && std::dynamic_pointer_cast<LimitsValidation<T>>(made);
}

} // namespace

class ValidationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void judgesWithoutChangingTheValue()
    {
        const auto range = limits<double>(-1, 10, false);
        // What is no number counts as 0.
        for (const QVariant &value : QVariantList{-1, 10.0, "10", "many", QVariant()}) {
            QVariant judged = value;
            QCOMPARE(range->validate(nullptr, judged), ValidationResult::Valid);
            QCOMPARE(judged, value);
            QCOMPARE(judged.userType(), value.userType());
        }
        for (QVariant value : QVariantList{-1.5, 11LL, "12", std::nan("")})
            QCOMPARE(range->validate(nullptr, value), ValidationResult::Failed);
    }

    void clippingGivesTheTypeAndTheLimits()
    {
        const auto range = limits<int>("0", 10, true);
        QCOMPARE(adjusted(range, 5), QVariant(5)); // also in range
        QCOMPARE(adjusted(range, "7"), QVariant(7));
        QCOMPARE(adjusted(range, "7").userType(), int(QMetaType::Int));
        QCOMPARE(adjusted(range, -3), QVariant(0));
        QCOMPARE(adjusted(range, 11), QVariant(10));
        QCOMPARE(adjusted(limits<int>(4, 4, true), 99), QVariant(4));
        QCOMPARE(adjusted(limits<int>(9, 1, true), 5), QVariant(9)); // the lower limit wins
        QCOMPARE(adjusted(limits<double>(2, 3, true), std::nan("")), QVariant(2.0));
    }

    void limitsAreCutToTheType()
    {
        const auto limitOf = [](const auto &validation) { return adjusted(validation, 0); };
        QCOMPARE(limitOf(limits<signed char>(300, 127, true)).value<signed char>(),
                 static_cast<signed char>(44));
        QCOMPARE(limitOf(limits<long long>(1e30, 2e30, true)),
                 QVariant(std::numeric_limits<long long>::max()));
        QCOMPARE(limitOf(limits<long long>(std::nan(""), 5, true)), QVariant(0LL));
        QCOMPARE(limitOf(limits<float>(0.1, 9, true)).value<float>(), 0.1f);
        const auto whole = MakeNode<LimitsValidation<short>>("s"); // without limits of its own
        QVERIFY(whole->addChild(MakeNode<Attribute>("Clipping", "true"), nullptr));
        for (const short limit : {short(32767), short(-32768)})
            QCOMPARE(adjusted(whole, int(limit)).value<short>(), limit);
    }

    void textsAreReadUnderTheLocale()
    {
        const auto german = std::make_shared<Tessellum::TessellumLocalizationInterfaceProvider>(
            QLocale(QLocale::German, QLocale::Germany));
        QVariant value("12,5"_s);
        QCOMPARE(limits<double>(12, 13, false)->validate(german, value), ValidationResult::Valid);
        QCOMPARE(limits<double>(12, 13, false)->validate(nullptr, value), ValidationResult::Failed);
        QCOMPARE(value, QVariant("12,5"_s));
    }

    void refusesOtherChildren()
    {
        const auto validation = MakeNode<LimitsValidation<double>>("v"_s);
        QVERIFY(!validation->addChild(nullptr, nullptr));
        QVERIFY(!validation->addChild(MakeNode<HierarchyNodeInstance>("Minimum"), nullptr));
        QVERIFY(!validation->addChild(MakeNode<Attribute>("minimum", 1), nullptr));
        QVERIFY(!validation->addChild(MakeNode<Attribute>("Minimum", "few"), nullptr));
        QVERIFY(!validation->addChild(MakeNode<Attribute>("Maximum"), nullptr));
        QVERIFY(!MakeNode<Attribute>("Unit", "V")->setParent(validation, false));
        QCOMPARE(validation->getNumberOfChildren(), quint64(0));
        QVERIFY(validation->addChild(MakeNode<Attribute>("Type"), nullptr)); // nothing is read
        QVERIFY(MakeNode<Attribute>("Minimum", 3)->setParent(validation, false));
        QCOMPARE(validation->getNumberOfChildren(), quint64(2));
        QVariant value(2);
        QCOMPARE(validation->validate(nullptr, value), ValidationResult::Failed);
    }

    void parentMakesTheConfigurationVisible()
    {
        const auto parent = MakeNode<HierarchyNodeInstance>();
        const auto validation = MakeNode<LimitsValidation<signed char>>("v"_s);
        QVERIFY(validation->addChild(MakeNode<Attribute>("Maximum", "5"), nullptr));
        QVERIFY(parent->addChild(validation, nullptr));
        const QPair<const char *, QVariant> expected[]
            = {{"Maximum", "5"},
               {"Minimum", QVariant::fromValue(static_cast<signed char>(-128))},
               {"Clipping", false}};
        for (const auto &[id, shown] : expected) {
            QVariant value;
            const auto attribute = std::dynamic_pointer_cast<Attribute>(validation->getChildById(id));
            QVERIFY(attribute && attribute->getValue(value, 0));
            QCOMPARE(value, shown);
        }
    }

    void threadsThatAddAtOnceShareOneList()
    {
        for (int round = 0; round < 50; ++round) {
            Validation::utils::ValidationContainer container;
            std::atomic<int> added{0};
            TestSupport::InThreads(4, [&](int number) {
                added += container.addValidation(MakeNode<LimitsValidation<int>>(QString::number(number)));
            });
            QCOMPARE(added.load(), 4);
            QCOMPARE(container.getValidations().size(), 4);
        }
    }

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

QTEST_GUILESS_MAIN(ValidationTest)
#include "ValidationTest.moc"
