// SPDX-License-Identifier: BSD-3-Clause
#include "tests/userbus/rawpeer.h"

#include <QDir>
#include <QtTest>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

constexpr char path[] = "/run/user/1000/dbus/user_bus_socket";

sockaddr_un socketAddress()
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path, sizeof(path));
    return address;
}

int newSocket()
{
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

void align(QByteArray &bytes, int size)
{
    while (bytes.size() % size != 0)
        bytes.append('\0');
}

void appendNumber(QByteArray &bytes, quint32 number)
{
    align(bytes, 4);
    bytes.append(reinterpret_cast<const char *>(&number), sizeof(number));
}

/// One header field, of a type that begins with a length or is a number.
void appendField(
    QByteArray &fields, char code, char type, const QByteArray &text, quint32 number = 0)
{
    align(fields, 8);
    fields.append(code).append('\1').append(type).append('\0');
    if (type == 'g')
        fields.append(char(text.size()));
    else
        appendNumber(fields, type == 'u' ? number : quint32(text.size()));
    if (type != 'u')
        fields.append(text).append('\0');
}

QByteArray message(char type, quint32 serial, const QByteArray &fields, const QByteArray &body)
{
    QByteArray bytes("l");
    bytes.append(type).append('\0').append('\1');
    appendNumber(bytes, quint32(body.size()));
    appendNumber(bytes, serial);
    appendNumber(bytes, quint32(fields.size()));
    bytes.append(fields);
    align(bytes, 8);
    return bytes + body;
}

} // namespace

RawPeer::RawPeer(int backlog) : m_listener(newSocket())
{
    QDir().mkpath(QStringLiteral("/run/user/1000/dbus"));
    ::unlink(path);
    const sockaddr_un address = socketAddress();
    if (::bind(m_listener, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0
        || ::listen(m_listener, backlog) != 0)
        qFatal("cannot listen at %s: %s", path, strerror(errno));
    qputenv("DBUS_SESSION_BUS_ADDRESS", RawPeer::address());
}

RawPeer::~RawPeer()
{
    empty();
    for (const int connection : qAsConst(m_connections))
        ::close(connection);
    ::close(m_listener);
    ::unlink(path);
}

QByteArray RawPeer::address()
{
    return QByteArray("unix:path=") + path;
}

void RawPeer::fill()
{
    const sockaddr_un address = socketAddress();
    constexpr int enough = 100;
    while (m_fillers.size() < enough) {
        m_fillers.append(newSocket());
        if (::connect(
                m_fillers.last(), reinterpret_cast<const sockaddr *>(&address), sizeof(address))
            != 0)
            break;
    }
    if (errno != EAGAIN)
        qFatal("the backlog does not fill: %s", strerror(errno));
}

void RawPeer::empty()
{
    for (const int filler : qAsConst(m_fillers))
        ::close(filler);
    m_fillers.clear();
}

int RawPeer::accept()
{
    const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (connection >= 0)
        m_connections.append(connection);
    return connection;
}

int RawPeer::waitForConnection()
{
    int connection = -1;
    const bool hasCome =
        QTest::qWaitFor([this, &connection] { return (connection = accept()) >= 0; });
    return hasCome ? connection : -1;
}

int RawPeer::acceptAll()
{
    while (accept() >= 0)
        continue;
    return m_connections.size();
}

QByteArray RawPeer::read(int connection)
{
    QByteArray bytes;
    char chunk[4096];
    for (;;) {
        const ssize_t count = ::read(connection, chunk, sizeof(chunk));
        if (count <= 0)
            return bytes;
        bytes.append(chunk, int(count));
    }
}

bool RawPeer::hasEnded(int connection)
{
    pollfd asked{connection, POLLRDHUP, 0};
    return ::poll(&asked, 1, 0) == 1;
}

qint64 RawPeer::write(int connection, const QByteArray &bytes)
{
    return ::send(connection, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL);
}

void RawPeer::welcome(int connection)
{
    QByteArray heard;
    const auto hears = [&heard, connection](const char *words) {
        return QTest::qWaitFor([&heard, connection, words] {
            heard += read(connection);
            return heard.contains(words);
        });
    };
    if (!hears("BEGIN\r\n")
        || write(connection, "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\n") < 0
        || !hears("Hello") || write(connection, answer(1, 1, ":1.1")) < 0)
        qFatal("no welcome");
}

QByteArray RawPeer::answer(quint32 serial, quint32 callSerial, const QByteArray &text)
{
    QByteArray fields;
    appendField(fields, 5, 'u', {}, callSerial);
    appendField(fields, 7, 's', "org.freedesktop.DBus");
    appendField(fields, 8, 'g', "s");
    QByteArray body;
    appendNumber(body, quint32(text.size()));
    return message(2, serial, fields, body + text + '\0');
}

QByteArray RawPeer::ping(quint32 serial)
{
    QByteArray fields;
    appendField(fields, 1, 'o', "/");
    appendField(fields, 2, 's', "org.freedesktop.DBus.Peer");
    appendField(fields, 3, 's', "Ping");
    appendField(fields, 7, 's', ":1.2");
    return message(1, serial, fields, {});
}
