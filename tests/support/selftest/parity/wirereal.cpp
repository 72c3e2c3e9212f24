// SPDX-License-Identifier: BSD-3-Clause
// A binder driver in user space, for the real library: its calls of open, ioctl and mmap end
// here, because the symbols of the program go before those of libc.
#include "wire.h"

#include <linux/android/binder.h>

#include <glib.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <cstring>
#include <mutex>

namespace {

constexpr uint32_t PeerHandle = 1;
constexpr uint32_t CheckService = 2; // Android's IServiceManager

struct Driver
{
    std::mutex mutex;
    int device = -1; // a pipe: the library polls it for calls into this process
    int wake = -1;
    Wire::Parcel reply;
    Wire::Parcel received;
    binder_uintptr_t localObject = 0;
    std::string incoming; // commands for a looper thread
    std::condition_variable answered;
    bool hasAnswer = false;
    Wire::Answer answer;
    int delay = 0;
    bool isPeerDead = false;
    std::condition_variable peerDied;
};

Driver driver;
thread_local std::string pending; // commands for this thread

template <typename Value> void put(std::string *out, const Value &value)
{
    out->append(reinterpret_cast<const char *>(&value), sizeof(value));
}

template <typename Value> Value get(const void *in)
{
    Value value;
    memcpy(&value, in, sizeof(value));
    return value;
}

/// One block for bytes and offsets; the library gives it back with BC_FREE_BUFFER.
binder_transaction_data describe(const Wire::Parcel &parcel)
{
    std::string block = parcel.bytes;
    block.resize((block.size() + 7) / 8 * 8);
    const size_t offsetsAt = block.size();
    for (const size_t offset : parcel.offsets)
        put(&block, binder_size_t(offset));
    auto *kept = new char[block.size() + 1];
    memcpy(kept, block.data(), block.size());
    binder_transaction_data data = {};
    data.data_size = parcel.bytes.size();
    data.offsets_size = parcel.offsets.size() * sizeof(binder_size_t);
    data.data.ptr.buffer = reinterpret_cast<binder_uintptr_t>(kept);
    data.data.ptr.offsets = data.data.ptr.buffer + offsetsAt;
    return data;
}

Wire::Parcel replyFor(const binder_transaction_data &data)
{
    if (data.target.handle == PeerHandle)
        return driver.reply;
    if (data.code != CheckService)
        return {std::string(4, '\0'), {}};
    flat_binder_object object = {};
    object.hdr.type = BINDER_TYPE_HANDLE;
    object.handle = PeerHandle;
    Wire::Parcel parcel;
    put(&parcel.bytes, object);
    parcel.offsets = {0};
    return parcel;
}

void receive(const binder_transaction_data &data)
{
    const auto *bytes = reinterpret_cast<const char *>(data.data.ptr.buffer);
    const auto *offsets = reinterpret_cast<const binder_size_t *>(data.data.ptr.offsets);
    driver.received.bytes.assign(bytes, data.data_size);
    driver.received.offsets.assign(offsets, offsets + data.offsets_size / sizeof(*offsets));
    for (const size_t offset : driver.received.offsets) {
        const auto object = get<flat_binder_object>(bytes + offset);
        if (object.hdr.type == BINDER_TYPE_BINDER)
            driver.localObject = object.binder;
    }
}

/// Lets the peer take its time; false when it is dead at the end.
bool await(std::unique_lock<std::mutex> &lock)
{
    const auto isDead = [] { return driver.isPeerDead; };
    if (driver.delay < 0)
        driver.peerDied.wait(lock, isDead);
    else
        driver.peerDied.wait_for(lock, std::chrono::milliseconds(driver.delay), isDead);
    return !driver.isPeerDead;
}

void transact(const binder_transaction_data &data, std::unique_lock<std::mutex> &lock)
{
    if (data.target.handle == PeerHandle)
        receive(data);
    put(&pending, uint32_t(BR_TRANSACTION_COMPLETE));
    if (data.flags & TF_ONE_WAY)
        return;
    if (data.target.handle == PeerHandle && !await(lock)) {
        put(&pending, uint32_t(BR_DEAD_REPLY));
        return;
    }
    put(&pending, uint32_t(BR_REPLY));
    put(&pending, describe(replyFor(data)));
}

void takeAnswer(const binder_transaction_data &data)
{
    const auto *bytes = reinterpret_cast<const char *>(data.data.ptr.buffer);
    driver.answer = {};
    driver.answer.hasReply = !(data.flags & TF_STATUS_CODE);
    if (driver.answer.hasReply)
        driver.answer.bytes.assign(bytes, data.data_size);
    else
        driver.answer.status = get<int32_t>(bytes);
    driver.hasAnswer = true;
    put(&pending, uint32_t(BR_TRANSACTION_COMPLETE));
    driver.answered.notify_all();
}

void take(uint32_t command, const char *payload, std::unique_lock<std::mutex> &lock)
{
    if (command == BC_TRANSACTION || command == BC_TRANSACTION_SG)
        transact(get<binder_transaction_data>(payload), lock);
    else if (command == BC_REPLY || command == BC_REPLY_SG)
        takeAnswer(get<binder_transaction_data>(payload));
    else if (command == BC_FREE_BUFFER)
        delete[] reinterpret_cast<char *>(get<binder_uintptr_t>(payload));
}

int writeRead(binder_write_read *exchange)
{
    std::unique_lock<std::mutex> lock(driver.mutex);
    const auto *out = reinterpret_cast<const char *>(exchange->write_buffer);
    while (exchange->write_consumed < exchange->write_size) {
        const char *at = out + exchange->write_consumed;
        const auto command = get<uint32_t>(at);
        take(command, at + sizeof(command), lock);
        exchange->write_consumed += sizeof(command) + _IOC_SIZE(command);
    }
    if (exchange->read_size > 0 && pending.empty() && !driver.incoming.empty()) {
        pending.swap(driver.incoming);
        char byte = 0;
        if (read(driver.device, &byte, 1) != 1)
            abort();
    }
    const size_t size =
        std::min<size_t>(pending.size(), exchange->read_size - exchange->read_consumed);
    memcpy(reinterpret_cast<char *>(exchange->read_buffer) + exchange->read_consumed,
        pending.data(), size);
    pending.erase(0, size);
    exchange->read_consumed += size;
    return 0;
}

} // namespace

// libc's open of a program that was built with _FORTIFY_SOURCE.
extern "C" int __open_2(const char *path, int flags)
{
    if (strcmp(path, "/dev/puddlejumper") != 0)
        return open(path, flags);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return -1;
    driver.device = ends[0];
    driver.wake = ends[1];
    return driver.device;
}

extern "C" int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    // The library passes it as an int, which may be negative.
    const auto code = uint32_t(request);
    if (fd != driver.device)
        return -1;
    if (code == BINDER_VERSION)
        static_cast<binder_version *>(argument)->protocol_version = 8; // of a 64-bit kernel
    else if (code == BINDER_WRITE_READ)
        return writeRead(static_cast<binder_write_read *>(argument));
    return 0;
}

extern "C" void *mmap(
    void *address, size_t size, int protection, int flags, int fd, off_t offset) noexcept
{
    static const auto next = reinterpret_cast<decltype(&mmap)>(dlsym(RTLD_NEXT, "mmap"));
    if (fd >= 0 && fd == driver.device)
        return next(address, size, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return next(address, size, protection, flags, fd, offset);
}

void Wire::start(const std::string &) { }

void Wire::setReply(const Parcel &reply)
{
    const std::lock_guard<std::mutex> lock(driver.mutex);
    driver.reply = reply;
}

void Wire::delayReplies(int milliseconds)
{
    const std::lock_guard<std::mutex> lock(driver.mutex);
    driver.delay = milliseconds;
}

void Wire::killPeer()
{
    const std::lock_guard<std::mutex> lock(driver.mutex);
    driver.isPeerDead = true;
    driver.peerDied.notify_all();
}

Wire::Parcel Wire::lastRequest()
{
    const std::lock_guard<std::mutex> lock(driver.mutex);
    return driver.received;
}

Wire::Answer Wire::call(uint32_t code, const std::string &request)
{
    std::unique_lock<std::mutex> lock(driver.mutex);
    binder_transaction_data data = describe({request, {}});
    data.target.ptr = driver.localObject;
    data.code = code;
    put(&driver.incoming, uint32_t(BR_TRANSACTION));
    put(&driver.incoming, data);
    driver.hasAnswer = false;
    if (write(driver.wake, "", 1) != 1)
        abort();
    // The object is called from the main loop, and the answer comes from a looper thread.
    while (!driver.hasAnswer) {
        lock.unlock();
        g_main_context_iteration(nullptr, FALSE);
        lock.lock();
        driver.answered.wait_for(lock, std::chrono::milliseconds(1));
    }
    return driver.answer;
}
