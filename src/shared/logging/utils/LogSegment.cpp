#include <shared/foundation/platform/UserIdentity.h>
#include <shared/logging/utils/LogSegment.h>

#include <cstring>

namespace Shared::Logging::utils {

namespace {

// The last process to detach removes a segment; one that comes in between finds it gone and tries again.
constexpr int attempts = 20;

/*! The system's name of what QSharedMemory finds under a key. Under that name it takes no lock of its own. */
QString NativeKey(const QString &key)
{
    return QSharedMemory(key).nativeKey();
}

} // namespace

LogSegment::LogSegment(const QString &key_)
    : key(key_)
{ }

bool LogSegment::reach(bool create)
{
    bool reached = memory.isAttached() || reachName(key, create);
    if (!reached && memory.error() == QSharedMemory::PermissionDenied)
        reached = reachName(key + Foundation::Platform::UserKeySuffix(), create);
    return reached && memory.size() >= int(sizeof(SegmentRecord));
}

bool LogSegment::close()
{
    const QString name = memory.nativeKey();
    memory.detach();
    QSharedMemory others;
    others.setNativeKey(name);
    return !others.attach(QSharedMemory::ReadOnly);
}

bool LogSegment::reachName(const QString &name, bool create)
{
    memory.setNativeKey(NativeKey(name));
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (memory.attach(QSharedMemory::ReadWrite))
            return true;
        if (memory.error() == QSharedMemory::NotFound) {
            if (!create)
                return false;
            if (memory.create(sizeof(SegmentRecord), QSharedMemory::ReadWrite))
                return true;
        }
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
