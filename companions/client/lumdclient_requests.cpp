// SPDX-License-Identifier: BSD-3-Clause
// The calls of lumd's methods.
#include "client/busconnection.h"
#include "client/lumdclient.h"
#include "client/messages.h"

#include <algorithm>
#include <cerrno>

using namespace std::chrono_literals;

namespace {

constexpr char object[] = "/com/tovra/lumd";
constexpr char monitorObject[] = "/com/tovra/lumd/monitor";
constexpr char monitorInterface[] = "com.tovra.lumd.Monitor1";
constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";
constexpr char runtimeUnit[] = "/org/freedesktop/systemd1/unit/aliendalvik_2eservice";
// lumd gives `du` 30 seconds.
constexpr auto dataUsageLimit = 40s;

BusMethod method(const char *member)
{
    return {lumdService, object, lumdService, member};
}

BusConnection::Arguments text(const QString &value)
{
    return [value = value.toUtf8()](sd_bus_message *message) {
        return sd_bus_message_append(message, "s", value.constData());
    };
}

BusConnection::Arguments flag(bool value)
{
    return [value](sd_bus_message *message) {
        return sd_bus_message_append(message, "b", static_cast<int>(value));
    };
}

/// Has `read` take the value from a reply that came.
template <typename Value, typename Read>
BusConnection::Reply reader(const Done<Value> &done, const Read &read)
{
    return [done, read](sd_bus_message *reply, const ClientError &error) {
        Answer<Value> answer;
        answer.error = error;
        if (!error && !read(reply, answer.value))
            answer.error = {ClientError::Kind::Failed, QStringLiteral("An answer of another type")};
        done(answer);
    };
}

BusConnection::Reply nothing(const Done<Nothing> &done)
{
    return reader(done, [](sd_bus_message *, Nothing &) { return true; });
}

BusConnection::Reply boolean(const Done<bool> &done)
{
    return reader(done, [](sd_bus_message *reply, bool &value) {
        int number = 0;
        const int result = sd_bus_message_read(reply, "b", &number);
        value = number != 0;
        return result > 0;
    });
}

int appendExtra(sd_bus_message *message, const QByteArray &key, const QVariant &value)
{
    switch (int(value.type())) {
    case QMetaType::Bool:
        return sd_bus_message_append(
            message, "{sv}", key.constData(), "b", static_cast<int>(value.toBool()));
    case QMetaType::Int:
        return sd_bus_message_append(message, "{sv}", key.constData(), "i", value.toInt());
    case QMetaType::LongLong:
        return sd_bus_message_append(
            message, "{sv}", key.constData(), "x", int64_t(value.toLongLong()));
    case QMetaType::Double:
        return sd_bus_message_append(message, "{sv}", key.constData(), "d", value.toDouble());
    case QMetaType::QString:
        return sd_bus_message_append(
            message, "{sv}", key.constData(), "s", value.toString().toUtf8().constData());
    default:
        return -EINVAL;
    }
}

int appendIntent(sd_bus_message *message, const AndroidIntent &intent)
{
    int result = 0;
    for (const QString &field : {intent.action, intent.data, intent.type, intent.package,
             intent.className, intent.category}) {
        if (result >= 0)
            result = sd_bus_message_append(message, "s", field.toUtf8().constData());
    }
    if (result >= 0)
        result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
    for (auto extra = intent.extras.cbegin(); result >= 0 && extra != intent.extras.cend(); ++extra)
        result = appendExtra(message, extra.key().toUtf8(), extra.value());
    return result < 0 ? result : sd_bus_message_close_container(message);
}

/// "UnitFileState" among the properties of the unit.
bool readIsEnabled(sd_bus_message *reply, bool &isEnabled)
{
    const char *state = nullptr;
    if (sd_bus_message_read(reply, "v", "s", &state) <= 0)
        return false;
    isEnabled = qstrcmp(state, "enabled") == 0;
    return true;
}

} // namespace

void LumdClient::fetchState(const Done<DaemonState> &done)
{
    const auto arguments = [](sd_bus_message *message) {
        return sd_bus_message_append(message, "s", monitorInterface);
    };
    m_bus->call({lumdService, monitorObject, propertiesInterface, "GetAll"}, arguments, m_timeLimit,
        reader(done, readState));
}

void LumdClient::listApps(const Done<QVector<AndroidApp>> &done)
{
    m_bus->call({lumdService, monitorObject, monitorInterface, "ListApps"}, {}, m_timeLimit,
        reader(done, readApps));
}

void LumdClient::installFile(const QString &path, const Done<bool> &done)
{
    m_bus->call(method("installFile"), text(path), m_timeLimit, boolean(done));
}

void LumdClient::removeApp(const QString &package, const Done<bool> &done)
{
    m_bus->call(method("removeFile"), text(package), m_timeLimit, boolean(done));
}

void LumdClient::runRuntime(bool run, const Done<Nothing> &done)
{
    m_bus->call(method("controlService"), flag(run), m_timeLimit, nothing(done));
}

void LumdClient::fetchRuntimeOnBoot(const Done<bool> &done)
{
    const auto arguments = [](sd_bus_message *message) {
        return sd_bus_message_append(
            message, "ss", "org.freedesktop.systemd1.Unit", "UnitFileState");
    };
    m_bus->call({"org.freedesktop.systemd1", runtimeUnit, propertiesInterface, "Get"}, arguments,
        m_timeLimit, reader(done, readIsEnabled));
}

void LumdClient::setRuntimeOnBoot(bool enable, const Done<Nothing> &done)
{
    m_bus->call(method("controlServiceAutostart"), flag(enable), m_timeLimit, nothing(done));
}

void LumdClient::fetchDataUsage(const Done<quint64> &done)
{
    m_bus->call(method("getAndroidAppDataUsage"), {},
        std::max<std::chrono::milliseconds>(m_timeLimit, dataUsageLimit),
        reader(done, [](sd_bus_message *reply, quint64 &value) {
            uint64_t bytes = 0;
            const int result = sd_bus_message_read(reply, "t", &bytes);
            value = bytes;
            return result > 0;
        }));
}

void LumdClient::fetchSize(const QString &package, const Done<AppSize> &done)
{
    m_bus->call(method("getAppSize"), text(package), m_timeLimit,
        reader(done, [](sd_bus_message *reply, AppSize &size) {
            int64_t bytes[3] = {};
            const int result = sd_bus_message_read(reply, "(xxx)", &bytes[0], &bytes[1], &bytes[2]);
            size = {bytes[0], bytes[1], bytes[2]};
            return result > 0;
        }));
}

void LumdClient::fetchStartOnBoot(const QString &package, const Done<bool> &done)
{
    m_bus->call(method("getAppStartOnBootup"), text(package), m_timeLimit, boolean(done));
}

void LumdClient::setStartOnBoot(const QString &package, bool allow, const Done<Nothing> &done)
{
    const auto arguments = [package = package.toUtf8(), allow](sd_bus_message *message) {
        return sd_bus_message_append(message, "sb", package.constData(), static_cast<int>(allow));
    };
    m_bus->call(method("setAppStartOnBootup"), arguments, m_timeLimit, nothing(done));
}

void LumdClient::clearCache(const QString &package, const Done<Nothing> &done)
{
    m_bus->call(method("deleteAppCacheFiles"), text(package), m_timeLimit, nothing(done));
}

void LumdClient::clearData(const QString &package, const Done<Nothing> &done)
{
    m_bus->call(method("clearAppUserData"), text(package), m_timeLimit, nothing(done));
}

void LumdClient::stopApp(const QString &package, const Done<Nothing> &done)
{
    m_bus->call(method("forceStopApp"), text(package), m_timeLimit, nothing(done));
}

void LumdClient::launchApp(const QString &package, const Done<Nothing> &done)
{
    m_bus->call(method("launchApp"), text(package), m_timeLimit, nothing(done));
}

void LumdClient::launchIntent(const AndroidIntent &intent, const Done<Nothing> &done)
{
    const auto arguments = [intent](
                               sd_bus_message *message) { return appendIntent(message, intent); };
    m_bus->call(method("launchIntent"), arguments, m_timeLimit, nothing(done));
}

void LumdClient::openSettings(const QString &package, const Done<Nothing> &done)
{
    m_bus->call(method("openAppSettings"), text(package), m_timeLimit, nothing(done));
}

void LumdClient::showLicences(const Done<Nothing> &done)
{
    m_bus->call(method("viewLicenses"), {}, m_timeLimit, nothing(done));
}
