// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"
#include "daemon/lumdaemon.h"

#include "tests/daemon/appfixture.h"
#include "tests/daemon/callas.h"
#include "tests/daemon/openwatch.h"
#include "tests/support/logcapture.h"
#include "tests/support/systemcalls.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QFile>

#include <csignal>

namespace {

void setPolicy(const QByteArray &text)
{
    makeFile(QStringLiteral("/etc/lumd/platform/policy.conf"), text);
}

/// An apk that exists, so that a permitted request comes through.
QString apk()
{
    return QStringLiteral("/run/apps/a.apk");
}

} // namespace

Q_DECLARE_METATYPE(Identity)

class TestCallers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void callerIsJudgedByOwnerAndGroup_data();
    void callerIsJudgedByOwnerAndGroup();
    void callerThatBecomesAnotherIsNotLetIn_data();
    void callerThatBecomesAnotherIsNotLetIn();
    void policyLetsEverybodyIn_data();
    void policyLetsEverybodyIn();
    void refusalIsToldToTheUser_data();
    void refusalIsToldToTheUser();
    void refusalIsInTheUsersWords_data();
    void refusalIsInTheUsersWords();
    void callerIsJudgedBeforeAllElse();
    void policyIsNotReadForThePrivileged();
    void policyIsReadAtEachCall();
    void callerThatHasGoneIsJudgedByThePolicy_data();
    void callerThatHasGoneIsJudgedByThePolicy();
    void callerThatHidesItselfIsJudgedAllTheSame();
    void callFromInsideIsAllowed();

private:
    std::unique_ptr<AppFixture> m_world;
};

void TestCallers::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    makeFile(apk());
    replaceUsersAndGroups();
}

void TestCallers::init()
{
    QFile::remove(QStringLiteral("/etc/lumd/platform/policy.conf"));
}

void TestCallers::cleanup()
{
    m_world->renew();
}

void TestCallers::callerIsJudgedByOwnerAndGroup_data()
{
    QTest::addColumn<QString>("owner");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("result");
    const auto row = [](const char *owner, const char *group, const char *result) {
        QTest::addRow("%s:%s", owner, group)
            << QString::fromLatin1(owner) << QString::fromLatin1(group)
            << QString::fromLatin1(result);
    };
    row("root", "root", "true");
    row("root", "nemo", "true");
    row("nemo", "privileged", "true");
    row("nemo", "disk", "true");
    row("nemo", "nemo", "false");
    row("nemo", "root", "false");
    row("nemo", "Privileged", "false");
    row("nemo", "privileged2", "false");
    row("nemo", "disks", "false");
    row("Root", "nemo", "false");
    row("privileged", "nemo", "false");
}

void TestCallers::callerIsJudgedByOwnerAndGroup()
{
    QFETCH(QString, owner);
    QFETCH(QString, group);
    QFETCH(QString, result);
    QVERIFY(m_world->start());
    // Who is let in by name is let in whatever the policy says.
    setPolicy("[policy]\n6=false\n");
    QCOMPARE(callAs({owner, group}, plain(), QStringLiteral("installFile"), {apk()}), result);
    QCOMPARE(callAs({owner, group}, plain(), QStringLiteral("removeFile"), {apk()}), result);
}

void TestCallers::callerThatBecomesAnotherIsNotLetIn_data()
{
    QTest::addColumn<Identity>("connected");
    QTest::addColumn<Identity>("later");
    QTest::addColumn<QString>("result");
    const Identity root{QStringLiteral("root"), QStringLiteral("root")};
    const Identity disk{QStringLiteral("nemo"), QStringLiteral("disk")};
    const QString yes = QStringLiteral("true");
    const QString no = QStringLiteral("false");
    QTest::newRow("root") << ordinary() << root << no;
    QTest::newRow("of root's group")
        << ordinary() << Identity{QStringLiteral("nemo"), root.group} << no;
    QTest::newRow("of disk") << ordinary() << disk << no;
    QTest::newRow("was root") << root << ordinary() << no;
    QTest::newRow("was of disk") << disk << ordinary() << no;
    // The manner alone shuts nobody out.
    QTest::newRow("stays root") << root << root << yes;
    QTest::newRow("stays of disk") << disk << disk << yes;
    QTest::newRow("root of another group") << root << Identity{root.owner, disk.group} << yes;
}

void TestCallers::callerThatBecomesAnotherIsNotLetIn()
{
    QFETCH(Identity, connected);
    QFETCH(Identity, later);
    QFETCH(QString, result);
    QVERIFY(m_world->start());
    // Where there is but one user his names are those that he connects with, and nothing more is
    // seen here than in callerIsJudgedByOwnerAndGroup.
    if (!SystemCalls::hasUser(12345))
        result = callAs(connected, plain(), QStringLiteral("removeFile"), {apk()});
    QCOMPARE(callAs(connected, becoming(later), QStringLiteral("removeFile"), {apk()}), result);
}

void TestCallers::policyLetsEverybodyIn_data()
{
    QTest::addColumn<QByteArray>("policy");
    QTest::addColumn<QString>("result");
    QTest::newRow("true") << QByteArray("[policy]\n6=true\n") << QStringLiteral("true");
    QTest::newRow("false") << QByteArray("[policy]\n6=false\n") << QStringLiteral("false");
    QTest::newRow("absent") << QByteArray("[policy]\n5=true\n7=true\n") << QStringLiteral("false");
    QTest::newRow("empty file") << QByteArray() << QStringLiteral("false");
    QTest::newRow("another group") << QByteArray("[other]\n6=true\n") << QStringLiteral("false");
}

void TestCallers::policyLetsEverybodyIn()
{
    QFETCH(QByteArray, policy);
    QFETCH(QString, result);
    setPolicy(policy);
    QVERIFY(m_world->start());
    QCOMPARE(callAs(ordinary(), plain(), QStringLiteral("installFile"), {apk()}), result);
    QCOMPARE(callAs(ordinary(), plain(), QStringLiteral("removeFile"), {apk()}), result);
}

void TestCallers::refusalIsToldToTheUser_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("text");
    const QStringList install{QStringLiteral("debug installFile: \"/run/apps/a.apk\""),
        QStringLiteral("critical APK installation prohibited")};
    const QString installText = QStringLiteral("lumd-app_installation_disallowed");
    for (const char *method : {"installFile", "installPreloadFile", "installPartnerSpaceFile"})
        QTest::newRow(method) << QString::fromLatin1(method) << install << installText;
    QTest::newRow("removeFile") << QStringLiteral("removeFile")
                                << QStringList({QStringLiteral(
                                                    "debug removeFile: \"/run/apps/a.apk\""),
                                       QStringLiteral("critical APK uninstallation prohibited")})
                                << QStringLiteral("lumd-app_uninstallation_disallowed");
}

void TestCallers::refusalIsToldToTheUser()
{
    QFETCH(QString, method);
    QFETCH(QStringList, words);
    QFETCH(QString, text);
    makeFile(marker(QStringLiteral("a.apk")));
    QVERIFY(m_world->start());
    QCOMPARE(callAs(ordinary(), plain(), method, {apk()}), QStringLiteral("false"));
    QTRY_COMPARE(m_world->notifications.texts(), QStringList{remark(Remark::Warning, text)});
    QTRY_COMPARE(m_world->daemonLines(), words);
    DaemonFixture::call(QStringLiteral("controlServiceAutostart"), {false});
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
    QCOMPARE(m_world->starts(), 0);
    QCOMPARE(entries(incoming()), QStringList());
    QCOMPARE(fileContents(marker(QStringLiteral("a.apk"))), QByteArray("old"));
}

void TestCallers::refusalIsInTheUsersWords_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("text");
    QTest::newRow("install") << QStringLiteral(
        "installFile") << QStringLiteral("Installing Android apps is not allowed on this device");
    QTest::newRow("remove") << QStringLiteral(
        "removeFile") << QStringLiteral("Removing Android apps is not allowed on this device");
}

void TestCallers::refusalIsInTheUsersWords()
{
    QFETCH(QString, method);
    QFETCH(QString, text);
    AppFixture::installCatalogues();
    QVERIFY(m_world->start());
    QCOMPARE(callAs(ordinary(), plain(), method, {apk()}), QStringLiteral("false"));
    QTRY_COMPARE(m_world->notifications.texts(), QStringList{remark(Remark::Warning, text)});
}

void TestCallers::callerIsJudgedBeforeAllElse()
{
    QVERIFY(QFile::remove(QStringLiteral("/opt/alien/system.img")));
    QVERIFY(m_world->start());
    QCOMPARE(callAs(ordinary(), plain(), QStringLiteral("installFile"), {QStringLiteral("a.apk")}),
        QStringLiteral("false"));
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug installFile: \"a.apk\""),
            QStringLiteral("critical APK installation prohibited")}));
}

void TestCallers::policyIsNotReadForThePrivileged()
{
    setPolicy("[policy]\n6=true\n");
    QVERIFY(m_world->start());
    const OpenWatch watch("/etc/lumd/platform");
    const QString method = QStringLiteral("removeFile");
    const Identity root{QStringLiteral("root"), QStringLiteral("root")};
    QCOMPARE(callAs(root, plain(), method, {apk()}), QStringLiteral("true"));
    QCOMPARE(watch.opened(), QStringList());
    QCOMPARE(callAs(ordinary(), plain(), method, {apk()}), QStringLiteral("true"));
    QVERIFY(watch.opened().contains(QStringLiteral("policy.conf")));
}

void TestCallers::policyIsReadAtEachCall()
{
    QVERIFY(m_world->start());
    const QString method = QStringLiteral("removeFile");
    const QString package = QStringLiteral("com.a");
    QCOMPARE(callAs(ordinary(), plain(), method, {package}), QStringLiteral("false"));
    setPolicy("[policy]\n6=true\n");
    QCOMPARE(callAs(ordinary(), plain(), method, {package}), QStringLiteral("true"));
    setPolicy("[policy]\n6=false\n");
    QCOMPARE(callAs(ordinary(), plain(), method, {package}), QStringLiteral("false"));
}

void TestCallers::callerThatHasGoneIsJudgedByThePolicy_data()
{
    QTest::addColumn<QByteArray>("policy");
    QTest::addColumn<QString>("words");
    QTest::newRow("true") << QByteArray("[policy]\n6=true\n")
                          << QStringLiteral("critical File does not exist: \"/run/apps/b.apk\"");
    QTest::newRow("false") << QByteArray("[policy]\n6=false\n")
                           << QStringLiteral("critical APK installation prohibited");
}

void TestCallers::callerThatHasGoneIsJudgedByThePolicy()
{
    QFETCH(QByteArray, policy);
    QFETCH(QString, words);
    setPolicy(policy);
    QVERIFY(m_world->start());
    m_world->daemon->signal(SIGSTOP);
    // A caller that would be let in, were it still there.
    const Identity root{QStringLiteral("root"), QStringLiteral("root")};
    QCOMPARE(callAs(root, QStringLiteral("hasty"), QStringLiteral("installFile"),
                 {QStringLiteral("/run/apps/b.apk")}),
        QString());
    m_world->daemon->signal(SIGCONT);
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug installFile: \"/run/apps/b.apk\""), words}));
}

void TestCallers::callerThatHidesItselfIsJudgedAllTheSame()
{
    // The kernel gives what is in its folder under /proc to root, but not the folder.
    QVERIFY(m_world->start());
    QCOMPARE(callAs(ordinary(), QStringLiteral("hidden"), QStringLiteral("installFile"), {apk()}),
        QStringLiteral("false"));
}

void TestCallers::callFromInsideIsAllowed()
{
    setPolicy("[policy]\n6=false\n");
    const LogCapture log;
    {
        ApkConfig config;
        LumDaemon daemon(&config);
        QVERIFY(!daemon.installFile(QStringLiteral("a.apk")));
        QVERIFY(daemon.removeFile(QStringLiteral("com.a")));
    }
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.daemon")),
        QStringList({QStringLiteral("debug com.tovra.lumd.daemon installFile: \"a.apk\""),
            QStringLiteral("critical com.tovra.lumd.daemon Absolute path required: \"a.apk\""),
            QStringLiteral("debug com.tovra.lumd.daemon removeFile: \"com.a\""),
            QStringLiteral("debug com.tovra.lumd.daemon Aliendalvik not running. Will remove  "
                           "\"com.a\"  later")}));
    QDBusConnection::systemBus().unregisterService(QStringLiteral("com.tovra.lumd"));
}

LUM_TEST_MAIN(TestCallers)
#include "tst_callers.moc"
