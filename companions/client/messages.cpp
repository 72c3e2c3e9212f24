// SPDX-License-Identifier: BSD-3-Clause
#include "client/messages.h"

#include <QHash>

#include <cstring>

namespace {

int readText(sd_bus_message *message, QString &text)
{
    const char *value = nullptr;
    const int result = sd_bus_message_read(message, "v", "s", &value);
    if (result >= 0)
        text = QString::fromUtf8(value);
    return result;
}

int readProperty(sd_bus_message *message, const char *name, DaemonState &state)
{
    const auto is = [name](const char *other) { return std::strcmp(name, other) == 0; };
    if (is("RuntimeState"))
        return readText(message, state.runtimeState);
    if (is("Version"))
        return readText(message, state.version);
    if (is("Ready")) {
        int isReady = 0;
        const int result = sd_bus_message_read(message, "v", "b", &isReady);
        state.isReady = isReady != 0;
        return result;
    }
    if (is("PendingChanges"))
        return sd_bus_message_read(message, "v", "u", &state.pendingChanges);
    if (is("PendingLaunches"))
        return sd_bus_message_read(message, "v", "u", &state.pendingLaunches);
    if (is("SdkLevel"))
        return sd_bus_message_read(message, "v", "i", &state.sdkLevel);
    return sd_bus_message_skip(message, "v");
}

int readLaunchers(sd_bus_message *message, QVector<AndroidLauncher> &launchers)
{
    int result = sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "(ssssb)");
    while (result >= 0) {
        const char *texts[4] = {};
        int isHidden = 0;
        result = sd_bus_message_read(
            message, "(ssssb)", &texts[0], &texts[1], &texts[2], &texts[3], &isHidden);
        if (result == 0)
            return sd_bus_message_exit_container(message);
        if (result > 0)
            launchers.append({QString::fromUtf8(texts[0]), QString::fromUtf8(texts[1]),
                QString::fromUtf8(texts[2]), QString::fromUtf8(texts[3]), isHidden != 0});
    }
    return result;
}

} // namespace

bool readState(sd_bus_message *message, DaemonState &state)
{
    int result = sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
    while (result >= 0) {
        result = sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv");
        if (result == 0)
            return sd_bus_message_exit_container(message) >= 0;
        const char *name = nullptr;
        if (result > 0)
            result = sd_bus_message_read(message, "s", &name);
        if (result >= 0)
            result = readProperty(message, name, state);
        if (result >= 0)
            result = sd_bus_message_exit_container(message);
    }
    return false;
}

bool readApps(sd_bus_message *message, QVector<AndroidApp> &apps)
{
    int result = sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sa(ssssb)}");
    while (result >= 0) {
        result = sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sa(ssssb)");
        if (result == 0)
            return true;
        const char *package = nullptr;
        if (result > 0)
            result = sd_bus_message_read(message, "s", &package);
        if (result < 0)
            break;
        apps.append({QString::fromUtf8(package), {}});
        result = readLaunchers(message, apps.last().launchers);
        if (result >= 0)
            result = sd_bus_message_exit_container(message);
    }
    return false;
}

ClientError errorOf(const sd_bus_error *error)
{
    using Kind = ClientError::Kind;
    static const QHash<QByteArray, Kind> kinds = {
        {SD_BUS_ERROR_SERVICE_UNKNOWN, Kind::NoDaemon},
        {SD_BUS_ERROR_NAME_HAS_NO_OWNER, Kind::NoDaemon},
        // The bus's own word for a program that went before it answered.
        {SD_BUS_ERROR_NO_REPLY, Kind::NoDaemon},
        {SD_BUS_ERROR_DISCONNECTED, Kind::NoDaemon},
        {SD_BUS_ERROR_ACCESS_DENIED, Kind::Refused},
        {SD_BUS_ERROR_TIMEOUT, Kind::TimedOut},
        {SD_BUS_ERROR_UNKNOWN_OBJECT, Kind::TooOld},
        {SD_BUS_ERROR_UNKNOWN_INTERFACE, Kind::TooOld},
        {SD_BUS_ERROR_UNKNOWN_METHOD, Kind::TooOld},
    };
    return {kinds.value(error->name, Kind::Failed), QString::fromUtf8(error->message)};
}
