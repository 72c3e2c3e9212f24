// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "androidexception.h"
#include "androidparcelwriter.h"

#include <utility>

/// The answer of a service's method while it is written.
class AndroidReply
{
public:
    /// @param stackTrace goes along with an exception; null for none.
    AndroidReply(int sdk, QString stackTrace) : m_sdk(sdk), m_stackTrace(std::move(stackTrace)) { }

    /// Says that no exception was thrown, which stands in front of every result of Java's.
    void writeNoException() { m_writer.writeInt32(0); }
    void writeInt32(qint32 value) { m_writer.writeInt32(value); }
    void writeInt64(qint64 value) { m_writer.writeInt64(value); }
    /// The method threw; to be called before anything else is written.
    void writeException(const AndroidException &exception)
    {
        m_threw = true;
        m_writer.append(exception.toParcel(m_sdk, m_stackTrace));
    }

    bool threw() const { return m_threw; }
    QByteArray bytes() const { return m_writer.bytes(); }

private:
    const int m_sdk;
    const QString m_stackTrace;
    AndroidParcelWriter m_writer;
    bool m_threw = false;
};
