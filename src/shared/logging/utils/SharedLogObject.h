#pragma once

#include <shared/foundation/platform/ProcessMemory.h>
#include <shared/logging/LogContext.h>
#include <shared/logging/utils/LogLock.h>

#include <QCoreApplication>
#include <QMutex>

#include <atomic>
#include <type_traits>

namespace Shared::Logging {
class LogSinkRepository;
class LogFilterRepository;
} // namespace Shared::Logging

namespace Shared::Logging::utils {

/*! The settings that all copies of the log code in a process share. */
struct SharedSettings
{
    explicit SharedSettings(const LogContext &initial)
        : context(initial)
        , threshold(static_cast<qint32>(initial.logLevel.getLogLevel()))
    { }

    LogContext context;
    std::atomic<qint32> threshold; /*!< the number of context.logLevel, for readers without a lock */
    SectionOwner sectionOwner{nullptr};
};

/*! Tells the kinds of shared objects apart; changes with their layout. */
template <typename T>
constexpr quint64 sharedObjectKind = 0;
template <>
inline constexpr quint64 sharedObjectKind<LogSinkRepository> = Q_UINT64_C(0x5a1d93c47be60101);
template <>
inline constexpr quint64 sharedObjectKind<LogFilterRepository> = Q_UINT64_C(0x5a1d93c47be60201);
template <>
inline constexpr quint64 sharedObjectKind<SharedSettings> = Q_UINT64_C(0x5a1d93c47be60301);

/*! By this a shared object proves that it is what a record promises, and of this very process. */
struct SharedObjectMark
{
    quint64 kind;
    quint64 size;
    qint64 processId;
    quint64 processStart;

    bool operator==(const SharedObjectMark &other) const
    {
        return kind == other.kind && size == other.size && processId == other.processId
            && processStart == other.processStart;
    }
};

/*!
 * An object that several copies of this code use. Only the code of the copy that uses it runs on it, since
 * the copy that made it may be unloaded: no virtual function of value is ever called.
 */
template <typename T>
struct SharedLogObject
{
    template <typename... Arguments>
    explicit SharedLogObject(const Arguments &...arguments)
        : value(arguments...)
    { }

    static SharedObjectMark Mark()
    {
        return {sharedObjectKind<T>, sizeof(SharedLogObject), QCoreApplication::applicationPid(),
                Foundation::Platform::ProcessStartTime()};
    }

    /*! The object at an address of unknown origin, null when it is none of this kind and process. */
    static SharedLogObject *FromAddress(quint64 address)
    {
        SharedObjectMark found;
        if (address % alignof(SharedLogObject) != 0
            || !Foundation::Platform::ReadOwnMemory(address, &found, sizeof(found)) || !(found == Mark()))
            return nullptr;
        return reinterpret_cast<SharedLogObject *>(static_cast<quintptr>(address));
    }

    SharedObjectMark mark = Mark(); // first: it stands at the address in the record
    QMutex mutex; /*!< guards value */
    T value;
};

} // namespace Shared::Logging::utils
