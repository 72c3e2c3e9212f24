// SPDX-License-Identifier: BSD-3-Clause
#include "packageinstaller.h"

#include "androidparcelwriter.h"
#include "eventlog.h"
#include "launchercalls.h"
#include "launcherchannel.h"
#include "nullabletext.h"
#include "requestheader.h"
#include "windowlist.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTimer>

namespace {

// android.content.pm.PackageManager
enum ReturnCode : qint32 {
    DeleteSucceeded = 1,
    DeleteFailedInternalError = -1,
    InstallFailedInvalidApk = -2,
    InstallFailedInvalidUri = -3,
    InstallParseFailedNotApk = -100,
    InstallParseFailedBadPackageName = -106
};

// From Android 9 on a session installs, which has more to say than the method that takes a path.
constexpr int FirstSdkWithSessions = 28;

// The transactions of the observers, numbered from 1 in the order of their interfaces.
constexpr quint32 OnPackageInstalled = 2;
constexpr quint32 PackageDeleted = 1;
constexpr quint32 OnRemoveCompleted = 1;

} // namespace

PackageInstaller::PackageInstaller(const Environment &environment, const Delays &delays)
    : m_environment(environment), m_delays(delays)
{
}

void PackageInstaller::install(const QString &path, const Observer &observer)
{
    QTimer::singleShot(
        m_delays.install, this, [this, path, observer] { carryOutInstall(path, observer); });
}

void PackageInstaller::remove(const QString &package, const Observer &observer)
{
    QTimer::singleShot(
        m_delays.install, this, [this, package, observer] { carryOutRemove(package, observer); });
}

void PackageInstaller::clearCache(const QString &package, const Observer &observer)
{
    clear(package, true, observer);
}

void PackageInstaller::clearData(const QString &package, const Observer &observer)
{
    clear(package, false, observer);
}

InstallResult PackageInstaller::readApk(const QString &path, AndroidApp *app) const
{
    const QFileInfo info(m_environment.dataRoot + path);
    QFile file(info.filePath());
    const bool sessions = m_environment.sdk >= FirstSdkWithSessions;
    // DefaultContainerService.getMinimalPackageInfo knows these two failures, and no words
    if (!sessions && !info.exists())
        return InstallResult::failure(InstallFailedInvalidUri);
    const auto failure = [sessions](qint32 code, const QString &message) {
        return sessions ? InstallResult::failure(code, message)
                        : InstallResult::failure(InstallFailedInvalidApk);
    };
    // Android's installer is not root
    if (!file.permissions().testFlag(QFileDevice::ReadOther) || !file.open(QIODevice::ReadOnly))
        return failure(InstallFailedInvalidUri, QStringLiteral("Failed to open %1").arg(path));
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject())
        return failure(InstallParseFailedNotApk, QStringLiteral("Failed to parse %1").arg(path));
    const QJsonObject json = document.object();
    QString error;
    *app = AndroidApp::fromJson(json, info.path(), &error);
    if (!error.isEmpty())
        return failure(InstallParseFailedBadPackageName, error);
    if (app->codeBytes == 0)
        app->codeBytes = file.size();
    return InstallResult::fromApk(app->package, json);
}

void PackageInstaller::carryOutInstall(const QString &path, const Observer &observer)
{
    AndroidApp app;
    InstallResult result = readApk(path, &app);
    result.replaced = m_environment.apps->contains(app.package);
    QJsonObject record{{QStringLiteral("event"), QStringLiteral("install")},
        {QStringLiteral("path"), path}, {QStringLiteral("package"), nullableText(result.package)},
        {QStringLiteral("returnCode"), result.returnCode},
        {QStringLiteral("message"), nullableText(result.message)}};
    if (result.replaced) {
        // the new version keeps what the old one had gathered
        const AndroidApp old = m_environment.apps->app(app.package);
        app.dataBytes = old.dataBytes;
        app.cacheBytes = old.cacheBytes;
        app.powerSaveWhitelisted = old.powerSaveWhitelisted;
    }
    if (result.succeeded() && !m_environment.apps->add(app))
        record.insert(QStringLiteral("error"), QStringLiteral("could not store the app"));
    QVector<LauncherCall> announcements;
    if (result.succeeded()) {
        for (const AndroidApp::Launcher &launcher : qAsConst(app.launchers))
            announcements.append(LauncherCalls::added(app, launcher, false));
    }
    announce(announcements, [this, observer, result, record] {
        tell(observer.get(), QStringLiteral("android.content.pm.IPackageInstallObserver2"),
            OnPackageInstalled, result.toParcel(), record);
    });
}

void PackageInstaller::carryOutRemove(const QString &package, const Observer &observer)
{
    const bool known = m_environment.apps->contains(package);
    const qint32 returnCode = known ? DeleteSucceeded : DeleteFailedInternalError;
    QJsonObject record{{QStringLiteral("event"), QStringLiteral("delete")},
        {QStringLiteral("package"), nullableText(package)},
        {QStringLiteral("returnCode"), returnCode}};
    if (known && !m_environment.apps->remove(package))
        record.insert(QStringLiteral("error"), QStringLiteral("could not drop the app's file"));
    m_environment.windows->close(package);
    AndroidParcelWriter arguments;
    arguments.writeString16(package);
    arguments.writeInt32(returnCode);
    announce(known ? QVector<LauncherCall>{LauncherCalls::removed(package, false)}
                   : QVector<LauncherCall>(),
        [this, observer, bytes = arguments.bytes(), record] {
            tell(observer.get(), QStringLiteral("android.content.pm.IPackageDeleteObserver"),
                PackageDeleted, bytes, record);
        });
}

void PackageInstaller::clear(const QString &package, bool cacheAlone, const Observer &observer)
{
    QTimer::singleShot(m_delays.clear, this,
        [this, package, cacheAlone, observer] { carryOutClear(package, cacheAlone, observer); });
}

void PackageInstaller::carryOutClear(
    const QString &package, bool cacheAlone, const Observer &observer)
{
    const bool known = m_environment.apps->contains(package);
    m_environment.apps->change(package, [cacheAlone](AndroidApp &app) {
        app.dataBytes = cacheAlone ? app.dataBytes - app.cacheBytes : 0;
        app.cacheBytes = 0;
    });
    if (!cacheAlone)
        m_environment.windows->close(package);
    AndroidParcelWriter arguments;
    arguments.writeString16(package);
    arguments.writeInt32(known ? 1 : 0);
    tell(observer.get(), QStringLiteral("android.content.pm.IPackageDataObserver"),
        OnRemoveCompleted, arguments.bytes(),
        {{QStringLiteral("event"), QStringLiteral("clear")},
            {QStringLiteral("what"), cacheAlone ? QStringLiteral("cache") : QStringLiteral("data")},
            {QStringLiteral("package"), nullableText(package)},
            {QStringLiteral("succeeded"), known}});
}

void PackageInstaller::announce(
    const QVector<LauncherCall> &calls, const std::function<void()> &done)
{
    if (calls.isEmpty() || !m_environment.launcher->isOpen()) {
        done();
        return;
    }
    for (int i = 0; i < calls.size(); ++i) {
        const bool isLast = i + 1 == calls.size();
        m_environment.launcher->send(calls.at(i), [isLast, done](const QJsonObject &) {
            if (isLast)
                done();
        });
    }
}

void PackageInstaller::tell(GBinderRemoteObject *observer, const QString &interface, quint32 code,
    const QByteArray &arguments, QJsonObject record)
{
    record.insert(QStringLiteral("observed"), observer != nullptr);
    if (observer) {
        const QByteArray bytes = RequestHeader::toParcel(m_environment.sdk, interface) + arguments;
        const ClientPointer client(gbinder_client_new(observer, nullptr));
        const LocalRequestPointer request(gbinder_client_new_request(client.get()));
        GBinderWriter writer;
        gbinder_local_request_init_writer(request.get(), &writer);
        gbinder_writer_append_bytes(&writer, bytes.constData(), gsize(bytes.size()));
        // all three interfaces are one-way: this waits for nobody
        const int status = gbinder_client_transact_sync_oneway(client.get(), code, request.get());
        record.insert(QStringLiteral("status"), status);
        if (status != GBINDER_STATUS_OK && !gbinder_remote_object_is_dead(observer))
            record.insert(QStringLiteral("error"), QStringLiteral("status %1").arg(status));
    }
    m_environment.log->record(record);
}
