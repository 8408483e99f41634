#include <appconfig/attributes/AttributeReference.h>
#include <appconfig/validation/AttributeValidationInterface.h>
#include <notification/utils/MakeNode.h>
#include <shared/localization/LocalizationInterfaceProvider.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QtTest>

#include <support/Literals.h>

using namespace Tessellum::AppConfig;
using namespace Tessellum::AppConfig::Attributes;
using Tessellum::Notification::utils::MakeNode;

namespace {

class AnyValueIsFine : public Validation::AttributeValidationInterface
{
public:
    AnyValueIsFine()
        : AttributeValidationInterface("any"_s)
    { }
    QString getValidationId() const override { return getId(); }
    Validation::ValidationResult validate(const std::shared_ptr<Tessellum::Core::CoreLocalizationInterface> &,
                                          QVariant &) override
    {
        return Validation::ValidationResult::Valid;
    }
};

Attribute::Details detailsOf(const QVariant &value, quint32 access)
{
    Attribute::Details details;
    details.value = value;
    details.access = access;
    return details;
}

} // namespace

class AttributeTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void accessGrantsReadsAndWrites()
    {
        QVariant value;
        for (quint32 access = 0; access <= 3; ++access) {
            const bool mayRead = access & AttributeAccess::Read;
            const bool mayWrite = access & AttributeAccess::Write;
            const auto attribute = MakeNode<Attribute>("a", detailsOf(1, access));
            QCOMPARE(attribute->getAccess(), access);
            QCOMPARE(attribute->hasValue(), mayRead);
            QCOMPARE(attribute->setValue(2), mayWrite);
            value.clear();
            QCOMPARE(attribute->getValue(value, 0), mayRead);
            QCOMPARE(value, mayRead ? QVariant(mayWrite ? 2 : 1) : QVariant());
        }
        const auto interior = MakeNode<Attribute>("a");
        QCOMPARE(interior->getAccess(), quint32(3));
        QVERIFY(!interior->hasValue());
        QVERIFY(interior->getValue(value, 0));
        QVERIFY(!value.isValid());
    }

    void functionsCarryTheValue()
    {
        auto details = detailsOf(10, 3);
        details.reader = [](const QVariant &stored, QVariant &out) {
            out = stored.toInt() + 1;
            return true;
        };
        details.writer = [](QVariant &stored, const QVariant &in) {
            stored = in.toInt() * 2;
            return in.toInt() >= 0;
        };
        const auto attribute = MakeNode<Attribute>("a"_s, details);
        QVariant value;
        QVERIFY(attribute->getValue(value, QMetaType::QString));
        QCOMPARE(value, QVariant("11"_s));
        QVERIFY(attribute->setValue(4));
        QVERIFY(attribute->getValue(value, 0));
        QCOMPARE(value, QVariant(9));
        QVERIFY(!attribute->setValue(-1));
    }

    void functionsThatThrow()
    {
        auto details = detailsOf(1, 3);
        details.reader = [](const QVariant &, QVariant &) -> bool { throw std::bad_function_call(); };
        details.writer = [](QVariant &, const QVariant &) -> bool { throw 1; };
        const auto attribute = MakeNode<Attribute>("a"_s, details);
        QVariant value;
        QVERIFY(!attribute->getValue(value, 0));
        QVERIFY(!attribute->hasValue());
        QVERIFY(!attribute->setValue(2));
        QVERIFY(!attribute->isLocked());
    }

    void referenceReadsUnderItsLocalization()
    {
        const QLocale locale("de_DE"_s);
        auto german = std::make_shared<Tessellum::TessellumLocalizationInterfaceProvider>(locale);
        const auto plain = std::make_shared<Shared::Localization::LocalizationInterfaceProvider>(locale);
        const auto attribute = MakeNode<Attribute>("a"_s, "1,5"_s);
        const std::weak_ptr<const Attribute> readable = attribute;
        const AttributeReference reference(
            readable, std::weak_ptr<Shared::Localization::LocalizationInterface>(german));

        QVariant value;
        QVERIFY(reference.getValue(value, QMetaType::Double));
        QCOMPARE(value, QVariant(1.5));
        // Only a registry of the core counts, and only while it lives.
        QVERIFY(
            !AttributeReference(readable, std::weak_ptr<Shared::Localization::LocalizationInterface>(plain))
                 .getValue(value, QMetaType::Double));
        german.reset();
        QVERIFY(!reference.getValue(value, QMetaType::Double));
        QVERIFY(reference.getValue(value, 0));
        QCOMPARE(value, QVariant("1,5"));
    }

    void referenceOfADeadAttribute()
    {
        auto attribute = MakeNode<Attribute>("a"_s, 1);
        AttributeReference reference(std::weak_ptr<Attribute>(attribute), {});
        QVERIFY(reference.setValue(2));
        QVERIFY(reference.markForDeletion());
        QVERIFY(reference.isDeleteFlagSet());
        QVERIFY(reference.hasValue()); // on its way out, yet readable

        attribute.reset();
        QTRY_COMPARE(reference.getId(), QString());
        QVariant value;
        QVERIFY(reference.isDeleteFlagSet());
        QVERIFY(reference.markForDeletion());
        QVERIFY(!reference.hasValue());
        QVERIFY(!reference.getValue(value, 0));
        QVERIFY(!reference.setValue(3));
        QCOMPARE(reference.getPath(), QString());
        QVERIFY(!reference.addValidation(MakeNode<AnyValueIsFine>()));
    }

    void readOnlyReference()
    {
        const auto attribute = MakeNode<Attribute>("a"_s, 1);
        AttributeReference reference(std::weak_ptr<const Attribute>(attribute), {});
        QVERIFY(!reference.setValue(2));
        QVariant value;
        QVERIFY(attribute->getValue(value, 0));
        QCOMPARE(value, QVariant(1));
        QVERIFY(!reference.markForDeletion());
        QVERIFY(!attribute->isDeleteFlagSet());
        // Validations are no part of what it protects.
        QVERIFY(reference.addValidation(MakeNode<AnyValueIsFine>()));
        QVERIFY(attribute->hasValidation("any"_s));
        QVERIFY(reference.removeValidation("any"_s));
        attribute->markForDeletion();
        QVERIFY(reference.markForDeletion());
    }
};

QTEST_GUILESS_MAIN(AttributeTest)

#include "AttributeTest.moc"
