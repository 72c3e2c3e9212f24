// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/announcementtest.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

using FakeBinder::ParcelWriter;

class TestAnnouncements : public AnnouncementTest
{
    Q_OBJECT

private Q_SLOTS:
    void announcedLauncherIsOnDisk_data();
    void announcedLauncherIsOnDisk();
    void announcementIsLogged();
    void sameAnnouncementWritesNothing();
    void changedLauncherIsWrittenAgain();
    void hiddenLaunchersAreMarked();
    void environmentIsUtf8UnderTheCLocale();
    void removedPackageLeavesNothing();
    void completeListRemovesWhatWasNotAnnounced();
    void newDaemonForgetsWhatTheOldOneWasTold();
    void newDaemonKeepsWhatItIsToldAgain();
    void runtimeThatComesBackAnnouncesAgain();
};

void TestAnnouncements::announcedLauncherIsOnDisk_data()
{
    QTest::addColumn<bool>("workSource");
    QTest::newRow("header of Android 9") << false;
    QTest::newRow("header of Android 10") << true;
}

void TestAnnouncements::announcedLauncherIsOnDisk()
{
    QFETCH(bool, workSource);
    m_world->android->setProtocol(
        workSource ? FakeBinder::Protocol::Aidl2 : FakeBinder::Protocol::Aidl);
    QVERIFY(startServed());

    const QVector<Launcher> launchers{clockLauncher(), alarmLauncher(), mapLauncher()};
    for (const Launcher &launcher : launchers)
        QVERIFY(announce(launcher));
    QCOMPARE(generatedFiles(), filesOf(launchers));
    for (const Launcher &launcher : launchers) {
        QCOMPARE(fileContents(launcher.entryPath()), entryText(launcher));
        QCOMPARE(fileContents(launcher.iconPath()), launcher.icon);
        QCOMPARE(fileContents(launcher.settingsPath()), settingsText(launcher));
    }
    QCOMPARE(m_world->android->errors(), QStringList());
}

void TestAnnouncements::announcementIsLogged()
{
    m_world->daemon->setLoggingRules(QStringLiteral("com.tovra.lumd.launcher=true"));
    QVERIFY(startServed());
    QCOMPARE(m_world->daemon->lines(), QStringList());

    const Launcher launcher = mapLauncher();
    const QString debug = QStringLiteral("debug com.tovra.lumd.launcher ");
    QVERIFY(announce(launcher));
    QTRY_COMPARE(m_world->daemon->lines(),
        QStringList({debug + QStringLiteral("Read 3 bytes for \"com.a_b.map\" icon"),
            debug + QStringLiteral("Launcher added from alien: \"Map\" ( \"com.a_b.map\" )"),
            debug + QStringLiteral("onCreateLauncher: \"%1\"").arg(launcher.entryPath()),
            debug + QStringLiteral("iconfilename: \"%1\"").arg(launcher.iconPath()),
            debug + QStringLiteral("Updating: \"%1\"").arg(launcher.entryPath())}));

    m_world->daemon->clearLines();
    send(packageRemoved, ParcelWriter().string16(launcher.packageName).bytes());
    QTRY_COMPARE(m_world->daemon->lines(),
        QStringList({debug + QStringLiteral("Package removed from alien: \"com.a_b.map\""),
            debug + QStringLiteral("onRemovePackage: \"com.a_b.map\""),
            debug + QStringLiteral("Deleting: \"%1\"").arg(launcher.entryPath()),
            debug + QStringLiteral("Deleting: \"%1\"").arg(launcher.iconPath())}));
}

void TestAnnouncements::sameAnnouncementWritesNothing()
{
    QVERIFY(startServed());
    QVERIFY(announce(clockLauncher()));
    const QStringList files = filesOf({clockLauncher()});
    const QStringList before = identities(files);
    QVERIFY(announce(clockLauncher()));
    QCOMPARE(identities(files), before);
}

void TestAnnouncements::changedLauncherIsWrittenAgain()
{
    QVERIFY(startServed());
    QVERIFY(announce(clockLauncher()));
    Launcher launcher = clockLauncher();
    launcher.caption = QStringLiteral("Clock");
    launcher.version = QStringLiteral("2.0");
    launcher.icon = QByteArrayLiteral("new");
    QVERIFY(announce(launcher));
    QCOMPARE(generatedFiles(), filesOf({launcher}));
    QCOMPARE(fileContents(launcher.entryPath()), entryText(launcher));
    QCOMPARE(fileContents(launcher.iconPath()), launcher.icon);
    QCOMPARE(fileContents(launcher.settingsPath()), settingsText(launcher));
}

void TestAnnouncements::hiddenLaunchersAreMarked()
{
    makeFile(
        QStringLiteral("/etc/lumd/app-blacklist"), QByteArrayLiteral("\n org.example.clock \n"));
    makeFile(QStringLiteral("/run/more"), QByteArrayLiteral("com.other"));
    makeFile(QStringLiteral("/usr/share/lumd/partnerspace/com.a_b.map.apk"), QByteArray());
    m_world->daemon->setEnvironment(
        QStringLiteral("LUMD_PACKAGE_BLACKLIST_PATH"), QStringLiteral("/run/more"));
    QVERIFY(startServed());

    Launcher other = alarmLauncher();
    other.packageName = QStringLiteral("com.other");
    for (const Launcher &launcher : {clockLauncher(), other, mapLauncher()})
        QVERIFY(announce(launcher));
    for (const Launcher &launcher : {clockLauncher(), other})
        QCOMPARE(fileContents(launcher.entryPath()),
            entryText(launcher).replace("\nType=", "\nNoDisplay=true\nType="));
    QCOMPARE(fileContents(mapLauncher().entryPath()),
        entryText(mapLauncher())
            .replace("\nType=", "\nNoDisplay=true\nType=")
            .replace("\nExec=", "\nCategories=X-QuillfinPartnerSpace\nExec="));
}

void TestAnnouncements::environmentIsUtf8UnderTheCLocale()
{
    makeFile(QStringLiteral("/run/l\u00efst"), QByteArrayLiteral("com.a_b.map"));
    const auto set = [this](const char *name, const char *value) {
        m_world->daemon->setEnvironment(QString::fromLatin1(name), QString::fromUtf8(value));
    };
    set("LC_ALL", "C");
    set("ANDROID_DATA_ROOT", "/run/r\xc3\xb6t");
    set("LUMD_PACKAGE_BLACKLIST_PATH", "/run/l\xc3\xafst");
    QVERIFY(startServed());
    QVERIFY(announce(mapLauncher()));
    QCOMPARE(fileContents(mapLauncher().entryPath()),
        entryText(mapLauncher())
            .replace("/home/.android", "/run/r\xc3\xb6t")
            .replace("\nType=", "\nNoDisplay=true\nType="));
}

void TestAnnouncements::removedPackageLeavesNothing()
{
    QVERIFY(startServed());
    for (const Launcher &launcher : {clockLauncher(), alarmLauncher(), mapLauncher()})
        QVERIFY(announce(launcher));
    const FakeBinder::Answer answer =
        send(packageRemoved, ParcelWriter().string16(clockLauncher().packageName).bytes());
    QVERIFY(answer.delivered);
    QCOMPARE(answer.status, 0);
    QVERIFY(!answer.hasReply);
    QCOMPARE(generatedFiles(), filesOf({mapLauncher()}));
}

void TestAnnouncements::completeListRemovesWhatWasNotAnnounced()
{
    const Launcher stale{QStringLiteral("com.stale"), QStringLiteral("Main"),
        QStringLiteral("Stale"), QStringLiteral("1"), QByteArrayLiteral("icon")};
    makeFile(stale.entryPath(), entryText(stale));
    makeFile(stale.iconPath(), stale.icon);
    makeFile(stale.settingsPath(), settingsText(stale));
    const QString foreign = QStringLiteral("/usr/share/applications/editor.desktop");
    makeFile(foreign);
    QVERIFY(startServed());
    QVERIFY(announce(clockLauncher()));
    QCOMPARE(generatedFiles().size(), 7);

    const FakeBinder::Answer answer = send(launchersComplete);
    QVERIFY(answer.delivered);
    QCOMPARE(answer.status, 0);
    QVERIFY(!answer.hasReply);
    QCOMPARE(generatedFiles(), QStringList{foreign} + filesOf({clockLauncher()}));
}

void TestAnnouncements::newDaemonForgetsWhatTheOldOneWasTold()
{
    QVERIFY(startServed());
    QVERIFY(announce(clockLauncher()));
    QVERIFY(announce(mapLauncher()));
    m_world->renew();
    QVERIFY(startServed());
    QCOMPARE(generatedFiles(), filesOf({clockLauncher(), mapLauncher()}));
    QCOMPARE(send(launchersComplete).status, 0);
    QCOMPARE(generatedFiles(), QStringList());
}

void TestAnnouncements::newDaemonKeepsWhatItIsToldAgain()
{
    QVERIFY(startServed());
    QVERIFY(announce(clockLauncher()));
    QVERIFY(announce(mapLauncher()));
    const QStringList files = filesOf({clockLauncher()});
    const QStringList before = identities(files);
    m_world->renew();
    QVERIFY(startServed());
    QVERIFY(announce(clockLauncher()));
    QCOMPARE(send(launchersComplete).status, 0);
    QCOMPARE(generatedFiles(), files);
    QCOMPARE(identities(files), before);
}

void TestAnnouncements::runtimeThatComesBackAnnouncesAgain()
{
    QVERIFY(startServed());
    QVERIFY(announce(clockLauncher()));
    m_world->systemd.setUnitState(QStringLiteral("deactivating"), QStringLiteral("stop"));
    QVERIFY(m_world->android->waitForUnpublished(QStringLiteral("alien.launcher")));
    QVERIFY(!send(launcherAdded, mapLauncher().payload()).delivered);

    m_world->systemd.setUnitState(QStringLiteral("activating"), QStringLiteral("start"));
    QVERIFY(m_world->android->waitForPublished(QStringLiteral("alien.launcher")));
    QVERIFY(announce(mapLauncher()));
    // Told by the runtime before, and not taken back.
    QCOMPARE(send(launchersComplete).status, 0);
    QCOMPARE(generatedFiles(), filesOf({clockLauncher(), mapLauncher()}));
}

LUM_TEST_MAIN(TestAnnouncements)
#include "tst_announcements.moc"
