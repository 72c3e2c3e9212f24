// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienpackagemanager.h"
#include "clients/installresult.h"
#include "fuzz/referenceparcel.h"
#include "fuzz/setup.h"
#include "tests/binder/runtimeunit.h"
#include "tests/support/fakegbinder/fakebinder.h"

#include <QCoreApplication>

#include <optional>

namespace {

const QString package = QStringLiteral("com.foo");

struct Result
{
    bool success = false;
    QString packageName;
    QString message;
};

bool operator==(const Result &a, const Result &b)
{
    return a.success == b.success && a.packageName == b.packageName && a.message == b.message;
}

// A package manager that is connected, with its two observers.
class World
{
public:
    World();

    quint32 installObserver = 0;
    quint32 deleteObserver = 0;
    std::optional<Result> result; // of the last call

private:
    int m_argc = 0;
    QCoreApplication m_application{m_argc, nullptr};
    RuntimeUnit m_unit;
    std::optional<AlienPackageManager> m_manager;
};

World::World()
{
    Fuzz::writeFile("/opt/alien/build.prop", "ro.build.version.sdk=27\n");
    FakeBinder::registerService(QStringLiteral("package"));
    m_unit.startOutAs(QStringLiteral("active"));
    m_manager.emplace(nullptr);
    Q_EMIT m_manager->connectionChanged(true);
    m_manager->installPackage(QStringLiteral("/a.apk"), false);
    installObserver = FakeBinder::requests().last().localObjects.value(0);
    m_manager->deletePackage(package, false);
    deleteObserver = FakeBinder::requests().last().localObjects.value(0);
    Fuzz::require(installObserver != 0 && deleteObserver != 0);
    QObject::connect(&*m_manager, &AlienPackageManager::installationResultReceived,
        [this](bool success, const QString &name, const QString &message) {
            result = {success, name, message};
        });
    QObject::connect(&*m_manager, &AlienPackageManager::uninstallationResultReceived,
        [this](bool success, const QString &name) { result = {success, name, {}}; });
}

Result installResult(ReferenceParcel &parcel)
{
    Result result;
    result.packageName = parcel.string();
    const qint32 returnCode = parcel.int32();
    result.success = returnCode == 1;
    result.message = parcel.string();
    if (result.message.isEmpty() && !result.success)
        result.message = installFailureText(returnCode);
    if (parcel.int32() != 0)
        parcel.bundle();
    return result;
}

std::optional<Result> expectedResult(bool isInstall, quint32 code, ReferenceParcel &parcel)
{
    if (isInstall && code == 1)
        return Result{false, {}, QStringLiteral("Package installation failed")};
    if (isInstall && code == 2)
        return installResult(parcel);
    if (isInstall || code != 1)
        return {};
    const QString name = parcel.string();
    return Result{parcel.int32() == 1, name, {}};
}

} // namespace

// The first byte chooses the observer (its top bit the one of deletes) and the transaction code,
// the rest are the arguments. What is told must be what the slow reading makes of them.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static World world;
    if (size == 0)
        return 0;
    const bool isInstall = data[0] < 0x80;
    FakeBinder::Call call;
    call.code = data[0] & 0x7f;
    call.interface = isInstall ? QStringLiteral("android.content.pm.IPackageInstallObserver2")
                               : QStringLiteral("android.content.pm.IPackageDeleteObserver");
    call.payload = Fuzz::bytes(data + 1, size - 1);
    call.initialStatus = -1;
    ReferenceParcel parcel(call.payload);
    const std::optional<Result> expected = expectedResult(isInstall, call.code, parcel);
    if (parcel.isTooLong())
        return 0;

    world.result.reset();
    const FakeBinder::Answer answer =
        FakeBinder::transactObject(isInstall ? world.installObserver : world.deleteObserver, call);
    Fuzz::require(answer.delivered && !answer.hasReply);
    Fuzz::require(answer.status == (expected ? 0 : 1));
    Fuzz::require(world.result == expected);
    Fuzz::require(FakeBinder::errors().isEmpty());
    FakeBinder::clearLedger();
    return 0;
}
