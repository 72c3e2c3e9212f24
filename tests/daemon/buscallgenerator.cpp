// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/buscallgenerator.h"

#include <gio/gio.h>
#include <gio/gunixfdlist.h>

#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <limits>

namespace {

const char *Service = "com.tovra.lumd";
const char *Path = "/com/tovra/lumd";
// The bus takes no more than 64 containers within each other: an argument's dictionary and its
// entry come before the first of these.
constexpr int deepestVariant = 60;
constexpr int longText = 50000;

struct Method
{
    const char *name;
    const char *signature;
};

constexpr Method methods[] = {{"installFile", "s"}, {"installPreloadFile", "s"},
    {"installPartnerSpaceFile", "s"}, {"removeFile", "s"}, {"getAndroidAppDataUsage", ""},
    {"controlService", "b"}, {"controlServiceAutostart", "b"}, {"isRunning", ""},
    {"notifyRuntimeUpgrade", "b"}, {"getAppStartOnBootup", "s"}, {"setAppStartOnBootup", "sb"},
    {"deleteAppCacheFiles", "s"}, {"clearAppUserData", "s"}, {"forceStopApp", "s"},
    {"getAppSize", "s"}, {"openAppSettings", "s"}, {"viewLicenses", ""}, {"launchApp", "s"},
    {"launchIntent", "ssssssa{sv}"}};

const std::vector<std::string> otherNames{"triggerPackageMod", "publishNotification", "incomingDir",
    "onAlienServiceAvailable", "deleteLater", "installPackage", "Get", "Set", "GetAll",
    "Introspect", "Ping", "GetMachineId", "GetManagedObjects", "PropertiesChanged",
    "NameOwnerChanged", "_", std::string(255, 'a')};
const std::vector<std::string> interfaces{"com.tovra.lumd", "com.tovra.lumd.Other",
    "org.freedesktop.DBus", "org.freedesktop.DBus.Properties",
    "org.freedesktop.DBus.Introspectable", "org.freedesktop.DBus.Peer",
    "org.freedesktop.DBus.ObjectManager", "org.freedesktop.systemd1.Manager",
    "org.freedesktop.login1.Manager", "local.LumDaemon", "a." + std::string(250, 'b')};
const std::vector<std::string> paths{"/", "/com", "/com/tovra", "/com/tovra/lumd/child",
    "/com/tovra/lumd/0", "/org/freedesktop/DBus", "/org/freedesktop/systemd1",
    "/org/freedesktop/systemd1/unit/aliendalvik_2eservice", "/" + std::string(20000, 'a')};
const std::vector<std::string> texts{"", ":", ":1.1", ":/resource", "/", "//", ".", "..", "/..",
    "/.", "a", "com.a", "com.foo-bar", "com.a.apk", "/com.a-1.apk", "com.a/com.a.Main", "-", ".apk",
    "/.apk", "org.freedesktop.DBus", "%1%2%s%n", "a\nb", "\r", "\t\x01\x1b[31m\x7f",
    "\xc2\x80\xc2\x9f\xe2\x80\xa8\xe2\x80\xa9", "\xef\xbf\xbf", "\xf0\x9f\x93\xb1",
    "android.intent.action.MAIN", "android.intent.action.VIEW", "com.android.settings",
    "file:///home/a", "http://a/?b#c", "content://x", "/home/user/a.pdf", "text/plain", "true",
    "null"};

template <typename Number> Number edgeOr(Number random, size_t choice)
{
    using Limits = std::numeric_limits<Number>;
    const Number edges[] = {Limits::min(), Limits::max(), Number(0), Number(1), Number(-1)};
    return choice < 5 ? edges[choice] : random;
}

} // namespace

BusCallGenerator::BusCallGenerator(uint32_t seed, std::vector<std::string> files)
    : m_random(seed), m_files(std::move(files))
{
}

bool BusCallGenerator::happens(int percent)
{
    return below(100) < size_t(percent);
}

size_t BusCallGenerator::below(size_t limit)
{
    return m_random() % limit;
}

GDBusMessage *BusCallGenerator::next()
{
    GDBusMessage *message = nullptr;
    if (getenv("M") || happens(90))
        message = methodCall();
    else
        message = happens(50) ? signal() : answer();
    if (happens(20))
        g_dbus_message_set_flags(message, G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED);
    return message;
}

GDBusMessage *BusCallGenerator::methodCall()
{
    const Method &method = methods[getenv("M") ? atoi(getenv("M")) : below(std::size(methods))];
    const std::string name = happens(92) ? method.name : oneOf(otherNames);
    const std::string interface = happens(90) ? Service : oneOf(interfaces);
    const std::string path = happens(95) ? Path : oneOf(paths);
    GDBusMessage *message = g_dbus_message_new_method_call(
        Service, path.c_str(), happens(95) ? interface.c_str() : nullptr, name.c_str());
    std::string signature = method.signature;
    if (happens(10))
        signature = anySignature();
    else if (happens(5))
        signature += anyType(0);
    else if (happens(5) && !signature.empty())
        signature.resize(signature == "ssssssa{sv}" ? 6 : signature.size() - 1);
    fill(message, signature);
    return message;
}

GDBusMessage *BusCallGenerator::signal()
{
    GDBusMessage *message = g_dbus_message_new_signal(happens(50) ? Path : oneOf(paths).c_str(),
        oneOf(interfaces).c_str(), oneOf(otherNames).c_str());
    if (happens(70))
        g_dbus_message_set_destination(message, Service);
    fill(message, anySignature());
    return message;
}

GDBusMessage *BusCallGenerator::answer()
{
    GDBusMessage *message = g_dbus_message_new();
    if (happens(50)) {
        g_dbus_message_set_message_type(message, G_DBUS_MESSAGE_TYPE_METHOD_RETURN);
    } else {
        g_dbus_message_set_message_type(message, G_DBUS_MESSAGE_TYPE_ERROR);
        g_dbus_message_set_error_name(message, oneOf(interfaces).c_str());
    }
    g_dbus_message_set_destination(message, Service);
    g_dbus_message_set_reply_serial(message, guint32(1 + below(30000)));
    fill(message, anySignature());
    return message;
}

void BusCallGenerator::fill(GDBusMessage *message, const std::string &signature)
{
    GUnixFDList *descriptors = g_unix_fd_list_new();
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_TUPLE);
    const std::string tuple = '(' + signature + ')';
    const GVariantType *type = g_variant_type_first(G_VARIANT_TYPE(tuple.c_str()));
    for (; type != nullptr; type = g_variant_type_next(type))
        g_variant_builder_add_value(&builder,
            value(std::string(
                      g_variant_type_peek_string(type), g_variant_type_get_string_length(type)),
                0, descriptors));
    g_dbus_message_set_body(message, g_variant_builder_end(&builder));
    if (g_unix_fd_list_get_length(descriptors) > 0)
        g_dbus_message_set_unix_fd_list(message, descriptors);
    g_object_unref(descriptors);
}

std::string BusCallGenerator::text()
{
    if (happens(15))
        return oneOf(m_files);
    if (happens(4)) {
        const std::string piece = oneOf(texts) + 'x';
        std::string text;
        while (text.size() < longText)
            text += piece;
        return text;
    }
    if (happens(10))
        return oneOf(texts) + oneOf(texts);
    return oneOf(texts);
}

std::string BusCallGenerator::basicType()
{
    return std::string(1, oneOf(std::string("ybnqiuxtdsogh")));
}

std::string BusCallGenerator::anyType(int depth)
{
    constexpr int deepest = 8;
    if (depth >= deepest || happens(50))
        return happens(25) ? "v" : basicType();
    if (happens(35))
        return 'a' + anyType(depth + 1);
    if (happens(50))
        return "a{" + basicType() + anyType(depth + 2) + '}';
    std::string members;
    for (size_t left = 1 + below(3); left > 0; --left)
        members += anyType(depth + 1);
    return '(' + members + ')';
}

std::string BusCallGenerator::anySignature()
{
    constexpr size_t longest = 200; // the bus takes 255
    std::string signature;
    for (size_t left = below(8); left > 0; --left) {
        const std::string type = anyType(0);
        if (signature.size() + type.size() < longest)
            signature += type;
    }
    return signature;
}

GVariant *BusCallGenerator::value(const std::string &type, int depth, GUnixFDList *descriptors)
{
    if (type == "v") {
        constexpr int deepest = 12;
        if (depth <= 2 && happens(10))
            return nestedVariant(descriptors);
        const std::string inner = depth > deepest ? basicType() : anyType(depth);
        return g_variant_new_variant(value(inner, depth + 1, descriptors));
    }
    const GVariantType *form = G_VARIANT_TYPE(type.c_str());
    if (!g_variant_type_is_container(form))
        return basicValue(type.front(), descriptors);
    GVariantBuilder builder;
    g_variant_builder_init(&builder, form);
    const bool isArray = g_variant_type_is_array(form);
    const auto add = [&](const GVariantType *member) {
        const std::string inner(
            g_variant_type_peek_string(member), g_variant_type_get_string_length(member));
        g_variant_builder_add_value(&builder, value(inner, depth + 1, descriptors));
    };
    if (isArray) {
        for (size_t left = below(4); left > 0; --left)
            add(g_variant_type_element(form));
    } else {
        for (const GVariantType *member = g_variant_type_first(form); member != nullptr;
            member = g_variant_type_next(member))
            add(member);
    }
    return g_variant_builder_end(&builder);
}

GVariant *BusCallGenerator::basicValue(char type, GUnixFDList *descriptors)
{
    const uint64_t number = uint64_t(m_random()) << 32 | m_random();
    const size_t choice = below(8);
    switch (type) {
    case 'y':
        return g_variant_new_byte(edgeOr(guchar(number), choice));
    case 'b':
        return g_variant_new_boolean(number % 2);
    case 'n':
        return g_variant_new_int16(edgeOr(gint16(number), choice));
    case 'q':
        return g_variant_new_uint16(edgeOr(guint16(number), choice));
    case 'i':
        return g_variant_new_int32(edgeOr(gint32(number), choice));
    case 'u':
        return g_variant_new_uint32(edgeOr(guint32(number), choice));
    case 'x':
        return g_variant_new_int64(edgeOr(gint64(number), choice));
    case 't':
        return g_variant_new_uint64(edgeOr(guint64(number), choice));
    case 'd':
        return g_variant_new_double(choice == 0 ? std::nan("") : edgeOr(double(number), choice));
    case 'o':
        return g_variant_new_object_path(oneOf(paths).c_str());
    case 'g':
        return g_variant_new_signature(anySignature().c_str());
    case 'h': {
        // The bus takes 16 with a message.
        constexpr int most = 16;
        const int count = g_unix_fd_list_get_length(descriptors);
        if (count == most)
            return g_variant_new_handle(gint32(below(most)));
        const int file = open("/dev/null", O_RDONLY | O_CLOEXEC);
        const int index = g_unix_fd_list_append(descriptors, file, nullptr);
        close(file);
        return g_variant_new_handle(index);
    }
    default:
        return g_variant_new_string(text().c_str());
    }
}

GVariant *BusCallGenerator::nestedVariant(GUnixFDList *descriptors)
{
    GVariant *inner = basicValue(basicType().front(), descriptors);
    for (size_t left = 1 + below(deepestVariant); left > 0; --left)
        inner = g_variant_new_variant(inner);
    return inner;
}
