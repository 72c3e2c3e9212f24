// SPDX-License-Identifier: BSD-3-Clause
// What the monitor tells of launchers and packages, and its list of them.
#include "tests/daemon/announcementtest.h"
#include "tests/daemon/monitorrecorder.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

#include <QFile>

using FakeBinder::ParcelWriter;

Q_DECLARE_METATYPE(FakeBinder::Reply)

namespace {

QString changed(const Launcher &launcher)
{
    return QStringLiteral("LauncherChanged(\"%1\", \"%2\", \"%3\", \"%4\")")
        .arg(launcher.entryPath(), launcher.packageName, launcher.caption, launcher.iconPath());
}

QString gone(const Launcher &launcher)
{
    return QStringLiteral("LauncherGone(\"%1\", \"%2\")")
        .arg(launcher.entryPath(), launcher.packageName);
}

QString listed(const Launcher &launcher, bool isHidden = false)
{
    return QStringLiteral("%1: %2|%3|%4|%5|%6")
        .arg(launcher.packageName, launcher.entryPath(), launcher.caption, launcher.iconPath(),
            launcher.version, isHidden ? QStringLiteral("true") : QStringLiteral("false"));
}

const QString complete = QStringLiteral("ListComplete()");

} // namespace

class TestMonitorLaunchers : public AnnouncementTest
{
    Q_OBJECT

private Q_SLOTS:
    void newLauncherIsToldOfAndNotAgain();
    void changedLauncherIsToldOf_data();
    void changedLauncherIsToldOf();
    void partnerSpaceLauncherIsToldOfOnce();
    void refusedLauncherIsNotToldOf();
    void launcherWithoutAFileIsNotToldOf();
    void badTextOfAnAppReachesProgramsAsText();
    void removedPackageIsToldOfBehindItsLaunchers();
    void requestedRemovalIsFinishedWhenThePackageIsGone();
    void requestThatTheRuntimeDoesNotTakeHasFailed_data();
    void requestThatTheRuntimeDoesNotTakeHasFailed();
    void removalIsForgottenWithTheRuntime();
    void removalsThatAreAwaitedAreTheLast256();
    void completeListIsToldOfBehindWhatItRemoves();
    void listHoldsEachLauncherOfEachPackage();
    void listIsReadFromTheFiles();
    void listIsAsLongAsTheBusCarries_data();
    void listIsAsLongAsTheBusCarries();

private:
    bool startFollowed(const FakeBinder::Handler &packageManager = {});
    FakeBinder::Answer remove(const QString &package);

    std::unique_ptr<MonitorRecorder> m_recorder;
};

/// With the package manager and "alien" connected, and nothing recorded yet.
bool TestMonitorLaunchers::startFollowed(const FakeBinder::Handler &packageManager)
{
    m_recorder = std::make_unique<MonitorRecorder>();
    m_world->android->registerService(QStringLiteral("package"), packageManager);
    m_world->android->registerService(QStringLiteral("alien"));
    return startServed() && MonitorRecorder::properties().value(QStringLiteral("Ready")).toBool();
}

FakeBinder::Answer TestMonitorLaunchers::remove(const QString &package)
{
    return send(packageRemoved, ParcelWriter().string16(package).bytes());
}

void TestMonitorLaunchers::newLauncherIsToldOfAndNotAgain()
{
    QVERIFY(startFollowed());
    for (int i = 0; i < 2; ++i) {
        for (const Launcher &launcher : {clockLauncher(), mapLauncher()})
            QVERIFY(announce(launcher));
        send(launchersComplete);
    }
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({changed(clockLauncher()), changed(mapLauncher()), complete, complete}));
}

void TestMonitorLaunchers::changedLauncherIsToldOf_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QByteArray>("icon");
    QTest::addColumn<QString>("name");
    const Launcher map = mapLauncher();
    const QString other = QStringLiteral("Atlas");
    QTest::newRow("caption") << other << map.version << map.icon << other;
    QTest::newRow("version") << map.caption << QStringLiteral("8") << map.icon << map.caption;
    QTest::newRow("icon") << map.caption << map.version << QByteArrayLiteral("new") << map.caption;
    QTest::newRow("line feed in a caption")
        << QStringLiteral("A\nb") << map.version << map.icon << QStringLiteral("A b");
}

void TestMonitorLaunchers::changedLauncherIsToldOf()
{
    QFETCH(QString, caption);
    QFETCH(QString, version);
    QFETCH(QByteArray, icon);
    QFETCH(QString, name);
    QVERIFY(startFollowed());
    Launcher launcher = mapLauncher();
    QVERIFY(announce(launcher));
    launcher.caption = caption;
    launcher.version = version;
    launcher.icon = icon;
    QVERIFY(announce(launcher));
    launcher.caption = name;
    QTRY_COMPARE(
        m_recorder->signalTexts(), QStringList({changed(mapLauncher()), changed(launcher)}));
    QCOMPARE(MonitorRecorder::listApps(), QStringList{listed(launcher)});
}

// Its entry is written each time, with the same bytes.
void TestMonitorLaunchers::partnerSpaceLauncherIsToldOfOnce()
{
    makeFile(QStringLiteral("/usr/share/lumd/partnerspace/com.a_b.map.apk"), QByteArray());
    QVERIFY(startFollowed());
    for (int i = 0; i < 3; ++i)
        QVERIFY(announce(mapLauncher()));
    send(launchersComplete);
    QTRY_COMPARE(m_recorder->signalTexts(), QStringList({changed(mapLauncher()), complete}));
    QCOMPARE(MonitorRecorder::listApps(), QStringList{listed(mapLauncher(), true)});
    QVERIFY(QFile::remove(QStringLiteral("/usr/share/lumd/partnerspace/com.a_b.map.apk")));
}

void TestMonitorLaunchers::refusedLauncherIsNotToldOf()
{
    QVERIFY(startFollowed());
    Launcher nameless = mapLauncher();
    nameless.caption.clear();
    Launcher crooked = mapLauncher();
    crooked.className = QStringLiteral("a/b");
    QVERIFY(announce(nameless));
    QVERIFY(announce(crooked));
    send(launchersComplete);
    QTRY_COMPARE(m_recorder->signalTexts(), QStringList{complete});
}

void TestMonitorLaunchers::launcherWithoutAFileIsNotToldOf()
{
    QVERIFY(startFollowed());
    Launcher launcher = mapLauncher();
    launcher.className = QString(300, QLatin1Char('a')); // no file can be called that
    QVERIFY(announce(launcher));
    send(launchersComplete);
    QTRY_COMPARE(m_recorder->signalTexts(), QStringList{complete});
}

void TestMonitorLaunchers::badTextOfAnAppReachesProgramsAsText()
{
    QVERIFY(startFollowed());
    Launcher launcher = mapLauncher();
    launcher.caption = QStringLiteral("a") + QChar(0xd800) + QChar(0xfffe) + QChar(0)
        + QStringLiteral("\x1b\u202e\U0001f34e");
    launcher.version = QString(QChar(0xdc00)) + QChar(0xffff);
    QVERIFY(announce(launcher));
    Launcher told = launcher;
    // A NUL is a control character, for which the entry has a blank.
    told.caption = QStringLiteral("a\ufffd\ufffd  \u202e\U0001f34e");
    QTRY_COMPARE(m_recorder->signalTexts(), QStringList{changed(told)});

    Launcher great = clockLauncher();
    great.caption = QString(9000, QChar(0x20ac));
    QVERIFY(announce(great));
    great.caption.truncate(8192);
    QTRY_COMPARE(m_recorder->signalTexts().mid(1), QStringList{changed(great)});
    QCOMPARE(MonitorRecorder::listApps().value(1), listed(great));
}

void TestMonitorLaunchers::removedPackageIsToldOfBehindItsLaunchers()
{
    QVERIFY(startFollowed());
    for (const Launcher &launcher : {clockLauncher(), alarmLauncher(), mapLauncher()})
        QVERIFY(announce(launcher));
    QTRY_COMPARE(m_recorder->signalTexts().size(), 3);
    m_recorder->clear();
    remove(clockLauncher().packageName);
    remove(QStringLiteral("com.without.launchers"));
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({gone(alarmLauncher()), gone(clockLauncher()),
            QStringLiteral("PackageRemoved(\"org.example.clock\")"),
            QStringLiteral("PackageRemoved(\"com.without.launchers\")")}));
    QCOMPARE(MonitorRecorder::listApps(), QStringList{listed(mapLauncher())});
}

void TestMonitorLaunchers::requestedRemovalIsFinishedWhenThePackageIsGone()
{
    QVERIFY(startFollowed());
    const QString package = mapLauncher().packageName;
    for (int i = 0; i < 2; ++i)
        DaemonFixture::call(QStringLiteral("removeFile"), {package});
    remove(QStringLiteral("com.other"));
    remove(package);
    remove(package);
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({QStringLiteral("PackageRemoved(\"com.other\")"),
            QStringLiteral("PackageRemoved(\"com.a_b.map\")"),
            QStringLiteral("RemoveFinished(\"com.a_b.map\", true)"),
            QStringLiteral("PackageRemoved(\"com.a_b.map\")")}));
}

void TestMonitorLaunchers::requestThatTheRuntimeDoesNotTakeHasFailed_data()
{
    QTest::addColumn<FakeBinder::Reply>("reply");
    constexpr qint32 securityException = -1;
    const QByteArray refusal =
        ParcelWriter().int32(securityException).string16(QStringLiteral("no")).bytes();
    QTest::newRow("failed") << FakeBinder::Reply::failure(-32);
    QTest::newRow("failed with a reply") << FakeBinder::Reply::failureWith(-32, {});
    QTest::newRow("exception") << FakeBinder::Reply::data(refusal);
}

void TestMonitorLaunchers::requestThatTheRuntimeDoesNotTakeHasFailed()
{
    QFETCH(FakeBinder::Reply, reply);
    QVERIFY(startFollowed([reply](const FakeBinder::Request &) { return reply; }));
    DaemonFixture::call(QStringLiteral("removeFile"), {QStringLiteral("com.foo")});
    remove(QStringLiteral("com.foo"));
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({QStringLiteral("RemoveFinished(\"com.foo\", false)"),
            QStringLiteral("PackageRemoved(\"com.foo\")")}));
}

void TestMonitorLaunchers::removalIsForgottenWithTheRuntime()
{
    QVERIFY(startFollowed());
    DaemonFixture::call(QStringLiteral("removeFile"), {QStringLiteral("com.foo")});
    m_world->android->killService(QStringLiteral("package"));
    QTRY_COMPARE(
        m_recorder->signalTexts(), QStringList{QStringLiteral("PropertiesChanged(Ready=false)")});
    remove(QStringLiteral("com.foo"));
    QTRY_COMPARE(m_recorder->signalTexts().mid(1),
        QStringList{QStringLiteral("PackageRemoved(\"com.foo\")")});
}

void TestMonitorLaunchers::removalsThatAreAwaitedAreTheLast256()
{
    constexpr int most = 256;
    QVERIFY(startFollowed());
    for (int i = 0; i <= most; ++i)
        DaemonFixture::call(QStringLiteral("removeFile"), {QStringLiteral("com.foo%1").arg(i)});
    for (const int i : {0, 1, most})
        remove(QStringLiteral("com.foo%1").arg(i));
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({QStringLiteral("PackageRemoved(\"com.foo0\")"),
            QStringLiteral("PackageRemoved(\"com.foo1\")"),
            QStringLiteral("RemoveFinished(\"com.foo1\", true)"),
            QStringLiteral("PackageRemoved(\"com.foo256\")"),
            QStringLiteral("RemoveFinished(\"com.foo256\", true)")}));
}

void TestMonitorLaunchers::completeListIsToldOfBehindWhatItRemoves()
{
    QVERIFY(startFollowed());
    QVERIFY(announce(mapLauncher()));
    m_world->renew();
    QVERIFY(startFollowed());
    QVERIFY(announce(clockLauncher()));
    send(launchersComplete);
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({changed(clockLauncher()), gone(mapLauncher()), complete}));
}

void TestMonitorLaunchers::listHoldsEachLauncherOfEachPackage()
{
    makeFile(QStringLiteral("/etc/lumd/app-blacklist"), "com.a_b.map\n");
    QVERIFY(startFollowed());
    QCOMPARE(MonitorRecorder::listApps(), QStringList());
    for (const Launcher &launcher : {clockLauncher(), alarmLauncher(), mapLauncher()})
        QVERIFY(announce(launcher));
    QCOMPARE(MonitorRecorder::listApps(),
        QStringList(
            {listed(mapLauncher(), true), listed(alarmLauncher()), listed(clockLauncher())}));
    QVERIFY(QFile::remove(QStringLiteral("/etc/lumd/app-blacklist")));
}

void TestMonitorLaunchers::listIsReadFromTheFiles()
{
    const QString folder = QStringLiteral("/usr/share/applications/");
    makeFile(folder + QLatin1String("lumd_launcher_a.desktop"),
        "[Desktop Entry]\nX-lumd-packageName=com.a\nNoDisplay=TRUE\n");
    makeFile(folder + QLatin1String("lumd_launcher_b.desktop"), "[Desktop Entry]\nName=B\n");
    makeFile(folder + QLatin1String("lumd_launcher_c.desktop"),
        "[Desktop Entry]\nName=C\nIcon=c\nX-lumd-packageName=com.c\nNoDisplay=true\n");
    makeFile(QStringLiteral("/usr/share/tovra-settings/entries/lumd_launcher_c.json"), "{\"a\":");
    QVERIFY(startFollowed());
    QCOMPARE(MonitorRecorder::listApps(),
        QStringList({QStringLiteral("com.a: %1lumd_launcher_a.desktop||||false").arg(folder),
            QStringLiteral("com.c: %1lumd_launcher_c.desktop|C|c||true").arg(folder)}));
}

// Four bytes are counted for each character and 64 for each launcher, 16 MB in all: 520 launchers
// with the paths and names below, and one.
void TestMonitorLaunchers::listIsAsLongAsTheBusCarries_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("lines");
    QTest::addColumn<QString>("lastLine");
    const QByteArray name(439, 'a');
    QTest::newRow("longest") << name << 521
                             << QStringLiteral("com.foo: /usr/share/applications/"
                                               "lumd_launcher_620.desktop|%1|||false")
                                    .arg(QString::fromLatin1(name));
    QTest::newRow("a character more")
        << name + 'a' << 1
        << QStringLiteral("org.freedesktop.DBus.Error.LimitsExceeded: Too many launchers");
}

void TestMonitorLaunchers::listIsAsLongAsTheBusCarries()
{
    QFETCH(QByteArray, name);
    QFETCH(int, lines);
    QFETCH(QString, lastLine);
    for (int i = 100; i <= 620; ++i)
        makeFile(QStringLiteral("/usr/share/applications/lumd_launcher_%1.desktop").arg(i),
            "[Desktop Entry]\nName=" + (i == 620 ? name : QByteArray(8000, 'a'))
                + "\nX-lumd-packageName=com.foo\n");
    QVERIFY(startFollowed());
    const QStringList apps = MonitorRecorder::listApps();
    QCOMPARE(apps.size(), lines);
    QCOMPARE(apps.last(), lastLine);
    QVERIFY(isOnBus(QStringLiteral("com.tovra.lumd")));
}

LUM_TEST_MAIN(TestMonitorLaunchers)
#include "tst_monitorlaunchers.moc"
