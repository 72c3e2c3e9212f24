// SPDX-License-Identifier: BSD-3-Clause
// Install and remove requests that wait for the runtime, and what releases them.
#include "daemon/lumdaemon.h"

#include "clients/alienservicemonitor.h"
#include "daemon/logging.h"

#include <QSet>

bool LumDaemon::isReadyForPackageMods()
{
    return m_packageManager.client() && AlienServiceMonitor::instance()->client();
}

void LumDaemon::triggerPackageMod(const PackageMod &mod)
{
    if (mod.install) {
        qCDebug(daemonLog) << "Installing" << mod.filename;
        m_packageManager.installPackage(mod.filename, mod.silent);
    } else {
        qCDebug(daemonLog) << "Uninstalling" << mod.filename;
        m_monitor.awaitRemoval(mod.filename);
        if (!m_packageManager.deletePackage(mod.filename, mod.silent))
            m_monitor.tellRemoveFinished(mod.filename, false);
    }
}

void LumDaemon::processDeferredMods()
{
    // The first of several requests for a name wins, whatever the later ones ask for.
    QSet<QString> handled;
    while (!m_deferredMods.isEmpty()) {
        const PackageMod mod = m_deferredMods.takeFirst();
        if (handled.contains(mod.filename))
            continue;
        triggerPackageMod(mod);
        handled.insert(mod.filename);
    }
    updateMonitor();
}

// Whichever comes up last, the runtime's own service or the package manager, releases the
// installs and removes. Launches are released by the former alone: they wait on when the
// package manager is the later one.
void LumDaemon::onAlienServiceAvailable(bool connected)
{
    if (!connected || !m_packageManager.client())
        return;
    drainDeferredLaunches();
    // Once more: the launches are calls that block, and what is handed to a package manager that
    // has gone meanwhile would be lost rather than kept.
    if (m_packageManager.client())
        processDeferredMods();
}

void LumDaemon::onPackageManagerAvailable(bool connected)
{
    if (connected && AlienServiceMonitor::instance()->client())
        processDeferredMods();
}
