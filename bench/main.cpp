// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/testnamespace.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

// The benchmarks work on the daemon's real paths, which lie on a tmpfs of this process alone:
// no disk is waited for, so that nothing hides the cost of the code itself.
int main(int argc, char **argv)
{
    TestNamespace::enter();
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    return benchmark::RunSpecifiedBenchmarks() > 0 ? 0 : 1;
}
