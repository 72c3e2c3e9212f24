// SPDX-License-Identifier: BSD-3-Clause
#include "bench/readydaemon.h"

#include <QDir>
#include <QProcess>

#include <chrono>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

namespace {

/// The processor time of the programs that have ended, user's and system's.
double secondsOfChildren()
{
    const auto seconds = [](const timeval &time) {
        const auto whole =
            std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
        return std::chrono::duration<double>(whole).count();
    };
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void runEach(benchmark::State &state, const QString &program, const QStringList &arguments)
{
    startReadyDaemon();
    for (const QString &name : QDir(QStringLiteral(CATALOGUES)).entryList({QStringLiteral("*.qm")}))
        QFile::copy(QStringLiteral(CATALOGUES "/") + name,
            QStringLiteral("/usr/share/translations/") + name);
    for (auto _ : state) {
        const double before = secondsOfChildren();
        QProcess process;
        process.start(program, arguments, QIODevice::ReadOnly);
        if (!process.waitForFinished() || process.exitCode() != 0
            || !process.readAllStandardOutput().contains("active"))
            qFatal("%s does not tell the state", qPrintable(program));
        state.SetIterationTime(secondsOfChildren() - before);
    }
}

void statusByLumctl(benchmark::State &state)
{
    runEach(state, QStringLiteral(LUMCTL_PROGRAM), {QStringLiteral("status")});
}

void propertyByBusctl(benchmark::State &state)
{
    runEach(state, QStringLiteral("/usr/bin/busctl"),
        {QStringLiteral("get-property"), QStringLiteral("com.tovra.lumd"),
            QStringLiteral("/com/tovra/lumd/monitor"), QStringLiteral("com.tovra.lumd.Monitor1"),
            QStringLiteral("RuntimeState")});
}

BENCHMARK(statusByLumctl)->Name("status/subject")->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(propertyByBusctl)
    ->Name("status/yardstick")
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();

} // namespace
