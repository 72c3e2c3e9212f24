// SPDX-License-Identifier: BSD-3-Clause
#include "bench/plainfiles.h"
#include "bench/twohundredlaunchers.h"
#include "config/apkconfig.h"
#include "launcher/desktopmanager.h"

#include <QFile>
#include <QSaveFile>

#include <benchmark/benchmark.h>

namespace {

using namespace TwoHundredLaunchers;

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

void announcedAgain(benchmark::State &state)
{
    const QVector<ApkLauncher> all = launchers();
    DesktopManager manager{ApkConfig()};
    announce(manager, all);
    for (auto _ : state)
        announce(manager, all);
    removeFiles(generatedFiles(manager, all));
}

void readingTheFiles(benchmark::State &state)
{
    const QVector<ApkLauncher> all = launchers();
    DesktopManager manager{ApkConfig()};
    announce(manager, all);
    const std::vector<std::string> files = generatedFiles(manager, all);
    PlainFiles plain;
    for (auto _ : state)
        benchmark::DoNotOptimize(plain.readAll(files));
    removeFiles(files);
}

void announcedFirst(benchmark::State &state)
{
    const QVector<ApkLauncher> all = launchers();
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

void writingTheFiles(benchmark::State &state)
{
    const QVector<ApkLauncher> all = launchers();
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

BENCHMARK(announcedAgain)->Name("again/subject")->Unit(benchmark::kMicrosecond);
BENCHMARK(readingTheFiles)->Name("again/yardstick")->Unit(benchmark::kMicrosecond);
BENCHMARK(announcedFirst)->Name("first/subject")->Unit(benchmark::kMicrosecond);
BENCHMARK(writingTheFiles)->Name("first/yardstick")->Unit(benchmark::kMicrosecond);

} // namespace
