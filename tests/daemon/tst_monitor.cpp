// SPDX-License-Identifier: BSD-3-Clause
// What the monitor tells of requests, of the runtime and of results.
#include "tests/daemon/appfixture.h"
#include "tests/daemon/monitorrecorder.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

#include <QDBusVariant>
#include <QFile>

using FakeBinder::ParcelWriter;

Q_DECLARE_METATYPE(FakeBinder::Call)

namespace {

const QString packageService = QStringLiteral("package");
const QString alienService = QStringLiteral("alien");
const QString apk = QStringLiteral("/run/apps/a.apk");
const QString package = QStringLiteral("com.clock");

FakeBinder::Call installed(qint32 result, const QString &name, const QString &message)
{
    FakeBinder::Call call;
    call.code = 2;
    call.interface = QStringLiteral("android.content.pm.IPackageInstallObserver2");
    call.payload = ParcelWriter().string16(name).int32(result).string16(message).int32(0).bytes();
    return call;
}

FakeBinder::Call userActionRequired()
{
    FakeBinder::Call call;
    call.code = 1;
    call.interface = QStringLiteral("android.content.pm.IPackageInstallObserver2");
    return call;
}

QVariant valueOf(const char *name)
{
    return MonitorRecorder::properties().value(QString::fromLatin1(name));
}

} // namespace

class TestMonitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void propertiesBeginWithWhatTheDaemonFinds_data();
    void propertiesBeginWithWhatTheDaemonFinds();
    void propertyCannotBeSet();
    void runtimeThatStartsAndStopsIsFollowed();
    void propertyThatStaysIsNotToldOf();
    void unitThatCannotBeLoadedIsInvalid();
    void levelIsToldOfWhenItIsKnown();
    void levelThatIsNotKnownIsNotComplainedOf();
    void keptRequestIsToldOf_data();
    void keptRequestIsToldOf();
    void requestThatGoesOutAtOnceIsNotToldOf();
    void releasedRequestsAreCountedDown();
    void intentBehindAWindowIsPending();
    void resultOfAnInstallIsToldOf_data();
    void resultOfAnInstallIsToldOf();
    void silentInstallHasNoResult();

private:
    /// The observer that the runtime gets for an install; 0 on failure.
    quint32 observerOfAnInstall();

    std::unique_ptr<AppFixture> m_world;
    std::unique_ptr<MonitorRecorder> m_recorder;
};

void TestMonitor::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    m_recorder = std::make_unique<MonitorRecorder>();
    makeFile(apk);
    AppFixture::installCatalogues();
}

void TestMonitor::cleanup()
{
    m_world->systemd.failLoadUnit(QString());
    m_world->renew();
    m_recorder->clear();
}

quint32 TestMonitor::observerOfAnInstall()
{
    if (!m_world->start() || !m_world->bringUpRuntime())
        return 0;
    DaemonFixture::call(QStringLiteral("installFile"), {apk});
    const auto requests = m_world->requests(packageService, installCode);
    return requests.isEmpty() ? 0 : requests.first().localObjects.value(0);
}

void TestMonitor::propertiesBeginWithWhatTheDaemonFinds_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"inactive", "failed", "deactivating"})
        QTest::newRow(state) << QString::fromLatin1(state);
}

void TestMonitor::propertiesBeginWithWhatTheDaemonFinds()
{
    QFETCH(QString, state);
    m_world->systemd.setUnitStateSilently(state, QStringLiteral("test"));
    QVERIFY(m_world->start());
    const QVariantMap expected{{QStringLiteral("RuntimeState"), state},
        {QStringLiteral("Ready"), false}, {QStringLiteral("PendingChanges"), 0U},
        {QStringLiteral("PendingLaunches"), 0U}, {QStringLiteral("SdkLevel"), 27},
        {QStringLiteral("Version"), QStringLiteral(LUMD_VERSION)}};
    QCOMPARE(MonitorRecorder::properties(), expected);
    QCOMPARE(m_recorder->signalTexts(), QStringList());
}

void TestMonitor::propertyCannotBeSet()
{
    QVERIFY(m_world->start());
    const QDBusMessage reply = MonitorRecorder::call("org.freedesktop.DBus.Properties", "Set",
        {QStringLiteral("com.tovra.lumd.Monitor1"), QStringLiteral("Ready"),
            QVariant::fromValue(QDBusVariant(true))});
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.PropertyReadOnly"));
    QCOMPARE(valueOf("Ready"), QVariant(false));
}

void TestMonitor::runtimeThatStartsAndStopsIsFollowed()
{
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("activating")));
    QVERIFY(m_world->bringUpRuntime());
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({QStringLiteral("PropertiesChanged(RuntimeState=\"activating\")"),
            QStringLiteral("PropertiesChanged(RuntimeState=\"active\")"),
            QStringLiteral("PropertiesChanged(Ready=true)")}));
    QCOMPARE(valueOf("Ready"), QVariant(true));
    m_recorder->clear();
    m_world->daemon->clearLines();
    m_world->android->killService(alienService);
    QTRY_COMPARE(
        m_recorder->signalTexts(), QStringList{QStringLiteral("PropertiesChanged(Ready=false)")});
    QVERIFY(m_world->bringUp(alienService));
    QTRY_COMPARE(m_recorder->signalTexts().mid(1),
        QStringList{QStringLiteral("PropertiesChanged(Ready=true)")});
    m_recorder->clear();
    QVERIFY(m_world->see(QStringLiteral("deactivating")));
    QVERIFY(m_world->see(QStringLiteral("inactive")));
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({QStringLiteral("PropertiesChanged(Ready=false RuntimeState=\"deactivating\")"),
            QStringLiteral("PropertiesChanged(RuntimeState=\"inactive\")")}));
    QCOMPARE(valueOf("RuntimeState"), QVariant(QStringLiteral("inactive")));
}

void TestMonitor::propertyThatStaysIsNotToldOf()
{
    QVERIFY(m_world->start());
    m_world->android->registerService(packageService);
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->waitForLink(packageService));
    m_world->android->killService(packageService);
    QVERIFY(m_world->daemon->waitForLine(
        QStringLiteral("warning com.tovra.lumd.binder package died! Trying to reconnect.")));
    QVERIFY(m_world->see(QStringLiteral("failed")));
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({QStringLiteral("PropertiesChanged(RuntimeState=\"active\")"),
            QStringLiteral("PropertiesChanged(RuntimeState=\"failed\")")}));
}

void TestMonitor::unitThatCannotBeLoadedIsInvalid()
{
    m_world->systemd.failLoadUnit(QStringLiteral("no such unit"));
    QVERIFY(m_world->start());
    QCOMPARE(valueOf("RuntimeState"), QVariant(QStringLiteral("invalid")));
}

void TestMonitor::levelIsToldOfWhenItIsKnown()
{
    const QString file = QStringLiteral("/opt/alien/build.prop");
    const QByteArray before = fileContents(file);
    QVERIFY(QFile::remove(file));
    QVERIFY(m_world->start());
    QCOMPARE(valueOf("SdkLevel"), QVariant(0));
    makeFile(file, "ro.build.version.sdk=29\n");
    QVERIFY(m_world->see(QStringLiteral("active")));
    makeFile(file, before);
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList{QStringLiteral("PropertiesChanged(RuntimeState=\"active\" SdkLevel=29)")});
    QCOMPARE(valueOf("SdkLevel"), QVariant(29));
}

void TestMonitor::levelThatIsNotKnownIsNotComplainedOf()
{
    const QString file = QStringLiteral("/opt/alien/build.prop");
    const QByteArray before = fileContents(file);
    QVERIFY(QFile::remove(file));
    QVERIFY(m_world->start());
    QCOMPARE(valueOf("SdkLevel"), QVariant(0));
    m_world->daemon->kill(); // all that it printed is read then
    makeFile(file, before);
    QCOMPARE(m_world->daemon->lines().filter(QStringLiteral("sdk version")), QStringList());
}

void TestMonitor::keptRequestIsToldOf_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QStringList>("texts");

    const QString none = QStringLiteral("");
    const auto change = [](const char *kind, const QString &what) {
        return QStringList({QStringLiteral("PropertiesChanged(PendingChanges=1)"),
            QStringLiteral("RequestQueued(\"%1\", \"%2\")").arg(QLatin1String(kind), what)});
    };
    const auto launch = [](const char *kind, const QString &what) {
        return QStringList({QStringLiteral("PropertiesChanged(PendingLaunches=1)"),
            QStringLiteral("RequestQueued(\"%1\", \"%2\")").arg(QLatin1String(kind), what)});
    };
    for (const char *method : {"installFile", "installPreloadFile", "installPartnerSpaceFile"})
        QTest::newRow(method) << QString::fromLatin1(method) << QVariantList{apk}
                              << change("install", apk);
    const QString odd = QStringLiteral("/run/apps/\uffff \x01\n.apk");
    makeFile(odd);
    QTest::newRow("odd path") << QStringLiteral("installFile") << QVariantList{odd}
                              << change(
                                     "install", QString(odd).replace(QChar(0xffff), QChar(0xfffd)));
    QTest::newRow("removeFile") << QStringLiteral("removeFile")
                                << QVariantList{QStringLiteral("/a/com.foo-2.apk")}
                                << change("remove", QStringLiteral("com.foo"));
    QTest::newRow("launchApp") << QStringLiteral("launchApp") << QVariantList{package}
                               << launch("launch", package);
    const QString action = QStringLiteral("android.intent.action.VIEW");
    QTest::newRow("intent without data")
        << QStringLiteral("launchIntent")
        << QVariantList{action, none, none, none, none, none, QVariantMap()}
        << launch("intent", action);
    QTest::newRow("intent with data") << QStringLiteral("launchIntent")
                                      << QVariantList{action, QStringLiteral("/home/a.pdf"), none,
                                             none, none, none, QVariantMap()}
                                      << launch("intent", QStringLiteral("/home/a.pdf"));
    QTest::newRow("great data") << QStringLiteral("launchIntent")
                                << QVariantList{action, QString(100000, QLatin1Char('a')), none,
                                       none, none, none, QVariantMap()}
                                << launch("intent", QString(8192, QLatin1Char('a')));
    QTest::newRow("openAppSettings") << QStringLiteral("openAppSettings") << QVariantList{package}
                                     << launch("intent", QStringLiteral("package:com.clock"));
    QTest::newRow("viewLicenses") << QStringLiteral("viewLicenses") << QVariantList()
                                  << launch(
                                         "intent", QStringLiteral("android.settings.LEGAL_INFO"));
}

void TestMonitor::keptRequestIsToldOf()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(QStringList, texts);
    QVERIFY(m_world->start());
    QCOMPARE(errorOf(DaemonFixture::call(method, arguments)), QString());
    QTRY_COMPARE(m_recorder->signalTexts(), texts);
}

void TestMonitor::requestThatGoesOutAtOnceIsNotToldOf()
{
    m_world->android->registerService(QStringLiteral("activity"));
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->waitForLink(QStringLiteral("activity")));
    QTRY_COMPARE(m_recorder->signalTexts().size(), 2);
    m_recorder->clear();
    for (const char *method : {"installFile", "removeFile", "launchApp"})
        DaemonFixture::call(QString::fromLatin1(method), {apk});
    DaemonFixture::call(QStringLiteral("viewLicenses"));
    QVERIFY(m_world->android->waitForRequest(QStringLiteral("activity"), startActivityCode));
    QVERIFY(m_world->see(QStringLiteral("failed"))); // the mark behind which nothing else comes
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList{QStringLiteral("PropertiesChanged(RuntimeState=\"failed\")")});
}

void TestMonitor::releasedRequestsAreCountedDown()
{
    QVERIFY(m_world->start());
    for (int i = 0; i < 3; ++i)
        DaemonFixture::call(QStringLiteral("removeFile"), {QStringLiteral("com.foo%1").arg(i)});
    DaemonFixture::call(QStringLiteral("launchApp"), {package});
    DaemonFixture::call(QStringLiteral("viewLicenses"));
    QCOMPARE(valueOf("PendingChanges"), QVariant(3U));
    QCOMPARE(valueOf("PendingLaunches"), QVariant(2U));
    QTRY_COMPARE(m_recorder->signalTexts().size(), 10);
    m_recorder->clear();
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(packageService));
    QVERIFY(m_world->bringUp(alienService));
    QVERIFY(m_world->bringUp(QStringLiteral("activity")));
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({QStringLiteral("PropertiesChanged(RuntimeState=\"active\")"),
            QStringLiteral("PropertiesChanged(PendingLaunches=1 Ready=true)"),
            QStringLiteral("PropertiesChanged(PendingChanges=0)"),
            QStringLiteral("PropertiesChanged(PendingLaunches=0)")}));
}

void TestMonitor::intentBehindAWindowIsPending()
{
    m_world->android->registerService(QStringLiteral("activity"));
    m_world->android->registerService(QStringLiteral("SurfaceFlinger"),
        [](const FakeBinder::Request &) { return FakeBinder::Reply::never(); });
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->waitForLink(QStringLiteral("activity")));
    DaemonFixture::call(QStringLiteral("openAppSettings"), {package});
    QVERIFY(m_world->android->waitForRequest(QStringLiteral("activity"), startActivityCode));
    QCOMPARE(valueOf("PendingLaunches"), QVariant(0U));
    DaemonFixture::call(QStringLiteral("viewLicenses"));
    QCOMPARE(valueOf("PendingLaunches"), QVariant(1U));
    QVERIFY(m_world->android->waitForRequest(QStringLiteral("activity"), startActivityCode, 2));
    QTRY_COMPARE(m_recorder->signalTexts(),
        QStringList({QStringLiteral("PropertiesChanged(RuntimeState=\"active\")"),
            QStringLiteral("PropertiesChanged(PendingLaunches=1)"),
            QStringLiteral("PropertiesChanged(PendingLaunches=0)")}));
}

void TestMonitor::resultOfAnInstallIsToldOf_data()
{
    QTest::addColumn<FakeBinder::Call>("result");
    QTest::addColumn<QString>("text");
    const QString failed = QStringLiteral("InstallFinished(\"com.clock\", false, \"%1\")");
    QTest::newRow("installed") << installed(1, package, QString())
                               << QStringLiteral("InstallFinished(\"com.clock\", true, \"\")");
    QTest::newRow("installed, with words") << installed(1, package,
        QStringLiteral("fine")) << QStringLiteral("InstallFinished(\"com.clock\", true, \"\")");
    QTest::newRow("Android's own words") << installed(-4, package, QStringLiteral("no room"))
                                         << failed.arg(QStringLiteral("no room"));
    QTest::newRow("words of ours") << installed(
        -4, package, QString()) << failed.arg(QStringLiteral("There is not enough storage space"));
    QTest::newRow("no package") << installed(-2, QString(), QStringLiteral("bad"))
                                << QStringLiteral("InstallFinished(\"\", false, \"bad\")");
    QTest::newRow("user is asked") << userActionRequired()
                                   << QStringLiteral("InstallFinished(\"\", false, "
                                                     "\"Package installation failed\")");
    QTest::newRow("control codes") << installed(-2, package, QStringLiteral("\x1b[31m\n"))
                                   << failed.arg(QStringLiteral("\x1b[31m\n"));
    QTest::newRow("not fit for the bus")
        << installed(-2, package,
               QStringLiteral("a") + QChar(0) + QChar(0xd800) + QChar(0xfffe) + QChar(0xfdd0)
                   + QStringLiteral("\U0001ffff\U0001f34e"))
        << failed.arg(QStringLiteral("a\ufffd\ufffd\ufffd\ufffd\ufffd\U0001f34e"));
    QTest::newRow("cut in a pair")
        << installed(-2, package, QString(8191, QLatin1Char('a')) + QStringLiteral("\U0001f34eb"))
        << failed.arg(QString(8191, QLatin1Char('a')) + QChar(0xfffd));
}

void TestMonitor::resultOfAnInstallIsToldOf()
{
    QFETCH(FakeBinder::Call, result);
    QFETCH(QString, text);
    const quint32 observer = observerOfAnInstall();
    QVERIFY(observer != 0);
    QVERIFY(m_world->android->transactObject(observer, result).delivered);
    QTRY_COMPARE(m_recorder->signalTexts().filter(QStringLiteral("Finished")), QStringList{text});
    // The bus has not cut the daemon off.
    QCOMPARE(valueOf("Ready"), QVariant(true));
}

void TestMonitor::silentInstallHasNoResult()
{
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    DaemonFixture::call(QStringLiteral("installPreloadFile"), {apk});
    QVERIFY(m_world->android->waitForRequest(packageService, installCode));
    QCOMPARE(m_world->requests(packageService, installCode).first().localObjects.size(), 0);
    QVERIFY(m_world->see(QStringLiteral("failed")));
    QTRY_VERIFY(m_recorder->signalTexts().contains(
        QStringLiteral("PropertiesChanged(RuntimeState=\"failed\")")));
    QCOMPARE(m_recorder->signalTexts().filter(QStringLiteral("Install")), QStringList());
}

LUM_TEST_MAIN(TestMonitor)
#include "tst_monitor.moc"
