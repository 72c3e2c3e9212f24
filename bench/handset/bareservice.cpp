// SPDX-License-Identifier: BSD-3-Clause
#include <gbinder.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QObject>

/// What the daemon is held against: a service on the system bus that does nothing, or makes
/// one call of the runtime by hand.
class BareService : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tovra.bare")

public Q_SLOTS:
    void nothing(const QString &argument) { Q_UNUSED(argument) }

    bool isWhitelisted(const QString &package)
    {
        if (!m_client)
            connectToRuntime();
        // android.os.IDeviceIdleController.isPowerSaveWhitelistApp of Android 10
        constexpr guint32 code = 16;
        GBinderLocalRequest *const request = gbinder_client_new_request(m_client);
        gbinder_local_request_append_string16(request, package.toUtf8().constData());
        int status = 0;
        GBinderRemoteReply *const reply =
            gbinder_client_transact_sync_reply(m_client, code, request, &status);
        gint32 result = 0;
        if (reply && status == 0) {
            GBinderReader reader;
            gbinder_remote_reply_init_reader(reply, &reader);
            gbinder_reader_read_int32(&reader, &status);
            gbinder_reader_read_int32(&reader, &result);
        }
        gbinder_remote_reply_unref(reply);
        gbinder_local_request_unref(request);
        if (status != 0)
            qFatal("the runtime does not answer: %d", status);
        return result == 1;
    }

private:
    void connectToRuntime()
    {
        GBinderServiceManager *const manager = gbinder_servicemanager_new("/dev/puddlejumper");
        int status = 0;
        GBinderRemoteObject *const remote =
            gbinder_servicemanager_get_service_sync(manager, "deviceidle", &status);
        if (!remote)
            qFatal("the runtime has no \"deviceidle\": %d", status);
        m_client = gbinder_client_new(remote, "android.os.IDeviceIdleController");
    }

    // Kept, with all behind it, until the process ends.
    GBinderClient *m_client = nullptr;
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    BareService service;
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.registerObject(
            QStringLiteral("/com/tovra/bare"), &service, QDBusConnection::ExportAllSlots)
        || !bus.registerService(QStringLiteral("com.tovra.bare")))
        return 1;
    return application.exec();
}

#include "bareservice.moc"
