// SPDX-License-Identifier: BSD-3-Clause
#include "tests/binder/androidpeer.h"

AndroidPeer::AndroidPeer()
{
    FakeBinder::registerService(
        QStringLiteral("peer"), [this](const FakeBinder::Request &) { return m_reply; });
    m_manager.reset(gbinder_servicemanager_new("/dev/puddlejumper"));
    m_remote.reset(gbinder_remote_object_ref(
        gbinder_servicemanager_get_service_sync(m_manager.get(), "peer", nullptr)));
    m_client.reset(gbinder_client_new(m_remote.get(), "test.IPeer"));
}

FakeBinder::Request AndroidPeer::send(const std::function<void(AlienBinderParcel &)> &write)
{
    const GBinder::LocalRequest request(gbinder_client_new_request(m_client.get()));
    AlienBinderParcel parcel(request.get());
    write(parcel);
    const GBinder::RemoteReply reply(
        gbinder_client_transact_sync_reply(m_client.get(), 1, request.get(), nullptr));
    return FakeBinder::requests().last();
}

void AndroidPeer::receive(const QByteArray &bytes,
    const std::function<void(AlienBinderParcel &)> &read, const QVector<int> &offsets)
{
    m_reply = FakeBinder::Reply::data(bytes);
    m_reply.offsets = offsets;
    const GBinder::LocalRequest request(gbinder_client_new_request(m_client.get()));
    const GBinder::RemoteReply reply(
        gbinder_client_transact_sync_reply(m_client.get(), 1, request.get(), nullptr));
    AlienBinderParcel parcel(reply.get());
    read(parcel);
}
