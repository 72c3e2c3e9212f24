// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"

/// Client of Android's package manager. Installs and deletes are only requested here; their
/// results arrive later, by the two signals. Without a link an operation does nothing.
class AlienPackageManager : public AlienBinderConnection
{
    Q_OBJECT

public:
    explicit AlienPackageManager(QObject *parent);
    ~AlienPackageManager() override;

    /// Installs the apk at @p path, as the runtime sees it. A @p silent request has no result.
    void installPackage(const QString &path, bool silent);
    /// A @p silent request has no result. True when the runtime took the request.
    bool deletePackage(const QString &packageName, bool silent);
    void deleteApplicationCacheFiles(const QString &packageName);
    void clearApplicationUserData(const QString &packageName);

    /// The Linux user id of the package, asked for with the PackageManager's @p flags. -1 when
    /// there is no link or no such package.
    qint32 packageUid(const QString &packageName, qint32 flags);

Q_SIGNALS:
    /// @p message tells the user why an install failed.
    void installationResultReceived(
        bool success, const QString &packageName, const QString &message);
    void uninstallationResultReceived(bool success, const QString &packageName);

private:
    static GBinderLocalReply *onObserverRequest(GBinderLocalObject *observer,
        GBinderRemoteRequest *request, guint code, guint flags, int *status, void *manager);

    void updateObservers(bool connected);
    void replaceObserver(GBinder::LocalObject &observer, const char *interface);
    int onInstallObserverRequest(GBinderRemoteRequest *request, quint32 code);
    int onDeleteObserverRequest(GBinderRemoteRequest *request, quint32 code);

    // Not AlienBinderCallback: a call on them has no reply, and they change with each connect.
    GBinder::LocalObject m_installObserver;
    GBinder::LocalObject m_deleteObserver;
    // Observers of requests made before a second connect without a disconnect: until that their
    // results may still come.
    std::vector<GBinder::LocalObject> m_replacedObservers;
};
