// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"
#include "daemon/logging.h"
#include "daemon/lumdaemon.h"
#include "daemon/seat.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

#include <cstdio>
#include <cstdlib>
#include <optional>

#include <sys/prctl.h>
#include <unistd.h>

namespace {

enum ExitCode { NoGlib = 1, NotRoot = 2, NoSeatMonitor = 3 };

constexpr char translations[] = "/usr/share/translations";

QString userBusAddress(uid_t uid)
{
    return QStringLiteral("unix:path=/run/user/%1/dbus/user_bus_socket").arg(uid);
}

// gbinder tells of everything on glib's main context.
bool servesGlib()
{
    return QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib");
}

void installEngineeringEnglish(QTranslator &translator)
{
    translator.load(
        QStringLiteral("lumd_eng_en"), QLatin1String(translations), QString(), QString());
    QCoreApplication::installTranslator(&translator);
}

void installLocale(QTranslator &translator)
{
    translator.load(QLocale(), QStringLiteral("lumd"), QStringLiteral("-"),
        QLatin1String(translations), QString());
    QCoreApplication::installTranslator(&translator);
}

} // namespace

int main(int argc, char *argv[])
{
    if (getuid() != 0) {
        std::fprintf(stderr, "%s: Not running as root, exiting.\n", argv[0]);
        return NotRoot;
    }

    const std::optional<uid_t> uid = waitForActiveSeat();
    if (!uid)
        return NoSeatMonitor;

    // One huge page in a thread's stack would be more memory than all that the daemon holds.
    prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0);

    // Before anything can open the session bus.
    qputenv("DBUS_SESSION_BUS_ADDRESS", userBusAddress(*uid).toUtf8());

    const QCoreApplication application(argc, argv);
    if (!servesGlib()) {
        qCCritical(daemonLog) << "The event loop does not serve glib, exiting.";
        return NoGlib;
    }

    // The translator installed last is asked first: the user's language wins.
    QTranslator engineeringEnglish;
    installEngineeringEnglish(engineeringEnglish);
    QTranslator locale;
    installLocale(locale);

    ApkConfig config;
    std::optional<LumDaemon> daemon(std::in_place, &config);
    const int code = QCoreApplication::exec();
    const bool isCallOut = daemon->hasUnansweredCall();
    daemon.reset();
    // libgbinder's own end waits for each call that is out, also for one that is never answered.
    if (isCallOut)
        std::_Exit(code);
    return code;
}
