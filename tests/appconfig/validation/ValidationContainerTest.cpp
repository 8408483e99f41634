#include <appconfig/validation/LimitsValidation.h>
#include <appconfig/validation/ValidationContainer.h>
#include <notification/utils/MakeNode.h>

#include <QtConcurrent>
#include <QtTest>

using namespace Tessellum::AppConfig::Validation;
using Tessellum::Notification::utils::MakeNode;

class ValidationContainerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheOrderOfAdding();
    void threadsThatAddAtOnceShareOneList();
};

void ValidationContainerTest::keepsTheOrderOfAdding()
{
    utils::ValidationContainer container;
    QVERIFY(container.getValidations().isEmpty());
    QVERIFY(!container.hasValidation(QString()) && !container.removeValidation(QString()));
    QVERIFY(!container.addValidation(nullptr));
    QStringList ids;
    for (int i = 20; i > 0; --i) {
        ids.append(QString::number(i));
        QVERIFY(container.addValidation(MakeNode<LimitsValidation<int>>(ids.last())));
    }
    const auto first = container.getValidations().first();
    QVERIFY(!container.addValidation(MakeNode<LimitsValidation<int>>(ids.first())));
    QCOMPARE(container.getValidations().first(), first);

    QVERIFY(container.removeValidation(QStringLiteral("7")));
    QVERIFY(!container.removeValidation(QStringLiteral("7")));
    ids.removeAll(QStringLiteral("7"));
    QCOMPARE(container.getValidationIds(), ids);
    QVERIFY(container.hasValidation(QStringLiteral("8")) && !container.hasValidation(QStringLiteral("7")));
    QStringList listed;
    for (const auto &validation : container.getValidations())
        listed.append(validation->getValidationId());
    QCOMPARE(listed, ids);
}

void ValidationContainerTest::threadsThatAddAtOnceShareOneList()
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

QTEST_GUILESS_MAIN(ValidationContainerTest)
#include "ValidationContainerTest.moc"
