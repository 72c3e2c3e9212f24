// SPDX-License-Identifier: BSD-3-Clause
#include "launcherchannel.h"

#include "eventlog.h"
#include "requestheader.h"

LauncherChannel::LauncherChannel(EventLog *log, int sdk) : m_log(log), m_sdk(sdk) { }

LauncherChannel::~LauncherChannel()
{
    if (m_transaction)
        gbinder_client_cancel(m_client.get(), m_transaction);
}

bool LauncherChannel::open(GBinderServiceManager *manager)
{
    GBinderRemoteObject *remote =
        gbinder_servicemanager_get_service_sync(manager, "alien.launcher", nullptr);
    m_remote.reset(remote ? gbinder_remote_object_ref(remote) : nullptr);
    return isOpen();
}

void LauncherChannel::close()
{
    m_remote.reset();
}

void LauncherChannel::send(const LauncherCall &call, const Done &done)
{
    m_queue.enqueue({call, done, true});
    next();
}

void LauncherChannel::next()
{
    while (!m_current.active && !m_queue.isEmpty()) {
        m_current = m_queue.dequeue();
        if (!start())
            finish(-1, QStringLiteral("alien.launcher can not be called"), {});
    }
}

bool LauncherChannel::start()
{
    const LauncherCall &call = m_current.call;
    // the header is Android's own, which libgbinder would write otherwise at level 29
    m_client.reset(m_remote ? gbinder_client_new(m_remote.get(), nullptr) : nullptr);
    if (!m_client)
        return false;
    const LocalRequestPointer request(gbinder_client_new_request(m_client.get()));
    const QByteArray header =
        call.interface.isEmpty() ? QByteArray() : RequestHeader::toParcel(m_sdk, call.interface);
    const QByteArray bytes = header + call.arguments;
    GBinderWriter writer;
    gbinder_local_request_init_writer(request.get(), &writer);
    gbinder_writer_append_bytes(&writer, bytes.constData(), gsize(bytes.size()));
    m_transaction =
        gbinder_client_transact(m_client.get(), call.code, call.oneway ? GBINDER_TX_FLAG_ONEWAY : 0,
            request.get(), &LauncherChannel::onReply, nullptr, this);
    return m_transaction != 0;
}

void LauncherChannel::onReply(GBinderClient *, GBinderRemoteReply *reply, int status, void *channel)
{
    QByteArray result;
    if (reply) {
        GBinderReader reader;
        gbinder_remote_reply_init_reader(reply, &reader);
        gsize size = 0;
        const void *bytes = gbinder_reader_get_data(&reader, &size);
        result = QByteArray(static_cast<const char *>(bytes), int(size));
    }
    auto *self = static_cast<LauncherChannel *>(channel);
    self->m_transaction = 0;
    self->finish(status, {}, result);
    self->next();
}

void LauncherChannel::finish(int status, const QString &error, const QByteArray &result)
{
    const Entry entry = m_current;
    m_current = {};
    QJsonObject record = entry.call.record;
    record.insert(QStringLiteral("event"), QStringLiteral("announce"));
    record.insert(QStringLiteral("code"), qint64(entry.call.code));
    record.insert(QStringLiteral("oneway"), entry.call.oneway);
    record.insert(QStringLiteral("status"), status);
    if (!result.isEmpty())
        record.insert(QStringLiteral("reply"), QString::fromLatin1(result.toHex()));
    if (!error.isEmpty())
        record.insert(QStringLiteral("error"), error);
    else if (status != 0 && entry.call.mustSucceed)
        record.insert(QStringLiteral("error"), QStringLiteral("status %1").arg(status));
    m_log->record(record);
    if (entry.done)
        entry.done(record);
}
