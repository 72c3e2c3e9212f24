// SPDX-License-Identifier: BSD-3-Clause
#include "services/alienservice.h"

#include "packageinstaller.h"
#include "windowlist.h"

AlienService::AlienService(
    int sdk, EventLog *log, PackageInstaller *installer, WindowList *windows, int installAnswer)
    : AndroidService(
          QStringLiteral("alien"), QStringLiteral("alien.applications.IAlienService"), sdk, log),
      m_installer(installer),
      m_windows(windows),
      m_installAnswer(installAnswer)
{
    add("launchPackage", {1, 1, 1},
        [this](AndroidParcel &request) { return launchPackage(request); });
    add("installPackage", {NotThere, 2, 2},
        [this](AndroidParcel &request) { return installPackage(request); });
}

AndroidService::Call AlienService::launchPackage(AndroidParcel &request)
{
    const QString package = request.readString16();
    return {{{QStringLiteral("package"), describe(package)}},
        [this, package](AndroidReply &) { m_windows->open(package); }};
}

AndroidService::Call AlienService::installPackage(AndroidParcel &request)
{
    const QString path = request.readString16();
    const AndroidParcel::Binder binder = request.readBinder();
    const std::shared_ptr<GBinderRemoteObject> observer = object(binder);
    return {
        {{QStringLiteral("path"), describe(path)}, {QStringLiteral("observer"), describe(binder)}},
        [this, path, observer](AndroidReply &reply) {
            // this interface has no exceptions: the answer is the word alone
            reply.writeInt32(m_installAnswer);
            if (m_installAnswer != 0)
                m_installer->install(path, observer);
        }};
}
