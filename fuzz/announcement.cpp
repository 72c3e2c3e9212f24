// SPDX-License-Identifier: BSD-3-Clause
#include "fuzz/setup.h"
#include "launcher/apkmanager.h"
#include "tests/support/fakegbinder/fakebinder.h"

#include <QCoreApplication>

namespace {

// Published without a runtime that would ask for it.
class PublishedApkManager : public ApkManager
{
public:
    PublishedApkManager() { onServiceStateChanged(true); }
};

void call(quint32 code, const QByteArray &payload)
{
    FakeBinder::Call announcement;
    announcement.code = code;
    announcement.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    announcement.payload = payload;
    announcement.initialStatus = -1;
    const FakeBinder::Answer answer =
        FakeBinder::transact(QStringLiteral("alien.launcher"), announcement);
    Fuzz::require(answer.delivered && !answer.hasReply);
    Fuzz::require(answer.status == (code >= 1 && code <= 3 ? 0 : 1));
    Fuzz::require(FakeBinder::errors().isEmpty());
    FakeBinder::clearLedger();
}

} // namespace

// The first byte is the transaction code, the rest the arguments.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int argc = 0;
    static const QCoreApplication application(argc, nullptr);
    static PublishedApkManager manager;
    static int signalled = 0;
    static const bool connected = [] {
        QObject::connect(&manager, &ApkManager::addLauncher, [] { ++signalled; });
        QObject::connect(&manager, &ApkManager::packageRemoved, [] { ++signalled; });
        QObject::connect(&manager, &ApkManager::launchersComplete, [] { ++signalled; });
        return true;
    }();
    Q_UNUSED(connected)
    if (size == 0)
        return 0;

    const quint32 code = data[0];
    const int before = signalled;
    call(code, Fuzz::bytes(data + 1, size - 1));
    Fuzz::require(signalled - before == (code >= 1 && code <= 3 ? 1 : 0));
    return 0;
}
