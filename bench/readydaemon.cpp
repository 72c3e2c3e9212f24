// SPDX-License-Identifier: BSD-3-Clause
#include "bench/readydaemon.h"

namespace {

class ReadyDaemon : public DaemonFixture
{
public:
    ReadyDaemon()
    {
        makeFile(QStringLiteral("/opt/alien/system.img"));
        makeFile(QStringLiteral("/opt/alien/build.prop"),
            QByteArrayLiteral("ro.build.version.sdk=27\n"));
        android->registerService(QStringLiteral("package"));
        android->registerService(QStringLiteral("alien"));
        daemon->setLoggingRules(QStringLiteral("com.tovra.lumd.binder=true"));
        systemd.setUnitState(QStringLiteral("active"), QStringLiteral("running"));
        const QString connected =
            QStringLiteral("debug com.tovra.lumd.binder Connected to Alien Service ");
        if (!start() || !daemon->waitForLine(connected + QStringLiteral("package"))
            || !daemon->waitForLine(connected + QStringLiteral("alien")))
            qFatal("the daemon does not connect to the runtime");
    }
};

} // namespace

void startReadyDaemon()
{
    static const ReadyDaemon ready;
}
