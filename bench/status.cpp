// SPDX-License-Identifier: BSD-3-Clause
#include "bench/readydaemon.h"

#include <QDir>
#include <QProcess>

#include <benchmark/benchmark.h>

namespace {

void runEach(benchmark::State &state, const QString &program, const QStringList &arguments)
{
    startReadyDaemon();
    for (const QString &name : QDir(QStringLiteral(CATALOGUES)).entryList({QStringLiteral("*.qm")}))
        QFile::copy(QStringLiteral(CATALOGUES "/") + name,
            QStringLiteral("/usr/share/translations/") + name);
    for (auto _ : state) {
        QProcess process;
        process.start(program, arguments, QIODevice::ReadOnly);
        if (!process.waitForFinished() || process.exitCode() != 0
            || !process.readAllStandardOutput().contains("active"))
            qFatal("%s does not tell the state", qPrintable(program));
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

BENCHMARK(statusByLumctl)->Name("status/subject")->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(propertyByBusctl)->Name("status/yardstick")->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace
