#include <notification/ExaminerRegistration.h>
#include <notification/utils/NotificationProvider.h>
#include <notification/utils/NotifyExaminers.h>

#include <QtTest>

#include <random>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <support/Threads.h>
#include <vector>

using namespace Tessellum::Notification;
using utils::NotificationProvider;
using utils::NotifyExaminers;
using utils::WrappedNotificationHandle;
using Registration = ExaminerRegistration<UpdatePoint>;

namespace {

constexpr int ForTask = 1;
constexpr int Exact = 2;

std::shared_ptr<WrappedNotificationHandle> MakeHandle(const QString &path)
{
    return std::make_shared<WrappedNotificationHandle>(
        std::make_shared<utils::NotificationHandle<UpdateHandler>>(path, UpdateHandler()));
}

} // namespace

class ExaminerRegistrationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setNotificationPoolRunning(true); }
    void searchOrder()
    {
        Registration registration;
        const QList<QPair<QString, UpdatePoint>> places{
            {"a.b"_s, UpdatePoint::Check}, {"a.b"_s, UpdatePoint::Done},  {"a.b"_s, UpdatePoint::All},
            {"*"_s, UpdatePoint::Done},    {"*b"_s, UpdatePoint::All},    {"a.*"_s, UpdatePoint::Done},
            {"a.?"_s, UpdatePoint::Done},  {"a.c*"_s, UpdatePoint::Done}, {"a.b?"_s, UpdatePoint::Done}};
        std::vector<std::shared_ptr<WrappedNotificationHandle>> handles;
        for (auto place = places.rbegin(); place != places.rend(); ++place) {
            handles.push_back(MakeHandle(place->first));
            QCOMPARE(registration.registerEventHandler(handles.back(), place->second), 1);
        }
        QStringList found;
        const auto examiners = registration.getExaminers("a.b"_s, UpdatePoint::Done, ForTask);
        for (const auto &examiner : examiners)
            found.append(examiner->getConnections().first()->getHandle()->getPath());
        QCOMPARE(found, QStringList({"a.b"_s, "a.b"_s, "*"_s, "*b"_s, "a.*"_s, "a.?"_s}));
        QCOMPARE(examiners[0]->getConnections().first()->getHandle()->getUuid(), handles[7]->getUuid());
        QCOMPARE(registration.getExaminers("b", UpdatePoint::Check, ForTask).size(), 1);
        QCOMPARE(registration.getExaminers("a.*", UpdatePoint::Done, Exact).size(), 1);
        QVERIFY(registration.getExaminers("a.d", UpdatePoint::Done, Exact).isEmpty());
    }

    void unregisteringLeavesNothing()
    {
        Registration registration;
        Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::debug);
        const TestSupport::LogCapture log;
        auto handle = MakeHandle("a.*"_s);
        auto gone = MakeHandle("b"_s);
        const QString uuid = handle->getUuid();
        const QString goneUuid = gone->getUuid();
        registration.registerEventHandler(handle, UpdatePoint::Done);
        registration.registerEventHandler(gone, UpdatePoint::Done);
        gone.reset();
        QVERIFY(!registration.unregisterEventHandler("unknown"_s));
        QVERIFY(registration.unregisterEventHandler(uuid));
        QVERIFY(!registration.unregisterEventHandler(uuid));
        QVERIFY(!handle->isValid());
        QVERIFY(registration.unregisterEventHandler(goneUuid));
        handle->invalidate();
        QCOMPARE(registration.registerEventHandler(handle, UpdatePoint::Done), 0);
        QCOMPARE(registration.registerEventHandler(nullptr, UpdatePoint::Done), 0);
        QVERIFY(registration.isEmpty());
        QVERIFY(registration.getExaminers("a.*"_s, UpdatePoint::Done, Exact).isEmpty());
        Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::log);
        QCOMPARE(log.lines(),
                 QStringList({"DEBUG ExaminerConnection::~ExaminerConnection() uuid="_s + uuid,
                              "DEBUG ExaminerConnection::~ExaminerConnection() uuid=<already deleted>"_s}));
    }

    void pathsOfEveryKindAreFound()
    {
        // Against a plain walk over everything that is registered.
        std::mt19937 random(7);
        const auto word = [&random](const char *letters, unsigned count) {
            QString text;
            for (auto length = random() % 6; length > 0; --length)
                text += QLatin1Char(letters[random() % count]);
            return text;
        };
        Registration registration;
        std::vector<std::shared_ptr<WrappedNotificationHandle>> handles;
        for (int i = 0; i < 400; ++i) {
            handles.push_back(MakeHandle(word("ab.*?", 5)));
            registration.registerEventHandler(handles.back(), UpdatePoint::Done);
            if (i % 3 == 0)
                registration.unregisterEventHandler(handles[random() % handles.size()]->getUuid());
        }
        for (int i = 0; i < 300; ++i) {
            const QString path = word("ab.", 3);
            QStringList found;
            const auto examiners = registration.getExaminers(path, UpdatePoint::Done, ForTask);
            for (const auto &examiner : examiners) {
                const auto connections = examiner->getConnections();
                for (const auto &connection : connections)
                    found.append(connection->getHandle()->getUuid());
            }
            QStringList expected;
            for (const auto &handle : handles) {
                const QRegExp pattern(handle->getPath(), Qt::CaseSensitive, QRegExp::Wildcard);
                if (handle->isValid() && pattern.exactMatch(path))
                    expected.append(handle->getUuid());
            }
            found.sort();
            expected.sort();
            QCOMPARE(found, expected);
        }
    }

    void anythingAtOnce()
    {
        NotificationProvider provider;
        const auto registration = provider.getUpdateRegistration();
        const QStringList paths{"a.b"_s, "a.*"_s, "?.b"_s, "a.b.c"_s};
        std::vector<NotificationProvider::HandlePointer> kept[4];
        TestSupport::InThreads(4, [&](int seed) {
            std::mt19937 random{unsigned(seed)};
            for (int i = 0; i < 1000; ++i) {
                auto handle = provider.registerUpdateHandler(paths[int(random() % 4)], UpdateHandler(),
                                                             UpdatePoint::Done);
                if (random() % 40 == 0)
                    kept[seed].push_back(std::move(handle));
                else if (random() % 2 == 0)
                    provider.unregisterUpdateHandler(handle->getUuid());
                NotifyExaminers(registration, "a.b"_s, UpdatePoint::Done, UpdateResult::Ok, QVariant(),
                                QVariant());
            }
        });

        QHash<QString, int> expected;
        for (const auto &handles : kept) {
            for (const auto &handle : handles)
                ++expected[handle->getPath()];
        }
        for (const QString &path : paths) {
            const auto examiners = registration->getExaminers(path, UpdatePoint::Done, Exact);
            QCOMPARE(examiners.size(), 1); // one for the place, whoever came first
            QCOMPARE(examiners.first()->getConnections().size(), expected[path]);
        }
        for (auto &handles : kept)
            handles.clear();
        QVERIFY(registration->isEmpty());
        setNotificationPoolRunning(false);
    }
};

QTEST_GUILESS_MAIN(ExaminerRegistrationTest)
#include "ExaminerRegistrationTest.moc"
