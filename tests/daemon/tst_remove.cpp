// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/mockpackagekit.h"
#include "tests/support/testmain.h"

#include <QDir>

namespace {

const QString packageService = QStringLiteral("package");
const QString clockEntry =
    QStringLiteral("/usr/share/applications/lumd_launcher_com_clock-com_clock_Main.desktop");

QString remove(const QString &name)
{
    return resultOf(DaemonFixture::call(QStringLiteral("removeFile"), {name}));
}

void makeClockEntry()
{
    makeFile(clockEntry, "[Desktop Entry]\nName=Clock\nX-lumd-packageName=com.clock\n");
}

QString willRemove(const QString &package)
{
    return QStringLiteral("debug Aliendalvik not running. Will remove  \"%1\"  later").arg(package);
}

QString requesting(const QString &rpm)
{
    return QStringLiteral("debug Requesting uninstall of RPM ' \"%1\" ' from PackageKit").arg(rpm);
}

} // namespace

class TestRemove : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void packageIsUninstalledInSilence_data();
    void packageIsUninstalledInSilence();
    void packageIsRemovedLaterWhenTheRuntimeIsDown();
    void markerGoesWithoutItsNumber_data();
    void markerGoesWithoutItsNumber();
    void numberedMarkerOfAnInstallStays();
    void rpmPackageIsRemoved_data();
    void rpmPackageIsRemoved();
    void everyReportedPackageIsRemoved();
    void rpmPackageIsRemovedForADesktopFileToo();
    void packageKitIsNotAskedWithoutAnApk_data();
    void packageKitIsNotAskedWithoutAnApk();
    void failedResolutionIsLogged();
    void failedRemovalIsLogged();
    void missingPackageKitIsSurvived();

private:
    QStringList linesOf(const QString &words) const;

    std::unique_ptr<AppFixture> m_world;
    std::unique_ptr<MockPackageKit> m_packageKit;
};

void TestRemove::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestRemove::init()
{
    m_packageKit = std::make_unique<MockPackageKit>();
    for (const QString &folder : {QStringLiteral("/home/.android"), marker()})
        QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(QDir().mkpath(marker()));
    QFile::remove(clockEntry);
}

void TestRemove::cleanup()
{
    m_world->renew();
    m_packageKit.reset();
}

QStringList TestRemove::linesOf(const QString &words) const
{
    return m_world->daemonLines().filter(words);
}

void TestRemove::packageIsUninstalledInSilence_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("package");
    QTest::newRow("package") << QStringLiteral("com.foo.bar") << QStringLiteral("com.foo.bar");
    QTest::newRow("with a dash") << QStringLiteral("com.foo-bar") << QStringLiteral("com.foo");
    QTest::newRow("apk") << QStringLiteral("/no/where/com.foo.bar-12.apk")
                         << QStringLiteral("com.foo.bar");
    QTest::newRow("upper case") << QStringLiteral("/a/foo.APK") << QStringLiteral("foo.APK");
    QTest::newRow("desktop file") << clockEntry << QStringLiteral("com.clock");
    QTest::newRow("unknown desktop file")
        << QStringLiteral("/usr/share/applications/a.desktop") << QStringLiteral("a.desktop");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("parent") << QStringLiteral("/..") << QStringLiteral("..");
    QTest::newRow("long") << QString(5000, QLatin1Char('x')) << QString(5000, QLatin1Char('x'));
}

void TestRemove::packageIsUninstalledInSilence()
{
    QFETCH(QString, name);
    QFETCH(QString, package);
    makeClockEntry();
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    m_world->daemon->clearLines();
    QCOMPARE(remove(name), QStringLiteral("true"));
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug removeFile: \"%1\"").arg(name),
            QStringLiteral("debug Uninstalling \"%1\"").arg(package)}));
    const auto requests = m_world->requests(packageService, uninstallCode);
    QCOMPARE(requests.size(), 1);
    // An empty name goes out as an empty string, not as the null string.
    QCOMPARE(
        requests.first().payload, uninstallBody(package.isNull() ? QStringLiteral("") : package));
    QCOMPARE(requests.first().localObjects.size(), 0);
    QCOMPARE(m_world->daemon->lines().filter(QStringLiteral("Resolved:")),
        name == clockEntry ? QStringList{QStringLiteral(
                                 "debug com.tovra.lumd.launcher Resolved: \"%1\" ->  \"com.clock\"")
                                     .arg(name)}
                           : QStringList());
    QCOMPARE(m_world->starts(), 0);
    QCOMPARE(m_world->notifications.texts(), QStringList());
    QCOMPARE(m_packageKit->transactions(), 0);
}

void TestRemove::packageIsRemovedLaterWhenTheRuntimeIsDown()
{
    QVERIFY(m_world->start());
    QCOMPARE(remove(QStringLiteral("/a/com.foo-1.apk")), QStringLiteral("true"));
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("StartUnit")));
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug removeFile: \"/a/com.foo-1.apk\""),
            willRemove(QStringLiteral("com.foo"))}));
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->android->waitForRequest(packageService, uninstallCode));
    QCOMPARE(m_world->requests(packageService, uninstallCode).first().payload,
        uninstallBody(QStringLiteral("com.foo")));
    QCOMPARE(m_world->starts(), 1);
}

void TestRemove::markerGoesWithoutItsNumber_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("gone");
    const QString plain = QStringLiteral("com.foo.apk");
    QTest::newRow("apk") << QStringLiteral("/a/com.foo.apk") << plain;
    QTest::newRow("apk with a number") << QStringLiteral("/a/com.foo-7.apk") << plain;
    QTest::newRow("apk with the number") << QStringLiteral("/a/com.foo-12.apk") << plain;
    // A package's name is not the name of its apk's marker.
    QTest::newRow("package") << QStringLiteral("com.foo") << QString();
    QTest::newRow("desktop file") << clockEntry << QStringLiteral("com.clock");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("parent") << QStringLiteral("/..") << QString();
    QTest::newRow("like a resource") << QStringLiteral(":x-3.apk") << QStringLiteral(":x.apk");
    QTest::newRow("like a resource in a folder")
        << QStringLiteral("/a/:x.apk") << QStringLiteral(":x.apk");
}

void TestRemove::markerGoesWithoutItsNumber()
{
    QFETCH(QString, name);
    QFETCH(QString, gone);
    makeClockEntry();
    QStringList left;
    for (const char *file :
        {":x.apk", "com.clock", "com.clock.apk", "com.foo-12.apk", "com.foo.apk"}) {
        left.append(QString::fromLatin1(file));
        makeFile(marker(left.last()));
    }
    left.removeAll(gone);
    QVERIFY(m_world->start());
    QCOMPARE(remove(name), QStringLiteral("true"));
    QCOMPARE(entries(marker()), left);
}

void TestRemove::numberedMarkerOfAnInstallStays()
{
    const QString apk = QStringLiteral("/run/apps/com.foo-12.apk");
    makeFile(apk);
    QVERIFY(m_world->start());
    QCOMPARE(resultOf(DaemonFixture::call(QStringLiteral("installPartnerSpaceFile"), {apk})),
        QStringLiteral("true"));
    QCOMPARE(remove(apk), QStringLiteral("true"));
    QCOMPARE(entries(marker()), QStringList{QStringLiteral("com.foo-12.apk")});
}

void TestRemove::rpmPackageIsRemoved_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("package");
    const QString package = QStringLiteral("com.foo");
    QTest::newRow("package") << package << package;
    QTest::newRow("apk") << QStringLiteral("/else/where/com.foo-3.apk") << package;
    QTest::newRow("like a resource") << QStringLiteral(":x") << QStringLiteral(":x");
    QTest::newRow("like a resource, apk") << QStringLiteral("/a/:x.apk") << QStringLiteral(":x");
}

void TestRemove::rpmPackageIsRemoved()
{
    QFETCH(QString, name);
    QFETCH(QString, package);
    const QString rpm = QStringLiteral("mirlane-apk-") + package;
    const QString id = rpm + QStringLiteral(";1.0-1;noarch;installed");
    const QString apk = packaged(package + QStringLiteral(".apk"));
    m_packageKit->setPackages(rpm, {id});
    makeFile(apk);
    QVERIFY(m_world->start());
    QCOMPARE(remove(name), QStringLiteral("true"));
    // Filter: 1 << 2, installed. Flags: 1 << 1, only trusted. No dependants, no autoremove.
    QTRY_COMPARE(m_packageKit->callTexts(),
        QStringList({QStringLiteral("Resolve(4, [%1])").arg(rpm),
            QStringLiteral("RemovePackages(2, [%1], false, false)").arg(id)}));
    QCOMPARE(m_packageKit->transactions(), 2);
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug removeFile: \"%1\"").arg(name), willRemove(package),
            requesting(rpm)}));
    // The package's own scripts remove the apk.
    QVERIFY(QFile::exists(apk));
}

void TestRemove::everyReportedPackageIsRemoved()
{
    const QString first = QStringLiteral("mirlane-apk-com.foo;1.0-1;noarch;installed");
    const QString second = QStringLiteral("mirlane-apk-com.foo;2.0-1;noarch;installed");
    m_packageKit->setPackages(QStringLiteral("mirlane-apk-com.foo"), {first, second});
    makeFile(packaged(QStringLiteral("com.foo.apk")));
    QVERIFY(m_world->start());
    QCOMPARE(remove(QStringLiteral("com.foo")), QStringLiteral("true"));
    QTRY_COMPARE(m_packageKit->callTexts().size(), 3);
    QStringList calls = m_packageKit->callTexts().mid(1); // the two are not ordered
    calls.sort();
    QCOMPARE(calls,
        QStringList({QStringLiteral("RemovePackages(2, [%1], false, false)").arg(first),
            QStringLiteral("RemovePackages(2, [%1], false, false)").arg(second)}));
}

void TestRemove::rpmPackageIsRemovedForADesktopFileToo()
{
    makeClockEntry();
    makeFile(packaged(QStringLiteral("com.clock.apk")));
    QVERIFY(m_world->start());
    QCOMPARE(remove(clockEntry), QStringLiteral("true"));
    QTRY_COMPARE(m_packageKit->callTexts(),
        QStringList{QStringLiteral("Resolve(4, [mirlane-apk-com.clock])")});
}

void TestRemove::packageKitIsNotAskedWithoutAnApk_data()
{
    QTest::addColumn<QString>("present");
    QTest::newRow("nothing") << QString();
    QTest::newRow("another's") << QStringLiteral("com.foo.bar.apk");
    QTest::newRow("with its number") << QStringLiteral("com.foo-1.apk");
    QTest::newRow("upper case") << QStringLiteral("com.foo.APK");
}

void TestRemove::packageKitIsNotAskedWithoutAnApk()
{
    QFETCH(QString, present);
    if (!present.isNull())
        makeFile(packaged(present));
    QVERIFY(m_world->start());
    QCOMPARE(remove(QStringLiteral("com.foo-1.apk")), QStringLiteral("true"));
    // A request that does ask shows that this one would have been seen.
    makeFile(packaged(QStringLiteral("com.seen.apk")));
    QCOMPARE(remove(QStringLiteral("com.seen")), QStringLiteral("true"));
    QTRY_COMPARE(m_packageKit->callTexts(),
        QStringList{QStringLiteral("Resolve(4, [mirlane-apk-com.seen])")});
    QCOMPARE(m_packageKit->transactions(), 1);
    QCOMPARE(linesOf(QStringLiteral("RPM")).size(), 1);
}

void TestRemove::failedResolutionIsLogged()
{
    constexpr quint32 packageNotFound = 8; // PK_ERROR_ENUM_PACKAGE_NOT_FOUND
    m_packageKit->fail(
        QStringLiteral("Resolve"), {packageNotFound, QStringLiteral("no such package")});
    makeFile(packaged(QStringLiteral("com.foo.apk")));
    QVERIFY(m_world->start());
    QCOMPARE(remove(QStringLiteral("com.foo")), QStringLiteral("true"));
    QTRY_COMPARE(linesOf(QStringLiteral("Error")),
        QStringList{QStringLiteral(
            "debug Error resolving package:  ErrorPackageNotFound \"no such package\"")});
    QCOMPARE(m_packageKit->callTexts(),
        QStringList{QStringLiteral("Resolve(4, [mirlane-apk-com.foo])")});
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(linesOf(QStringLiteral("There is no")), QStringList());
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

void TestRemove::failedRemovalIsLogged()
{
    constexpr quint32 notAuthorized = 48; // PK_ERROR_ENUM_NOT_AUTHORIZED
    m_packageKit->setPackages(
        QStringLiteral("mirlane-apk-com.foo"), {QStringLiteral("mirlane-apk-com.foo;1;a;b")});
    m_packageKit->fail(QStringLiteral("RemovePackages"), {notAuthorized, QStringLiteral("no")});
    makeFile(packaged(QStringLiteral("com.foo.apk")));
    QVERIFY(m_world->start());
    QCOMPARE(remove(QStringLiteral("com.foo")), QStringLiteral("true"));
    QTRY_COMPARE(linesOf(QStringLiteral("Error")),
        QStringList{
            QStringLiteral("debug Error uninstalling package:  ErrorNotAuthorized \"no\"")});
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

void TestRemove::missingPackageKitIsSurvived()
{
    m_packageKit.reset();
    makeFile(packaged(QStringLiteral("com.foo.apk")));
    QVERIFY(m_world->start());
    QCOMPARE(remove(QStringLiteral("com.foo")), QStringLiteral("true"));
    QTRY_COMPARE(linesOf(QStringLiteral("There is no")),
        QStringList{QStringLiteral(
            "warning There is no PackageKit that could remove \"mirlane-apk-com.foo\"")});
    QCOMPARE(remove(QStringLiteral("com.foo")), QStringLiteral("true"));
    QTRY_COMPARE(linesOf(QStringLiteral("There is no")).size(), 2);
}

LUM_TEST_MAIN(TestRemove)
#include "tst_remove.moc"
