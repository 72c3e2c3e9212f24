// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <functional>

namespace FakeBinder {

/// The header that libgbinder puts before the payload of a request.
enum class Protocol {
    Aidl, ///< strict mode word, interface (Android 8 and 9)
    Aidl2, ///< strict mode word, work source word, interface (Android 10)
};

/// How the process under test learns of a change.
enum class Notice {
    Deferred, ///< from the glib main loop, as libgbinder does
    Synchronous, ///< before the call that makes the change returns
    None, ///< not at all
};

/// One transaction that the process under test sent to an Android service.
struct Request
{
    QString service; ///< name of the called service, or the label of the called object
    quint32 code = 0;
    quint32 flags = 0; ///< bit 0 (GBINDER_TX_FLAG_ONEWAY) is set in a oneway call
    QString interface; ///< parsed from the bytes of the header
    QByteArray payload; ///< the bytes behind the header
    QByteArray bytes; ///< all bytes, with the header
    QVector<int> offsets; ///< where the objects begin in `bytes`
    QVector<quint32> localObjects; ///< ids of the local objects that were handed over
};

/// What an Android service answers.
struct Reply
{
    int status = 0; ///< as the process under test sees it: 0, or the failure
    bool hasData = true; ///< false: the caller gets a null reply
    QByteArray bytes;
    QVector<int> offsets; ///< where the objects begin in `bytes`
    int delay = 0; ///< milliseconds until the caller has it; negative: not before the death

    /// The usual answer.
    static Reply data(const QByteArray &bytes) { return {0, true, bytes, {}}; }
    /// A failed call: a status other than 0 and a null reply.
    static Reply failure(int status) { return {status, false, {}, {}}; }
    /// A failed call that comes with a reply all the same.
    static Reply failureWith(int status, const QByteArray &bytes)
    {
        return {status, true, bytes, {}};
    }
    /// Status 0 and yet a null reply.
    static Reply none() { return {0, false, {}, {}}; }
    /// An answer that takes its time.
    static Reply after(int milliseconds, const Reply &reply)
    {
        Reply late = reply;
        late.delay = milliseconds;
        return late;
    }
    /// No answer before the service dies.
    static Reply never() { return after(-1, none()); }
};

/// The Android side of a service or object.
using Handler = std::function<Reply(const Request &)>;

/// A service that the process under test offers.
struct PublishedService
{
    QString name;
    QString interface;
    quint32 objectId = 0; ///< of its local object; 0 when it was published with none
};

inline bool operator==(const PublishedService &a, const PublishedService &b)
{
    return a.name == b.name && a.interface == b.interface && a.objectId == b.objectId;
}

/// A call into a local object of the process under test.
struct Call
{
    quint32 code = 0;
    QString interface; ///< goes into the header; a null string leaves the header out
    QByteArray payload; ///< the bytes behind the header
    QVector<int> offsets; ///< where the objects begin in `payload`
    quint32 flags = 0;
    int initialStatus = 0; ///< what the status holds when the object is called
};

/// What a call into a local object gave.
struct Answer
{
    bool delivered = false; ///< false: there is no such object, or it was dropped
    int status = 0; ///< as the object left it; `initialStatus` if it did not touch it
    bool hasReply = false; ///< false: the object gave a null reply
    QByteArray bytes; ///< of the reply
};

} // namespace FakeBinder
