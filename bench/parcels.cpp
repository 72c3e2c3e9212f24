// SPDX-License-Identifier: BSD-3-Clause
#include "bench/twohundredlaunchers.h"
#include "binder/alienbinderparcel.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/parcelwriter.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using Reading = std::function<void(GBinderRemoteRequest *)>;

GBinderLocalReply *onCall(GBinderLocalObject *object, GBinderRemoteRequest *request, guint code,
    guint flags, int *status, void *reading)
{
    Q_UNUSED(object)
    Q_UNUSED(code)
    Q_UNUSED(flags)
    Q_UNUSED(status)
    (*static_cast<Reading *>(reading))(request);
    return nullptr;
}

// A request lives only for the length of its call, so the reading happens inside of one.
void withAnnouncement(Reading reading)
{
    const QString interface = QStringLiteral("bench.IAnnouncements");
    GBinderServiceManager *const manager = gbinder_servicemanager_new("/dev/puddlejumper");
    GBinderLocalObject *const object =
        gbinder_servicemanager_new_local_object(manager, "bench.IAnnouncements", onCall, &reading);
    GBinderServiceName *const name = gbinder_servicename_new(manager, object, "bench");

    const ApkLauncher launcher = TwoHundredLaunchers::launchers().first();
    FakeBinder::Call call;
    call.code = 1;
    call.interface = interface;
    call.payload = FakeBinder::ParcelWriter()
                       .string16(launcher.packageName)
                       .string16(launcher.className)
                       .string16(launcher.caption)
                       .string16(launcher.packageVersion)
                       .byteArray(launcher.icon)
                       .bytes();
    if (!FakeBinder::transact(QStringLiteral("bench"), call).delivered)
        qFatal("the call did not arrive");

    gbinder_servicename_unref(name);
    gbinder_local_object_drop(object);
    gbinder_servicemanager_unref(manager);
}

void readingByParcel(benchmark::State &state)
{
    withAnnouncement([&state](GBinderRemoteRequest *request) {
        for (auto _ : state) {
            AlienBinderParcel parcel(request);
            for (int i = 0; i < 4; ++i)
                benchmark::DoNotOptimize(parcel.readString());
            benchmark::DoNotOptimize(parcel.readByteArray());
        }
    });
}

void readingByHand(benchmark::State &state)
{
    withAnnouncement([&state](GBinderRemoteRequest *request) {
        for (auto _ : state) {
            GBinderReader reader;
            gbinder_remote_request_init_reader(request, &reader);
            for (int i = 0; i < 4; ++i) {
                gsize length = 0;
                const auto *units = reinterpret_cast<const char16_t *>(
                    gbinder_reader_read_string16_utf16(&reader, &length));
                benchmark::DoNotOptimize(std::u16string(units, length));
            }
            gsize size = 0;
            const auto *bytes =
                static_cast<const char *>(gbinder_reader_read_byte_array(&reader, &size));
            benchmark::DoNotOptimize(std::vector<char>(bytes, bytes + size));
        }
    });
}

BENCHMARK(readingByParcel)->Name("parcel/subject")->Unit(benchmark::kMicrosecond);
BENCHMARK(readingByHand)->Name("parcel/yardstick")->Unit(benchmark::kMicrosecond);

} // namespace
