#include <core/TessellumImplementation.h>
#include <core/utils/ThreadData.h>

namespace Tessellum::Core::utils {

namespace {

enum class DataState { NotMade, Alive, Gone };

// Trivially destructible, so that both may be read after the thread's destructors have run.
thread_local ThreadData *currentData = nullptr;
thread_local DataState dataState = DataState::NotMade;

/*! Ends the record with its thread. */
class DataGuard
{
public:
    DataGuard()
    {
        currentData = new ThreadData(ProcessThreadData());
        dataState = DataState::Alive;
    }
    ~DataGuard()
    {
        dataState = DataState::Gone;
        delete currentData;
        currentData = nullptr;
    }
    Q_DISABLE_COPY_MOVE(DataGuard)
};

ThreadData *makeProcessThreadData()
{
    auto record = std::make_unique<ThreadData>();
    record->localizationProvider
        = std::make_shared<TessellumLocalizationInterfaceProvider>(QLocale(QLocale::C, QLocale::AnyCountry));
    record->coreObject = std::make_shared<TessellumImplementation>(record->localizationProvider);
    return record.release();
}

} // namespace

const ThreadData &ProcessThreadData()
{
    static const ThreadData *const record = makeProcessThreadData();
    return *record;
}

const ThreadData &currentThreadData()
{
    if (dataState == DataState::NotMade)
        static thread_local const DataGuard guard;
    return currentData ? *currentData : ProcessThreadData();
}

} // namespace Tessellum::Core::utils
