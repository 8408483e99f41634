#include <shared/foundation/platform/DebugOutput.h>
#include <shared/logging/LogHandler.h>
#include <shared/logging/utils/Callbacks.h>
#include <shared/logging/utils/LogLine.h>
#include <shared/logging/utils/QtMessageHandler.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QMutexLocker>
#include <QThread>

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

// This thread is inside the section of this copy, or makes the handler.
thread_local bool insideSection = false;

constexpr LogMessageType defaultThreshold = LogMessageType::log;
constexpr int closeTimeout = 2000; // milliseconds, for each of the two locks

/// Stands in whenever the shared settings could not be reached.
LogContext DefaultLogContext()
{
    return LogContext(defaultThreshold, LogMessageType::fatal);
}

/// The way of a message that is raised while this thread is inside the section.
void WriteInsideSection(const LogMessageContext &context, const LogLevel &level, const QString &message,
                        const QString &identification)
{
    Foundation::Platform::WriteDebugOutput(utils::FormatLine(context, level, message, identification)
                                           + QLatin1Char('\n'));
}

/// Texts may lie in the read-only data of a copy that is unloaded some day.
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

/// Mutex and semaphore, for the length of a scope. A thread that is inside already just stays so.
class LogHandler::Section
{
public:
    explicit Section(LogHandler &handler_)
        : owner(handler_)
        , nested(handler_.isInsideSection())
    {
        if (nested)
            return;
        insideSection = true; // before the locks: Qt may have something to say about them
        owner.processMutex.lock();
        entered = !owner.closed && owner.semaphore.acquire();
        if (!entered)
            leave();
        else if (owner.settings)
            owner.settings->value.sectionOwner = QThread::currentThreadId();
    }

    ~Section()
    {
        if (!entered)
            return;
        if (owner.settings)
            owner.settings->value.sectionOwner = nullptr;
        owner.semaphore.release();
        leave();
    }

    Q_DISABLE_COPY(Section)

    explicit operator bool() const { return nested || entered; }

private:
    void leave()
    {
        owner.processMutex.unlock();
        insideSection = false;
    }

    LogHandler &owner;
    const bool nested;
    bool entered = false;
};

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
    if (guard == ended || insideSection)
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
    else if (insideSection && level.getLogLevel() >= defaultThreshold)
        WriteInsideSection(context, level, message, QString());
}

bool LogHandler::IsEnabled(const LogLevel &level)
{
    LogHandler *const instance = Instance();
    if (!instance && !insideSection)
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
    : semaphore(QStringLiteral("Shared::Logging::LogHandler::LogHandler"))
    , sinkSegment(QStringLiteral("Shared::Logging::LogHandler::LogHandler::CustomSinkRepository"))
    , filterSegment(QStringLiteral("Shared::Logging::LogHandler::LogHandler::CustomFilterRepository"))
    , contextSegment(QStringLiteral("Shared::Logging::LogHandler::LogContext"))
    , ownContext(logLevel, eventLogLevel)
{
    insideSection = true; // a message of Qt's must not come back to the handler that is being made
    if (QCoreApplication *const application = QCoreApplication::instance())
        moveToThread(application->thread());
    insideSection = false;
    initializeLogSinkRepository();
    initializeLogFilterRepository();
    initializeLogContext();
}

void LogHandler::initializeLogSinkRepository()
{
    const Section section(*this);
    if (!section)
        return;
    sinks = FindShared<LogSinkRepository>(sinkSegment);
    utils::InstallQtMessageHandler();
}

void LogHandler::initializeLogFilterRepository()
{
    const Section section(*this);
    if (!section)
        return;
    filters = FindShared<LogFilterRepository>(filterSegment);
    utils::InstallQtMessageHandler();
}

void LogHandler::initializeLogContext()
{
    const Section section(*this);
    if (section)
        settings = FindShared<utils::SharedSettings>(contextSegment, DefaultLogContext());
}

LogMessageType LogHandler::threshold() const
{
    return settings ? static_cast<LogMessageType>(settings->value.threshold.load(std::memory_order_relaxed))
                    : defaultThreshold;
}

bool LogHandler::isInsideSection() const
{
    // The second test finds the thread inside the section of another copy.
    return insideSection
        || (settings
            && settings->value.sectionOwner.load(std::memory_order_relaxed) == QThread::currentThreadId());
}

LogContext LogHandler::getContext() const
{
    if (!settings)
        return DefaultLogContext();
    const QMutexLocker lock(&settings->mutex);
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
    if (isInsideSection()) {
        WriteInsideSection(context, level, message, getId());
        return;
    }
    const QString trace = utils::StackTraceText(context);

    // The copies end after the section, since the callbacks may hold the last pointer to something of the
    // application.
    QList<LogSink> calledSinks;
    QList<LogFilter> askedFilters;
    {
        const Section section(*this);
        if (!section)
            return;
        const LogContext effective = getContext();
        if (level.getLogLevel() < effective.logLevel.getLogLevel())
            return;
        if (sinks) {
            const QMutexLocker lock(&sinks->mutex);
            calledSinks = sinks->value.getMessageSinks();
        }
        if (filters) {
            const QMutexLocker lock(&filters->mutex);
            askedFilters = filters->value.getMessageFilter();
        }
        QString line = utils::FormatLine(context, level, message, effective.identification) + trace;
        if (askedFilters.isEmpty() || utils::AnyVote(askedFilters, context, level, message, line))
            Foundation::Platform::WriteDebugOutput(line + QLatin1Char('\n'));
    }
    utils::CallSinks(calledSinks, context, level, message);
    if (level.getLogLevel() == LogMessageType::fatal)
        std::abort();
}

QString LogHandler::addCustomSink(const LogSink &sink)
{
    const Section section(*this);
    if (!section || !sinks)
        return {};
    const QMutexLocker lock(&sinks->mutex);
    return sinks->value.addCustomSink(sink);
}

bool LogHandler::removeCustomSink(const QString &handle)
{
    QList<LogSink> kept; // what a callback holds ends after the section
    const Section section(*this);
    if (!section || !sinks)
        return false;
    const QMutexLocker lock(&sinks->mutex);
    kept = sinks->value.getMessageSinks();
    return sinks->value.removeCustomSink(handle);
}

QString LogHandler::addCustomFilter(const LogFilter &filter)
{
    const Section section(*this);
    if (!section || !filters)
        return {};
    const QMutexLocker lock(&filters->mutex);
    return filters->value.addCustomFilter(filter);
}

bool LogHandler::removeCustomFilter(const QString &handle)
{
    QList<LogFilter> kept; // what a callback holds ends after the section
    const Section section(*this);
    if (!section || !filters)
        return false;
    const QMutexLocker lock(&filters->mutex);
    kept = filters->value.getMessageFilter();
    return filters->value.removeCustomFilter(handle);
}

template <typename Change>
bool LogHandler::changeSettings(const Change &change)
{
    const Section section(*this);
    if (!section)
        return false;
    change(ownContext, false);
    if (!settings)
        return false;
    const QMutexLocker lock(&settings->mutex);
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
    // exit() inside a filter comes here from within the section, of this copy or of another.
    const bool inside = insideSection;
    const bool insideOther = !inside && isInsideSection();
    if (!inside && !processMutex.tryLock(closeTimeout))
        return; // a thread hangs inside: the system takes back what it holds
    insideSection = true;
    closed = true;
    if (inside || insideOther || semaphore.acquire(QDeadlineTimer(closeTimeout))) {
        bool last = true;
        for (utils::LogSegment *segment : {&sinkSegment, &filterSegment, &contextSegment})
            last = segment->close() && last;
        // Inside the section: whoever is about to attach waits for it, and has to make a new semaphore.
        if (last)
            semaphore.remove();
        else if (!insideOther)
            semaphore.release();
    }
    insideSection = inside;
    if (!inside)
        processMutex.unlock();
}

} // namespace Shared::Logging
