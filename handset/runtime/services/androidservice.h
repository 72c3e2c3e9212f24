// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "androidparcel.h"
#include "gbinderhandles.h"

#include <QJsonObject>

#include <functional>

class EventLog;

/// A service of the simulated Android: one class and one source file for each, which says
/// what its codes mean. Registering, the request header, the check that every byte was
/// read, the answer and the record of the call are here.
class AndroidService
{
public:
    /// @param sdk 27 to 29; codes and layouts depend on it.
    AndroidService(QString name, QString interface, int sdk, EventLog *log);
    virtual ~AndroidService();
    Q_DISABLE_COPY_MOVE(AndroidService)

    QString name() const { return m_name; }
    /// Publishes the service under its name. @return false when that was refused.
    bool publish(GBinderServiceManager *manager);

protected:
    struct Answer
    {
        QString method; ///< for the record
        QJsonObject arguments; ///< for the record, as they were read
        std::function<void(GBinderWriter *)> write; ///< the result; none leaves it empty
        qint32 status = 0; ///< when not 0 the caller gets this and no result
    };

    /// Reads the arguments of a call and says what it is answered.
    /// @param request stands behind the header; what is read wrong is a failure of it.
    virtual Answer transact(quint32 code, AndroidParcel &request) = 0;

    int sdk() const { return m_sdk; }
    /// The answer to a code that the service does not know.
    static Answer unknownCode();
    /// An object as the record shows it: null, or where it lives.
    static QJsonValue describe(const AndroidParcel::Binder &object);
    /// A text as the record shows it: null where it is Android's null.
    static QJsonValue describe(const QString &text);

private:
    static GBinderLocalReply *onTransact(GBinderLocalObject *object, GBinderRemoteRequest *request,
        guint code, guint flags, int *status, void *service);
    Answer handle(GBinderRemoteRequest *request, quint32 code, quint32 flags);

    const QString m_name;
    const QString m_interface;
    const int m_sdk;
    EventLog *const m_log;
    LocalObjectPointer m_object;
};
