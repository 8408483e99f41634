#pragma once

#include "ToolError.h"

#include <appconfig/interfaces/RepositoryInterface.h>
#include <appdata/EntryLoading.h>
#include <appdata/interfaces/RepositoryInterface.h>
#include <core/Library.h>

#include <QDeadlineTimer>

#include <memory>

namespace Tessellum::Tool {

/*! The configuration of the running library; fails the command if it does not run. */
inline std::shared_ptr<AppConfig::Interfaces::RepositoryInterface> Configuration()
{
    const Core::CoreInterface *const core = getCoreInterface();
    const auto repository = core ? core->getAppConfigRepository() : nullptr;
    if (!repository)
        Fail(QStringLiteral("the library does not run"));
    return repository;
}

/*! The recorded data of the running library; fails the command if it does not run. */
inline std::shared_ptr<AppData::Interfaces::RepositoryInterface> RecordedData()
{
    const Core::CoreInterface *const core = getCoreInterface();
    const auto repository = core ? core->getAppDataRepository() : nullptr;
    if (!repository)
        Fail(QStringLiteral("the library does not run"));
    return repository;
}

/*! Returns when an attached entry has all that its storage holds; fails the command if it cannot be read, or
 * if that takes minutes: a medium that hangs must not hang a script. */
inline void WaitUntilLoaded(const std::shared_ptr<AppData::Interfaces::DataEntryInterface> &entry)
{
    constexpr int longestMs = 300000;
    if (!AppData::WaitUntilLoaded(entry, QDeadlineTimer(longestMs)))
        Fail(QStringLiteral("an entry cannot be read"));
}

/*! Starts the library for the length of a scope; fails the command if it does not start. */
class RunningLibrary
{
public:
    RunningLibrary()
    {
        if (initializeLibrary() != 0)
            Fail(QStringLiteral("the library does not start"));
    }
    ~RunningLibrary() { uninitializeLibrary(); }
    Q_DISABLE_COPY_MOVE(RunningLibrary)
};

} // namespace Tessellum::Tool
