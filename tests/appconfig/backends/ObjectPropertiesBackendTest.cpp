#include "RepositoryFixture.h"

#include <appconfig/backends/ObjectPropertiesBackend.h>
#include <appconfig/backends/utils/ObjectPropertiesToAttributeMapper.h>

#include <QtTest>

#include <thread>

using namespace Tessellum::AppConfig;
using Shared::MetaPropertyWrapperPtr;
using Shared::Logging::LogMessageType;
using Tessellum::Notification::UpdatePoint;

class Widget : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(int level MEMBER level)
    Q_PROPERTY(QString statusTip READ status)
    Q_PROPERTY(bool visible WRITE setVisible)

public:
    QString status() const { return "s"_s; }
    void setVisible(bool value) { visible = value; }

    QString text = "t"_s;
    int level = 1;
    bool visible = false;
};

/*! The properties of an object as attributes. The test's thread is the application's main thread. */
class ObjectPropertiesBackendTest : public QObject
{
    Q_OBJECT

    using Names = QPair<QObject *, QStringList>;

private Q_SLOTS:
    void attributesOfAnObject()
    {
        RepositoryFixture fixture;
        Widget widget;
        widget.setObjectName("w"_s);
        QVERIFY(fixture.create("object_properties", "w", QVariant::fromValue<QObject *>(&widget)));
        QCOMPARE(fixture.values("w"),
                 RepositoryFixture::Values({{"objectName", "w"}, {"text", "t"}, {"statusTip", "s"}}));
        const auto access = [&](const char *name) {
            const auto attribute = fixture.repository().getQueryProvider()->findAttribute("w."_s + name);
            return attribute ? int(attribute->getAccess()) : -1;
        };
        QCOMPARE(access("text"), 3);
        QCOMPARE(access("statusTip"), 1);
        QCOMPARE(access("visible"), 2);
        QCOMPARE(access("level"), -1);
        QVERIFY(!fixture.backends().saveBackend("w"));
    }

    void pairsOfObjectAndNames()
    {
        RepositoryFixture fixture;
        Widget widget;
        QVERIFY(fixture.create("object_properties", "few",
                               QVariant::fromValue(Names(&widget, {"LEVEL", "OBJECTNAME", "none"})), 1));
        QCOMPARE(fixture.values("few"), RepositoryFixture::Values({{"level", 1}, {"objectName", ""}}));
        QVERIFY(!update(fixture, "few.level", 2)); // the backend's access
        QVERIFY(fixture.create("object_properties", "default", QVariant::fromValue(Names(&widget, {}))));
        QVERIFY(!fixture.node("default.level") && fixture.node("default.text"));
        QVERIFY(fixture.create("object_properties", "none", QVariant::fromValue(Names(&widget, {"x"}))));
        QVERIFY(fixture.node("none") && fixture.values("none").isEmpty());
    }

    void whatIsNoObject()
    {
        RepositoryFixture fixture;
        const QString load = "ObjectPropertiesBackend::loadAttributesCreateDataInternal() "_s;
        QVERIFY(!fixture.create("object_properties", "x", 42));
        QVERIFY(!fixture.create("object_properties", "x", QVariant::fromValue<QObject *>(nullptr)));
        QVERIFY(!fixture.create("object_properties", "x", QVariant::fromValue(Names(nullptr, {"a"}))));
        QCOMPARE(fixture.takeLog(LogMessageType::warning).filter(load),
                 QStringList({load + "no QObject instance found in backend data, loading aborted",
                              load + "found invalid QObject instance in backend data, loading aborted",
                              load + "found invalid QObject instance in backend data, loading aborted"}));
        QVERIFY(!fixture.node("x"));

        using Mapper = Backends::utils::ObjectPropertiesToAttributeMapper;
        QVariant stored(1), out;
        QVERIFY(!Mapper::ReadProperty(stored, out) && !Mapper::WriteProperty(stored, out));
        stored = QVariant::fromValue(MetaPropertyWrapperPtr());
        QVERIFY(!Mapper::ReadProperty(stored, out) && !Mapper::WriteProperty(stored, out));
    }

    void objectDiesBeforeItsBackendStands()
    {
        RepositoryFixture fixture;
        auto widget = std::make_unique<Widget>();
        const BackendDetails details = Backends::ObjectPropertiesBackend::BindObject(
            "object_properties", {QVariant::fromValue<QObject *>(widget.get()), QString(), 3});
        widget.reset();
        QVERIFY(!fixture.create("object_properties", "x", details.data));
        QVERIFY(fixture.takeLog(LogMessageType::warning).join('\n').contains("found invalid QObject"));
    }

    void updateWhileTheMainThreadWaitsForIt()
    {
        RepositoryFixture fixture;
        Widget widget;
        QVERIFY(
            fixture.create("object_properties", "w", QVariant::fromValue(Names(&widget, {"text", "level"}))));
        // This thread is blocked in each of them.
        QElapsedTimer timer;
        timer.start();
        QVERIFY(update(fixture, "w.level", "5"));
        QVERIFY(update(fixture, "w.text", "new"));
        QVERIFY(!update(fixture, "w.level", "no number"));
        QVERIFY(timer.elapsed() < 5000);
        // Told is the new value, of the property's type, though its thread has not written it yet.
        const RepositoryFixture::Values written{{"level", 5}, {"text", "new"}};
        QCOMPARE(fixture.values("w"), written);
        QCOMPARE(widget.level, 1);
        QTRY_COMPARE(widget.level, 5);
        QTRY_COMPARE(widget.text, "new"_s);
        QCOMPARE(fixture.values("w"), written);
    }

    void objectDiesDuringUpdates()
    {
        RepositoryFixture fixture;
        auto widget = std::make_unique<Widget>();
        QVERIFY(
            fixture.create("object_properties", "w", QVariant::fromValue(Names(widget.get(), {"level"}))));
        std::atomic<int> updates{0};
        std::atomic<bool> refused{false};
        std::thread writer([&] {
            for (int number = 1; !refused; ++number) {
                refused = !update(fixture, "w.level", number);
                ++updates;
            }
        });
        const bool written = QTest::qWaitFor([&] { return updates > 20 && widget->level > 1; }, 30000);
        widget.reset();
        writer.join(); // ends because an update fails
        QVERIFY(written);
        QVERIFY(fixture.values("w").isEmpty());
        QCoreApplication::processEvents();
    }

private:
    using BackendDetails = Backends::BackendCreateDataDetails;

    static bool update(RepositoryFixture &fixture, const QString &path, const QVariant &value)
    {
        return fixture.repository().getManipulationProvider()->updateAttribute(path, value, UpdatePoint::Done)
            == Tessellum::Notification::UpdateResult::Ok;
    }
};

QTEST_GUILESS_MAIN(ObjectPropertiesBackendTest)
#include "ObjectPropertiesBackendTest.moc"
