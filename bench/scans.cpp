// SPDX-License-Identifier: BSD-3-Clause
#include "bench/plainfiles.h"
#include "bench/samplelaunchers.h"
#include "config/apkconfig.h"
#include "config/paths.h"
#include "launcher/desktopmanager.h"

#include <benchmark/benchmark.h>

namespace {

using namespace SampleLaunchers;

void launchersComplete(benchmark::State &state, int count)
{
    const QVector<ApkLauncher> all = launchers(count);
    DesktopManager manager{ApkConfig()};
    announce(manager, all);
    // The first one also sweeps what a killed process left, once in the life of a process.
    manager.onLaunchersComplete();
    for (auto _ : state)
        manager.onLaunchersComplete();
    removeFiles(generatedFiles(manager, all));
}

void readingTheEntries(benchmark::State &state, int count)
{
    const QVector<ApkLauncher> all = launchers(count);
    DesktopManager manager{ApkConfig()};
    announce(manager, all);
    const std::vector<std::string> entries = desktopEntries(manager, all);
    PlainFiles plain;
    for (auto _ : state) {
        benchmark::DoNotOptimize(PlainFiles::list(Paths::applications));
        benchmark::DoNotOptimize(plain.readAll(entries));
    }
    removeFiles(generatedFiles(manager, all));
}

BENCHMARK_CAPTURE(launchersComplete, 200, 200)
    ->Name("complete/subject")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(readingTheEntries, 200, 200)
    ->Name("complete/yardstick")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(launchersComplete, 2000, 2000)
    ->Name("complete2000/subject")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(readingTheEntries, 2000, 2000)
    ->Name("complete2000/yardstick")
    ->Unit(benchmark::kMicrosecond);

} // namespace
