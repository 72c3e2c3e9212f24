// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "androidparcel.h"
#include "gbinderhandles.h"
#include "services/androidreply.h"
#include "services/heldcalls.h"

#include <QElapsedTimer>
#include <QHash>
#include <QJsonObject>

#include <functional>
#include <memory>
#include <optional>

class EventLog;

/// A service of the simulated Android: one class and one source file for each, which says
/// what its codes mean. Registering, the request header, the check that every byte was
/// read, what a refusal looks like and the record of the call are here.
class AndroidService
{
public:
    /// A request that was read.
    struct Call
    {
        QJsonObject arguments; ///< for the record
        /// Does what was asked for and writes the answer. Runs only when every byte of the
        /// request was right; none answers nothing.
        std::function<void(AndroidReply &)> carryOut;
        QString damage = {}; ///< what is wrong with it that Android passes over; null for nothing
    };

    /// What goes back to the caller.
    struct Answer
    {
        qint32 status = 0; ///< of the transaction; when not 0 nothing else goes back
        QByteArray data;
    };

    /// A request as it was taken.
    struct Reading
    {
        QJsonObject record; ///< for the event log
        std::function<Answer()> answer; ///< carries it out, if it is right
    };

    /// How a call fails that is made to fail.
    struct Failure
    {
        qint32 status = 0; ///< of the transaction
        qint32 exception = 0; ///< of android.os.Parcel, where the status is 0
    };

    /// @param sdk 27 to 29; codes and layouts depend on it.
    AndroidService(QString name, QString interface, int sdk, EventLog *log);
    virtual ~AndroidService();
    Q_DISABLE_COPY_MOVE(AndroidService)

    QString name() const { return m_name; }
    /// Publishes the service under its name. @return false when that was refused.
    bool publish(GBinderServiceManager *manager);
    /// Reads the arguments of a call and carries nothing out.
    /// @param request stands behind the header; what is read wrong, a code that this level
    /// does not have and bytes left over are failures of it.
    /// @param method gets its name for the record.
    Call read(quint32 code, AndroidParcel &request, QString *method) const;
    /// Takes a whole request with its header, and carries nothing out.
    Reading take(quint32 code, const QByteArray &data, bool oneway);
    /// Lets the next call that is right fail this way.
    void failNext(const Failure &failure) { m_failure = failure; }
    /// Makes the service slow, or hang. A call that is held was recorded when it came; it is
    /// carried out when it is answered.
    HeldCalls *heldCalls() { return &m_held; }

protected:
    using Reader = std::function<Call(AndroidParcel &)>;
    /// A method's transaction code by level; NotThere where the level has no such method.
    struct Codes
    {
        quint32 sdk27;
        quint32 sdk28;
        quint32 sdk29;
    };
    static constexpr quint32 NotThere = 0;

    /// Makes a method known, with what reads its arguments.
    void add(const char *method, const Codes &codes, const Reader &reader);

    int sdk() const { return m_sdk; }
    /// Whether the service is one of Java's, whose failures are exceptions in the reply.
    virtual bool throwsExceptions() const { return true; }
    /// The object that the request being read brought along, to be called back; null for
    /// Android's null.
    std::shared_ptr<GBinderRemoteObject> object(const AndroidParcel::Binder &binder) const;
    /// Reads a user's number, of which there is one only: 0.
    static void readUser(AndroidParcel &request);
    /// An object as the record shows it: null, or where it lives.
    static QJsonValue describe(const AndroidParcel::Binder &object);
    /// A text as the record shows it: null where it is Android's null.
    static QJsonValue describe(const QString &text);

private:
    struct Method
    {
        QString name;
        Reader reader;
    };

    static GBinderLocalReply *onTransact(GBinderLocalObject *object, GBinderRemoteRequest *request,
        guint code, guint flags, int *status, void *service);
    GBinderLocalReply *handle(
        GBinderRemoteRequest *request, quint32 code, bool oneway, int *status);
    std::function<Answer()> answer(const Call &call, QJsonObject *record);
    Answer answer(const std::function<void(AndroidReply &)> &write);
    Answer wrongInterface();
    GBinderLocalReply *reply(const Answer &answer) const;
    void hold(GBinderRemoteRequest *request, const std::function<Answer()> &answer);
    QString stackTrace() const;

    const QString m_name;
    const QString m_interface;
    const int m_sdk;
    EventLog *const m_log;
    QHash<quint32, Method> m_methods;
    std::optional<Failure> m_failure;
    QElapsedTimer m_sinceStackTrace;
    GBinderRemoteRequest *m_request = nullptr; ///< while it is being read
    LocalObjectPointer m_object;
    HeldCalls m_held;
};
