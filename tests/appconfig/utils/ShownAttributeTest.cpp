#include "RunningRepository.h"

#include <appconfig/attributes/Attribute.h>
#include <appconfig/utils/ShownAttribute.h>

#include <QtTest>

#include <memory>
#include <thread>
#include <vector>

using Tessellum::AppConfig::Attributes::Attribute;
using Tessellum::AppConfig::utils::ShownAttribute;

class ShownAttributeTest : public QObject
{
    Q_OBJECT

private:
    // Invalid where there is no attribute.
    static QVariant shown(const QString &path)
    {
        const auto attribute = std::dynamic_pointer_cast<Attribute>(
            RunningRepository::provider().getRoot()->findChildByRelativePath(path));
        QVariant value;
        if (attribute)
            attribute->getValue(value, QMetaType::UnknownType);
        return value;
    }

private Q_SLOTS:
    void theLastValueHoldsUntilTheLastHolderGoes()
    {
        const RunningRepository run;
        const QString path = QStringLiteral("a.peers.one");
        auto first = std::make_unique<ShownAttribute>(path, 1);
        QTRY_COMPARE(shown(path), QVariant(1));
        auto second = std::make_unique<ShownAttribute>(path, 2);
        QTRY_COMPARE(shown(path), QVariant(2));
        first.reset();
        second->show(3);
        QTRY_COMPARE(shown(path), QVariant(3));
        second.reset();
        QTRY_VERIFY(!shown(path).isValid());
    }

    void nothingStaysBehindWhateverTheOrderOfTasks()
    {
        const RunningRepository run;
        const QString kept = QStringLiteral("a.kept");
        const ShownAttribute last(kept, 0);
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&kept, thread] {
                for (int round = 0; round < 200; ++round) {
                    const ShownAttribute gone(QStringLiteral("a.gone%1").arg(round % 3), thread);
                    const ShownAttribute also(kept, round);
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        last.show(QStringLiteral("end"));
        QTRY_COMPARE(shown(kept), QVariant(QStringLiteral("end")));
        for (int number = 0; number < 3; ++number)
            QTRY_VERIFY(!shown(QStringLiteral("a.gone%1").arg(number)).isValid());
    }

    void aStoppedConfigurationShowsNothing()
    {
        const QString path = QStringLiteral("a.stopped");
        auto early = std::make_unique<ShownAttribute>(path, 1);
        const RunningRepository run;
        early->show(2);
        QTRY_COMPARE(shown(path), QVariant(2));
        early.reset();
        QTRY_VERIFY(!shown(path).isValid());
    }
};

QTEST_GUILESS_MAIN(ShownAttributeTest)
#include "ShownAttributeTest.moc"
