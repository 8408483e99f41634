#include "LogSegments.h"

#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>

#include <QLibrary>
#include <QtTest>

#include <support/Literals.h>

using namespace Shared::Logging;

namespace {

/*! A handler is never freed, also not with its plug-in; known here, it is no leak to a leak detector. */
const void *pluginHandler = nullptr;
const void *secondHandler = nullptr;

} // namespace

/*!
 * The program and a plug-in each have a copy of the log code. The plug-in's comes first and makes what they
 * share, which therefore has to outlive it.
 */
class LogSharingTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(plugin.load(), qPrintable(plugin.errorString()));
        pluginHandler = resolve<const void *()>("pluginHandler")();
        QVERIFY(pluginHandler);
        QVERIFY(pluginHandler != LogHandler::Instance());
    }

    void init()
    {
        messages.clear();
        lines.clear();
        sink = LogHandler::RegisterMessageSink(
            [this](auto &, auto &, const QString &message) { messages.append(message); });
        filter = LogHandler::RegisterMessageFilter([this](auto &, auto &, auto &, const QString &line) {
            lines.append(line);
            return false;
        });
    }

    void cleanup()
    {
        QVERIFY(LogHandler::UnregisterMessageSink(sink));
        QVERIFY(LogHandler::UnregisterMessageFilter(filter));
        LogHandler::SetLogLevel(LogMessageType::log);
    }

    void settingsAreShared()
    {
        const auto pluginSetLogLevel = resolve<void(int)>("pluginSetLogLevel");
        pluginSetLogLevel(int(LogMessageType::debug));
        FrameworkLog().debug() << "by the program";
        QCOMPARE(messages, QStringList{"by the program"_s});
        LogHandler::SetLogLevel(LogMessageType::warning);
        pluginLog(LogMessageType::log, "below the program's threshold");
        QCOMPARE(messages.size(), 1);

        resolve<void()>("pluginIdentify")();
        LogHandler::SetLogIdentification("program"_s);
        LogHandler::LogMessage(LogMessageContext(), LogMessageType::warning, "text"_s);
        QCOMPARE(lines.last(), "[PLUG-IN WARNING] text"_s);
    }

    void sinksAndFiltersAreShared()
    {
        pluginLog(LogMessageType::warning, "by the plug-in");
        QCOMPARE(messages, QStringList{"by the plug-in"_s});
        QCOMPARE(lines, QStringList{"[TESSELLUM WARNING] by the plug-in"_s});

        const auto pluginHeard = resolve<int()>("pluginHeard");
        QVERIFY(resolve<bool()>("pluginRegister")());
        FrameworkLog().log() << "heard by the plug-in, whose filter logs with its own copy";
        QCOMPARE(pluginHeard(), 1);
        QCOMPARE(messages.size(), 2);
        QVERIFY(resolve<bool()>("pluginUnregister")());
        QVERIFY(!resolve<bool()>("pluginUnregister")());
        FrameworkLog().log() << "after the plug-in took its own away";
        QCOMPARE(pluginHeard(), 1);
        QCOMPARE(messages.size(), 3);
    }

    void aCopyMayBeginInsideTheSectionOfAnother()
    {
        QTemporaryDir directory;
        const QString file = directory.filePath("second.so"_s);
        QVERIFY(QFile::copy(plugin.fileName(), file));
        QLibrary second(file);
        const auto secondLog = reinterpret_cast<void (*)(int, const char *)>(second.resolve("pluginLog"));
        QVERIFY(secondLog);
        const QString first = LogHandler::RegisterMessageFilter([&](auto &...) {
            secondLog(int(LogMessageType::log), "the first message of a copy");
            return false;
        });
        FrameworkLog().log() << "text";
        QVERIFY(LogHandler::UnregisterMessageFilter(first));
        QCOMPARE(messages, QStringList{"text"_s});

        secondHandler = reinterpret_cast<const void *(*)()>(second.resolve("pluginHandler"))();
        secondLog(int(LogMessageType::log), "of a copy like any other");
        QCOMPARE(messages.last(), "of a copy like any other"_s);
        QVERIFY(second.unload());
    }

    void thePluginCanGo()
    {
        QVERIFY(plugin.unload());
        for (const QString &key : LogSegments::segmentKeys)
            QVERIFY(LogSegments::Exists(key));
        LogHandler::LogMessage(LogMessageContext(), LogMessageType::log, "text"_s);
        QCOMPARE(lines.last(), "[PLUG-IN LOG] text"_s);
        QCOMPARE(messages, QStringList{"text"_s});
    }

private:
    template <typename Function>
    Function *resolve(const char *name)
    {
        return reinterpret_cast<Function *>(plugin.resolve(name));
    }

    void pluginLog(LogMessageType level, const char *text)
    {
        resolve<void(int, const char *)>("pluginLog")(int(level), text);
    }

    const LogSegments::OwnObjects ownObjects;
    QLibrary plugin{QStringLiteral(PLUGIN_FILE)};
    QString sink;
    QString filter;
    QStringList messages;
    QStringList lines;
};

QTEST_GUILESS_MAIN(LogSharingTest)
#include "LogSharingTest.moc"
