// SPDX-License-Identifier: BSD-3-Clause
#include "bench/localcall.h"
#include "binder/alienbinderparcel.h"

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {

constexpr int entryCount = 100;

using PlainValue = std::variant<std::monostate, bool, int, long long, double, std::u16string>;

// android.os.BaseBundle and android.os.Parcel
constexpr qint32 magic = 0x4C444E42;
constexpr qint32 stringTag = 0;
constexpr qint32 integerTag = 1;
constexpr qint32 longTag = 6;
constexpr qint32 doubleTag = 8;
constexpr qint32 booleanTag = 9;

QString entryKey(int index)
{
    return QStringLiteral("com.example.extra.%1").arg(index, 3, 10, QLatin1Char('0'));
}

QVariantMap mixedEntries()
{
    QVariantMap bundle;
    for (int i = 0; i < entryCount; ++i) {
        const QVariant values[] = {true, i, qint64(i) << 33, i / 3.0,
            QStringLiteral("The text of the entry number %1").arg(i)};
        bundle.insert(entryKey(i), values[i % 5]);
    }
    return bundle;
}

std::vector<std::pair<std::u16string, PlainValue>> mixedPlainEntries()
{
    std::vector<std::pair<std::u16string, PlainValue>> entries;
    for (int i = 0; i < entryCount; ++i) {
        const PlainValue values[] = {true, i, static_cast<long long>(i) << 33, i / 3.0,
            QStringLiteral("The text of the entry number %1").arg(i).toStdU16String()};
        entries.emplace_back(entryKey(i).toStdU16String(), values[i % 5]);
    }
    return entries;
}

void appendText(GBinderWriter *writer, const std::u16string &text)
{
    gbinder_writer_append_string16_utf16(
        writer, reinterpret_cast<const gunichar2 *>(text.data()), static_cast<gssize>(text.size()));
}

struct PlainWriter
{
    GBinderWriter *writer;

    void operator()(std::monostate /*unused*/) const { }
    void operator()(bool value) const
    {
        gbinder_writer_append_int32(writer, booleanTag);
        gbinder_writer_append_bool(writer, value);
    }
    void operator()(int value) const
    {
        gbinder_writer_append_int32(writer, integerTag);
        gbinder_writer_append_int32(writer, static_cast<guint32>(value));
    }
    void operator()(long long value) const
    {
        gbinder_writer_append_int32(writer, longTag);
        gbinder_writer_append_int64(writer, static_cast<guint64>(value));
    }
    void operator()(double value) const
    {
        gbinder_writer_append_int32(writer, doubleTag);
        gbinder_writer_append_double(writer, value);
    }
    void operator()(const std::u16string &value) const
    {
        gbinder_writer_append_int32(writer, stringTag);
        appendText(writer, value);
    }
};

void writeByHand(
    GBinderLocalReply *reply, const std::vector<std::pair<std::u16string, PlainValue>> &entries)
{
    GBinderWriter writer;
    gbinder_local_reply_init_writer(reply, &writer);
    const gsize lengthPosition = gbinder_writer_bytes_written(&writer);
    gbinder_writer_append_int32(&writer, 0);
    gbinder_writer_append_int32(&writer, magic);
    const gsize start = gbinder_writer_bytes_written(&writer);
    gbinder_writer_append_int32(&writer, static_cast<guint32>(entries.size()));
    for (const auto &[key, value] : entries) {
        appendText(&writer, key);
        std::visit(PlainWriter{&writer}, value);
    }
    const gsize length = gbinder_writer_bytes_written(&writer) - start;
    gbinder_writer_overwrite_int32(&writer, lengthPosition, static_cast<gint32>(length));
}

std::u16string readText(GBinderReader *reader)
{
    gsize length = 0;
    const auto *units =
        reinterpret_cast<const char16_t *>(gbinder_reader_read_string16_utf16(reader, &length));
    return {units, length};
}

PlainValue readValue(GBinderReader *reader)
{
    gint32 tag = 0;
    gbinder_reader_read_int32(reader, &tag);
    switch (tag) {
    case booleanTag: {
        gboolean value = FALSE;
        gbinder_reader_read_bool(reader, &value);
        return value != FALSE;
    }
    case integerTag: {
        gint32 value = 0;
        gbinder_reader_read_int32(reader, &value);
        return value;
    }
    case longTag: {
        gint64 value = 0;
        gbinder_reader_read_int64(reader, &value);
        return static_cast<long long>(value);
    }
    case doubleTag: {
        gdouble value = 0;
        gbinder_reader_read_double(reader, &value);
        return value;
    }
    case stringTag:
        return readText(reader);
    default:
        qFatal("tag %d", tag);
    }
}

std::map<std::u16string, PlainValue> readByHand(GBinderRemoteRequest *request)
{
    std::map<std::u16string, PlainValue> bundle;
    GBinderReader reader;
    gbinder_remote_request_init_reader(request, &reader);
    gint32 header = 0;
    gint32 count = 0;
    gbinder_reader_read_int32(&reader, &header);
    gbinder_reader_read_int32(&reader, &header);
    gbinder_reader_read_int32(&reader, &count);
    for (int i = 0; i < count; ++i) {
        std::u16string key = readText(&reader);
        bundle.insert_or_assign(std::move(key), readValue(&reader));
    }
    return bundle;
}

QByteArray writtenBundle()
{
    const auto write = [](GBinderLocalObject *object, GBinderRemoteRequest *request) {
        Q_UNUSED(request)
        GBinderLocalReply *const reply = gbinder_local_object_new_reply(object);
        AlienBinderParcel(reply).writeBundle(mixedEntries());
        return reply;
    };
    return LocalCall::run({}, write).bytes;
}

void bundleByParcel(benchmark::State &state)
{
    const QVariantMap entries = mixedEntries();
    LocalCall::run(writtenBundle(), [&](GBinderLocalObject *object, GBinderRemoteRequest *request) {
        if (AlienBinderParcel(request).readBundle() != entries)
            qFatal("the bundle does not come back as it was");
        for (auto _ : state) {
            GBinderLocalReply *const reply = gbinder_local_object_new_reply(object);
            AlienBinderParcel(reply).writeBundle(entries);
            gbinder_local_reply_unref(reply);
            benchmark::DoNotOptimize(AlienBinderParcel(request).readBundle());
        }
        return nullptr;
    });
}

void bundleByHand(benchmark::State &state)
{
    const auto entries = mixedPlainEntries();
    LocalCall::run(writtenBundle(), [&](GBinderLocalObject *object, GBinderRemoteRequest *request) {
        if (readByHand(request).size() != entries.size())
            qFatal("the bundle does not come back as it was");
        for (auto _ : state) {
            GBinderLocalReply *const reply = gbinder_local_object_new_reply(object);
            writeByHand(reply, entries);
            gbinder_local_reply_unref(reply);
            benchmark::DoNotOptimize(readByHand(request));
        }
        return nullptr;
    });
}

BENCHMARK(bundleByParcel)->Name("bundle/subject")->Unit(benchmark::kMicrosecond);
BENCHMARK(bundleByHand)->Name("bundle/yardstick")->Unit(benchmark::kMicrosecond);

} // namespace
