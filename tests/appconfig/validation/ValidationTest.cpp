#include <appconfig/attributes/Attribute.h>
#include <appconfig/validation/LimitsValidation.h>
#include <appconfig/validation/ValidationContainer.h>
#include <notification/utils/MakeNode.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QtConcurrent>
#include <QtTest>

#include <cmath>
#include <support/Literals.h>

using namespace Tessellum::AppConfig::Validation;
using Shared::Hierarchy::HierarchyNodeInstance;
using Tessellum::AppConfig::Attributes::Attribute;
using Tessellum::Notification::utils::MakeNode;

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
        const auto valueOf = [&](const char *id) {
            QVariant value;
            const auto attribute = std::dynamic_pointer_cast<Attribute>(validation->getChildById(id));
            return attribute && attribute->getValue(value, 0) ? value : QVariant();
        };
        QCOMPARE(valueOf("Maximum"), QVariant("5"));
        QCOMPARE(valueOf("Minimum"), QVariant::fromValue(static_cast<signed char>(-128)));
        QCOMPARE(valueOf("Clipping"), QVariant(false));
        QCOMPARE(validation->getNumberOfChildren(), quint64(3));
        QVariant value(-128);
        QCOMPARE(validation->validate(nullptr, value), ValidationResult::Valid);
    }

    void threadsThatAddAtOnceShareOneList()
    {
        for (int round = 0; round < 50; ++round) {
            utils::ValidationContainer container;
            QSemaphore ready;
            QSemaphore go;
            QVector<QFuture<bool>> adding;
            QThreadPool pool;
            pool.setMaxThreadCount(4);
            for (int i = 0; i < 4; ++i) {
                const auto validation = MakeNode<LimitsValidation<int>>(QString::number(i));
                adding.append(QtConcurrent::run(&pool, [&, validation] {
                    ready.release();
                    go.acquire();
                    return container.addValidation(validation);
                }));
            }
            ready.acquire(4);
            go.release(4);
            for (auto &future : adding)
                QVERIFY(future.result());
            QCOMPARE(container.getValidations().size(), 4);
        }
    }
};

QTEST_GUILESS_MAIN(ValidationTest)
#include "ValidationTest.moc"
