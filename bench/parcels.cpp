// SPDX-License-Identifier: BSD-3-Clause
#include "bench/localcall.h"
#include "bench/samplelaunchers.h"
#include "binder/alienbinderparcel.h"
#include "tests/support/fakegbinder/parcelwriter.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

QByteArray announcement()
{
    const ApkLauncher launcher = SampleLaunchers::launchers(1).first();
    return FakeBinder::ParcelWriter()
        .string16(launcher.packageName)
        .string16(launcher.className)
        .string16(launcher.caption)
        .string16(launcher.packageVersion)
        .byteArray(launcher.icon)
        .bytes();
}

void readingByParcel(benchmark::State &state)
{
    LocalCall::run(announcement(), [&](GBinderLocalObject *object, GBinderRemoteRequest *request) {
        Q_UNUSED(object)
        for (auto _ : state) {
            AlienBinderParcel parcel(request);
            for (int i = 0; i < 4; ++i)
                benchmark::DoNotOptimize(parcel.readString());
            benchmark::DoNotOptimize(parcel.readByteArray());
        }
        return nullptr;
    });
}

void readingByHand(benchmark::State &state)
{
    LocalCall::run(announcement(), [&](GBinderLocalObject *object, GBinderRemoteRequest *request) {
        Q_UNUSED(object)
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
        return nullptr;
    });
}

BENCHMARK(readingByParcel)->Name("parcel/subject")->Unit(benchmark::kMicrosecond);
BENCHMARK(readingByHand)->Name("parcel/yardstick")->Unit(benchmark::kMicrosecond);

} // namespace
