// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderparcel.h"
#include "binder/alienbinderservice.h"

/// A service that keeps everything of the base.
class PlainService : public AlienBinderService
{
    Q_OBJECT

public:
    PlainService() : AlienBinderService("alien.test", "test.IService", "/dev/puddlejumper", nullptr)
    {
    }

    void forceStart() { onServiceStateChanged(true); }
    void followState() { onServiceStateChanged(); }
};

/// A service that answers requests and counts what reaches it.
class EchoService : public PlainService
{
    Q_OBJECT

public:
    void stop() override
    {
        ++stops;
        PlainService::stop();
    }

    int stops = 0;
    bool handles = true;
    quint32 lastCode = 0;
    qint32 lastValue = 0;

protected:
    bool processRequest(quint32 code, AlienBinderParcel *in, AlienBinderParcel *out) override
    {
        lastCode = code;
        lastValue = in->readInt32();
        out->writeInt32(lastValue + 1);
        return handles;
    }
};

/// A service that takes gbinder's calls itself.
class RawService : public PlainService
{
    Q_OBJECT

public:
    QString interface;
    quint32 lastCode = 0;
    quint32 lastFlags = 0;
    int lastStatus = 0;

protected:
    GBinderLocalReply *onTransact(
        GBinderRemoteRequest *request, quint32 code, quint32 flags, int *status) override
    {
        interface = QString::fromUtf8(gbinder_remote_request_interface(request));
        lastCode = code;
        lastFlags = flags;
        lastStatus = *status;
        *status = 77;
        return nullptr;
    }
};
