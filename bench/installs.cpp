// SPDX-License-Identifier: BSD-3-Clause
#include "bench/readydaemon.h"

#include <QDir>
#include <QProcess>
#include <QtTest>

#include <benchmark/benchmark.h>

namespace {

constexpr int apkMegabytes = 100;

const QString source = QStringLiteral("/run/apps/app.apk");
const QString staged = QStringLiteral("/home/.android/data/aas-staging/app/incoming/app.apk");

void requireStaged()
{
    if (QFileInfo(staged).size() != qint64(apkMegabytes) << 20)
        qFatal("%s is not the whole file", qPrintable(staged));
}

void installOnTheBus(benchmark::State &state)
{
    startReadyDaemon();
    makeFile(source, QByteArray(apkMegabytes << 20, 'x'));
    for (auto _ : state) {
        const QDBusMessage reply = DaemonFixture::call(QStringLiteral("installFile"), {source});
        state.PauseTiming();
        if (reply.arguments() != QVariantList{true})
            qFatal("the install was not accepted: %s", qPrintable(errorOf(reply)));
        requireStaged();
        QFile::remove(staged);
        state.ResumeTiming();
    }
}

void copyByCp(benchmark::State &state)
{
    QDir().mkpath(QFileInfo(staged).path());
    makeFile(source, QByteArray(apkMegabytes << 20, 'x'));
    for (auto _ : state) {
        const int exitCode = QProcess::execute(QStringLiteral("cp"), {source, staged});
        state.PauseTiming();
        if (exitCode != 0)
            qFatal("cp failed");
        requireStaged();
        QFile::remove(staged);
        state.ResumeTiming();
    }
}

// Another process does the work: it is the time by the clock that tells.
BENCHMARK(installOnTheBus)->Name("install/subject")->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(copyByCp)->Name("install/yardstick")->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace
