// SPDX-License-Identifier: BSD-3-Clause
// Launches beside links that do not go with the unit's state, and links that fail.
#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

namespace {

const QString monitor = QStringLiteral("alien");
const QString activity = QStringLiteral("activity");

QVariantList intent()
{
    const QString none;
    return {QStringLiteral("a"), none, none, none, none, none, QVariantMap()};
}

} // namespace

class TestLaunchLinks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_world = std::make_unique<AppFixture>(); }
    void cleanup() { m_world->renew(); }

    void runtimeThatIsDownIsStartedBesideALiveLink();
    void whatWaitsOutlastsADisconnect();
    void disconnectMakesNoNewLink();
    void intentWaitsOnWhenTheLinkFails();

private:
    std::unique_ptr<AppFixture> m_world;
};

void TestLaunchLinks::runtimeThatIsDownIsStartedBesideALiveLink()
{
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->bringUp(activity));
    // The links go when the runtime is told to stop, not when it has.
    QVERIFY(m_world->see(QStringLiteral("inactive")));
    const QString package = QStringLiteral("com.a");
    const QVector<QPair<QString, QVariantList>> methods{{QStringLiteral("launchApp"), {package}},
        {QStringLiteral("launchIntent"), intent()}, {QStringLiteral("openAppSettings"), {package}},
        {QStringLiteral("viewLicenses"), {}}};
    for (const auto &[method, arguments] : methods) {
        m_world->systemd.clearCalls();
        QCOMPARE(errorOf(DaemonFixture::call(method, arguments)), QString());
        // What was sent before this has arrived when it has.
        DaemonFixture::call(QStringLiteral("controlServiceAutostart"), {false});
        QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
        QCOMPARE(m_world->starts(), 1);
    }
    QCOMPARE(names(m_world->requests(monitor, launchCode)), QStringList{package});
    QVERIFY(m_world->android->waitForRequest(activity, startActivityCode));
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

void TestLaunchLinks::whatWaitsOutlastsADisconnect()
{
    QVERIFY(m_world->start());
    const QString package = QStringLiteral("com.a");
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("launchApp"), {package})), QString());
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("launchIntent"), intent())), QString());
    for (const char *state : {"active", "deactivating", "inactive"})
        QVERIFY(m_world->see(QString::fromLatin1(state)));
    QCOMPARE(m_world->daemonLines().filter(QStringLiteral("debug Launching  ")), QStringList());

    m_world->daemon->clearLines();
    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->bringUp(activity));
    QVERIFY(m_world->android->waitForRequest(monitor, launchCode));
    QVERIFY(m_world->android->waitForRequest(activity, startActivityCode));
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(names(m_world->requests(monitor, launchCode)), QStringList{package});
    QCOMPARE(m_world->requests(activity, startActivityCode).size(), 1);
}

// The link that goes is still there to be asked while the daemon hears of it.
void TestLaunchLinks::disconnectMakesNoNewLink()
{
    QVERIFY(m_world->start());
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("launchIntent"), intent())), QString());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->see(QStringLiteral("deactivating")));
    QVERIFY(DaemonFixture::settle());
    const QStringList lines = m_world->daemon->lines();
    const auto isDown = [](const QString &line) {
        return line.contains(QLatin1String("\"deactivating\""));
    };
    const auto down = std::find_if(lines.begin(), lines.end(), isDown);
    QVERIFY(down != lines.end());
    QCOMPARE(QStringList(down + 1, lines.end()).filter(activity), QStringList());
}

void TestLaunchLinks::intentWaitsOnWhenTheLinkFails()
{
    m_world->android->registerService(activity);
    m_world->android->failClients(activity);
    QVERIFY(m_world->start());
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("launchIntent"), intent())), QString());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->daemon->waitForLine(
        QStringLiteral("debug com.tovra.lumd.binder Could not create client for activity")));
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(m_world->requests(activity, startActivityCode).size(), 0);

    m_world->android->failClients(activity, false);
    QVERIFY(m_world->android->waitForRequest(activity, startActivityCode));
}

LUM_TEST_MAIN(TestLaunchLinks)
#include "tst_launchlinks.moc"
