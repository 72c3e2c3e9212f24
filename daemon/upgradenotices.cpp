// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/upgradenotices.h"

#include "daemon/logging.h"
#include "launcher/desktopmanager.h"
#include "userbus/busstrings.h"

#include <QFileInfo>

#include <systemd/sd-bus.h>

namespace {

UserBusCall toHomeScreen(const char *method, const QStringList &arguments)
{
    return {"org.teskmobile.glossbar", "/LauncherModel", "org.teskmobile.glossbar.LauncherModel",
        method, [arguments](sd_bus_message *message) {
            int result = 0;
            for (const QString &argument : arguments)
                result = appendString(message, argument);
            return result;
        }};
}

} // namespace

UpgradeNotices::UpgradeNotices(const DesktopManager &desktopManager, QObject *parent)
    : QObject(parent), m_desktopManager(desktopManager)
{
}

void UpgradeNotices::notify(bool isUpgrading, const Done &done)
{
    m_turns.push_back({isUpgrading, done});
    if (m_turns.size() == 1)
        beginTurn();
}

void UpgradeNotices::beginTurn()
{
    qCDebug(daemonLog) << "notifyRuntimeUpgrade:"
                       << (m_turns.front().isUpgrading ? "true" : "false");
    m_desktopFiles = m_desktopManager.desktopFiles();
    goOn();
}

void UpgradeNotices::goOn()
{
    if (m_desktopFiles.isEmpty()) {
        endTurn();
        return;
    }
    const QString path = m_desktopFiles.takeFirst();
    const QString name = QFileInfo(path).baseName();
    const UserBusCall call = m_turns.front().isUpgrading
        ? toHomeScreen("updatingStarted", {name, QString(), QString(), path})
        : toHomeScreen("updatingFinished", {name});
    UserBus::instance().call(call, this, [this](UserBus::Outcome outcome) { onOutcome(outcome); });
}

void UpgradeNotices::onOutcome(UserBus::Outcome outcome)
{
    if (outcome == UserBus::Outcome::BusHangs)
        m_desktopFiles.clear();
    goOn();
}

void UpgradeNotices::endTurn()
{
    const Done done = m_turns.front().done;
    m_turns.pop_front();
    done();
    if (!m_turns.empty())
        QMetaObject::invokeMethod(this, &UpgradeNotices::beginTurn, Qt::QueuedConnection);
}
