#include <shared/foundation/platform/UserIdentity.h>
#include <shared/logging/utils/LogSegment.h>

#include <cstring>

namespace Shared::Logging::utils {

namespace {

// The last process to detach removes a segment; one that comes in between finds it gone and tries again.
constexpr int attempts = 20;

/// The system's name of what QSharedMemory finds under a key. Under that name it takes no lock of its own.
QString NativeKey(const QString &key)
{
    return QSharedMemory(key).nativeKey();
}

} // namespace

LogSegment::LogSegment(const QString &key_)
    : key(key_)
{ }

bool LogSegment::open()
{
    bool opened = attachOrCreate(key);
    if (!opened && memory.error() == QSharedMemory::PermissionDenied)
        opened = attachOrCreate(key + Foundation::Platform::UserKeySuffix());
    return opened && memory.size() >= int(sizeof(SegmentRecord));
}

bool LogSegment::close()
{
    const QString name = memory.nativeKey();
    memory.detach();
    QSharedMemory others;
    others.setNativeKey(name);
    return !others.attach(QSharedMemory::ReadOnly);
}

bool LogSegment::attachOrCreate(const QString &name)
{
    memory.setNativeKey(NativeKey(name));
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (memory.attach(QSharedMemory::ReadWrite))
            return true;
        if (memory.error() == QSharedMemory::NotFound
            && memory.create(sizeof(SegmentRecord), QSharedMemory::ReadWrite))
            return true;
        if (memory.error() == QSharedMemory::PermissionDenied)
            return false;
    }
    return false;
}

SegmentRecord LogSegment::read() const
{
    SegmentRecord record;
    std::memcpy(&record, memory.constData(), sizeof(record));
    return record;
}

void LogSegment::write(const SegmentRecord &record)
{
    std::memcpy(memory.data(), &record, sizeof(record));
}

} // namespace Shared::Logging::utils
