#pragma once

#include "OtherProcess.h"
#include "ServingLibrary.h"

#include <notification/RepositoryHierarchyThreadProvider.h>

#include <benchmark/benchmark.h>

/*! Measures how long the other process loads, and what that does to the event thread of this one. */
inline void measureInit(benchmark::State &state, const QStringList &arguments)
{
    WatchedApplication &application = ServingLibrary::instance().getApplication();
    auto *const provider = Tessellum::Core::RepositoryHierarchyThreadProvider::getInstance();
    for (auto _ : state) {
        OtherProcess process(arguments);
        application.beginWatch(provider->getThread());
        state.SetIterationTime(double(process.read()) / 1e9);
        const auto longest = application.endWatch();
        state.counters["blocked_ns"] = double(longest.other);
        state.counters["aim_blocked_ns"] = 1e8;
        state.counters["send_ns"] = double(longest.send);
    }
    state.counters["items"] = double(state.range(0));
}
