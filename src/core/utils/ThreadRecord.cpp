#include <core/TessellumImplementation.h>
#include <core/utils/ThreadRecord.h>

namespace Tessellum::Core::utils {

namespace {

enum class RecordState { NotMade, Alive, Gone };

// Trivially destructible, so that both may be read after the thread's destructors have run.
thread_local ThreadRecord *currentRecord = nullptr;
thread_local RecordState recordState = RecordState::NotMade;

/*! Ends the record with its thread. */
class RecordGuard
{
public:
    RecordGuard()
    {
        currentRecord = new ThreadRecord(ProcessRecord());
        recordState = RecordState::Alive;
    }
    ~RecordGuard()
    {
        recordState = RecordState::Gone;
        delete currentRecord;
        currentRecord = nullptr;
    }
    Q_DISABLE_COPY_MOVE(RecordGuard)
};

ThreadRecord *makeProcessRecord()
{
    auto record = std::make_unique<ThreadRecord>();
    record->localizationProvider
        = std::make_shared<TessellumLocalizationInterfaceProvider>(QLocale(QLocale::C, QLocale::AnyCountry));
    record->coreObject = std::make_shared<TessellumImplementation>(record->localizationProvider);
    return record.release();
}

} // namespace

const ThreadRecord &ProcessRecord()
{
    static const ThreadRecord *const record = makeProcessRecord();
    return *record;
}

const ThreadRecord &CurrentThreadRecord()
{
    if (recordState == RecordState::NotMade)
        static thread_local const RecordGuard guard;
    return currentRecord ? *currentRecord : ProcessRecord();
}

} // namespace Tessellum::Core::utils
