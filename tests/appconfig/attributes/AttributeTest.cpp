#include <appconfig/attributes/AttributeReference.h>
#include <appconfig/utils/ValueConversion.h>
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
            QCOMPARE(attribute->hasValue(), mayRead);
            QCOMPARE(attribute->setValue(2), mayWrite);
            value.clear();
            QCOMPARE(attribute->getValue(value, 0), mayRead);
            QCOMPARE(value, mayRead ? QVariant(mayWrite ? 2 : 1) : QVariant());
        }
        QVERIFY(!MakeNode<Attribute>("a")->hasValue());
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
        using Shared::Localization::LocalizationInterface;
        const QLocale locale("de_DE"_s);
        auto german = std::make_shared<Tessellum::TessellumLocalizationInterfaceProvider>(locale);
        const auto plain = std::make_shared<Shared::Localization::LocalizationInterfaceProvider>(locale);
        const auto attribute = MakeNode<Attribute>("a"_s, "1,5"_s);
        const auto reference = [&attribute](const std::shared_ptr<LocalizationInterface> &localization) {
            return AttributeReference(std::weak_ptr<const Attribute>(attribute),
                                      std::weak_ptr<LocalizationInterface>(localization));
        };
        const auto ofGerman = reference(german);
        QVariant value;
        QVERIFY(ofGerman.getValue(value, QMetaType::Double));
        QCOMPARE(value, QVariant(1.5));
        // Only a registry of the core counts, and only while it lives.
        QVERIFY(!reference(plain).getValue(value, QMetaType::Double));
        german.reset();
        QVERIFY(!ofGerman.getValue(value, QMetaType::Double));
    }

    void referenceOfADeadAttribute()
    {
        auto attribute = MakeNode<Attribute>("a"_s, 1);
        AttributeReference reference(std::weak_ptr<Attribute>(attribute), {});
        QVERIFY(reference.markForDeletion() && reference.isDeleteFlagSet());
        QVERIFY(reference.hasValue()); // on its way out, yet readable

        attribute.reset();
        QTRY_COMPARE(reference.getId(), QString());
        QVariant value;
        QVERIFY(reference.isDeleteFlagSet() && reference.markForDeletion());
        QVERIFY(!reference.hasValue() && !reference.getValue(value, 0) && !reference.setValue(3));
        QCOMPARE(reference.getPath(), QString());
        QVERIFY(!reference.addValidation(MakeNode<AnyValueIsFine>()));
    }

    void readOnlyReference()
    {
        const auto attribute = MakeNode<Attribute>("a"_s, 1);
        AttributeReference reference(std::weak_ptr<const Attribute>(attribute), {});
        QVERIFY(!reference.setValue(2));
        QVERIFY(!reference.markForDeletion() && !attribute->isDeleteFlagSet());
        // Validations are no part of what it protects.
        QVERIFY(reference.addValidation(MakeNode<AnyValueIsFine>()));
        QVERIFY(attribute->hasValidation("any"_s));
        QVERIFY(reference.removeValidation("any"_s));
        attribute->markForDeletion();
        QVERIFY(reference.markForDeletion());
    }

    void textsAreReadUnderEachLocale()
    {
        struct Case
        {
            const char *defaultLocale; // empty: no localization at all
            const char *furtherLocale;
            QVariant value;
            int metaType;
            QVariant expected; // invalid: cannot be converted
        };
        const Case cases[] = {
            {"de_DE", "", "1,5", QMetaType::Double, 1.5},
            {"de_DE", "en_US", "1.5", QMetaType::Double, 1.5},
            {"en_US", "", "1,000", QMetaType::Int, {}}, // a group separator is no number
            {"en_US", "de_DE", "1,000", QMetaType::Int, 1},
            {"de_DE", "en_US", "1.234,5", QMetaType::Double, {}},
            {"de_DE", "", "ab", QMetaType::QByteArray, QByteArray("ab")},
            {"de_DE", "", 5, QMetaType::QString, "5"},
            {"", "", "1,5", QMetaType::Double, {}},
            {"", "", "1,000", QMetaType::QString, "1,000"},
            {"de_DE", "", "1,000", QMetaType::UnknownType, {}},
        };
        for (const Case &each : cases) {
            std::shared_ptr<Tessellum::TessellumLocalizationInterfaceProvider> localization;
            if (*each.defaultLocale)
                localization = std::make_shared<Tessellum::TessellumLocalizationInterfaceProvider>(
                    QLocale(each.defaultLocale));
            if (*each.furtherLocale)
                localization->registerAdditionalLocale(QLocale(each.furtherLocale));
            QVariant value = each.value;
            QCOMPARE(utils::ConvertValue(value, localization, each.metaType), each.expected.isValid());
            if (each.expected.isValid() || localization) {
                const QVariant &expected = each.expected.isValid() ? each.expected : each.value;
                QCOMPARE(value.userType(), expected.userType());
                QCOMPARE(value, expected);
            }
        }
    }
};

QTEST_GUILESS_MAIN(AttributeTest)

#include "AttributeTest.moc"
