#include <shared/foundation/platform/StackFrames.h>
#include <shared/foundation/platform/SymbolTable.h>

#include <QMutexLocker>

#include <elfutils/libdwfl.h>
#include <link.h>
#include <unistd.h>
#include <unordered_map>
#include <unwind.h>

namespace Shared::Foundation::Platform {

namespace {

/*! How often libraries were loaded and unloaded. */
struct LoaderState
{
    unsigned long long loaded = 0;
    unsigned long long unloaded = 0;

    bool operator!=(const LoaderState &other) const
    {
        return loaded != other.loaded || unloaded != other.unloaded;
    }
};

LoaderState CurrentLoaderState()
{
    LoaderState state;
    dl_iterate_phdr(
        [](dl_phdr_info *info, size_t, void *target) {
            *static_cast<LoaderState *>(target) = {info->dlpi_adds, info->dlpi_subs};
            return 1;
        },
        &state);
    return state;
}

struct Walk
{
    QList<StackFrame> frames;
    const int limit;
};

_Unwind_Reason_Code AddFrame(_Unwind_Context *context, void *target)
{
    Walk &walk = *static_cast<Walk *>(target);
    const auto address = _Unwind_GetIP(context);
    if (address == 0)
        return _URC_END_OF_STACK;
    StackFrame frame;
    frame.address = reinterpret_cast<const void *>(address);
    walk.frames.append(frame);
    return walk.frames.size() < walk.limit ? _URC_NO_REASON : _URC_END_OF_STACK;
}

/*!
 * What the modules of this process tell of addresses. It lives as long as the process.
 *
 * The mutex guards all of it, since libdw is not for use by several threads; the loader is never called under
 * it: who loads a library holds the loader's lock while static objects of that library may log a stack.
 */
class ProcessSymbols
{
public:
    static ProcessSymbols &Instance()
    {
        static auto *const instance = new ProcessSymbols;
        return *instance;
    }

    void describe(QList<StackFrame> &frames, const LoaderState &loader)
    {
        const QMutexLocker locker(&mutex);
        if (!session || loader != known)
            begin(loader);
        for (StackFrame &frame : frames)
            describe(frame);
    }

private:
    void begin(const LoaderState &loader)
    {
        tables.clear();
        if (session)
            dwfl_end(session);
        session = dwfl_begin(&callbacks);
        known = loader;
        if (!session)
            return;
        dwfl_report_begin(session);
        dwfl_linux_proc_report(session, getpid());
        dwfl_report_end(session, nullptr, nullptr);
    }

    void describe(StackFrame &frame)
    {
        // The call itself lies before the address to which it returns.
        const Dwarf_Addr call = reinterpret_cast<Dwarf_Addr>(frame.address) - 1;
        Dwfl_Module *const module = session ? dwfl_addrmodule(session, call) : nullptr;
        if (!module)
            return;
        const char *const path
            = dwfl_module_info(module, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        const QString name = QString::fromLocal8Bit(path);
        frame.module = name.mid(name.lastIndexOf(QLatin1Char('/')) + 1);
        const auto table = tables.try_emplace(module, module).first;
        frame.function = table->second.functionAt(call);
        if (Dwfl_Line *const line = dwfl_module_getsrc(module, call)) {
            const char *const file = dwfl_lineinfo(line, nullptr, &frame.line, nullptr, nullptr, nullptr);
            frame.file = QString::fromLocal8Bit(file);
        }
    }

    // Looks on this machine alone, whatever the environment says of servers of debug information.
    const Dwfl_Callbacks callbacks{&dwfl_linux_proc_find_elf, &dwfl_build_id_find_debuginfo,
                                   &dwfl_offline_section_address, nullptr};
    QMutex mutex;
    Dwfl *session = nullptr;
    LoaderState known;
    std::unordered_map<Dwfl_Module *, SymbolTable> tables;
};

} // namespace

QList<StackFrame> CaptureStack(int limit)
{
    constexpr int ownFrames = 1;
    Walk walk{{}, limit + ownFrames};
    _Unwind_Backtrace(&AddFrame, &walk);
    QList<StackFrame> frames = walk.frames.mid(ownFrames);
    ProcessSymbols::Instance().describe(frames, CurrentLoaderState());
    return frames;
}

} // namespace Shared::Foundation::Platform
