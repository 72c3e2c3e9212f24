// SPDX-License-Identifier: BSD-3-Clause
#include "packageinstaller.h"

#include "eventlog.h"
#include "launchercalls.h"
#include "launcherchannel.h"
#include "windowlist.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTimer>

namespace {

/// Where Android's /data lies on the host.
QString hostPath(const QString &path)
{
    return QStringLiteral("/home/.android") + path;
}

// android.content.pm.PackageManager
enum ReturnCode : qint32 {
    Succeeded = 1,
    DeleteFailedInternalError = -1,
    InstallFailedInvalidUri = -3,
    InstallParseFailedNotApk = -100,
    InstallParseFailedBadPackageName = -106
};

// The transactions of the two observers, numbered from 1 in the order of their interfaces.
constexpr char InstallObserver[] = "android.content.pm.IPackageInstallObserver2";
constexpr quint32 OnPackageInstalled = 2;
constexpr char DeleteObserver[] = "android.content.pm.IPackageDeleteObserver";
constexpr quint32 PackageDeleted = 1;

void writeString(GBinderWriter *writer, const QString &text)
{
    gbinder_writer_append_string16_utf16(
        writer, text.isNull() ? nullptr : text.utf16(), text.size());
}

/// The Bundle that comes with a success: whether an older version was replaced.
void writeExtras(GBinderWriter *writer, bool replaced)
{
    constexpr qint32 bundleMagic = 0x4C444E42; // android.os.BaseBundle
    constexpr qint32 booleanValue = 9; // android.os.Parcel
    gbinder_writer_append_int32(writer, 1);
    const gsize lengthPosition = gbinder_writer_bytes_written(writer);
    gbinder_writer_append_int32(writer, 0);
    gbinder_writer_append_int32(writer, bundleMagic);
    const gsize start = gbinder_writer_bytes_written(writer);
    gbinder_writer_append_int32(writer, 1);
    writeString(writer, QStringLiteral("android.intent.extra.REPLACING"));
    gbinder_writer_append_int32(writer, booleanValue);
    gbinder_writer_append_int32(writer, replaced ? 1 : 0);
    gbinder_writer_overwrite_int32(
        writer, lengthPosition, gint32(gbinder_writer_bytes_written(writer) - start));
}

QJsonValue describe(const QString &text)
{
    return text.isNull() ? QJsonValue() : QJsonValue(text);
}

} // namespace

struct PackageInstaller::Result
{
    qint32 returnCode = Succeeded;
    QString package;
    QString message;
};

PackageInstaller::PackageInstaller(const Environment &environment, int delay)
    : m_environment(environment), m_delay(delay)
{
}

void PackageInstaller::install(const QString &path, const Observer &observer)
{
    QTimer::singleShot(m_delay, this, [this, path, observer] { carryOutInstall(path, observer); });
}

void PackageInstaller::remove(const QString &package, const Observer &observer)
{
    QTimer::singleShot(
        m_delay, this, [this, package, observer] { carryOutRemove(package, observer); });
}

PackageInstaller::Result PackageInstaller::readApk(const QString &path, AndroidApp *app) const
{
    QFile file(hostPath(path));
    // Android's installer is not root
    if (!file.permissions().testFlag(QFileDevice::ReadOther) || !file.open(QIODevice::ReadOnly))
        return {InstallFailedInvalidUri, {}, QStringLiteral("Failed to open %1").arg(path)};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject())
        return {InstallParseFailedNotApk, {}, QStringLiteral("Failed to parse %1").arg(path)};
    const QJsonObject json = document.object();
    QString error;
    *app = AndroidApp::fromJson(json, QFileInfo(file).path(), &error);
    if (!error.isEmpty())
        return {InstallParseFailedBadPackageName, {}, error};
    if (app->codeBytes == 0)
        app->codeBytes = file.size();
    return {json.value(QLatin1String("fail")).toInt(Succeeded), app->package,
        json.value(QLatin1String("message")).toVariant().toString()};
}

void PackageInstaller::carryOutInstall(const QString &path, const Observer &observer)
{
    AndroidApp app;
    const Result result = readApk(path, &app);
    const bool succeeded = result.returnCode == Succeeded;
    const bool replaced = m_environment.apps->contains(app.package);
    QJsonObject record{{QStringLiteral("event"), QStringLiteral("install")},
        {QStringLiteral("path"), path}, {QStringLiteral("package"), describe(result.package)},
        {QStringLiteral("returnCode"), result.returnCode},
        {QStringLiteral("message"), describe(result.message)}};
    if (replaced) {
        // the new version keeps what the old one had gathered
        const AndroidApp old = m_environment.apps->app(app.package);
        app.dataBytes = old.dataBytes;
        app.cacheBytes = old.cacheBytes;
        app.powerSaveWhitelisted = old.powerSaveWhitelisted;
    }
    if (succeeded && !m_environment.apps->add(app))
        record.insert(QStringLiteral("error"), QStringLiteral("could not store the app"));
    QVector<LauncherCall> announcements;
    if (succeeded) {
        for (const AndroidApp::Launcher &launcher : qAsConst(app.launchers))
            announcements.append(LauncherCalls::added(app, launcher, false));
    }
    const auto write = [result, succeeded, replaced](GBinderWriter *writer) {
        writeString(writer, result.package);
        gbinder_writer_append_int32(writer, guint32(result.returnCode));
        writeString(writer, result.message);
        if (succeeded)
            writeExtras(writer, replaced);
        else
            gbinder_writer_append_int32(writer, 0);
    };
    announce(announcements, [this, observer, write, record] {
        tell(observer.get(), InstallObserver, OnPackageInstalled, write, record);
    });
}

void PackageInstaller::carryOutRemove(const QString &package, const Observer &observer)
{
    const bool known = m_environment.apps->contains(package);
    const qint32 returnCode = known ? Succeeded : DeleteFailedInternalError;
    QJsonObject record{{QStringLiteral("event"), QStringLiteral("delete")},
        {QStringLiteral("package"), describe(package)}, {QStringLiteral("returnCode"), returnCode}};
    if (known && !m_environment.apps->remove(package))
        record.insert(QStringLiteral("error"), QStringLiteral("could not drop the app's file"));
    m_environment.windows->close(package);
    const auto write = [package, returnCode](GBinderWriter *writer) {
        writeString(writer, package);
        gbinder_writer_append_int32(writer, guint32(returnCode));
    };
    announce(known ? QVector<LauncherCall>{LauncherCalls::removed(package, false)}
                   : QVector<LauncherCall>(),
        [this, observer, write, record] {
            tell(observer.get(), DeleteObserver, PackageDeleted, write, record);
        });
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

void PackageInstaller::tell(GBinderRemoteObject *observer, const char *interface, quint32 code,
    const std::function<void(GBinderWriter *)> &write, QJsonObject record)
{
    record.insert(QStringLiteral("observed"), observer != nullptr);
    if (observer) {
        const ClientPointer client(gbinder_client_new(observer, interface));
        const LocalRequestPointer request(gbinder_client_new_request(client.get()));
        GBinderWriter writer;
        gbinder_local_request_init_writer(request.get(), &writer);
        write(&writer);
        // both interfaces are one-way: this waits for nobody
        const int status = gbinder_client_transact_sync_oneway(client.get(), code, request.get());
        record.insert(QStringLiteral("status"), status);
        if (status != GBINDER_STATUS_OK && !gbinder_remote_object_is_dead(observer))
            record.insert(QStringLiteral("error"), QStringLiteral("status %1").arg(status));
    }
    m_environment.log->record(record);
}
