// SPDX-License-Identifier: BSD-3-Clause
#include "tests/companions/lumctlrun.h"
#include "tests/daemon/announcementtest.h"
#include "tests/daemon/appfixture.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

#include <QJsonArray>

#include <csignal>

namespace {

const QString apk = QStringLiteral("/run/apps/a.apk");
const QString otherApk = QStringLiteral("/run/apps/b\u00e4 'b'\n.apk");

// Long enough for lumd to answer on a busy machine.
const QString limit = QStringLiteral("8");

/// What the last result of a document says.
QString lastResult(const QJsonObject &document, const QString &key)
{
    return document.value(QStringLiteral("results"))
        .toArray()
        .last()
        .toObject()
        .value(key)
        .toString();
}

} // namespace

class TestLumctlChanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void installIsWaitedForAndToldInWords_data();
    void installIsWaitedForAndToldInWords();
    void filesAreInstalledOneAfterTheOther();
    void fileThatCannotBeReadIsTold_data();
    void fileThatCannotBeReadIsTold();
    void fileThatIsNotTakenIsTold();
    void keptInstallWaitsForTheRuntime();
    void nothingIsWaitedForWhenTheUserDoesNotWantThat();
    void resultThatDoesNotComeIsGivenUpInTime();
    void interruptLeavesTheRequestAndSaysSo_data();
    void interruptLeavesTheRequestAndSaysSo();
    void daemonThatGoesIsToldAtOnce_data();
    void daemonThatGoesIsToldAtOnce();
    void progressIsShownOnATerminal();
    void appIsRemovedByItsName();
    void removalThatFailsIsTold();
    void nothingIsRemovedWhileANameIsNotClear();
    void packageWithoutALauncherIsRemovedByItsExactName();

private:
    /// The observer that the runtime got with the last install; waits for that many installs.
    quint32 observer(int installs = 1);
    void tellInstalled(quint32 observer, qint32 result, const QString &message = {});
    void tellRemoved(const QString &package);
    bool announce(const Launcher &launcher);

    std::unique_ptr<AppFixture> m_world;
};

void TestLumctlChanges::initTestCase()
{
    AppFixture::installCatalogues();
    m_world = std::make_unique<AppFixture>();
    makeFile(apk);
    makeFile(otherApk);
}

void TestLumctlChanges::init()
{
    QVERIFY(m_world->start());
}

void TestLumctlChanges::cleanup()
{
    m_world->renew();
}

quint32 TestLumctlChanges::observer(int installs)
{
    if (!m_world->android->waitForRequest(QStringLiteral("package"), installCode, installs))
        return 0;
    return m_world->requests(QStringLiteral("package"), installCode)
        .value(installs - 1)
        .localObjects.value(0);
}

void TestLumctlChanges::tellInstalled(quint32 observer, qint32 result, const QString &message)
{
    FakeBinder::Call call;
    call.code = 2;
    call.interface = QStringLiteral("android.content.pm.IPackageInstallObserver2");
    call.payload = FakeBinder::ParcelWriter()
                       .string16(QStringLiteral("com.a"))
                       .int32(result)
                       .string16(message)
                       .int32(0)
                       .bytes();
    QVERIFY(m_world->android->transactObject(observer, call).delivered);
}

void TestLumctlChanges::tellRemoved(const QString &package)
{
    FakeBinder::Call call;
    call.code = packageRemoved;
    call.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    call.payload = FakeBinder::ParcelWriter().string16(package).bytes();
    QVERIFY(m_world->android->transact(QStringLiteral("alien.launcher"), call).delivered);
}

bool TestLumctlChanges::announce(const Launcher &launcher)
{
    FakeBinder::Call call;
    call.code = launcherAdded;
    call.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    call.payload = launcher.payload();
    return m_world->android->waitForPublished(QStringLiteral("alien.launcher"))
        && m_world->android->transact(QStringLiteral("alien.launcher"), call).delivered;
}

void TestLumctlChanges::installIsWaitedForAndToldInWords_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("good") << 1 << QString()
                          << QStringList({QStringLiteral("/run/apps/a.apk: installed as com.a"),
                                 QStringLiteral("exit 0")});
    QTest::newRow("bad") << -4 << QStringLiteral("no\x1b[31m room")
                         << QStringList({QStringLiteral("lumctl: /run/apps/a.apk: not installed: "
                                                        "no\\x1b[31m room"),
                                QStringLiteral("exit 1")});
}

void TestLumctlChanges::installIsWaitedForAndToldInWords()
{
    QFETCH(int, result);
    QFETCH(QString, message);
    QFETCH(QStringList, lines);
    QVERIFY(m_world->bringUpRuntime());
    LumctlRun run({QStringLiteral("install"), apk});
    run.start();
    const quint32 told = observer();
    QVERIFY(told != 0);
    QVERIFY(run.process().isRunning());
    tellInstalled(told, result, message);
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines() + QStringList{QStringLiteral("exit %1").arg(run.exitCode())}, lines);
}

void TestLumctlChanges::filesAreInstalledOneAfterTheOther()
{
    QVERIFY(m_world->bringUpRuntime());
    LumctlRun run({QStringLiteral("install"), apk, otherApk});
    run.start();
    const quint32 first = observer(1);
    QVERIFY(first != 0);
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(m_world->requests(QStringLiteral("package"), installCode).size(), 1);
    tellInstalled(first, -4, QStringLiteral("no"));
    tellInstalled(observer(2), 1);
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines(),
        QStringList({QStringLiteral("lumctl: /run/apps/a.apk: not installed: no"),
            QStringLiteral("/run/apps/b\u00e4 'b'\\n.apk: installed as com.a")}));
    QCOMPARE(run.exitCode(), 1);
}

void TestLumctlChanges::fileThatCannotBeReadIsTold_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("why");
    QTest::newRow("missing") << QStringLiteral("/run/none.apk") << QStringLiteral("no such file");
    QTest::newRow("folder") << QStringLiteral("/run") << QStringLiteral("not a regular file");
    QTest::newRow("device") << QStringLiteral("/dev/null") << QStringLiteral("not a regular file");
}

void TestLumctlChanges::fileThatCannotBeReadIsTold()
{
    QFETCH(QString, path);
    QFETCH(QString, why);
    QCOMPARE(lumctl({QStringLiteral("install"), path}),
        QStringList({QStringLiteral("lumctl: %1: %2").arg(path, why), QStringLiteral("exit 1")}));
    const QJsonObject document = lumctlJson({QStringLiteral("install"), path});
    QCOMPARE(lastResult(document, QStringLiteral("result")), QStringLiteral("failed"));
    QCOMPARE(lastResult(document, QStringLiteral("request")), path);
}

void TestLumctlChanges::fileThatIsNotTakenIsTold()
{
    QVERIFY(
        QFile::rename(QStringLiteral("/opt/alien/system.img"), QStringLiteral("/opt/alien/away")));
    QCOMPARE(lumctl({QStringLiteral("install"), apk}),
        QStringList({QStringLiteral("lumctl: /run/apps/a.apk: lumd could not take the file; its "
                                    "journal tells why"),
            QStringLiteral("exit 1")}));
    QVERIFY(
        QFile::rename(QStringLiteral("/opt/alien/away"), QStringLiteral("/opt/alien/system.img")));
}

void TestLumctlChanges::keptInstallWaitsForTheRuntime()
{
    LumctlRun run({QStringLiteral("install"), apk});
    run.start();
    QVERIFY(run.process().waitForLine(
        QStringLiteral("/run/apps/a.apk: waits until the Android runtime is up")));
    QVERIFY(m_world->bringUpRuntime());
    tellInstalled(observer(), 1);
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines().last(), QStringLiteral("/run/apps/a.apk: installed as com.a"));
    QCOMPARE(run.exitCode(), 0);
}

void TestLumctlChanges::nothingIsWaitedForWhenTheUserDoesNotWantThat()
{
    const QStringList arguments = {QStringLiteral("install"), QStringLiteral("--no-wait"), apk};
    QCOMPARE(lumctl(arguments),
        QStringList({QStringLiteral("/run/apps/a.apk: waits until the Android runtime is up"),
            QStringLiteral("exit 0")}));
    QCOMPARE(lastResult(lumctlJson(arguments), QStringLiteral("result")), QStringLiteral("queued"));
    QVERIFY(m_world->bringUpRuntime());
    QCOMPARE(lumctl(arguments),
        QStringList(
            {QStringLiteral("/run/apps/a.apk: handed over to lumd"), QStringLiteral("exit 0")}));
    QCOMPARE(
        lastResult(lumctlJson(arguments), QStringLiteral("result")), QStringLiteral("accepted"));
}

void TestLumctlChanges::resultThatDoesNotComeIsGivenUpInTime()
{
    QVERIFY(m_world->bringUpRuntime());
    QCOMPARE(lumctl({QStringLiteral("install"), apk, otherApk, QStringLiteral("--timeout"), limit}),
        QStringList({QStringLiteral("lumctl: /run/apps/a.apk: no result within %1 s; the request "
                                    "stays with lumd")
                         .arg(limit),
            QStringLiteral("lumctl: /run/apps/b\u00e4 'b'\\n.apk: not asked for any more"),
            QStringLiteral("exit 5")}));
}

void TestLumctlChanges::interruptLeavesTheRequestAndSaysSo_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void TestLumctlChanges::interruptLeavesTheRequestAndSaysSo()
{
    QFETCH(int, number);
    LumctlRun run({QStringLiteral("install"), apk});
    run.start();
    QVERIFY(run.process().waitForLine(
        QStringLiteral("/run/apps/a.apk: waits until the Android runtime is up")));
    run.process().signal(number);
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines().last(),
        QStringLiteral("lumctl: /run/apps/a.apk: not waited for any longer; the request stays with "
                       "lumd"));
    QCOMPARE(run.exitCode(), -number);
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(observer() != 0);
}

void TestLumctlChanges::daemonThatGoesIsToldAtOnce_data()
{
    QTest::addColumn<bool>("isRestarted");
    QTest::newRow("stopped") << false;
    QTest::newRow("restarted") << true;
}

void TestLumctlChanges::daemonThatGoesIsToldAtOnce()
{
    QFETCH(bool, isRestarted);
    QVERIFY(m_world->bringUpRuntime());
    LumctlRun run({QStringLiteral("install"), apk, QStringLiteral("--json")});
    run.start();
    QVERIFY(observer() != 0);
    m_world->daemon->kill();
    if (isRestarted) {
        m_world->renew();
        QVERIFY(m_world->start());
    }
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines(),
        QStringList{QStringLiteral("{\"results\":[{\"message\":\"\",\"package\":\"\",\"request\":"
                                   "\"/run/apps/a.apk\",\"result\":\"no-lumd\"}]}")});
    QCOMPARE(run.exitCode(), 3);
}

void TestLumctlChanges::progressIsShownOnATerminal()
{
    QVERIFY(m_world->bringUpRuntime());
    LumctlRun run({QStringLiteral("install"), apk, QStringLiteral("--timeout"), limit});
    run.start(true);
    QVERIFY(run.waitForEnd());
    const QString all = run.lines().join(QLatin1Char('\n'));
    const QString clear = QStringLiteral("\r\x1b[K");
    const QRegularExpression progress(
        QStringLiteral("\r\x1b\\[K/run/apps/a\\.apk: installing, [1-7] s\r\x1b\\[K"));
    QVERIFY2(all.contains(progress), qPrintable(all));
    QVERIFY2(all.contains(clear + QStringLiteral("\x1b[31mlumctl:\x1b[0m /run/apps/a.apk: no ")),
        qPrintable(all));
    QCOMPARE(run.exitCode(), 5);
}

void TestLumctlChanges::appIsRemovedByItsName()
{
    QVERIFY(m_world->see(QStringLiteral("activating")));
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(announce(mapLauncher()));
    LumctlRun run(words("remove map"));
    run.start();
    QVERIFY(m_world->android->waitForRequest(QStringLiteral("package"), uninstallCode));
    const auto requests = m_world->requests(QStringLiteral("package"), uninstallCode);
    QCOMPARE(names(requests), QStringList{QStringLiteral("com.a_b.map")});
    // That of another app's removal is none of ours.
    tellRemoved(QStringLiteral("com.b"));
    tellRemoved(QStringLiteral("com.a_b.map"));
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines(), QStringList{QStringLiteral("Map: removed")});
    QCOMPARE(run.exitCode(), 0);
}

void TestLumctlChanges::removalThatFailsIsTold()
{
    constexpr qint32 securityException = -1;
    m_world->android->registerService(QStringLiteral("package"), [](const FakeBinder::Request &) {
        return FakeBinder::Reply::data(FakeBinder::ParcelWriter().int32(securityException).bytes());
    });
    m_world->android->registerService(QStringLiteral("alien"));
    QVERIFY(m_world->connectToRuntime());
    QCOMPARE(lumctl(words("remove --exact com.a")),
        QStringList({QStringLiteral("lumctl: com.a: Android did not remove it"),
            QStringLiteral("exit 1")}));
}

void TestLumctlChanges::nothingIsRemovedWhileANameIsNotClear()
{
    QVERIFY(m_world->see(QStringLiteral("activating")));
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(announce(mapLauncher()));
    QCOMPARE(lumctl(words("remove map mop")).last(), QStringLiteral("exit 6"));
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(m_world->requests(QStringLiteral("package"), uninstallCode).size(), 0);
}

void TestLumctlChanges::packageWithoutALauncherIsRemovedByItsExactName()
{
    QCOMPARE(lumctl(words("remove com.quiet")).last(), QStringLiteral("exit 6"));
    QCOMPARE(lumctl(words("remove --exact --no-wait com.quiet")),
        QStringList({QStringLiteral("com.quiet: waits until the Android runtime is up"),
            QStringLiteral("exit 0")}));
}

LUM_TEST_MAIN(TestLumctlChanges)
#include "tst_lumctlchanges.moc"
