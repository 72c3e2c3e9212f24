// SPDX-License-Identifier: BSD-3-Clause
// Prints what a gbinder library makes of a long row of calls. It is built twice, with the
// fake and with the real library behind it; both must print the same.
//
// Usage: parity aidl|aidl2
#include "asynchronous.h"
#include "wire.h"

#include <gbinder.h>

#include <cstdio>
#include <cstring>
#include <functional>

#include <unistd.h>

namespace {

constexpr size_t ObjectSize = 24;

std::string hex(const std::string &bytes)
{
    std::string text;
    for (const char byte : bytes) {
        char digits[3];
        snprintf(digits, sizeof(digits), "%02x", static_cast<unsigned char>(byte));
        text += digits;
    }
    return text;
}

std::string word(int32_t value)
{
    return {reinterpret_cast<const char *>(&value), sizeof(value)};
}

std::string bytes(const char *data, size_t size)
{
    return {data, size};
}

/// An object as it stands on the wire: 0x73622a85 of this process, 0x73682a85 of another.
std::string object(uint32_t type, uint64_t handle)
{
    return word(int32_t(type)) + word(0) + bytes(reinterpret_cast<const char *>(&handle), 8)
        + std::string(8, '\0');
}

/// What a request begins with.
std::string header(const std::string &protocol, const char *interface)
{
    std::string text = word(0);
    if (protocol == "aidl2")
        text += word(-1);
    text += word(int32_t(strlen(interface)));
    for (const char *unit = interface; *unit; ++unit)
        text += bytes(unit, 1) + std::string(1, '\0');
    text += std::string(2, '\0');
    text.resize((text.size() + 3) / 4 * 4);
    return text;
}

/// Where the address of a local object stands, which is the library's own business.
void hideLocalObjects(Wire::Parcel *parcel)
{
    for (const size_t offset : parcel->offsets) {
        if (parcel->bytes.compare(offset, 4, bytes("\x85*bs", 4)) == 0)
            parcel->bytes.replace(offset + 8, 8, "ADDRESS.");
    }
}

class Parity
{
public:
    explicit Parity(const std::string &protocol);

    void write();
    void read();
    void handle();
    void call() { compareAsynchronousCalls(m_peer, m_client); }

private:
    void written(const char *name, const std::function<void(GBinderWriter *)> &append);
    void taken(const std::string &name, const Wire::Parcel &reply,
        const std::function<void(GBinderReader *)> &take);
    void strings(const char *name, const std::string &parcel);

    std::string m_protocol;
    GBinderServiceManager *m_manager;
    GBinderRemoteObject *m_peer;
    GBinderClient *m_client;
    GBinderLocalObject *m_object;
};

GBinderLocalReply *handleCall(GBinderLocalObject *object, GBinderRemoteRequest *request, guint code,
    guint flags, int *status, void *)
{
    const char *interface = gbinder_remote_request_interface(request);
    GBinderReader reader;
    gbinder_remote_request_init_reader(request, &reader);
    gint32 value = 0;
    const gboolean hasValue = gbinder_remote_request_read_int32(request, &value);
    printf("called: code %u flags %u status %d interface %s payload %zu first %d %d\n", code, flags,
        *status, interface ? interface : "none", gbinder_reader_bytes_remaining(&reader), hasValue,
        value);
    if (code == 1)
        return nullptr;
    *status = 1;
    if (code == 2)
        return nullptr;
    GBinderLocalReply *reply = gbinder_local_object_new_reply(object);
    gbinder_local_reply_append_int32(reply, 7);
    gbinder_local_reply_append_string16(reply, "done");
    return reply;
}

Parity::Parity(const std::string &protocol) : m_protocol(protocol)
{
    Wire::start(protocol);
    m_manager = gbinder_servicemanager_new("/dev/puddlejumper");
    m_peer = gbinder_remote_object_ref(
        gbinder_servicemanager_get_service_sync(m_manager, "peer", nullptr));
    m_client = gbinder_client_new(m_peer, "a.b.IPeer");
    m_object = gbinder_servicemanager_new_local_object(m_manager, "a.IObject", handleCall, nullptr);
    printf("interface %s device %s present %d dead %d\n", gbinder_client_interface(m_client),
        gbinder_servicemanager_device(m_manager), gbinder_servicemanager_is_present(m_manager),
        gbinder_remote_object_is_dead(m_peer));
}

void Parity::written(const char *name, const std::function<void(GBinderWriter *)> &append)
{
    Wire::setReply({word(0), {}});
    GBinderLocalRequest *request = gbinder_client_new_request(m_client);
    GBinderWriter writer;
    gbinder_local_request_init_writer(request, &writer);
    const size_t before = gbinder_writer_bytes_written(&writer);
    append(&writer);
    int status = 99;
    GBinderRemoteReply *reply = gbinder_client_transact_sync_reply(m_client, 5, request, &status);
    Wire::Parcel sent = Wire::lastRequest();
    hideLocalObjects(&sent);
    printf("%s: header %zu written %zu status %d reply %d bytes %s", name, before,
        gbinder_writer_bytes_written(&writer), status, reply != nullptr, hex(sent.bytes).c_str());
    for (const size_t offset : sent.offsets)
        printf(" @%zu", offset);
    printf("\n");
    gbinder_remote_reply_unref(reply);
    gbinder_local_request_unref(request);
}

void Parity::write()
{
    using Writer = GBinderWriter *;
    const gunichar2 text[] = {'x', 0xe9, 0xd800, 0};
    written("nothing", [](Writer) { });
    written("bool", [](Writer w) {
        gbinder_writer_append_bool(w, TRUE);
        gbinder_writer_append_bool(w, 5);
        gbinder_writer_append_bool(w, FALSE);
    });
    written("int8", [](Writer w) { gbinder_writer_append_int8(w, 0xff); });
    written("int16", [](Writer w) { gbinder_writer_append_int16(w, 0xffff); });
    written("int32", [](Writer w) { gbinder_writer_append_int32(w, 0xfffffffe); });
    written("int64", [](Writer w) { gbinder_writer_append_int64(w, 0x123456789abcdef0); });
    written("float", [](Writer w) { gbinder_writer_append_float(w, 1.5F); });
    written("double", [](Writer w) { gbinder_writer_append_double(w, -2.25); });
    for (const char *utf8 : {"", "a", "ab", "a\xc3\xa9z", "\xf0\x9f\x98\x80"}) {
        written("string16", [utf8](Writer w) { gbinder_writer_append_string16(w, utf8); });
    }
    written("null string16", [](Writer w) { gbinder_writer_append_string16(w, nullptr); });
    for (const gssize length : {0, 1, 2, 3, -1}) {
        written("utf16",
            [&text, length](Writer w) { gbinder_writer_append_string16_utf16(w, text, length); });
    }
    written("null utf16", [](Writer w) { gbinder_writer_append_string16_utf16(w, nullptr, 0); });
    for (const gint32 length : {-1, 0, 1, 2, 3, 4, 5}) {
        written("byte array",
            [length](Writer w) { gbinder_writer_append_byte_array(w, "abcde", length); });
    }
    written("null byte array", [](Writer w) { gbinder_writer_append_byte_array(w, nullptr, 3); });
    written("null objects", [](Writer w) {
        gbinder_writer_append_local_object(w, nullptr);
        gbinder_writer_append_remote_object(w, nullptr);
    });
    written("objects", [this](Writer w) {
        gbinder_writer_append_int32(w, 1);
        gbinder_writer_append_remote_object(w, m_peer);
        gbinder_writer_append_local_object(w, m_object);
    });
    written("unaligned", [](Writer w) {
        gbinder_writer_append_bytes(w, "abc", 3);
        gbinder_writer_append_bool(w, TRUE);
    });
    written("overwritten", [](Writer w) {
        const gsize position = gbinder_writer_bytes_written(w);
        gbinder_writer_append_int32(w, 1);
        gbinder_writer_append_int32(w, 2);
        gbinder_writer_overwrite_int32(w, position, 0x11223344);
    });
    GBinderLocalRequest *request = gbinder_client_new_request(m_client);
    printf("oneway: %d\n", gbinder_client_transact_sync_oneway(m_client, 6, request));
    gbinder_local_request_unref(request);
}

void Parity::taken(const std::string &name, const Wire::Parcel &reply,
    const std::function<void(GBinderReader *)> &take)
{
    Wire::setReply(reply);
    GBinderRemoteReply *received =
        gbinder_client_transact_sync_reply(m_client, 5, nullptr, nullptr);
    GBinderReader reader;
    gbinder_remote_reply_init_reader(received, &reader);
    printf("%s: end %d of %zu:", name.c_str(), gbinder_reader_at_end(&reader),
        gbinder_reader_bytes_remaining(&reader));
    take(&reader);
    printf(" | end %d read %zu left %zd\n", gbinder_reader_at_end(&reader),
        gbinder_reader_bytes_read(&reader), ssize_t(gbinder_reader_bytes_remaining(&reader)));
    gbinder_remote_reply_unref(received);
}

void Parity::strings(const char *name, const std::string &parcel)
{
    using Reader = GBinderReader *;
    taken(std::string(name) + " as utf16", {parcel, {}}, [](Reader r) {
        gsize length = 999;
        const gunichar2 *text = gbinder_reader_read_string16_utf16(r, &length);
        printf(" %d length %zu", text != nullptr, length);
    });
    taken(std::string(name) + " as utf8", {parcel, {}}, [](Reader r) {
        char *text = gbinder_reader_read_string16(r);
        printf(" %s", text ? text : "null");
        g_free(text);
    });
    taken(std::string(name) + " nullable", {parcel, {}}, [](Reader r) {
        static const gunichar2 untouched = 0;
        const gunichar2 *text = &untouched;
        gsize length = 999;
        const gboolean ok = gbinder_reader_read_nullable_string16_utf16(r, &text, &length);
        printf(" %d %s length %zu", ok,
            !text                    ? "null"
                : text == &untouched ? "untouched"
                                     : "text",
            length);
    });
    taken(std::string(name) + " skipped", {parcel, {}},
        [](Reader r) { printf(" %d", gbinder_reader_skip_string16(r)); });
}

void Parity::read()
{
    using Reader = GBinderReader *;
    const auto int32 = [](Reader r) {
        gint32 value = 77;
        const gboolean ok = gbinder_reader_read_int32(r, &value);
        printf(" %d %d", ok, value);
    };
    for (const size_t size : {0, 2, 3, 4, 5, 8}) {
        taken("int32", {std::string(size, '\1'), {}}, int32);
        taken("bool", {std::string(size, '\2'), {}}, [](Reader r) {
            gboolean value = 77;
            const gboolean ok = gbinder_reader_read_bool(r, &value);
            printf(" %d %d", ok, value);
        });
        taken("int64", {std::string(size, '\1'), {}}, [](Reader r) {
            gint64 value = 77;
            const gboolean ok = gbinder_reader_read_int64(r, &value);
            printf(" %d %" G_GINT64_FORMAT, ok, value);
        });
        taken("double", {std::string(size, '\1'), {}}, [](Reader r) {
            gdouble value = 77;
            const gboolean ok = gbinder_reader_read_double(r, &value);
            printf(" %d %g", ok, value);
        });
    }
    taken("bool of the second byte", {word(0x100), {}}, [](Reader r) {
        gboolean value = 77;
        const gboolean ok = gbinder_reader_read_bool(r, &value);
        printf(" %d %d", ok, value);
    });
    strings("null", word(-1));
    strings("length -2", word(-2) + word(0));
    strings("empty", word(0) + word(0));
    strings("empty without end", word(0));
    strings("short length", "ab");
    strings("ab", word(2) + bytes("a\0b\0\0\0\0\0", 8));
    strings("ab without padding", word(2) + bytes("a\0b\0\0\0", 6));
    strings("ab without end", word(2) + bytes("a\0b\0", 4));
    strings("ab with another end", word(2) + bytes("a\0b\0c\0\0\0", 8));
    strings("too long", word(100) + bytes("a\0b\0\0\0\0\0", 8));
    strings("greatest length", word(0x7fffffff) + word(0));
    strings("lone surrogate", word(1) + bytes("\0\xd8\0\0", 4));
    strings("zero inside", word(3) + bytes("a\0\0\0b\0\0\0", 8));
    strings("more behind", word(3) + bytes("a\0b\0c\0\0\0", 8) + word(1));
    const auto byteArray = [](Reader r) {
        gsize length = 999;
        const void *data = gbinder_reader_read_byte_array(r, &length);
        printf(" %d length %zu", data != nullptr, length);
    };
    taken("null byte array", {word(-1), {}}, byteArray);
    taken("empty byte array", {word(0), {}}, byteArray);
    taken("byte array", {word(5) + bytes("abcde\0\0\0", 8), {}}, byteArray);
    taken("byte array too long", {word(50) + "abcde", {}}, byteArray);
    taken("byte array of length -5", {word(-5) + "abcde", {}}, byteArray);
    taken("byte array of greatest length", {word(0x7fffffff) + "abcdefgh", {}}, byteArray);
    taken("byte array with short length", {"ab", {}}, byteArray);
    taken("byte array without padding", {word(5) + "abcde", {}}, byteArray);
    const auto nullableObject = [this](Reader r) {
        GBinderRemoteObject *found = m_peer;
        const gboolean ok = gbinder_reader_read_nullable_object(r, &found);
        printf(" %d %s", ok, !found ? "null" : found == m_peer ? "peer" : "other");
        if (ok)
            gbinder_remote_object_unref(found);
    };
    const std::string peer = object(0x73682a85, 1);
    const std::string null = object(0x73622a85, 0);
    taken("object", {peer, {0}}, nullableObject);
    taken("object behind a word", {word(1) + peer, {4}}, [&](Reader r) {
        int32(r);
        nullableObject(r);
    });
    taken("object not recorded", {peer, {}}, nullableObject);
    taken("object recorded elsewhere", {peer + peer, {ObjectSize}}, nullableObject);
    taken("null object", {null, {0}}, nullableObject);
    taken("null object not recorded", {null, {}}, nullableObject);
    taken("short object", {peer.substr(0, 20), {0}}, nullableObject);
    taken("object of no kind", {std::string(ObjectSize, '\0'), {0}}, nullableObject);
    taken("null object, refused", {null, {0}},
        [](Reader r) { printf(" %d", gbinder_reader_read_object(r) != nullptr); });
}

void Parity::handle()
{
    const auto called = [](const char *name, uint32_t code, const std::string &request) {
        const Wire::Answer answer = Wire::call(code, request);
        printf("%s: reply %d status %d bytes %s\n", name, answer.hasReply,
            answer.hasReply ? 0 : answer.status, hex(answer.bytes).c_str());
    };
    written("handed over",
        [this](GBinderWriter *w) { gbinder_writer_append_local_object(w, m_object); });
    called("status left alone", 1, header(m_protocol, "a.IObject") + word(4));
    called("status set", 2, header(m_protocol, "a.IObject"));
    called("reply", 3, header(m_protocol, "a.IObject") + word(4) + word(5));
    called("another interface", 1, header(m_protocol, "a.IOther") + word(4));
    called("no header", 1, "");
    called("damaged header", 1, std::string(40, 'z'));
    called("null interface", 1, word(0) + word(-1) + word(-1));
    gbinder_local_object_drop(m_object);
    called("dropped", 1, header(m_protocol, "a.IObject") + word(4));
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    Parity parity(argv[1]);
    parity.write();
    parity.read();
    parity.handle();
    parity.call();
    fflush(stdout);
    // The real library's threads wait for a driver that answers no farewell.
    _exit(0);
}
