// SPDX-License-Identifier: BSD-3-Clause
#include "servicemanager/binderdriver.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr size_t MemorySize = 0x20000;
constexpr int ReadSize = 4096;

// the process that had the role before gives it up some time after it has ended
constexpr int RoleAttempts = 200;
constexpr useconds_t RoleInterval = 10 * 1000;

QString systemError(const char *what)
{
    return QStringLiteral("%1: %2").arg(
        QString::fromLatin1(what), QString::fromLocal8Bit(std::strerror(errno)));
}

template <typename Payload> Payload payloadAt(const char *bytes)
{
    Payload payload;
    std::memcpy(&payload, bytes, sizeof(payload));
    return payload;
}

} // namespace

BinderDriver::BinderDriver(Callbacks callbacks) : m_callbacks(std::move(callbacks)) { }

BinderDriver::~BinderDriver()
{
    if (m_memory)
        munmap(m_memory, MemorySize);
    if (m_descriptor >= 0)
        close(m_descriptor);
}

QString BinderDriver::becomeContextManager(const char *device)
{
    m_descriptor = open(device, O_RDWR | O_CLOEXEC | O_NONBLOCK);
    if (m_descriptor < 0)
        return systemError(device);
    binder_version version{};
    if (ioctl(m_descriptor, BINDER_VERSION, &version) < 0)
        return systemError("BINDER_VERSION");
    if (version.protocol_version != BINDER_CURRENT_PROTOCOL_VERSION)
        return QStringLiteral("binder protocol %1").arg(version.protocol_version);
    void *memory = mmap(nullptr, MemorySize, PROT_READ, MAP_PRIVATE, m_descriptor, 0);
    if (memory == MAP_FAILED)
        return systemError("mmap");
    m_memory = memory;

    int attempts = RoleAttempts;
    while (ioctl(m_descriptor, BINDER_SET_CONTEXT_MGR, 0) < 0) {
        if (errno != EBUSY || --attempts == 0)
            return systemError("BINDER_SET_CONTEXT_MGR");
        usleep(RoleInterval);
    }
    const quint32 enterLooper = BC_ENTER_LOOPER;
    m_commands.append(reinterpret_cast<const char *>(&enterLooper), sizeof(enterLooper));
    flush();
    return {};
}

void BinderDriver::dispatch()
{
    QByteArray input;
    while (exchange(&input))
        handle(input);
}

void BinderDriver::keepHandle(quint32 handle)
{
    command(BC_ACQUIRE, handle);
    if (m_references[handle]++ == 0)
        command(BC_REQUEST_DEATH_NOTIFICATION, binder_handle_cookie{handle, handle});
}

void BinderDriver::releaseHandle(quint32 handle)
{
    if (--m_references[handle] == 0) {
        m_references.remove(handle);
        command(BC_CLEAR_DEATH_NOTIFICATION, binder_handle_cookie{handle, handle});
    }
    command(BC_RELEASE, handle);
}

template <typename Payload> void BinderDriver::command(quint32 code, const Payload &payload)
{
    m_commands.append(reinterpret_cast<const char *>(&code), sizeof(code));
    m_commands.append(reinterpret_cast<const char *>(&payload), sizeof(payload));
}

void BinderDriver::flush()
{
    exchange(nullptr);
}

bool BinderDriver::exchange(QByteArray *input)
{
    binder_write_read request{};
    request.write_size = binder_size_t(m_commands.size());
    request.write_buffer = reinterpret_cast<binder_uintptr_t>(m_commands.constData());
    if (input) {
        input->resize(ReadSize);
        request.read_size = ReadSize;
        request.read_buffer = reinterpret_cast<binder_uintptr_t>(input->data());
    }
    int result = 0;
    do {
        result = ioctl(m_descriptor, BINDER_WRITE_READ, &request);
    } while (result < 0 && errno == EINTR);
    const bool failed = result < 0 && errno != EAGAIN;
    if (failed)
        m_callbacks.failed(systemError("BINDER_WRITE_READ"));
    m_commands.clear();
    if (input)
        input->truncate(int(request.read_consumed));
    return result == 0 && request.read_consumed > 0;
}

void BinderDriver::handle(const QByteArray &input)
{
    int position = 0;
    while (position + int(sizeof(quint32)) <= input.size()) {
        const auto code = payloadAt<quint32>(input.constData() + position);
        position += int(sizeof(code));
        const char *payload = input.constData() + position;
        position += int(_IOC_SIZE(code));
        switch (code) {
        case BR_TRANSACTION:
            handleTransaction(payloadAt<binder_transaction_data>(payload));
            break;
        case BR_DEAD_BINDER: {
            const auto cookie = payloadAt<binder_uintptr_t>(payload);
            m_callbacks.handleDied(quint32(cookie));
            command(BC_DEAD_BINDER_DONE, cookie);
            flush();
            break;
        }
        case BR_FAILED_REPLY:
            m_callbacks.failed(QStringLiteral("the driver refused a reply"));
            break;
        case BR_ERROR:
            m_callbacks.failed(
                QStringLiteral("the driver reported error %1").arg(payloadAt<qint32>(payload)));
            break;
        default: // the rest needs no answer: progress, and callers that did not wait
            break;
        }
    }
}

void BinderDriver::handleTransaction(const binder_transaction_data &transaction)
{
    Transaction received;
    received.code = transaction.code;
    received.senderPid = transaction.sender_pid;
    received.data = QByteArray(
        reinterpret_cast<const char *>(transaction.data.ptr.buffer), int(transaction.data_size));
    received.objects.resize(int(transaction.offsets_size / sizeof(quint64)));
    std::memcpy(received.objects.data(),
        reinterpret_cast<const void *>(transaction.data.ptr.offsets), transaction.offsets_size);
    const Reply reply = m_callbacks.transact(received);

    // the handles that arrived in the buffer live no longer than it: what is kept was
    // acquired by the commands before this one
    command(BC_FREE_BUFFER, transaction.data.ptr.buffer);
    if ((transaction.flags & TF_ONE_WAY) == 0) {
        binder_transaction_data answer{};
        answer.flags = reply.isStatus ? TF_STATUS_CODE : 0;
        answer.data_size = binder_size_t(reply.data.size());
        answer.data.ptr.buffer = reinterpret_cast<binder_uintptr_t>(reply.data.constData());
        answer.offsets_size = binder_size_t(reply.objects.size()) * sizeof(quint64);
        answer.data.ptr.offsets = reinterpret_cast<binder_uintptr_t>(reply.objects.constData());
        command(BC_REPLY, answer);
    }
    flush();
}
