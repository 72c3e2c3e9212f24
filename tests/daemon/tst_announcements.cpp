// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/daemonfixture.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>

using FakeBinder::ParcelWriter;

namespace {

constexpr quint32 launcherAdded = 1;
constexpr quint32 launchersComplete = 2;
constexpr quint32 packageRemoved = 3;

struct Launcher
{
    QString packageName;
    QString className;
    QString caption;
    QString version;
    QByteArray icon;

    QString fileName() const
    {
        const auto escaped = [](QString name) {
            return name.replace(QStringLiteral("_"), QStringLiteral("__"))
                .replace(QStringLiteral("."), QStringLiteral("_"));
        };
        return QStringLiteral("lumd_launcher_%1-%2").arg(escaped(packageName), escaped(className));
    }
    QString entryPath() const
    {
        return QStringLiteral("/usr/share/applications/%1.desktop").arg(fileName());
    }
    QString iconPath() const { return QStringLiteral("/var/lib/lumd/%1.png").arg(fileName()); }
    QString settingsPath() const
    {
        return QStringLiteral("/usr/share/tovra-settings/entries/%1.json").arg(fileName());
    }

    QByteArray payload() const
    {
        return ParcelWriter()
            .string16(packageName)
            .string16(className)
            .string16(caption)
            .string16(version)
            .byteArray(icon)
            .bytes();
    }
};

Launcher clockLauncher()
{
    return {QStringLiteral("org.example.clock"), QStringLiteral("org.example.clock.Main"),
        QStringLiteral("K\u00e4llo"), QStringLiteral("1.2"), QByteArray("\x89PNG\0clock", 10)};
}

Launcher alarmLauncher()
{
    return {QStringLiteral("org.example.clock"), QStringLiteral("org.example.clock.Alarm"),
        QStringLiteral("Alarm"), QStringLiteral("1.2"), QByteArrayLiteral("alarm")};
}

Launcher mapLauncher()
{
    return {QStringLiteral("com.a_b.map"), QStringLiteral(".Map"), QStringLiteral("Map"),
        QStringLiteral("7"), QByteArrayLiteral("map")};
}

QByteArray entryText(const Launcher &launcher)
{
    return QStringLiteral("[Desktop Entry]\n"
                          "Exec=lumd-launcher %1.apk %1/%2\n"
                          "Icon=%3\n"
                          "Name=%4\n"
                          "Type=Application\n"
                          "Version=1.0\n"
                          "X-Tesk-Application-Type=no-invoker\n"
                          "X-lumd-apkfile=/home/.android/data/app//%1.apk\n"
                          "X-lumd-packageName=%1\n")
        .arg(launcher.packageName, launcher.className, launcher.iconPath(), launcher.caption)
        .toUtf8();
}

QByteArray settingsText(const Launcher &launcher)
{
    return QStringLiteral("{\n"
                          "    \"entries\": [\n"
                          "        {\n"
                          "            \"params\": {\n"
                          "                \"properties\": {\n"
                          "                    \"packageName\": \"%1\",\n"
                          "                    \"packageVersion\": \"%2\"\n"
                          "                },\n"
                          "                \"source\": \"/usr/share/tovra-settings/pages/"
                          "apk-configuration/apkConfigurationPage.qml\"\n"
                          "            },\n"
                          "            \"path\": \"applications/%3.desktop\",\n"
                          "            \"type\": \"page\"\n"
                          "        }\n"
                          "    ]\n"
                          "}\n")
        .arg(launcher.packageName, launcher.version, launcher.fileName())
        .toUtf8();
}

/// Every file that the daemon makes, in order of the path.
QStringList generatedFiles()
{
    QStringList files;
    for (const char *folder :
        {"/usr/share/applications/", "/usr/share/tovra-settings/entries/", "/var/lib/lumd/"}) {
        const QDir dir(QString::fromLatin1(folder));
        const QStringList names =
            dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QString &name : names)
            files.append(dir.filePath(name));
    }
    return files;
}

QStringList filesOf(const QVector<Launcher> &launchers)
{
    QStringList files;
    for (const Launcher &launcher : launchers)
        files << launcher.entryPath() << launcher.iconPath() << launcher.settingsPath();
    files.sort();
    return files;
}

/// Inode and time of last change: a file that was written again has another pair.
QStringList identities(const QStringList &files)
{
    QStringList identities;
    for (const QString &path : files) {
        struct stat status = {};
        stat(qPrintable(path), &status);
        identities.append(QStringLiteral("%1 %2.%3")
                              .arg(status.st_ino)
                              .arg(status.st_mtim.tv_sec)
                              .arg(status.st_mtim.tv_nsec));
    }
    return identities;
}

} // namespace

class TestAnnouncements : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void announcedLauncherIsOnDisk_data();
    void announcedLauncherIsOnDisk();
    void announcementIsLogged();
    void sameAnnouncementWritesNothing();
    void changedLauncherIsWrittenAgain();
    void hiddenLaunchersAreMarked();
    void removedPackageLeavesNothing();
    void completeListRemovesWhatWasNotAnnounced();
    void newDaemonForgetsWhatTheOldOneWasTold();
    void newDaemonKeepsWhatItIsToldAgain();
    void runtimeThatComesBackAnnouncesAgain();

    void otherCallsAreTurnedAway_data();
    void otherCallsAreTurnedAway();
    void announcementCutAnywhereIsSurvived();
    void lyingLengthIsSurvived();

private:
    bool startServed();
    FakeBinder::Answer send(quint32 code, const QByteArray &payload = {});
    /// Announces it; true when the daemon accepted.
    bool announce(const Launcher &launcher);

    std::unique_ptr<DaemonFixture> m_world;
};

void TestAnnouncements::initTestCase()
{
    m_world = std::make_unique<DaemonFixture>();
}

void TestAnnouncements::init()
{
    m_world->systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    const QStringList files = generatedFiles();
    for (const QString &path : files)
        QVERIFY(QFile::remove(path));
}

void TestAnnouncements::cleanup()
{
    m_world->renew();
}

bool TestAnnouncements::startServed()
{
    return m_world->start() && m_world->android->waitForPublished(QStringLiteral("alien.launcher"));
}

FakeBinder::Answer TestAnnouncements::send(quint32 code, const QByteArray &payload)
{
    FakeBinder::Call call;
    call.code = code;
    call.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    call.payload = payload;
    call.initialStatus = 77;
    return m_world->android->transact(QStringLiteral("alien.launcher"), call);
}

bool TestAnnouncements::announce(const Launcher &launcher)
{
    const FakeBinder::Answer answer = send(launcherAdded, launcher.payload());
    return answer.delivered && answer.status == 0 && !answer.hasReply;
}

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

void TestAnnouncements::otherCallsAreTurnedAway_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<int>("status");

    const QString own = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    QTest::newRow("code 0") << own << 0U << 1;
    QTest::newRow("code 4") << own << 4U << 1;
    QTest::newRow("a large code") << own << 0xffffffU << 1;
    QTest::newRow("another interface") << QStringLiteral("android.os.IFoo") << 1U << 77;
    QTest::newRow("another interface's complete list") << own.toLower() << 2U << 77;
    QTest::newRow("an interface that begins alike") << own + QLatin1Char('2') << 2U << 77;
    QTest::newRow("an empty interface") << QStringLiteral("") << 2U << 77;
    QTest::newRow("no header") << QString() << 2U << 77;
}

void TestAnnouncements::otherCallsAreTurnedAway()
{
    QFETCH(QString, interface);
    QFETCH(quint32, code);
    QVERIFY(startServed());
    QVERIFY(announce(clockLauncher()));
    m_world->renew();
    QVERIFY(startServed());

    FakeBinder::Call call;
    call.code = code;
    call.interface = interface;
    call.payload = mapLauncher().payload();
    call.initialStatus = 77;
    const FakeBinder::Answer answer =
        m_world->android->transact(QStringLiteral("alien.launcher"), call);
    QVERIFY(answer.delivered);
    QTEST(answer.status, "status");
    QVERIFY(!answer.hasReply);
    QCOMPARE(generatedFiles(), filesOf({clockLauncher()}));
}

void TestAnnouncements::announcementCutAnywhereIsSurvived()
{
    QVERIFY(startServed());
    const Launcher launcher = mapLauncher();
    const QByteArray whole = launcher.payload();
    const int captionEnd = ParcelWriter()
                               .string16(launcher.packageName)
                               .string16(launcher.className)
                               .string16(launcher.caption)
                               .bytes()
                               .size();
    for (int size = 0; size < whole.size(); ++size) {
        const FakeBinder::Answer answer = send(launcherAdded, whole.left(size));
        const QByteArray where = QByteArray::number(size);
        QVERIFY2(answer.delivered && answer.status == 0 && !answer.hasReply, where.constData());
        // What has no caption is not made.
        QVERIFY2(QFile::exists(launcher.entryPath()) == (size >= captionEnd), where.constData());
    }
    QVERIFY(announce(launcher));
    QCOMPARE(generatedFiles(), filesOf({launcher}));
    QCOMPARE(fileContents(launcher.iconPath()), launcher.icon);
    QVERIFY(m_world->daemon->isRunning());
    QCOMPARE(m_world->android->errors(), QStringList());
}

void TestAnnouncements::lyingLengthIsSurvived()
{
    const ParcelWriter uncaptioned = ParcelWriter()
                                         .string16(QStringLiteral("com.foo"))
                                         .string16(QStringLiteral("Main"))
                                         .nullString16()
                                         .string16(QStringLiteral("1"));
    QVector<QPair<quint32, QByteArray>> calls{
        {launcherAdded, QByteArray(64, '\xff')},
        {launcherAdded,
            ParcelWriter().int32(2).raw(QByteArray("\x00\xd8\x00\xd8\0\0\0\0", 8)).bytes()},
        {packageRemoved, QByteArray()},
        {packageRemoved, ParcelWriter().nullString16().bytes()},
    };
    for (const qint32 length : {INT_MAX, INT_MAX - 1, 0x7ffffffc, 0x40000000, 1000, -2, INT_MIN}) {
        calls.append({launcherAdded, ParcelWriter().int32(length).raw("abcdabcd").bytes()});
        calls.append({launcherAdded, ParcelWriter(uncaptioned).int32(length).raw("abcd").bytes()});
        calls.append({packageRemoved, ParcelWriter().int32(length).raw("abcdabcd").bytes()});
    }

    QVERIFY(startServed());
    for (const auto &call : qAsConst(calls)) {
        const FakeBinder::Answer answer = send(call.first, call.second);
        const QByteArray where = QByteArray::number(call.first) + ' ' + call.second.toHex(' ');
        QVERIFY2(answer.delivered && answer.status == 0 && !answer.hasReply, where.constData());
        QVERIFY2(generatedFiles().isEmpty(), where.constData());
    }
    QVERIFY(announce(mapLauncher()));
    QCOMPARE(generatedFiles(), filesOf({mapLauncher()}));
    QVERIFY(m_world->daemon->isRunning());
    QCOMPARE(m_world->android->errors(), QStringList());
}

LUM_TEST_MAIN(TestAnnouncements)
#include "tst_announcements.moc"
