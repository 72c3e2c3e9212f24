// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace FakeBinder {

/// Takes a parcel apart from Android's side of the wire, strictly: the first field that
/// does not fit or is not well formed makes the reader bad, and from then on every read
/// gives 0, false or a null value. It shares no code with the gbinder reader.
class ParcelReader
{
public:
    /// What an object field held.
    struct Object
    {
        bool isNull = true;
        bool isLocal = false; ///< an object of the sender's own process
        quint32 id = 0; ///< as in PublishedService (local) or newRemoteObject (remote)
    };

    explicit ParcelReader(const QByteArray &bytes);

    qint32 int32();
    qint64 int64();
    bool boolean();
    double real64();
    /// The null string gives a null QString, an empty one a non-null QString.
    QString string16();
    QStringList string16List();
    /// The null array gives a null QByteArray, an empty one a non-null QByteArray.
    QByteArray byteArray();
    Object object();

    bool atEnd() const { return m_position == m_bytes.size(); }
    bool isBad() const { return m_bad; }
    /// True when every read was good and nothing is left.
    bool isDone() const { return atEnd() && !m_bad; }
    int position() const { return m_position; }

private:
    const char *take(qint64 size);

    QByteArray m_bytes;
    int m_position = 0;
    bool m_bad = false;
};

} // namespace FakeBinder
