// SPDX-License-Identifier: BSD-3-Clause
// The simulated Android's service manager: the context manager of the binder device.
// A process of its own, because the driver refuses calls to handle 0 from the process
// that stands behind it. Prints events as JSON lines; ends with its standard input.
#include "servicemanager/binderdriver.h"
#include "servicemanager/servicedirectory.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

namespace {

void printEvent(const QJsonObject &event)
{
    const QByteArray line = QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    std::fflush(stdout);
}

void printError(const QString &reason)
{
    printEvent({{QStringLiteral("event"), QStringLiteral("servicemanager")},
        {QStringLiteral("error"), reason}});
}

BinderDriver::Reply driverReply(const ServiceDirectory::Answer &answer)
{
    if (answer.status != 0) {
        return {QByteArray(reinterpret_cast<const char *>(&answer.status), sizeof(answer.status)),
            {}, true};
    }
    if (!answer.handle)
        return {answer.data, {}, false};
    flat_binder_object object{};
    object.hdr.type = BINDER_TYPE_HANDLE;
    object.flags = FLAT_BINDER_FLAG_PRIORITY_MASK & 0x7f;
    object.handle = *answer.handle;
    return {QByteArray(reinterpret_cast<const char *>(&object), sizeof(object)), {0}, false};
}

void serve(BinderDriver &driver)
{
    std::array<pollfd, 2> watched{
        pollfd{driver.descriptor(), POLLIN, 0}, pollfd{STDIN_FILENO, POLLIN, 0}};
    while (watched[1].revents == 0) {
        if (poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR)
            break;
        if (watched[0].revents != 0)
            driver.dispatch();
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int sdk = arguments.value(1).toInt();
    if (sdk < 27 || sdk > 29) {
        printError(QStringLiteral("usage: alien-servicemanager SDK, 27 to 29"));
        return 2;
    }

    BinderDriver *handles = nullptr;
    ServiceDirectory directory(sdk,
        {[&handles](quint32 handle) { handles->keepHandle(handle); },
            [&handles](quint32 handle) { handles->releaseHandle(handle); }, printEvent});
    BinderDriver driver({[&directory](const BinderDriver::Transaction &received) {
                             return driverReply(directory.transact({received.code, received.data,
                                 received.objects, received.senderPid}));
                         },
        [&directory](quint32 handle) { directory.handleDied(handle); }, printError});
    handles = &driver;

    const QString failure = driver.becomeContextManager("/dev/puddlejumper");
    if (!failure.isEmpty()) {
        printError(failure);
        return 1;
    }
    printEvent({{QStringLiteral("event"), QStringLiteral("contextmanager")}});
    serve(driver);
    return 0;
}
