// SPDX-License-Identifier: BSD-3-Clause
#include "bench/plainfiles.h"
#include "bench/twohundredlaunchers.h"
#include "config/apkconfig.h"
#include "config/paths.h"
#include "launcher/desktopmanager.h"

#include <benchmark/benchmark.h>

namespace {

using namespace TwoHundredLaunchers;

void launchersComplete(benchmark::State &state)
{
    const QVector<ApkLauncher> all = launchers();
    DesktopManager manager{ApkConfig()};
    announce(manager, all);
    for (auto _ : state)
        manager.onLaunchersComplete();
    removeFiles(generatedFiles(manager, all));
}

void readingTheEntries(benchmark::State &state)
{
    const QVector<ApkLauncher> all = launchers();
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

BENCHMARK(launchersComplete)->Name("complete/subject")->Unit(benchmark::kMicrosecond);
BENCHMARK(readingTheEntries)->Name("complete/yardstick")->Unit(benchmark::kMicrosecond);

} // namespace
