// SPDX-License-Identifier: BSD-3-Clause
// A simulated Android runtime: what stands behind "aliendalvik.service" on the virtual
// handset.
#include "alienruntime.h"
#include "runtimecontrol.h"

#include <QCoreApplication>

#include <glib-unix.h>

#include <csignal>
#include <cstdio>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    AlienRuntime runtime(RuntimeConfig::load());
    RuntimeControl control(&runtime);
    const QString failure = control.listen();
    if (!failure.isEmpty()) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(failure));
        return 1;
    }
    g_unix_signal_add(
        SIGTERM,
        [](void *stopped) {
            static_cast<AlienRuntime *>(stopped)->stop();
            return gboolean(G_SOURCE_CONTINUE);
        },
        &runtime);
    runtime.start();
    return QCoreApplication::exec();
}
