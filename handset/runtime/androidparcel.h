// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

/// Reads a binder parcel as Android does, but forgives nothing: padding that is not zero,
/// a bool that is neither 0 nor 1 or a string without its terminator are failures too.
///
/// The first failure stays in error(); every later read gives its type's null value.
class AndroidParcel
{
public:
    /// A flattened binder object, as the receiving process sees it.
    struct Binder
    {
        enum class Kind {
            Null,
            Remote, ///< lives in another process; handle says which
            Local ///< lives in the receiving process itself
        };
        Kind kind = Kind::Null;
        quint32 handle = 0;
        qint64 offset = 0; ///< where it lies in the transaction buffer
    };

    /// @param data the whole transaction buffer.
    /// @param objects offsets of the objects in it as the driver recorded them, where the
    /// caller knows them; every object that is not null must then be one of those.
    explicit AndroidParcel(QByteArray data, std::optional<QVector<quint64>> objects = std::nullopt);

    qint32 readInt32();
    qint64 readInt64();
    double readDouble();
    bool readBool();
    /// @return a null QString for Android's null string, an empty one for "".
    QString readString16();
    /// @return a null array for Android's null array.
    QByteArray readByteArray();
    Binder readBinder();
    /// A parcel of the next bytes, which are skipped here; their number must fit.
    AndroidParcel readParcel(qint32 size);

    /// Number of bytes read so far.
    qint64 position() const { return m_position; }
    /// Notes a failure at the place reached; only the first one is kept.
    void fail(const QString &reason);
    /// Ends the reading: whatever is left unread is a failure.
    void finish();
    /// Empty while all went well.
    QString error() const { return m_error; }
    bool ok() const { return m_error.isEmpty(); }

private:
    /// The next bytes with their padding to four, which is skipped; null when they do not fit.
    const char *take(qint64 size);

    const QByteArray m_data;
    const std::optional<QVector<quint64>> m_objects;
    qint64 m_position = 0;
    QString m_error;
};
