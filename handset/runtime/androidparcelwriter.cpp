// SPDX-License-Identifier: BSD-3-Clause
#include "androidparcelwriter.h"

void AndroidParcelWriter::writeInt32(qint32 value)
{
    m_bytes.append(reinterpret_cast<const char *>(&value), sizeof(value));
}

void AndroidParcelWriter::writeInt64(qint64 value)
{
    m_bytes.append(reinterpret_cast<const char *>(&value), sizeof(value));
}

void AndroidParcelWriter::writeString16(const QString &text)
{
    writeInt32(text.isNull() ? -1 : text.size());
    if (text.isNull())
        return;
    m_bytes.append(
        reinterpret_cast<const char *>(text.utf16()), (text.size() + 1) * int(sizeof(char16_t)));
    pad();
}

void AndroidParcelWriter::writeByteArray(const QByteArray &bytes)
{
    writeInt32(bytes.isNull() ? -1 : bytes.size());
    m_bytes.append(bytes);
    pad();
}

void AndroidParcelWriter::pad()
{
    constexpr int alignment = 4;
    m_bytes.append((alignment - m_bytes.size() % alignment) % alignment, '\0');
}
