// SPDX-License-Identifier: BSD-3-Clause
// What the user is told.
#include "daemon/lumdaemon.h"

#include <notification.h>

#include <QCoreApplication>

namespace {

constexpr char warningIcon[] = "icon-lock-warning";
constexpr char normalIcon[] = "icon-s-android";

} // namespace

void LumDaemon::publishNotification(const QString &text, bool isWarning)
{
    Notification notification;
    notification.setIsTransient(true);
    if (isWarning) {
        notification.setUrgency(Notification::Critical);
        notification.setIcon(QLatin1String(warningIcon));
    } else {
        notification.setIcon(QLatin1String(normalIcon));
    }
    notification.setPreviewBody(text);
    notification.publish();
}

void LumDaemon::notifyLaunchPending(const QString &package)
{
    publishNotification(
        qtTrId("lumd-launch_alien_to_start_android_app").arg(m_desktopManager.appName(package)),
        false);
}

void LumDaemon::onNotifyInstallationResult(
    bool success, const QString &packageName, const QString &message)
{
    Notification notification;
    notification.setAppName(qtTrId("lumd-ap-name"));
    notification.setIsTransient(true);
    notification.setIcon(QLatin1String(normalIcon));
    notification.setAppIcon(QLatin1String(normalIcon));
    QString summary = success ? qtTrId("lumd-install-success") : qtTrId("lumd-install-failed");
    if (!packageName.isEmpty())
        summary += QLatin1String(": ") + m_desktopManager.appName(packageName);
    notification.setPreviewSummary(summary);
    if (!message.isEmpty())
        notification.setPreviewBody(message);
    notification.publish();
}

void LumDaemon::onNotifyUninstallationResult(bool success, const QString &packageName)
{
    Notification notification;
    notification.setAppName(qtTrId("lumd-ap-name"));
    notification.setIcon(QLatin1String(normalIcon));
    notification.setAppIcon(QLatin1String(normalIcon));
    const QString outcome =
        success ? qtTrId("lumd-uninstall-success") : qtTrId("lumd-uninstall-failed");
    notification.setPreviewSummary(outcome + QLatin1String(": ") + packageName);
    notification.publish();
}
