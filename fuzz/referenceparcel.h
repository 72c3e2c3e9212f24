// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

/// A second reading of a parcel, slow and with nothing of libgbinder's: what AlienBinderParcel
/// must make of the same bytes.
class ReferenceParcel
{
public:
    explicit ReferenceParcel(const QByteArray &bytes) : m_bytes(bytes) { }

    qint32 int32();
    QString string();
    QVariantMap bundle();

    /// Counts are taken at their word. A reading that a hostile count would make too long breaks
    /// off, and what was read then means nothing.
    bool isTooLong() const { return m_itemsLeft < 0; }

private:
    template <typename Number> Number number(Number otherwise);
    QVariant value();
    QStringList strings();

    QByteArray m_bytes; // what has not been read
    int m_itemsLeft = 1000;
};

/// Whether two bundles hold the same, null strings apart from empty ones.
bool isSameBundle(const QVariantMap &a, const QVariantMap &b);
