#include <shared/foundation/platform/UserIdentity.h>
#include <shared/logging/utils/LogSegment.h>

#include <cstring>

namespace Shared::Logging::utils {

namespace {

// The last process to detach removes a segment; one that comes in between finds it gone and tries again.
constexpr int attempts = 20;

bool IsDenied(const QSharedMemory &memory)
{
    return memory.error() == QSharedMemory::PermissionDenied || memory.error() == QSharedMemory::LockError;
}

} // namespace

LogSegment::LogSegment(const QString &key_)
    : key(key_)
    , memory(std::make_unique<QSharedMemory>(key_))
{ }

bool LogSegment::open()
{
    bool opened = attachOrCreate();
    if (!opened && IsDenied(*memory)) {
        memory = std::make_unique<QSharedMemory>(key + Foundation::Platform::UserKeySuffix());
        opened = attachOrCreate();
    }
    return opened && memory->size() >= int(sizeof(SegmentRecord));
}

void LogSegment::close()
{
    memory.reset();
}

bool LogSegment::attachOrCreate()
{
    // Both lock the segment themselves, so the caller's lock comes afterwards.
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (memory->attach(QSharedMemory::ReadWrite))
            return true;
        if (memory->error() == QSharedMemory::NotFound
            && memory->create(sizeof(SegmentRecord), QSharedMemory::ReadWrite))
            return true;
        if (IsDenied(*memory))
            return false;
    }
    return false;
}

SegmentRecord LogSegment::read() const
{
    SegmentRecord record;
    std::memcpy(&record, memory->constData(), sizeof(record));
    return record;
}

void LogSegment::write(const SegmentRecord &record)
{
    std::memcpy(memory->data(), &record, sizeof(record));
}

} // namespace Shared::Logging::utils
