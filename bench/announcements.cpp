// SPDX-License-Identifier: BSD-3-Clause
#include "bench/plainfiles.h"
#include "bench/samplelaunchers.h"
#include "config/apkconfig.h"
#include "launcher/desktopmanager.h"

#include <QFile>
#include <QSaveFile>

#include <benchmark/benchmark.h>

namespace {

using namespace SampleLaunchers;

struct FileContents
{
    QString path;
    QByteArray bytes;
};

QVector<FileContents> contents(const std::vector<std::string> &paths)
{
    QVector<FileContents> files;
    for (const std::string &path : paths) {
        QFile file(QString::fromStdString(path));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("%s is missing", path.c_str());
        files.append({file.fileName(), file.readAll()});
    }
    return files;
}

void announcedAgain(benchmark::State &state, int count)
{
    const QVector<ApkLauncher> all = launchers(count);
    DesktopManager manager{ApkConfig()};
    announce(manager, all);
    for (auto _ : state)
        announce(manager, all);
    removeFiles(generatedFiles(manager, all));
}

void readingTheFiles(benchmark::State &state, int count)
{
    const QVector<ApkLauncher> all = launchers(count);
    DesktopManager manager{ApkConfig()};
    announce(manager, all);
    const std::vector<std::string> files = generatedFiles(manager, all);
    PlainFiles plain;
    for (auto _ : state)
        benchmark::DoNotOptimize(plain.readAll(files));
    removeFiles(files);
}

void announcedFirst(benchmark::State &state, int count)
{
    const QVector<ApkLauncher> all = launchers(count);
    for (auto _ : state) {
        state.PauseTiming();
        DesktopManager manager{ApkConfig()};
        state.ResumeTiming();
        announce(manager, all);
        state.PauseTiming();
        removeFiles(generatedFiles(manager, all));
        state.ResumeTiming();
    }
}

void writingTheFiles(benchmark::State &state, int count)
{
    const QVector<ApkLauncher> all = launchers(count);
    DesktopManager manager{ApkConfig()};
    announce(manager, all);
    const std::vector<std::string> paths = generatedFiles(manager, all);
    const QVector<FileContents> files = contents(paths);
    removeFiles(paths);
    for (auto _ : state) {
        for (const FileContents &each : files) {
            QSaveFile file(each.path);
            if (!file.open(QIODevice::WriteOnly) || file.write(each.bytes) != each.bytes.size()
                || !file.commit())
                qFatal("cannot write %s", qPrintable(each.path));
        }
        state.PauseTiming();
        removeFiles(paths);
        state.ResumeTiming();
    }
}

// The runs of 2,000 tell whether the cost of one launcher depends on how many there are.
BENCHMARK_CAPTURE(announcedAgain, 200, 200)->Name("again/subject")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(readingTheFiles, 200, 200)
    ->Name("again/yardstick")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(announcedFirst, 200, 200)->Name("first/subject")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(writingTheFiles, 200, 200)
    ->Name("first/yardstick")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(announcedAgain, 2000, 2000)
    ->Name("again2000/subject")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(readingTheFiles, 2000, 2000)
    ->Name("again2000/yardstick")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(announcedFirst, 2000, 2000)
    ->Name("first2000/subject")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(writingTheFiles, 2000, 2000)
    ->Name("first2000/yardstick")
    ->Unit(benchmark::kMicrosecond);

} // namespace
