#include <appconfig/attributes/AttributeReference.h>
#include <appconfig/validation/AttributeValidationInterface.h>
#include <notification/utils/MakeNode.h>
#include <shared/localization/LocalizationInterfaceProvider.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QSequentialIterable>
#include <QtTest>

using namespace Tessellum::AppConfig;
using namespace Tessellum::AppConfig::Attributes;
using Tessellum::Notification::utils::MakeNode;

namespace {

class AnyValueIsFine : public Validation::AttributeValidationInterface
{
public:
    AnyValueIsFine()
        : AttributeValidationInterface(QStringLiteral("any"))
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
    void accessGrantsReadsAndWrites_data();
    void accessGrantsReadsAndWrites();
    void functionsCarryTheValue();
    void functionsThatThrow();
    void newDetailsReplaceTheWholeState();
    void conversionOnRead();
    void referenceReadsUnderItsLocalization();
    void referenceOfADeadAttribute();
    void readOnlyReference();
    void payloadsAreMetaTypes();
};

void AttributeTest::accessGrantsReadsAndWrites_data()
{
    QTest::addColumn<quint32>("access");
    for (quint32 access = 0; access <= 3; ++access)
        QTest::addRow("access %u", access) << access;
}

void AttributeTest::accessGrantsReadsAndWrites()
{
    QFETCH(quint32, access);
    const bool mayRead = access & AttributeAccess::Read;
    const bool mayWrite = access & AttributeAccess::Write;
    const auto attribute = MakeNode<Attribute>(QStringLiteral("a"), detailsOf(1, access));

    QCOMPARE(attribute->getAccess(), access);
    QCOMPARE(attribute->hasValue(), mayRead);
    QCOMPARE(attribute->setValue(2), mayWrite);
    QVariant value;
    QCOMPARE(attribute->getValue(value, 0), mayRead);
    QCOMPARE(value, mayRead ? QVariant(mayWrite ? 2 : 1) : QVariant());

    QCOMPARE(AttributeCreateData().details.access, quint32(AttributeAccess::Read));
    const auto interior = MakeNode<Attribute>(QStringLiteral("a"));
    QCOMPARE(interior->getAccess(), quint32(3));
    QVERIFY(!interior->hasValue());
    QVERIFY(interior->getValue(value, 0));
    QVERIFY(!value.isValid());
}

void AttributeTest::functionsCarryTheValue()
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
    const auto attribute = MakeNode<Attribute>(QStringLiteral("a"), details);
    QVariant value;
    QVERIFY(attribute->getValue(value, QMetaType::QString));
    QCOMPARE(value, QVariant(QStringLiteral("11")));
    QVERIFY(attribute->setValue(4));
    QVERIFY(attribute->getValue(value, 0));
    QCOMPARE(value, QVariant(9));
    QVERIFY(!attribute->setValue(-1));
}

void AttributeTest::functionsThatThrow()
{
    auto details = detailsOf(1, 3);
    details.reader = [](const QVariant &, QVariant &) -> bool { throw std::bad_function_call(); };
    details.writer = [](QVariant &, const QVariant &) -> bool { throw 1; };
    const auto attribute = MakeNode<Attribute>(QStringLiteral("a"), details);
    QVariant value;
    QVERIFY(!attribute->getValue(value, 0));
    QVERIFY(!attribute->hasValue());
    QVERIFY(!attribute->setValue(2));
    QVERIFY(!attribute->isLocked());
}

void AttributeTest::newDetailsReplaceTheWholeState()
{
    auto details = detailsOf(1, 1);
    details.reader = [](const QVariant &, QVariant &) { return false; };
    const auto attribute = MakeNode<Attribute>(QStringLiteral("a"), details);
    attribute->addValidation(MakeNode<AnyValueIsFine>());
    attribute->setDetails(detailsOf(2, 3));
    QVariant value;
    QVERIFY(attribute->getValue(value, 0));
    QCOMPARE(value, QVariant(2));
    QVERIFY(attribute->setValue(3));
    QCOMPARE(attribute->getValidationIds(), QStringList{QStringLiteral("any")});
}

void AttributeTest::conversionOnRead()
{
    const auto german = std::make_shared<Tessellum::TessellumLocalizationInterfaceProvider>(
        QLocale(QStringLiteral("de_DE")));
    const auto attribute = MakeNode<Attribute>(QStringLiteral("a"), QStringLiteral("1,5"));
    QVariant value;
    QVERIFY(!attribute->getValue(value, QMetaType::Double));
    QVERIFY(attribute->getLocalizedValue(value, german, QMetaType::Double));
    QCOMPARE(value, QVariant(1.5));
    QVERIFY(attribute->getLocalizedValue(value, german, 0));
    QCOMPARE(value, QVariant(QStringLiteral("1,5")));
}

void AttributeTest::referenceReadsUnderItsLocalization()
{
    const QLocale locale(QStringLiteral("de_DE"));
    auto german = std::make_shared<Tessellum::TessellumLocalizationInterfaceProvider>(locale);
    const auto plain = std::make_shared<Shared::Localization::LocalizationInterfaceProvider>(locale);
    const auto attribute = MakeNode<Attribute>(QStringLiteral("a"), QStringLiteral("1,5"));
    const std::weak_ptr<const Attribute> readable = attribute;
    const AttributeReference reference(readable,
                                       std::weak_ptr<Shared::Localization::LocalizationInterface>(german));

    QVariant value;
    QVERIFY(reference.getValue(value, QMetaType::Double));
    QCOMPARE(value, QVariant(1.5));
    // Only a registry of the core counts, and only while it lives.
    QVERIFY(!AttributeReference(readable, std::weak_ptr<Shared::Localization::LocalizationInterface>(plain))
                 .getValue(value, QMetaType::Double));
    german.reset();
    QVERIFY(!reference.getValue(value, QMetaType::Double));
    QVERIFY(reference.getValue(value, 0));
}

void AttributeTest::referenceOfADeadAttribute()
{
    auto attribute = MakeNode<Attribute>(QStringLiteral("a"), 1);
    AttributeReference reference(std::weak_ptr<Attribute>(attribute), {});
    QVERIFY(!reference.isDeleteFlagSet());
    QVERIFY(reference.setValue(2));
    QVERIFY(reference.markForDeletion());
    QVERIFY(reference.isDeleteFlagSet());
    QVERIFY(reference.hasValue()); // on its way out, yet readable

    attribute.reset();
    QTRY_COMPARE(reference.getId(), QString());
    QVariant value;
    QVERIFY(reference.isDeleteFlagSet());
    QVERIFY(reference.markForDeletion());
    QVERIFY(!reference.isLocked());
    QVERIFY(!reference.hasValue());
    QVERIFY(!reference.getValue(value, 0));
    QVERIFY(!reference.setValue(3));
    QCOMPARE(reference.getPath(), QString());
    QCOMPARE(reference.getAccess(), quint32(0));
    QVERIFY(!reference.addValidation(MakeNode<AnyValueIsFine>()));
    QVERIFY(!reference.removeValidation(QStringLiteral("any")));
    QVERIFY(reference.getValidations().isEmpty());
}

void AttributeTest::readOnlyReference()
{
    const auto attribute = MakeNode<Attribute>(QStringLiteral("a"), 1);
    AttributeReference reference(std::weak_ptr<const Attribute>(attribute), {});
    QVERIFY(!reference.setValue(2));
    QVariant value;
    QVERIFY(attribute->getValue(value, 0));
    QCOMPARE(value, QVariant(1));
    QVERIFY(!reference.markForDeletion());
    QVERIFY(!attribute->isDeleteFlagSet());
    // Validations are no part of what it protects.
    QVERIFY(reference.addValidation(MakeNode<AnyValueIsFine>()));
    QVERIFY(attribute->hasValidation(QStringLiteral("any")));
    QVERIFY(reference.removeValidation(QStringLiteral("any")));
    attribute->markForDeletion();
    QVERIFY(reference.markForDeletion());
}

void AttributeTest::payloadsAreMetaTypes()
{
    const QVariant list = QVariant::fromValue(AttributesCreateData{AttributeCreateData()});
    QCOMPARE(list.typeName(), "Tessellum::AppConfig::Attributes::AttributesCreateData");
    QCOMPARE(QVariant::fromValue(AttributeCreateData()).typeName(),
             "Tessellum::AppConfig::Attributes::AttributeCreateData");
    QVERIFY(list.canConvert<QVariantList>());
    QCOMPARE(list.value<QSequentialIterable>().size(), 1);
}

QTEST_GUILESS_MAIN(AttributeTest)

#include "AttributeTest.moc"
