#include <appconfig/attributes/AttributeReference.h>
#include <appconfig/utils/ValueConversion.h>
#include <shared/localization/LocalizationInterfaceProvider.h>
#include <shared/localization/TessellumLocalizationInterfaceProvider.h>

#include <QSemaphore>
#include <QtTest>

#include <support/AttributeTree.h>
#include <support/FunctionValidation.h>

using namespace TestSupport;
using Reports = QList<UpdateObserver::ResultType>;
using Validation::ValidationResult;

namespace {

Attribute::Details detailsOf(const QVariant &value, quint32 access)
{
    Attribute::Details details;
    details.value = value;
    details.access = access;
    return details;
}

bool validate(const std::shared_ptr<Attribute> &attribute, const QString &id,
              const FunctionValidation::Function &function)
{
    return attribute->addValidation(MakeNode<FunctionValidation>(id, function));
}

Reports update(AttributeTree &tree, const std::weak_ptr<Attribute> &attribute, const QVariant &value)
{
    AttributeUpdateTask task(tree.notifications.getUpdateRegistration(), attribute, value, UpdatePoint::Done);
    return RunAndRecord(task);
}

const Reports applied{{UpdatePoint::Check, UpdateResult::Ok},
                      {UpdatePoint::Apply, UpdateResult::Ok},
                      {UpdatePoint::Done, UpdateResult::Ok}};
const Reports refused{{UpdatePoint::Check, UpdateResult::CheckFailed}};

} // namespace

/*! Values, references and updates. */
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
        QVERIFY(!reference.addValidation(anyValueIsFine));
    }

    void readOnlyReference()
    {
        const auto attribute = MakeNode<Attribute>("a"_s, 1);
        AttributeReference reference(std::weak_ptr<const Attribute>(attribute), {});
        QVERIFY(!reference.setValue(2));
        QVERIFY(!reference.markForDeletion() && !attribute->isDeleteFlagSet());
        // Validations are no part of what it protects.
        QVERIFY(reference.addValidation(anyValueIsFine));
        QVERIFY(attribute->hasValidation("any"_s));
        QVERIFY(reference.removeValidation("any"_s));
        attribute->markForDeletion();
        QVERIFY(reference.markForDeletion());
    }

    void textsAreReadUnderEachLocale()
    {
        const auto converted = [](const QStringList &locales, QVariant value, int metaType) {
            std::shared_ptr<Tessellum::TessellumLocalizationInterfaceProvider> localization;
            for (const QString &locale : locales) {
                if (localization)
                    localization->registerAdditionalLocale(QLocale(locale));
                else
                    localization = std::make_shared<Tessellum::TessellumLocalizationInterfaceProvider>(
                        QLocale(locale));
            }
            return Tessellum::AppConfig::utils::ConvertValue(value, localization, metaType) ? value
                                                                                            : QVariant();
        };
        const auto number = [&](const QStringList &locales, const char *text) {
            return converted(locales, QString(text), QMetaType::Double);
        };
        QCOMPARE(number({"de_DE"}, "1,5"), QVariant(1.5));
        QCOMPARE(number({"de_DE", "en_US"}, "1.5"), QVariant(1.5));
        QCOMPARE(number({"en_US"}, "1,000"), QVariant()); // a group separator is no number
        QCOMPARE(number({"en_US", "de_DE"}, "1,000"), QVariant(1.0));
        QCOMPARE(number({"de_DE", "en_US"}, "1.234,5"), QVariant());
        QCOMPARE(number({}, "1,5"), QVariant());
        QCOMPARE(converted({"de_DE"}, "ab", QMetaType::QByteArray), QVariant(QByteArray("ab")));
        QCOMPARE(converted({"de_DE"}, 5, QMetaType::QString), QVariant("5"));
        QCOMPARE(converted({}, "1,000", QMetaType::QString), QVariant("1,000"));
        QCOMPARE(converted({"de_DE"}, "1,000", QMetaType::UnknownType), QVariant());
    }

    void failedWrite()
    {
        AttributeTree tree;
        const auto attribute = tree.add("a"_s, 1);
        attribute->setDetails(AttributeTree::data(QString(), 1, AttributeAccess::Read).details);
        QCOMPARE(update(tree, attribute, 2),
                 (Reports{{UpdatePoint::Check, UpdateResult::Ok},
                          {UpdatePoint::Apply, UpdateResult::Ok},
                          {UpdatePoint::Failed, UpdateResult::ApplyFailed},
                          {UpdatePoint::Done, UpdateResult::ApplyFailed}}));
        QCOMPARE(tree.value("a"_s), QVariant(1));
    }

    void nodeGoneInTheMiddle()
    {
        AttributeTree tree;
        auto attribute = tree.add("a"_s, 1);
        validate(attribute, "end", [&](QVariant &) {
            attribute->markForDeletion();
            attribute.reset();
            return ValidationResult::Valid;
        });
        QCOMPARE(update(tree, attribute, 2),
                 (Reports{{UpdatePoint::Check, UpdateResult::Ok},
                          {UpdatePoint::Apply, UpdateResult::NodeGone},
                          {UpdatePoint::Failed, UpdateResult::NodeGone},
                          {UpdatePoint::Done, UpdateResult::NodeGone}}));
    }

    void validationsRunInTheirOrder()
    {
        AttributeTree tree;
        const auto attribute = tree.add("a"_s, 1);
        validate(attribute, "clip", [](QVariant &value) {
            value = qMin(value.toInt(), 10);
            return ValidationResult::Adjusted;
        });
        validate(attribute, "even", [](QVariant &value) {
            return value.toInt() == 10 ? ValidationResult::Failed : ValidationResult::Valid;
        });
        const QString adjusted
            = "LOG AttributeUpdateTask::runUpdate() pre check: adjusted update value to: %1"_s;
        {
            const LogCapture log;
            QCOMPARE(update(tree, attribute, 11), refused);
            QCOMPARE(tree.value("a"_s), QVariant(1));
            QCOMPARE(log.lines(),
                     (QStringList{adjusted.arg("QVariant(int, 10)"_s),
                                  "WARNING AttributeUpdateTask::runUpdate() pre check: failed validation"_s,
                                  "WARNING AttributeUpdateTask::runUpdate() update failed for "
                                  "attribute: a pre check even failed"_s}));
        }
        const LogCapture log;
        QCOMPARE(update(tree, attribute, 5), applied);
        QCOMPARE(tree.value("a"_s), QVariant(5));
        QCOMPARE(log.lines(), QStringList{adjusted.arg("QVariant(int, 5)"_s)});
    }

    void refusalsByValidations()
    {
        const QPair<int, QString> refusals[] = {{3, "pre check: incompatible update value received"},
                                                {17, "unknown validation result received: 17"}};
        for (const auto &[result, line] : refusals) {
            AttributeTree tree;
            const auto attribute = tree.add("a", 1);
            validate(attribute, "v", [number = result](QVariant &) { return ValidationResult(number); });
            const LogCapture log;
            QCOMPARE(update(tree, attribute, 2), refused);
            QCOMPARE(log.lines().first(), "WARNING AttributeUpdateTask::runUpdate() " + line);
            QCOMPARE(tree.value("a"), QVariant(1));
        }
    }

    void tellsWhatStandsThere()
    {
        AttributeTree tree;
        const auto attribute = tree.add("a"_s, 0);
        auto details = AttributeTree::data(QString(), "old"_s).details;
        details.writer = [](QVariant &stored, const QVariant &in) {
            stored = in.toInt(); // takes a text, keeps a number
            return true;
        };
        attribute->setDetails(details);

        Notes notes;
        const auto handle = tree.notifications.registerUpdateHandler(
            "a",
            [&](const QString &, const UpdatePoint &point, const UpdateResult &, const QVariant &oldValue,
                const QVariant &newValue) {
                notes.add("%1 %2 %3 %4"_s.arg(int(point))
                              .arg(oldValue.toString(), newValue.toString(), newValue.typeName()));
            },
            UpdatePoint::All);
        QCOMPARE(update(tree, attribute, "5"_s), applied);
        QCOMPARE(notes.sorted(3), QStringList({"1 old 5 QString", "2 old 5 QString", "8 old 5 int"}));
    }

    void tellsNothingOffTheTree()
    {
        // A node that is just being taken off has no path but its name, under which others may be known.
        AttributeTree tree;
        const auto parent = tree.add("p"_s, QVariant());
        const auto attribute = MakeNode<Attribute>("a"_s, 1);
        parent->addChild(attribute);
        QSemaphore wrong;
        QSemaphore marker;
        const auto handle = tree.notifications.registerUpdateHandler(
            "*"_s,
            [&](const QString &path, const UpdatePoint &, const UpdateResult &, const QVariant &,
                const QVariant &) { (path == "m"_s ? marker : wrong).release(); },
            UpdatePoint::Done);
        AttributeUpdateTask task(tree.notifications.getUpdateRegistration(), attribute, 2, UpdatePoint::Done);
        attribute->setParent({}, true);
        task.run();
        update(tree, tree.add("m"_s, 1), 2);
        QVERIFY(marker.tryAcquire(1, 20000));
        QCOMPARE(wrong.available(), 0);
    }

private:
    const std::shared_ptr<FunctionValidation> anyValueIsFine
        = MakeNode<FunctionValidation>("any"_s, [](QVariant &) { return FunctionValidation::Result::Valid; });
};

QTEST_GUILESS_MAIN(AttributeTest)
#include "AttributeTest.moc"
