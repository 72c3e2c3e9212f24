// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <gbinder.h>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>

/// One binder payload, being either written or read. A write to a parcel without a writer
/// does nothing; a read at the end of the data, or without a reader, gives the fixed answer
/// named below, so that callers read on without testing each value. The parcel must not
/// outlive the request or reply that it was made for.
class AlienBinderParcel
{
public:
    /// The empty parcel: neither written nor read.
    AlienBinderParcel() = default;

    /// Continue with a writer or reader that somebody else owns. Null gives the empty parcel.
    explicit AlienBinderParcel(GBinderWriter *writer);
    explicit AlienBinderParcel(GBinderReader *reader);

    /// Write or read a request or reply from its start. Null gives the empty parcel.
    explicit AlienBinderParcel(GBinderLocalRequest *request);
    explicit AlienBinderParcel(GBinderRemoteRequest *request);
    explicit AlienBinderParcel(GBinderLocalReply *reply);
    explicit AlienBinderParcel(GBinderRemoteReply *reply);

    Q_DISABLE_COPY_MOVE(AlienBinderParcel)
    ~AlienBinderParcel() = default;

    void writeBool(bool value);
    void writeInt32(qint32 value);
    void writeInt64(qint64 value);
    void writeDouble(double value);
    /// A string16. A null string goes out as Android's null, with the length -1; an empty
    /// one with the length 0.
    void writeString(const QString &value);
    /// An int32 count and the strings.
    void writeStringList(const QStringList &values);
    void writeByteArray(const QByteArray &value);
    /// A null @p object goes out as Android's null binder.
    void writeLocalObject(GBinderLocalObject *object);
    void writeRemoteObject(GBinderRemoteObject *object);

    /// An android.os.Bundle: its length in bytes, a magic number and the entries.
    void writeBundle(const QVariantMap &bundle);
    /// One value as android.os.Parcel.writeValue tags it. A null value goes out as null. A
    /// type that has no tag here is logged and leaves nothing in the parcel, not even a tag.
    void writeValue(const QVariant &value);
    /// An int32 count and the entries, each a key and a tagged value.
    void writeMap(const QVariantMap &map);
    void writeIntMap(const QMap<int, QVariant> &map);

    bool readBool(); ///< false at the end
    qint32 readInt32(); ///< -1 at the end
    qint64 readInt64(); ///< -1 at the end
    double readDouble(); ///< -1.0 at the end
    QString readString(); ///< a null string at the end, and for Android's null
    /// An int32 count and that many strings; empty at the end. The count is taken at its
    /// word: strings that are not there read as null strings.
    QStringList readStringList();
    QByteArray readByteArray(); ///< empty at the end
    /// Null at the end. The caller owns the reference.
    GBinderRemoteObject *readObject();

    /// Empty at the end, and with a critical message for a wrong magic number. The count of
    /// entries is taken at its word, whatever the length says.
    QVariantMap readBundle();
    /// Invalid at the end, for Android's null and, with a critical message, for a tag that is
    /// not known; what follows such a tag stays unread.
    QVariant readValue();
    QVariantMap readMap(); ///< empty at the end
    QMap<int, QVariant> readIntMap(); ///< empty at the end

private:
    bool hasData() const;

    GBinderWriter m_ownWriter{};
    GBinderReader m_ownReader{};
    GBinderWriter *m_writer = nullptr;
    GBinderReader *m_reader = nullptr;
};
