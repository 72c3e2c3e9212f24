// SPDX-License-Identifier: BSD-3-Clause
// What lumctl tells a caller whom lumd does not let change apps. Where the namespace has but one
// user, that one goes by another name for lumd, while lumctl sees root's number.
#include "tests/companions/lumctlrun.h"
#include "tests/daemon/appfixture.h"
#include "tests/daemon/callas.h"
#include "tests/support/systemcalls.h"
#include "tests/support/testmain.h"

#include <QDir>

namespace {

constexpr uint nemo = 12345;
constexpr uint disk = 6;

const QString apk = QStringLiteral("/run/apps/a.apk");
// Where every user gets at it.
const QString program = QStringLiteral("/run/lumctl");
// Where that user may leave the counts of a build that measures its coverage.
const QString counts = QStringLiteral("/run/counts");

} // namespace

class TestLumctlRights : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void refusedChangesAreTold();
    void failureOfOneWhoMayIsNoRefusal();

private:
    /// What lumctl prints to a user of that group, and "exit N".
    QStringList runAs(uint group, const QStringList &arguments) const;

    bool m_hasUsers = false;
    std::unique_ptr<AppFixture> m_world;
};

void TestLumctlRights::initTestCase()
{
    AppFixture::installCatalogues();
    m_world = std::make_unique<AppFixture>();
    makeFile(apk);
    QVERIFY(QFile::copy(QStringLiteral(LUMCTL_PROGRAM), program));
    QVERIFY(QDir().mkpath(counts));
    QVERIFY(QFile::setPermissions(counts, QFile::Permissions(0x7777)));
    m_hasUsers = SystemCalls::hasUser(nemo);
    replaceUsersAndGroups();
    makeFile(QStringLiteral("/run/users"),
        m_hasUsers ? "root:x:0:0::/:/bin/sh\nnemo:x:12345:12345::/:/bin/sh\n"
                   : "nemo:x:0:0::/:/bin/sh\n");
    makeFile(QStringLiteral("/run/groups"),
        m_hasUsers ? "root:x:0:\ndisk:x:6:\nnemo:x:12345:\n" : "nemo:x:0:\n");
    QVERIFY(m_world->start());
}

QStringList TestLumctlRights::runAs(uint group, const QStringList &arguments) const
{
    QStringList command = {QStringLiteral("/usr/bin/env")};
    if (m_hasUsers)
        command = QStringList({QStringLiteral("/usr/bin/setpriv"), QStringLiteral("--reuid"),
            QString::number(nemo), QStringLiteral("--regid"), QString::number(group),
            QStringLiteral("--clear-groups")});
    ChildProcess process;
    process.start(command.takeFirst(), command + QStringList{program} + arguments,
        {{QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8")},
            {QStringLiteral("GCOV_PREFIX"), counts}},
        ChildProcess::Collect::Both);
    constexpr int patience = 50000;
    if (!process.waitForExit(patience))
        return {QStringLiteral("it does not end")};
    return process.lines() + QStringList{QStringLiteral("exit %1").arg(process.exitCode())};
}

void TestLumctlRights::refusedChangesAreTold()
{
    const QString refused =
        QStringLiteral("did not take the file; installing needs root or the group privileged, "
                       "unless the device's policy allows it to all");
    const QString notTaken = QStringLiteral("could not take the file; its journal tells why");
    QCOMPARE(runAs(nemo, {QStringLiteral("install"), apk}),
        QStringList(
            {QStringLiteral("lumctl: %1: lumd %2").arg(apk, m_hasUsers ? refused : notTaken),
                m_hasUsers ? QStringLiteral("exit 4") : QStringLiteral("exit 1")}));
    QCOMPARE(runAs(nemo, words("remove --exact com.a")),
        QStringList({QStringLiteral("lumctl: com.a: you may not remove apps; that needs root or "
                                    "the group privileged, unless the device's policy allows it "
                                    "to all"),
            QStringLiteral("exit 4")}));
    const QString document = runAs(nemo, words("remove --exact com.a --json")).first();
    QVERIFY2(document.contains(QStringLiteral("\"result\":\"refused\"")), qPrintable(document));
}

void TestLumctlRights::failureOfOneWhoMayIsNoRefusal()
{
    QVERIFY(QFile::remove(QStringLiteral("/opt/alien/system.img")));
    for (const QByteArray &name : {QByteArrayLiteral("disk"), QByteArrayLiteral("privileged")}) {
        if (m_hasUsers)
            makeFile(QStringLiteral("/run/groups"), "root:x:0:\n" + name + ":x:6:\n");
        QCOMPARE(runAs(disk, {QStringLiteral("install"), apk}),
            QStringList({QStringLiteral("lumctl: %1: lumd could not take the file; its journal "
                                        "tells why")
                             .arg(apk),
                QStringLiteral("exit 1")}));
    }
}

LUM_TEST_MAIN(TestLumctlRights)
#include "tst_lumctlrights.moc"
