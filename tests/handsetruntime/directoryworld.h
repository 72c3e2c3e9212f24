// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "androidparcel.h"
#include "servicemanager/servicedirectory.h"
#include "wirebytes.h"

#include <QStringList>

/// What the tests of the service manager's directory share.
namespace Directory {

using namespace Wire;

constexpr quint32 Get = 1;
constexpr quint32 Check = 2;
constexpr quint32 Add = 3;
constexpr quint32 List = 4;
constexpr quint32 Ping = 0x5f504e47;

inline QByteArray header(int sdk)
{
    return word(0x400000) + (sdk >= 29 ? word(-1) : QByteArray())
        + string16(QStringLiteral("android.os.IServiceManager"));
}

/// What Android's own client appends behind the object when it adds a service.
inline QByteArray addTail(int sdk, qint32 dumpPriority = 8)
{
    return word(0) + (sdk >= 28 ? word(dumpPriority) : QByteArray());
}

/// A directory of one level with a record of what it did.
class World
{
public:
    explicit World(int sdk)
        : m_sdk(sdk),
          m_directory(sdk,
              {[this](quint32 handle) { m_handles.append(QStringLiteral("keep %1").arg(handle)); },
                  [this](quint32 handle) {
                      m_handles.append(QStringLiteral("release %1").arg(handle));
                  },
                  [this](const QJsonObject &event) { m_events.append(event); }})
    {
    }

    ServiceDirectory::Answer call(
        quint32 code, const QByteArray &arguments, const QVector<quint64> &objects = {})
    {
        return m_directory.transact({code, header(m_sdk) + arguments, objects, 42});
    }

    ServiceDirectory::Answer add(const QString &name, qint32 handle, qint32 dumpPriority = 8)
    {
        const QByteArray text = string16(name);
        return call(Add, text + remoteObject(handle) + addTail(m_sdk, dumpPriority),
            {quint64(header(m_sdk).size() + text.size())});
    }

    /// The names in the list, in order.
    QStringList names(qint32 priorities = 0xf)
    {
        QStringList names;
        for (qint32 index = 0; index < 10; ++index) {
            const ServiceDirectory::Answer answer =
                call(List, word(index) + (m_sdk >= 28 ? word(priorities) : QByteArray()));
            if (answer.status != 0)
                break;
            AndroidParcel reply(answer.data);
            names.append(reply.readString16());
        }
        return names;
    }

    ServiceDirectory &directory() { return m_directory; }
    QStringList handles() const { return m_handles; }
    /// "registered alien", "died alien"
    QStringList changes() const
    {
        QStringList lines;
        for (const QJsonObject &event : m_events) {
            const QString kind = event.value(QStringLiteral("event")).toString();
            if (kind != QStringLiteral("servicemanager"))
                lines.append(
                    kind + QLatin1Char(' ') + event.value(QStringLiteral("service")).toString());
        }
        return lines;
    }
    QString lastError() const
    {
        return m_events.isEmpty() ? QString()
                                  : m_events.last().value(QStringLiteral("error")).toString();
    }

private:
    const int m_sdk;
    QStringList m_handles;
    QVector<QJsonObject> m_events;
    ServiceDirectory m_directory;
};

} // namespace Directory
