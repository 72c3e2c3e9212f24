// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/daemonfixture.h"
#include "tests/daemon/openwatch.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uid_t nobody = 65534;

/// A process that is not root: it has no user id of its own in a new user namespace or,
/// where such a namespace cannot be made, takes on that of nobody.
class OrdinaryProcess : public QProcess
{
protected:
    void setupChildProcess() override
    {
        if (unshare(CLONE_NEWUSER) != 0 && setuid(nobody) != 0)
            _exit(127);
    }
};

bool hasInotify(int processId)
{
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(processId));
    const auto names = descriptors.entryList(QDir::Files | QDir::System);
    return std::any_of(names.begin(), names.end(), [&descriptors](const QString &name) {
        // libsystemd's monitor is an inotify descriptor.
        return QFile::symLinkTarget(descriptors.filePath(name))
            .endsWith(QLatin1String("anon_inode:inotify"));
    });
}

/// Makes the daemon tell its environment when it ends.
void recordEnvironment(DaemonProcess &daemon)
{
    daemon.preload(QStringLiteral(ENVIRONMENT_AT_EXIT_PATH));
    daemon.setEnvironment(
        QStringLiteral("ENVIRONMENT_AT_EXIT"), QStringLiteral("/run/environment"));
}

/// What it told about D-Bus.
QStringList recordedBusVariables()
{
    return QString::fromUtf8(fileContents(QStringLiteral("/run/environment")))
        .split(QLatin1Char('\n'))
        .filter(QRegularExpression(QStringLiteral("^DBUS_")));
}

QString sessionBusVariable(uint uid)
{
    return QStringLiteral("DBUS_SESSION_BUS_ADDRESS=unix:path=/run/user/%1/dbus/user_bus_socket")
        .arg(uid);
}

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void otherUserIsTurnedAway();
    void otherUserWithRootsRightsIsTurnedAway();
    void unwatchableSeatsEndTheProcess();
    void withoutASessionTheDaemonWaitsOffTheBus();
    void sessionBusIsThatOfTheSeatsUser_data();
    void sessionBusIsThatOfTheSeatsUser();
    void laterUserOfTheSeatChangesNothing();
    void eachTranslationIsOpenedOnce_data();
    void eachTranslationIsOpenedOnce();
    void translationUnderAShorterNameIsOpened_data();
    void translationUnderAShorterNameIsOpened();
    void quietWithoutLoggingRules();
    void startIsLoggedInOrder();
    void hugePagesAreOff();
};

void TestStartup::otherUserIsTurnedAway()
{
    // Its own name is told as the process got it. The build folder may be closed to others.
    const QString nickname = QStringLiteral("/run/nickname");
    QVERIFY(QFile::copy(DaemonProcess::program(), nickname));
    QVERIFY(QFile::copy(QStringLiteral(FAKE_GBINDER_DIR "/libgbinder.so.1"),
        QStringLiteral("/run/libgbinder.so.1")));
    QVERIFY(QFile::copy(QStringLiteral(GLIBUTIL_PATH), QStringLiteral("/run/libglibutil.so.1")));
    TestNamespace::setActiveSession(1000);

    OrdinaryProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral("/run"));
    // A build that measures coverage writes its counts, for others too.
    const QString counts = QStringLiteral("/run/counts");
    QVERIFY(QDir().mkpath(counts));
    QCOMPARE(chmod(qPrintable(counts), 0777), 0);
    environment.insert(QStringLiteral("GCOV_PREFIX"), counts);
    process.setProcessEnvironment(environment);
    process.start(nickname, QStringList());
    QVERIFY2(process.waitForFinished(), qPrintable(process.errorString()));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.readAllStandardError(),
        QByteArray("/run/nickname: Not running as root, exiting.\n"));
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(process.exitCode(), 2);
}

void TestStartup::otherUserWithRootsRightsIsTurnedAway()
{
    // As from a file with the set-user-ID bit. The system bus would be missing next: exit code 1.
    TestNamespace::setActiveSession(1000);
    DaemonProcess daemon;
    daemon.preload(QStringLiteral(OTHER_REAL_USER_PATH));
    daemon.start();
    QVERIFY(daemon.waitForExit());
    QCOMPARE(daemon.exitCode(), 2);
    QCOMPARE(daemon.lines(),
        QStringList{DaemonProcess::program() + QStringLiteral(": Not running as root, exiting.")});
}

void TestStartup::unwatchableSeatsEndTheProcess()
{
    QVERIFY(QDir(QStringLiteral("/run/systemd/seats")).removeRecursively());
    DaemonProcess daemon;
    daemon.start();
    QVERIFY(daemon.waitForExit());
    QCOMPARE(daemon.exitCode(), 3);
    QCOMPARE(daemon.lines(),
        QStringList{QStringLiteral("warning default Failed to monitor for seat changes")});
}

void TestStartup::withoutASessionTheDaemonWaitsOffTheBus()
{
    DaemonFixture world;
    TestNamespace::clearActiveSession();
    makeFile(QStringLiteral("/home/.android/data/aas-staging/app/incoming/a.apk"));

    world.daemon->start();
    QTRY_VERIFY(hasInotify(world.daemon->processId()));
    QVERIFY(!world.daemon->waitForBusName(QStringLiteral("com.tovra.lumd"), 300));
    QVERIFY(world.daemon->isRunning());
    QCOMPARE(world.daemon->lines(), QStringList());
    QCOMPARE(world.systemd.callTexts(), QStringList());
    QVERIFY(QFile::exists(QStringLiteral("/home/.android/data/aas-staging/app/incoming/a.apk")));

    TestNamespace::setActiveSession(1000);
    QVERIFY(world.daemon->waitForBusName());
    QVERIFY(!hasInotify(world.daemon->processId()));
    QVERIFY(!QFile::exists(QStringLiteral("/home/.android/data/aas-staging/app/incoming/a.apk")));
}

void TestStartup::sessionBusIsThatOfTheSeatsUser_data()
{
    QTest::addColumn<uint>("uid");
    QTest::addColumn<QString>("before");

    QTest::newRow("root") << 0U << QString();
    QTest::newRow("a user") << 1000U << QString();
    QTest::newRow("a large uid") << 4294967294U << QString();
    QTest::newRow("replaced") << 1000U << QStringLiteral("unix:path=/run/other");
}

void TestStartup::sessionBusIsThatOfTheSeatsUser()
{
    QFETCH(uint, uid);
    QFETCH(QString, before);
    TestNamespace::setActiveSession(uid);

    // Without a system bus the daemon comes to an end of its own after it has set the address.
    DaemonProcess daemon;
    recordEnvironment(daemon);
    if (!before.isNull())
        daemon.setEnvironment(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), before);
    daemon.start();
    QVERIFY(daemon.waitForExit());
    QCOMPARE(recordedBusVariables(), QStringList{sessionBusVariable(uid)});
}

void TestStartup::laterUserOfTheSeatChangesNothing()
{
    DaemonFixture world;
    world.systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    recordEnvironment(*world.daemon);
    QVERIFY(world.start());
    TestNamespace::setActiveSession(1001);
    QVERIFY(DaemonFixture::settle());
    world.android->quitDaemon();
    QVERIFY(world.daemon->waitForExit());
    QCOMPARE(recordedBusVariables(), QStringList{sessionBusVariable(1000)});
}

void TestStartup::eachTranslationIsOpenedOnce_data()
{
    QTest::addColumn<QStringList>("present");
    QTest::addColumn<QStringList>("opened");

    const auto row = [](const char *tag, const QStringList &present, const QStringList &opened) {
        QTest::newRow(tag) << present << opened;
    };
    const QString engineering = QStringLiteral("lumd_eng_en.qm");
    const QString country = QStringLiteral("lumd-pt_BR.qm");
    const QString language = QStringLiteral("lumd-pt.qm");
    const QString other = QStringLiteral("lumd-fi.qm");
    row("none", {}, {});
    row("engineering English alone", {engineering}, {engineering});
    row("both", {country, engineering}, {engineering, country});
    row("the closest", {language, country, engineering, other}, {engineering, country});
    row("the language without the country", {language, engineering}, {engineering, language});
    row("another language", {other}, {});
}

void TestStartup::eachTranslationIsOpenedOnce()
{
    QFETCH(QStringList, present);
    const QString folder = QStringLiteral("/usr/share/translations");
    QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(QDir().mkpath(folder));
    // What no translator can read must not stop the daemon either.
    for (const QString &name : qAsConst(present))
        makeFile(folder + QLatin1Char('/') + name, QByteArray(64, 'x'));
    TestNamespace::setActiveSession(1000);

    const OpenWatch watch(folder.toLocal8Bit());
    DaemonProcess daemon;
    daemon.setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("pt_BR.UTF-8"));
    daemon.start();
    // It ends for want of a system bus, after the translations.
    QVERIFY(daemon.waitForExit());
    QCOMPARE(daemon.exitCode(), 1);
    QTEST(watch.opened(), "opened");
}

void TestStartup::translationUnderAShorterNameIsOpened_data()
{
    QTest::addColumn<QString>("present");
    // What a QTranslator without delimiters and suffix of its own looks for, from the longest.
    for (const char *name : {"lumd_eng_en.qm", "lumd_eng_en", "lumd_eng.qm", "lumd_eng",
             "lumd-pt_BR.qm", "lumd-pt_BR", "lumd-pt.qm", "lumd-pt"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TestStartup::translationUnderAShorterNameIsOpened()
{
    QFETCH(QString, present);
    const QString folder = QStringLiteral("/usr/share/translations");
    makeFile(folder + QLatin1Char('/') + present, QByteArray(64, 'x'));
    TestNamespace::setActiveSession(1000);

    const OpenWatch watch(folder.toLocal8Bit());
    DaemonProcess daemon;
    daemon.setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("pt_BR.UTF-8"));
    daemon.start();
    QVERIFY(daemon.waitForExit());
    QCOMPARE(watch.opened(), QStringList{present});
    QVERIFY(QFile::remove(folder + QLatin1Char('/') + present));
}

void TestStartup::quietWithoutLoggingRules()
{
    DaemonFixture world;
    makeFile(QStringLiteral("/home/.android/data/aas-staging/app/incoming/a.apk"));
    world.systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    world.daemon->setLoggingRules(QString());
    world.daemon->setEnvironment(
        QStringLiteral("ANDROID_DATA_ROOT"), QStringLiteral("/home/.android"));
    QVERIFY(world.start());
    QVERIFY(!QFile::exists(QStringLiteral("/home/.android/data/aas-staging/app/incoming/a.apk")));
    QVERIFY(world.android->waitForPublished(QStringLiteral("alien.launcher")));
    world.daemon->kill(); // all that it printed is read then
    QCOMPARE(world.daemon->lines(), QStringList());
}

void TestStartup::startIsLoggedInOrder()
{
    DaemonFixture world;
    const QString stale = QStringLiteral("/run/root/data/aas-staging/app/incoming/a.apk");
    makeFile(stale);
    world.systemd.setUnitStateSilently(QStringLiteral("activating"), QStringLiteral("start"));
    world.daemon->setEnvironment(QStringLiteral("ANDROID_DATA_ROOT"), QStringLiteral("/run/root"));
    QVERIFY(world.start());
    QTRY_COMPARE(world.daemon->lines(),
        QStringList({QStringLiteral("debug com.tovra.lumd.config Using custom path for apps + "
                                    "data:  \"/run/root\""),
            QStringLiteral("debug com.tovra.lumd.service Alien Dalvik is \"activating\" ( "
                           "\"start\" )"),
            QStringLiteral("debug com.tovra.lumd.service Registering Alien service for "
                           "alien.launcher"),
            QStringLiteral("debug com.tovra.lumd.daemon Removing old incoming file: \"%1\"")
                .arg(stale)}));
    QCOMPARE(world.systemd.callTexts(),
        QStringList({QStringLiteral("Subscribe()"), QStringLiteral("LoadUnit(aliendalvik.service)"),
            QStringLiteral("GetAll(org.freedesktop.systemd1.Unit)")}));
}

void TestStartup::hugePagesAreOff()
{
    DaemonFixture world;
    QVERIFY(world.start());
    const QString status = QStringLiteral("/proc/%1/status").arg(world.daemon->processId());
    QVERIFY(fileContents(status).contains("\nTHP_enabled:\t0\n"));
}

LUM_TEST_MAIN(TestStartup)
#include "tst_startup.moc"
