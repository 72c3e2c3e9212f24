// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/buscalls.h"

#include <gio/gio.h>

#include <QtTest>

namespace {

void require(bool ok, GError *error)
{
    if (!ok)
        qFatal("bus calls: %s", error->message);
}

struct Question
{
    bool isOver = false;
    bool isAnswered = false;
};

void onAnswer(GObject *connection, GAsyncResult *result, void *data)
{
    GVariant *reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr);
    *static_cast<Question *>(data) = {true, reply != nullptr};
    if (reply != nullptr)
        g_variant_unref(reply);
}

} // namespace

BusCalls::BusCalls(const QString &address)
{
    GError *error = nullptr;
    m_connection = g_dbus_connection_new_for_address_sync(qPrintable(address),
        GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
            | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error);
    require(m_connection != nullptr, error);
}

BusCalls::~BusCalls()
{
    g_dbus_connection_close_sync(m_connection, nullptr, nullptr);
    g_object_unref(m_connection);
}

void BusCalls::send(GDBusMessage *message)
{
    GError *error = nullptr;
    require(g_dbus_connection_send_message(
                m_connection, message, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, &error),
        error);
    g_object_unref(message);
}

bool BusCalls::settle(int deadline)
{
    // Answered by the daemon's main thread, after what the same connection sent before.
    Question question;
    g_dbus_connection_call(m_connection, "com.tovra.lumd", "/com/tovra/lumd",
        "org.freedesktop.DBus.Introspectable", "Introspect", nullptr, nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START, deadline, nullptr, onAnswer, &question);
    while (!question.isOver)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return question.isAnswered;
}
