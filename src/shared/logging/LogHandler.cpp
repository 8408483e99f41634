#include <shared/foundation/platform/DebugOutput.h>
#include <shared/logging/LogHandler.h>
#include <shared/logging/utils/Callbacks.h>
#include <shared/logging/utils/LogLine.h>
#include <shared/logging/utils/QtMessageHandler.h>

#include <QCoreApplication>
#include <QMutexLocker>

#include <atomic>
#include <cstdlib>

namespace Shared::Logging {

namespace {

// The life of this copy's handler.
constexpr int notYetMade = 0;
constexpr int alive = -1;
constexpr int ended = -2;
std::atomic<int> guard{notYetMade};
std::atomic<LogHandler *> handler{nullptr}; // set while the guard is alive

constexpr LogMessageType defaultThreshold = LogMessageType::log;

/*! Stands in whenever the shared settings could not be reached. */
LogContext DefaultLogContext()
{
    return LogContext(defaultThreshold, LogMessageType::fatal);
}

void AbortIfFatal(const LogLevel &level)
{
    if (level.getLogLevel() == LogMessageType::fatal)
        std::abort();
}

/*! The way of a message that is raised while this thread is inside the section. */
void WriteInsideSection(const LogMessageContext &context, const LogLevel &level, const QString &message,
                        const QString &identification)
{
    Foundation::Platform::WriteDebugOutput(utils::FormatLine(context, level, message, identification)
                                           + QLatin1Char('\n'));
    AbortIfFatal(level);
}

/*! Texts may lie in the read-only data of a copy that is unloaded some day. */
QString DetachedText(const QString &text)
{
    return QString(text.constData(), text.size());
}

template <typename T, typename... Arguments>
utils::SharedLogObject<T> *FindShared(utils::LogSegment &segment, const Arguments &...arguments)
{
    using Object = utils::SharedLogObject<T>;
    if (!segment.open())
        return nullptr;
    return segment.findOrMake<Object>(QCoreApplication::applicationPid(), &Object::FromAddress,
                                      [&] { return new Object(arguments...); });
}

} // namespace

struct LogHandler::ExitHook
{
    ~ExitHook()
    {
        const bool made = guard.exchange(ended) == alive;
        LogHandler *const instance = handler.exchange(nullptr);
        if (made && instance)
            instance->close();
    }
};

void LogHandler::PrepareExit()
{
    static const ExitHook hook;
}

namespace {

// At load, so that it closes the log after everything that was made later has gone.
[[maybe_unused]] const bool exitPrepared = (LogHandler::PrepareExit(), true);

} // namespace

LogHandler *LogHandler::Instance()
{
    if (LogHandler *const instance = handler.load(std::memory_order_acquire))
        return instance;
    if (guard == ended || utils::LogLock::IsInsideThisCopy())
        return nullptr;
    PrepareExit();
    static LogHandler *const made = [] {
        auto *const instance = new LogHandler(defaultThreshold, LogMessageType::fatal);
        handler.store(instance, std::memory_order_release);
        int expected = notYetMade;
        if (!guard.compare_exchange_strong(expected, alive)) { // the process ended meanwhile
            handler.store(nullptr);
            instance->close();
        }
        return instance;
    }();
    return guard == ended ? nullptr : made;
}

void LogHandler::LogMessage(const LogMessageContext &context, const LogLevel &level, const QString &message)
{
    if (LogHandler *const instance = Instance())
        instance->onCustomLogMessage(context, level, message);
    else if (utils::LogLock::IsInsideThisCopy() && level.getLogLevel() >= defaultThreshold)
        WriteInsideSection(context, level, message, QString());
}

bool LogHandler::IsEnabled(const LogLevel &level)
{
    LogHandler *const instance = Instance();
    if (!instance && !utils::LogLock::IsInsideThisCopy())
        return false;
    return level.getLogLevel() >= (instance ? instance->threshold() : defaultThreshold);
}

void LogHandler::SetLogLevel(const LogMessageType &level)
{
    if (LogHandler *const instance = Instance())
        instance->setLogLevel(level);
}

void LogHandler::SetEventLogLevel(const LogMessageType &level)
{
    if (LogHandler *const instance = Instance())
        instance->setEventLogLevel(level);
}

void LogHandler::SetLogIdentification(const QString &identification)
{
    if (LogHandler *const instance = Instance())
        instance->setLogIdentifier(identification);
}

QString LogHandler::RegisterMessageSink(const LogSink &sink)
{
    LogHandler *const instance = Instance();
    return instance ? instance->addCustomSink(sink) : QString();
}

bool LogHandler::UnregisterMessageSink(const QString &handle)
{
    LogHandler *const instance = Instance();
    return instance && instance->removeCustomSink(handle);
}

QString LogHandler::RegisterMessageFilter(const LogFilter &filter)
{
    LogHandler *const instance = Instance();
    return instance ? instance->addCustomFilter(filter) : QString();
}

bool LogHandler::UnregisterMessageFilter(const QString &handle)
{
    LogHandler *const instance = Instance();
    return instance && instance->removeCustomFilter(handle);
}

LogHandler::LogHandler(const LogLevel &logLevel, const LogLevel &eventLogLevel)
    : lock(QStringLiteral("Shared::Logging::LogHandler::LogHandler"))
    , sinkSegment(QStringLiteral("Shared::Logging::LogHandler::LogHandler::CustomSinkRepository"))
    , filterSegment(QStringLiteral("Shared::Logging::LogHandler::LogHandler::CustomFilterRepository"))
    , contextSegment(QStringLiteral("Shared::Logging::LogHandler::LogContext"))
    , ownContext(logLevel, eventLogLevel)
{
    qRegisterMetaType<LogMessageContext::LogMessageFlags>();
    if (QCoreApplication *const application = QCoreApplication::instance())
        moveToThread(application->thread());
    joinOtherCopies();
    initializeLogSinkRepository();
    initializeLogFilterRepository();
    initializeLogContext();
}

/*!
 * The first message of this copy may come out of a filter of another one. Then this thread is inside the
 * section already and must not wait for it.
 */
void LogHandler::joinOtherCopies()
{
    if (lock.isHeldByThisProcess() && contextSegment.attach())
        useSettings(
            contextSegment.find<Settings>(QCoreApplication::applicationPid(), &Settings::FromAddress));
}

void LogHandler::useSettings(Settings *shared)
{
    settings = shared;
    lock.shareOwner(shared ? &shared->value.sectionOwner : nullptr);
}

void LogHandler::initializeLogSinkRepository()
{
    const Section section(lock);
    if (!section)
        return;
    sinks = FindShared<LogSinkRepository>(sinkSegment);
    utils::InstallQtMessageHandler();
}

void LogHandler::initializeLogFilterRepository()
{
    const Section section(lock);
    if (!section)
        return;
    filters = FindShared<LogFilterRepository>(filterSegment);
    utils::InstallQtMessageHandler();
}

void LogHandler::initializeLogContext()
{
    const Section section(lock);
    if (section)
        useSettings(FindShared<utils::SharedSettings>(contextSegment, DefaultLogContext()));
}

LogMessageType LogHandler::threshold() const
{
    return settings ? static_cast<LogMessageType>(settings->value.threshold.load(std::memory_order_relaxed))
                    : defaultThreshold;
}

LogContext LogHandler::getContext() const
{
    if (!settings)
        return DefaultLogContext();
    const QMutexLocker locker(&settings->mutex);
    return settings->value.context;
}

QString LogHandler::getId() const
{
    return getContext().identification;
}

void LogHandler::onCustomLogMessage(const LogMessageContext &context, const LogLevel &level,
                                    const QString &message)
{
    if (level.getLogLevel() < threshold())
        return;
    if (lock.isInside()) {
        WriteInsideSection(context, level, message, getId());
        return;
    }
    const QString trace = utils::StackTraceText(context);

    // The copies end after the section, since the callbacks may hold the last pointer to something of the
    // application.
    QList<LogSink> calledSinks;
    QList<LogFilter> askedFilters;
    {
        const Section section(lock);
        if (!section)
            return;
        const LogContext effective = getContext();
        if (level.getLogLevel() < effective.logLevel.getLogLevel())
            return;
        if (sinks) {
            const QMutexLocker locker(&sinks->mutex);
            calledSinks = sinks->value.getMessageSinks();
        }
        if (filters) {
            const QMutexLocker locker(&filters->mutex);
            askedFilters = filters->value.getMessageFilter();
        }
        QString line = utils::FormatLine(context, level, message, effective.identification) + trace;
        if (askedFilters.isEmpty() || utils::AnyVote(askedFilters, context, level, message, line))
            Foundation::Platform::WriteDebugOutput(line + QLatin1Char('\n'));
    }
    utils::CallSinks(calledSinks, context, level, message);
    AbortIfFatal(level);
}

QString LogHandler::addCustomSink(const LogSink &sink)
{
    const Section section(lock);
    if (!section || !sinks)
        return {};
    const QMutexLocker locker(&sinks->mutex);
    return sinks->value.addCustomSink(sink);
}

bool LogHandler::removeCustomSink(const QString &handle)
{
    QList<LogSink> kept; // what a callback holds ends after the section
    const Section section(lock);
    if (!section || !sinks)
        return false;
    const QMutexLocker locker(&sinks->mutex);
    kept = sinks->value.getMessageSinks();
    return sinks->value.removeCustomSink(handle);
}

QString LogHandler::addCustomFilter(const LogFilter &filter)
{
    const Section section(lock);
    if (!section || !filters)
        return {};
    const QMutexLocker locker(&filters->mutex);
    return filters->value.addCustomFilter(filter);
}

bool LogHandler::removeCustomFilter(const QString &handle)
{
    QList<LogFilter> kept; // what a callback holds ends after the section
    const Section section(lock);
    if (!section || !filters)
        return false;
    const QMutexLocker locker(&filters->mutex);
    kept = filters->value.getMessageFilter();
    return filters->value.removeCustomFilter(handle);
}

template <typename Change>
bool LogHandler::changeSettings(const Change &change)
{
    const Section section(lock);
    if (!section)
        return false;
    change(ownContext, false);
    if (!settings)
        return false;
    const QMutexLocker locker(&settings->mutex);
    change(settings->value.context, true);
    settings->value.threshold = static_cast<qint32>(settings->value.context.logLevel.getLogLevel());
    return true;
}

bool LogHandler::setLogLevel(const LogMessageType &level)
{
    return changeSettings([level](LogContext &context, bool) { context.logLevel = level; });
}

bool LogHandler::setEventLogLevel(const LogMessageType &level)
{
    return changeSettings([level](LogContext &context, bool) { context.eventLogLevel = level; });
}

bool LogHandler::setLogIdentifier(const QString &identification)
{
    return changeSettings([&](LogContext &context, bool shared) {
        if (!shared || context.identification.isEmpty())
            context.identification = DetachedText(identification);
    });
}

void LogHandler::close()
{
    utils::UninstallQtMessageHandler();
    lock.close([this] {
        bool last = true;
        for (utils::LogSegment *segment : {&sinkSegment, &filterSegment, &contextSegment})
            last = segment->close() && last;
        return last;
    });
}

} // namespace Shared::Logging
