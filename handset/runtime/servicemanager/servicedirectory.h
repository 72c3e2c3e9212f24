// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

class AndroidParcel;

/// The names under which services are registered, and the protocol by which Android asks
/// for them and adds to them: android.os.IServiceManager of the levels 27 to 29.
///
/// Knows nothing of the driver: it says which handles it keeps and which it gives up.
class ServiceDirectory
{
public:
    struct Request
    {
        quint32 code = 0;
        QByteArray data;
        QVector<quint64> objects; ///< offsets of the objects in data
        qint64 senderPid = 0;
    };

    struct Answer
    {
        qint32 status = 0; ///< when not 0 the answer is this status and nothing else
        QByteArray data;
        std::optional<quint32> handle; ///< the answer is this object
    };

    struct Callbacks
    {
        std::function<void(quint32)> keepHandle; ///< before the request's buffer is freed
        std::function<void(quint32)> releaseHandle;
        std::function<void(const QJsonObject &)> report; ///< what happened, one event a call
    };

    ServiceDirectory(int sdk, Callbacks callbacks);

    Answer transact(const Request &request);
    /// The process behind a handle is gone. Its services are found no more; their names stay
    /// in the list.
    void handleDied(quint32 handle);

private:
    static constexpr quint32 DeadHandle = 0; ///< the service manager's own, nobody else's

    struct Service
    {
        QString name;
        quint32 handle = DeadHandle;
        qint32 dumpPriority = 0;
    };

    Answer getService(AndroidParcel &parcel, QJsonObject &event) const;
    Answer addService(AndroidParcel &parcel, QJsonObject &event);
    Answer listServices(AndroidParcel &parcel, QJsonObject &event) const;
    void add(const Service &service);

    const int m_sdk;
    const Callbacks m_callbacks;
    QVector<Service> m_services; ///< the newest first
};
