// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QVector>

/// A socket where a user's bus should be, which speaks only as told. In the private namespace.
class RawPeer
{
public:
    /// How many connections wait for accept() at most, beside one.
    explicit RawPeer(int backlog = 16);
    ~RawPeer();
    Q_DISABLE_COPY(RawPeer)

    /// Sets the variable that the bus is found by.
    static QByteArray address();

    /// Connects to itself until there is no room for one connection more.
    void fill();
    /// Gives that room back.
    void empty();

    /// Takes a connection and gives its descriptor; -1 when nobody waits.
    int accept();
    /// The same when one has come; -1 when none comes within five seconds.
    int waitForConnection();
    /// How many connections there have been, accepted with this.
    int acceptAll();
    /// All that has come in.
    static QByteArray read(int connection);
    /// The other side has closed it.
    static bool hasEnded(int connection);
    /// As much as fits.
    static qint64 write(int connection, const QByteArray &bytes);
    /// Says what a bus says to a new connection, up to the answer to its Hello.
    void welcome(int connection);
    /// The answer to the call with that number, with a string.
    static QByteArray answer(quint32 serial, quint32 callSerial, const QByteArray &text);
    /// A call of the peer's method Ping.
    static QByteArray ping(quint32 serial);

private:
    int m_listener = -1;
    QVector<int> m_connections;
    QVector<int> m_fillers;
};
