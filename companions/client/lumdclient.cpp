// SPDX-License-Identifier: BSD-3-Clause
#include "client/lumdclient.h"

#include "client/busconnection.h"
#include "client/messages.h"

#include <QTimer>

#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr char ownerRule[] =
    "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
    "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='com.tovra.lumd'";
constexpr char signalRule[] =
    "type='signal',sender='com.tovra.lumd',path_namespace='/com/tovra/lumd'";
constexpr auto retryInterval = 1s;

/// As many strings as a signal begins with.
template <int count> bool readTexts(sd_bus_message *signal, QString (&texts)[count])
{
    for (QString &text : texts) {
        const char *value = nullptr;
        if (sd_bus_message_read(signal, "s", &value) <= 0)
            return false;
        text = QString::fromUtf8(value);
    }
    return true;
}

bool readFlag(sd_bus_message *signal, bool &flag)
{
    int value = 0;
    const int result = sd_bus_message_read(signal, "b", &value);
    flag = value != 0;
    return result > 0;
}

} // namespace

/// What the signals of lumd become; one that holds something else than it should is passed over.
struct LumdSignals
{
    using Handler = void (*)(LumdClient &client, sd_bus_message *signal);

    static void installFinished(LumdClient &client, sd_bus_message *signal)
    {
        QString package[1];
        QString message[1];
        bool success = false;
        if (readTexts(signal, package) && readFlag(signal, success) && readTexts(signal, message))
            Q_EMIT client.installFinished(package[0], success, message[0]);
    }

    static void removeFinished(LumdClient &client, sd_bus_message *signal)
    {
        QString package[1];
        bool success = false;
        if (readTexts(signal, package) && readFlag(signal, success))
            Q_EMIT client.removeFinished(package[0], success);
    }

    static void requestQueued(LumdClient &client, sd_bus_message *signal)
    {
        QString texts[2];
        if (readTexts(signal, texts))
            Q_EMIT client.requestQueued(texts[0], texts[1]);
    }

    static void launcherChanged(LumdClient &client, sd_bus_message *signal)
    {
        QString texts[4];
        if (readTexts(signal, texts))
            Q_EMIT client.launcherChanged(texts[1], {texts[0], texts[2], texts[3], {}, false});
    }

    static void launcherGone(LumdClient &client, sd_bus_message *signal)
    {
        QString texts[2];
        if (readTexts(signal, texts))
            Q_EMIT client.launcherGone(texts[1], texts[0]);
    }

    static void packageRemoved(LumdClient &client, sd_bus_message *signal)
    {
        QString package[1];
        if (readTexts(signal, package))
            Q_EMIT client.packageRemoved(package[0]);
    }

    static void listComplete(LumdClient &client, sd_bus_message *) { Q_EMIT client.listComplete(); }

    static void propertiesChanged(LumdClient &client, sd_bus_message *signal)
    {
        QString interface[1];
        // Before the first answer about the state: that one will hold the change.
        if (!client.m_state)
            return;
        const DaemonState before = *client.m_state;
        if (readTexts(signal, interface) && readState(signal, *client.m_state)
            && !(*client.m_state == before))
            Q_EMIT client.stateChanged(*client.m_state);
    }

    static void startOnBootChanged(LumdClient &client, sd_bus_message *signal)
    {
        QString package[1];
        bool allowed = false;
        if (readTexts(signal, package) && readFlag(signal, allowed))
            Q_EMIT client.startOnBootChanged(package[0], allowed);
    }

    static void pass(LumdClient &client, sd_bus_message *signal)
    {
        static const struct
        {
            const char *interface;
            const char *member;
            Handler handler;
        } handlers[] = {
            {"com.tovra.lumd.Monitor1", "InstallFinished", installFinished},
            {"com.tovra.lumd.Monitor1", "RemoveFinished", removeFinished},
            {"com.tovra.lumd.Monitor1", "RequestQueued", requestQueued},
            {"com.tovra.lumd.Monitor1", "LauncherChanged", launcherChanged},
            {"com.tovra.lumd.Monitor1", "LauncherGone", launcherGone},
            {"com.tovra.lumd.Monitor1", "PackageRemoved", packageRemoved},
            {"com.tovra.lumd.Monitor1", "ListComplete", listComplete},
            {"org.freedesktop.DBus.Properties", "PropertiesChanged", propertiesChanged},
            {"com.tovra.lumd", "appStartOnBootupChanged", startOnBootChanged},
        };
        // The bus lets everybody send a signal to one program.
        if (client.m_owner != QLatin1String(sd_bus_message_get_sender(signal)))
            return;
        for (const auto &one : handlers) {
            if (sd_bus_message_is_signal(signal, one.interface, one.member) > 0)
                one.handler(client, signal);
        }
    }
};

LumdClient::LumdClient(QObject *parent) : QObject(parent), m_bus(std::make_unique<BusConnection>())
{
}

LumdClient::~LumdClient() = default;

void LumdClient::watch(const Done<Nothing> &done)
{
    m_watchDone = done;
    connect(m_bus.get(), &BusConnection::lost, this, [this] {
        onOwner({});
        QTimer::singleShot(retryInterval, this, &LumdClient::listen);
    });
    listen();
}

void LumdClient::listen()
{
    m_bus->watch(ownerRule, [this](sd_bus_message *signal) {
        QString texts[3];
        if (readTexts(signal, texts))
            onOwner(texts[2]);
    });
    m_bus->watch(signalRule, [this](sd_bus_message *signal) { LumdSignals::pass(*this, signal); });
    const auto arguments = [](sd_bus_message *message) {
        return sd_bus_message_append(message, "s", lumdService);
    };
    const auto reply = [this](sd_bus_message *message, const ClientError &error) {
        QString owner[1];
        if (!error)
            readTexts(message, owner);
        const Done<Nothing> done = std::exchange(m_watchDone, nullptr);
        if (!done) {
            onOwner(owner[0]);
            return;
        }
        m_owner = owner[0];
        refreshState();
        done({{}, error});
    };
    m_bus->call(
        {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner"},
        arguments, m_timeLimit, reply);
    if (!m_bus->open())
        QTimer::singleShot(retryInterval, this, &LumdClient::listen);
}

void LumdClient::onOwner(const QString &owner)
{
    // The answer to watch() comes first.
    if (m_watchDone || owner == m_owner)
        return;
    if (!m_owner.isEmpty()) {
        m_owner.clear();
        m_state.reset();
        Q_EMIT daemonVanished();
    }
    m_owner = owner;
    if (!owner.isEmpty())
        Q_EMIT daemonAppeared();
    refreshState();
}

void LumdClient::refreshState()
{
    if (m_owner.isEmpty())
        return;
    fetchState([this](const Answer<DaemonState> &answer) {
        if (answer.error)
            return;
        m_state = answer.value;
        Q_EMIT stateChanged(*m_state);
    });
}
