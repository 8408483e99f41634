#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogContext.h>
#include <shared/logging/LogLevel.h>
#include <shared/logging/LogMessageContext.h>

#include <QtTest>

using namespace Shared::Logging;

class LogLevelTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void namesFollowTheNumbers();
    void unknownTextsAreTheLogLevel();
    void levelsOfQt();
    void contextsKnowWhetherTheirPositionIsKnown();
    void settingsCarryTheLongestName();
};

void LogLevelTest::namesFollowTheNumbers()
{
    const QStringList names{QStringLiteral("VERBOSE"), QStringLiteral("DEBUG"),    QStringLiteral("LOG"),
                            QStringLiteral("WARNING"), QStringLiteral("CRITICAL"), QStringLiteral("FATAL")};
    QCOMPARE(LogLevel::GetLogLevelStrings(), names);
    for (int number = 0; number < names.size(); ++number) {
        const LogLevel level(static_cast<LogMessageType>(number));
        QCOMPARE(QString(level), names.at(number));
        QCOMPARE(LogLevel::ConvertStringToLogLevel(names.at(number).toLower()).getLogLevel(),
                 level.getLogLevel());
    }
    QCOMPARE(QString(LogLevel(static_cast<LogMessageType>(6))), QStringLiteral("UNKNOWN"));
    QCOMPARE(QString(LogLevel(static_cast<LogMessageType>(-1))), QStringLiteral("UNKNOWN"));
}

void LogLevelTest::unknownTextsAreTheLogLevel()
{
    QCOMPARE(LogLevel::ConvertStringToLogLevel(QStringLiteral("wArNiNg")).getLogLevel(),
             LogMessageType::warning);
    for (const QString &text :
         {QStringLiteral("nonsense"), QString(), QStringLiteral("UNKNOWN"), QStringLiteral(" LOG")})
        QCOMPARE(LogLevel::ConvertStringToLogLevel(text).getLogLevel(), LogMessageType::log);
}

void LogLevelTest::levelsOfQt()
{
    QCOMPARE(LogLevel(QtDebugMsg).getLogLevel(), LogMessageType::debug);
    QCOMPARE(LogLevel(QtWarningMsg).getLogLevel(), LogMessageType::warning);
    QCOMPARE(QString(LogLevel(QtCriticalMsg)), QStringLiteral("LOG"));
    QCOMPARE(LogLevel(QtFatalMsg).getLogLevel(), LogMessageType::fatal);
    QCOMPARE(LogLevel(QtInfoMsg).getLogLevel(), LogMessageType::verbose);
}

void LogLevelTest::contextsKnowWhetherTheirPositionIsKnown()
{
    const LogMessageContext empty;
    QVERIFY(!empty.isValid());
    QCOMPARE(empty.line, -1);
    QCOMPARE(int(empty.flags), 0);

    const QList<QVariant> parameters{1, QStringLiteral("two")};
    const LogMessageContext full(QStringLiteral("a.cpp"), 7, QStringLiteral("run"), QStringLiteral("Test"),
                                 parameters, LogMessageContext::LogStackTrace);
    QVERIFY(full.isValid());
    QCOMPARE(LogMessageContext(full).messageParameter(), parameters);
    QVERIFY(!LogMessageContext(QString(), 7, full.function, full.category, {}, {}).isValid());
    QVERIFY(!LogMessageContext(full.file, 7, QString(), full.category, {}, {}).isValid());

    const LogStreamProvider framework = FrameworkLog();
    QCOMPARE(framework.category, QStringLiteral("Tessellum"));
    QVERIFY(framework.file.isEmpty() && framework.function.isEmpty() && framework.line == -1);
}

void LogLevelTest::settingsCarryTheLongestName()
{
    const LogContext context(LogMessageType::log, LogMessageType::fatal);
    QCOMPARE(context.maxLevelNameLength, 8);
    QVERIFY(context.identification.isEmpty());
}

QTEST_GUILESS_MAIN(LogLevelTest)
#include "LogLevelTest.moc"
