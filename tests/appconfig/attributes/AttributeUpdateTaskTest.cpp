#include <appconfig/validation/AttributeValidationInterface.h>

#include <QSemaphore>
#include <QtTest>

#include <support/AttributeTree.h>
#include <support/LogCapture.h>

using namespace Tessellum::AppConfig;
using namespace Tessellum::AppConfig::Attributes;
using namespace Tessellum::Notification;
using Reports = QList<UpdateObserver::ResultType>;
using Tessellum::Notification::utils::MakeNode;
using TestSupport::AttributeTree;
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

Reports update(AttributeTree &tree, const std::weak_ptr<Attribute> &attribute, const QVariant &value)
{
    AttributeUpdateTask task(tree.notifications.getUpdateRegistration(), attribute, value, UpdatePoint::Done);
    return TestSupport::RunAndRecord(task);
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
    void reportsInOrder();
    void failedWrite();
    void nodeGone();
    void nodeGoneInTheMiddle();
    void validationsRunInTheirOrder();
    void refusalsByValidations_data();
    void refusalsByValidations();
    void tellsWhatStandsThere();
    void tellsNothingOffTheTree();
    void exceptionInAValidation();
};

void AttributeUpdateTaskTest::reportsInOrder()
{
    AttributeTree tree;
    const auto attribute = tree.add(QStringLiteral("a"), 1);
    QCOMPARE(update(tree, attribute, 2), applied);
    QCOMPARE(tree.value(QStringLiteral("a")), QVariant(2));
    const auto observer = tree.pool.startUpdateTask(attribute, 3, UpdatePoint::Done);
    QCOMPARE(*observer->waitForResult(), applied.last());
    QCOMPARE(tree.value(QStringLiteral("a")), QVariant(3));
}

void AttributeUpdateTaskTest::failedWrite()
{
    AttributeTree tree;
    const auto attribute = tree.add(QStringLiteral("a"), 1);
    attribute->setDetails(AttributeTree::data(QString(), 1, AttributeAccess::Read).details);
    QCOMPARE(update(tree, attribute, 2),
             (Reports{{UpdatePoint::Check, UpdateResult::Ok},
                      {UpdatePoint::Apply, UpdateResult::Ok},
                      {UpdatePoint::Failed, UpdateResult::ApplyFailed},
                      {UpdatePoint::Done, UpdateResult::ApplyFailed}}));
    QCOMPARE(tree.value(QStringLiteral("a")), QVariant(1));
}

void AttributeUpdateTaskTest::nodeGone()
{
    AttributeTree tree;
    const Reports gone{{UpdatePoint::Check, UpdateResult::NodeGone}};
    const auto held = tree.add(QStringLiteral("a"), 1);
    held->markForDeletion();
    QCOMPARE(update(tree, held, 2), gone);
    QCOMPARE(update(tree, {}, 2), gone);
    AttributeUpdateTask noAttribute(nullptr, tree.root, 2, UpdatePoint::Done);
    QCOMPARE(TestSupport::RunAndRecord(noAttribute), gone);
}

void AttributeUpdateTaskTest::nodeGoneInTheMiddle()
{
    AttributeTree tree;
    auto attribute = tree.add(QStringLiteral("a"), 1);
    attribute->addValidation(MakeNode<FunctionValidation>(QStringLiteral("end"), [&](QVariant &) {
        attribute->markForDeletion();
        attribute.reset();
        return ValidationResult::Valid;
    }));
    QCOMPARE(update(tree, attribute, 2),
             (Reports{{UpdatePoint::Check, UpdateResult::Ok},
                      {UpdatePoint::Apply, UpdateResult::NodeGone},
                      {UpdatePoint::Failed, UpdateResult::NodeGone},
                      {UpdatePoint::Done, UpdateResult::NodeGone}}));
}

void AttributeUpdateTaskTest::validationsRunInTheirOrder()
{
    AttributeTree tree;
    const auto attribute = tree.add(QStringLiteral("a"), 1);
    attribute->addValidation(MakeNode<FunctionValidation>(QStringLiteral("clip"), [](QVariant &value) {
        value = qMin(value.toInt(), 10);
        return ValidationResult::Adjusted;
    }));
    attribute->addValidation(MakeNode<FunctionValidation>(QStringLiteral("even"), [](QVariant &value) {
        return value.toInt() == 10 ? ValidationResult::Failed : ValidationResult::Valid;
    }));
    const QString adjusted
        = QStringLiteral("LOG AttributeUpdateTask::runUpdate() pre check: adjusted update value to: %1");
    {
        const TestSupport::LogCapture log;
        QCOMPARE(update(tree, attribute, 11), refused);
        QCOMPARE(tree.value(QStringLiteral("a")), QVariant(1));
        QCOMPARE(log.lines(),
                 (QStringList{
                     adjusted.arg(QStringLiteral("QVariant(int, 10)")),
                     QStringLiteral("WARNING AttributeUpdateTask::runUpdate() pre check: failed validation"),
                     QStringLiteral("WARNING AttributeUpdateTask::runUpdate() update failed for "
                                    "attribute: a pre check even failed")}));
    }
    const TestSupport::LogCapture log;
    QCOMPARE(update(tree, attribute, 5), applied);
    QCOMPARE(tree.value(QStringLiteral("a")), QVariant(5));
    QCOMPARE(log.lines(), QStringList{adjusted.arg(QStringLiteral("QVariant(int, 5)"))});
}

void AttributeUpdateTaskTest::refusalsByValidations_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("line");
    QTest::newRow("incompatible") << 3 << QStringLiteral("pre check: incompatible update value received");
    QTest::newRow("unknown") << 17 << QStringLiteral("unknown validation result received: 17");
}

void AttributeUpdateTaskTest::refusalsByValidations()
{
    QFETCH(int, result);
    QFETCH(QString, line);
    AttributeTree tree;
    const auto attribute = tree.add(QStringLiteral("a"), 1);
    attribute->addValidation(MakeNode<FunctionValidation>(
        QStringLiteral("v"), [result](QVariant &) { return ValidationResult(result); }));
    const TestSupport::LogCapture log;
    QCOMPARE(update(tree, attribute, 2), refused);
    QCOMPARE(log.lines().first(), QStringLiteral("WARNING AttributeUpdateTask::runUpdate() ") + line);
    QCOMPARE(tree.value(QStringLiteral("a")), QVariant(1));
}

void AttributeUpdateTaskTest::tellsWhatStandsThere()
{
    AttributeTree tree;
    const auto attribute = tree.add(QStringLiteral("a"), 0);
    auto details = AttributeTree::data(QString(), QStringLiteral("old")).details;
    details.writer = [](QVariant &stored, const QVariant &in) {
        stored = in.toInt(); // takes a text, keeps a number
        return true;
    };
    attribute->setDetails(details);

    QMutex mutex;
    QMap<UpdatePoint, QVariantList> heard;
    QSemaphore calls;
    const auto handle = tree.notifications.registerUpdateHandler(
        QStringLiteral("a"),
        [&](const QString &, const UpdatePoint &point, const UpdateResult &, const QVariant &oldValue,
            const QVariant &newValue) {
            const QMutexLocker locker(&mutex);
            heard.insert(point, {oldValue, newValue});
            calls.release();
        },
        UpdatePoint::All);
    QCOMPARE(update(tree, attribute, QStringLiteral("5")), applied);
    QVERIFY(calls.tryAcquire(3, 20000));
    const QMutexLocker locker(&mutex);
    QCOMPARE(heard.value(UpdatePoint::Apply), (QVariantList{QStringLiteral("old"), QStringLiteral("5")}));
    QCOMPARE(heard.value(UpdatePoint::Done).at(1).userType(), int(QMetaType::Int));
    QCOMPARE(heard.value(UpdatePoint::Done), (QVariantList{QStringLiteral("old"), 5}));
}

void AttributeUpdateTaskTest::tellsNothingOffTheTree()
{
    // A node that is just being taken off has no path but its name, under which others may be known.
    AttributeTree tree;
    const auto parent = tree.add(QStringLiteral("p"), QVariant());
    const auto attribute = MakeNode<Attribute>(QStringLiteral("a"), 1);
    parent->addChild(attribute);
    QSemaphore wrong;
    QSemaphore marker;
    const auto handle = tree.notifications.registerUpdateHandler(
        QStringLiteral("*"),
        [&](const QString &path, const UpdatePoint &, const UpdateResult &, const QVariant &,
            const QVariant &) { (path == QStringLiteral("m") ? marker : wrong).release(); },
        UpdatePoint::Done);
    AttributeUpdateTask task(tree.notifications.getUpdateRegistration(), attribute, 2, UpdatePoint::Done);
    attribute->setParent({}, true);
    task.run();
    update(tree, tree.add(QStringLiteral("m"), 1), 2);
    QVERIFY(marker.tryAcquire(1, 20000));
    QCOMPARE(wrong.available(), 0);
}

void AttributeUpdateTaskTest::exceptionInAValidation()
{
    AttributeTree tree;
    const auto attribute = tree.add(QStringLiteral("a"), 1);
    attribute->addValidation(MakeNode<FunctionValidation>(
        QStringLiteral("v"), [](QVariant &) -> ValidationResult { throw std::bad_alloc(); }));
    const TestSupport::LogCapture log;
    const auto observer = tree.pool.startUpdateTask(attribute, 2, UpdatePoint::Done);
    QVERIFY(!observer->waitForResult());
    QCOMPARE(tree.value(QStringLiteral("a")), QVariant(1));
    QCOMPARE(log.lines(), QStringList{QStringLiteral("CRITICAL UpdateTask::run() catched exception")});
}

QTEST_GUILESS_MAIN(AttributeUpdateTaskTest)

#include "AttributeUpdateTaskTest.moc"
