#include <appconfig/validation/AttributeValidationInterface.h>

#include <QSemaphore>
#include <QtTest>

#include <support/AttributeTree.h>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <support/Notes.h>

using namespace TestSupport;
using Reports = QList<UpdateObserver::ResultType>;
using Validation::ValidationResult;

namespace {

class FunctionValidation : public Validation::AttributeValidationInterface
{
public:
    using Function = std::function<ValidationResult(QVariant &)>;

    FunctionValidation(const QString &validationId, const Function &function)
        : AttributeValidationInterface(validationId)
        , judge(function)
    { }
    QString getValidationId() const override { return getId(); }
    ValidationResult validate(const std::shared_ptr<Tessellum::Core::CoreLocalizationInterface> &,
                              QVariant &value) override
    {
        return judge(value);
    }

private:
    const Function judge;
};

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

class AttributeUpdateTaskTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
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
};

QTEST_GUILESS_MAIN(AttributeUpdateTaskTest)

#include "AttributeUpdateTaskTest.moc"
