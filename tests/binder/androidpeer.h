// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderparcel.h"
#include "binder/gbinderhandles.h"
#include "tests/support/fakegbinder/fakebinder.h"

#include <functional>

/// An Android service "peer" with a gbinder client on it: what is written into a request is
/// seen byte by byte on its side, and it answers with the bytes that a test chooses.
class AndroidPeer
{
public:
    AndroidPeer();

    GBinderClient *client() const { return m_client.get(); }
    void setReply(const FakeBinder::Reply &reply) { m_reply = reply; }

    /// What arrives when @p write fills the parcel of a request.
    FakeBinder::Request send(const std::function<void(AlienBinderParcel &)> &write);
    /// Lets @p read read a reply of these bytes.
    void receive(const QByteArray &bytes, const std::function<void(AlienBinderParcel &)> &read,
        const QVector<int> &offsets = {});

private:
    GBinder::ServiceManager m_manager;
    GBinder::RemoteObject m_remote;
    GBinder::Client m_client;
    FakeBinder::Reply m_reply;
};
