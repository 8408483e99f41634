#include <appconfig/utils/RepositoryProvider.h>
#include <core/CoreSequences.h>
#include <core/Library.h>
#include <core/PluginLoader.h>
#include <core/TessellumImplementation.h>
#include <core/utils/LibraryHash.h>
#include <core/utils/ThreadData.h>
#include <notification/ThreadPool.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/logging/LogHandler.h>

#include <QCoreApplication>
#include <QScopedValueRollback>
#include <QTextCodec>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <mutex>
#include <system_error>
#include <thread>

namespace {

using namespace Tessellum;

enum State : qint32 { NotInitialised = 0, Running = 1, ShuttingDown = 2 };

constexpr std::chrono::seconds longestStopAtExit{5};

/*! What callers see; moves by compare-and-swap alone. */
std::atomic<qint32> libraryState{NotInitialised};
/*! Keeps the sequences of start and stop apart; never taken by a reader of the state. */
std::mutex lifecycleMutex;
/*! The process that started the library: a child of a fork has its memory, but none of its threads. */
std::atomic<qint64> startedBy{0};
/*! Whether something of a start is there to be taken down, also of a failed one. */
std::atomic<bool> structuresUp{false};

/*! Whether this thread runs a start or a stop, which may call a log sink. */
thread_local bool isInSequence = false;

/*! What a start or a stop would wait for, were it to wait for the caller. */
bool isCalledByTaskOrHandler()
{
    return isInSequence || Notification::ThreadPool::Current() != nullptr;
}

/*! Whether this thread refuses a stop just now: a sink that hears of it and asks again gets no further line.
 */
thread_local bool isRefusing = false;

/*! The right to run a start or a stop. Must not be asked for within one. */
class Sequence
{
public:
    Sequence() { isInSequence = true; }
    ~Sequence() { isInSequence = false; }
    Q_DISABLE_COPY_MOVE(Sequence)

private:
    const std::lock_guard<std::mutex> guard{lifecycleMutex};
};

bool runStart()
{
    structuresUp = true;
    startedBy = QCoreApplication::applicationPid();
    const bool started = Core::startCore();
    if (!started) {
        // A shut-down that was asked for meanwhile has claimed the word and waits for this thread.
        qint32 expected = Running;
        libraryState.compare_exchange_strong(expected, NotInitialised);
    }
    Core::utils::currentThreadData().coreObject->createRepositories();
    return started;
}

void runStop()
{
    Core::utils::currentThreadData().coreObject->releaseRepositories();
    Core::stopCore();
    structuresUp = false;
}

/*! Stops the library where the application did not, so that no thread of it runs into the end of the process.
 */
void stopAtExit()
{
    const bool isOwnProcess = startedBy == QCoreApplication::applicationPid();
    if (!structuresUp || !isOwnProcess || isCalledByTaskOrHandler())
        return;
    // On a thread of its own: a handler that never ends must not keep the process from ending.
    std::packaged_task<void()> stop([] {
        const Sequence sequence;
        if (!structuresUp)
            return; // a stop of the application's was under way
        libraryState = ShuttingDown;
        runStop();
        libraryState = NotInitialised;
    });
    const std::future<void> stopped = stop.get_future();
    try {
        std::thread thread(std::move(stop));
        // What a thread does at its very end must not meet the static destructors that come next.
        if (stopped.wait_for(longestStopAtExit) == std::future_status::ready)
            thread.join();
        else
            thread.detach();
    } catch (const std::system_error &) {
        // No thread is to be had, and the process ends without the stop.
    }
}

/*!
 * At the first start, not at load: what Qt made at first use until then outlives the hook, and without the
 * codecs a thread that is just starting would crash.
 */
void prepareExit()
{
    QTextCodec::codecForLocale(); // the starting threads ask for it too
    static const bool registered = std::atexit(stopAtExit) == 0;
    Q_UNUSED(registered)
}

} // namespace

int initializeLibrary()
{
    if (libraryState != NotInitialised || isInSequence)
        return 1;
    const Sequence sequence;
    qint32 expected = NotInitialised;
    if (!libraryState.compare_exchange_strong(expected, Running))
        return 1;
    Shared::Logging::LogHandler::SetLogIdentification(QStringLiteral("CORE"));
    const bool started = runStart();
    prepareExit();
    return started ? 0 : -1;
}

int uninitializeLibrary()
{
    if (isCalledByTaskOrHandler()) {
        if (!isRefusing) {
            const QScopedValueRollback<bool> refusing(isRefusing, true);
            Shared::Logging::FrameworkLog().critical()
                << "uninitializeLibrary() called by a task or a handler, nothing done";
        }
        return ShuttingDown;
    }
    qint32 found = Running;
    if (!libraryState.compare_exchange_strong(found, ShuttingDown))
        return found;
    const Sequence sequence;
    runStop();
    libraryState = NotInitialised;
    return 1;
}

Tessellum::Core::CoreInterface *getCoreInterface()
{
    if (libraryState != Running)
        return nullptr;
    return Core::utils::currentThreadData().coreObject.get();
}

bool getLocalizationInterface(std::weak_ptr<Tessellum::Core::CoreLocalizationInterface> &out)
{
    if (libraryState != Running)
        return false;
    out = Core::utils::currentThreadData().localizationProvider;
    return !out.expired();
}

bool getLibraryHash(QString *out)
{
    if (!out)
        return false;
    *out = Core::utils::LibraryHash();
    return true;
}

bool getVersionInformation(const int &index, QString *value, QString *identifier, unsigned int *count)
{
    const Shared::VersionInformation::IdentifierMapping mapping;
    if (count)
        *count = static_cast<unsigned int>(mapping.getIdentifiers().size());
    if (!value)
        return count != nullptr;
    const QString prefix
        = QStringLiteral("Tessellum") + Shared::Hierarchy::HierarchyNode::GetHierarchyNodePathSeparator();
    const Shared::VersionInformation::VersionInformation record(
        AppConfig::utils::RepositoryProvider::getInstance()->getSettings(), prefix);
    *value = record.getVersionInformationByIdentifier(mapping.getIdentifierByIndex(index));
    if (identifier)
        *identifier = mapping.getIdentifierStringByIndex(index);
    return true;
}

int addPluginSearchPath(const QString &path)
{
    return Core::AddPluginSearchPath(path);
}
