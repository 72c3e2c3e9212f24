// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/daemonfixture.h"
#include "tests/support/testmain.h"

namespace {

QString launcherService()
{
    return QStringLiteral("alien.launcher");
}

QString registering()
{
    return QStringLiteral(
        "debug com.tovra.lumd.service Registering Alien service for alien.launcher");
}

QStringList creations()
{
    return {QStringLiteral(
                "servicemanager_new_local_object alien.applications.IAlienNativeLauncherService"),
        QStringLiteral("servicename_new alien.launcher")};
}

QStringList releases()
{
    return {QStringLiteral("servicename_unref alien.launcher"),
        QStringLiteral("local_object_drop alien.applications.IAlienNativeLauncherService")};
}

QString stateLine(const QString &state)
{
    return QStringLiteral("debug com.tovra.lumd.service Alien Dalvik is \"%1\" ( \"test\" )")
        .arg(state);
}

} // namespace

class TestRuntimeControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void serviceRequestReachesSystemdUnlessItIsNeedless_data();
    void serviceRequestReachesSystemdUnlessItIsNeedless();
    void autostartRequestAlwaysReachesSystemd_data();
    void autostartRequestAlwaysReachesSystemd();
    void startedRuntimeIsServed();
    void missingUnitIsSurvived();

    void runtimeThatIsUpIsServedAtOnce_data();
    void runtimeThatIsUpIsServedAtOnce();
    void runtimeThatIsDownIsNotServed_data();
    void runtimeThatIsDownIsNotServed();
    void serviceIsWithdrawnInOrder();
    void runtimeNeverSeenActivatingIsNotServed();
    void killedRuntimeIsServedWhenItIsBack();
    void missingDeviceIsTriedAgain();

private:
    /// Makes the daemon see the unit in that state.
    bool see(const QString &state);
    /// What happened to the launcher service; the daemon's links to others leave lines, too.
    QStringList launcherLedger() const;
    /// What the daemon said of the unit and its own service.
    QStringList serviceLines() const;

    std::unique_ptr<DaemonFixture> m_world;
};

void TestRuntimeControl::initTestCase()
{
    m_world = std::make_unique<DaemonFixture>();
}

void TestRuntimeControl::init()
{
    m_world->systemd.setUnitStateSilently(QStringLiteral("inactive"), QStringLiteral("dead"));
    m_world->systemd.clearCalls();
}

void TestRuntimeControl::cleanup()
{
    m_world->renew();
}

QStringList TestRuntimeControl::launcherLedger() const
{
    return m_world->android->ledger().filter(QStringLiteral("launcher"), Qt::CaseInsensitive);
}

QStringList TestRuntimeControl::serviceLines() const
{
    return m_world->daemon->lines().filter(QStringLiteral(" com.tovra.lumd.service "));
}

bool TestRuntimeControl::see(const QString &state)
{
    const QString line = stateLine(state);
    const int before = m_world->daemon->lines().count(line);
    m_world->systemd.setUnitState(state, QStringLiteral("test"));
    return QTest::qWaitFor(
               [this, &line, before] { return m_world->daemon->lines().count(line) > before; },
               10000)
        && DaemonFixture::settle();
}

void TestRuntimeControl::serviceRequestReachesSystemdUnlessItIsNeedless_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QStringList>("whenStarted");
    QTest::addColumn<QStringList>("whenStopped");

    const QStringList start{QStringLiteral("StartUnit(aliendalvik.service, replace)")};
    const QStringList stop{QStringLiteral("StopUnit(aliendalvik.service, replace)")};
    const QStringList nothing;
    const auto row = [](const char *state, const QStringList &whenStarted,
                         const QStringList &whenStopped) {
        QTest::newRow(state) << QString::fromLatin1(state) << whenStarted << whenStopped;
    };
    row("active", nothing, stop);
    row("activating", nothing, stop);
    row("inactive", start, nothing);
    row("deactivating", start, nothing);
    row("failed", start, stop);
    row("reloading", start, stop);
}

void TestRuntimeControl::serviceRequestReachesSystemdUnlessItIsNeedless()
{
    QFETCH(QString, state);
    QFETCH(QStringList, whenStarted);
    QFETCH(QStringList, whenStopped);
    QVERIFY(m_world->start());
    // From a state that is none of the rows', so that each of them is a change.
    QVERIFY(see(QStringLiteral("maintenance")));
    QVERIFY(see(state));
    m_world->systemd.clearCalls();

    const QString method = QStringLiteral("controlService");
    QCOMPARE(errorOf(DaemonFixture::call(method, {true})), QString());
    QCOMPARE(errorOf(DaemonFixture::call(method, {false})), QString());
    // Never refused, so all that was sent before has arrived when this has.
    DaemonFixture::call(QStringLiteral("controlServiceAutostart"), {false});
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
    QCOMPARE(m_world->systemd.callTexts(),
        whenStarted + whenStopped
            + QStringList{QStringLiteral("DisableUnitFiles([aliendalvik.service], false)")});
}

void TestRuntimeControl::autostartRequestAlwaysReachesSystemd_data()
{
    QTest::addColumn<QString>("unitFileState");
    for (const char *state : {"enabled", "disabled", "static", "masked"})
        QTest::newRow(state) << QString::fromLatin1(state);
}

void TestRuntimeControl::autostartRequestAlwaysReachesSystemd()
{
    QFETCH(QString, unitFileState);
    m_world->systemd.setUnitFileStateSilently(unitFileState);
    QVERIFY(m_world->start());
    m_world->systemd.clearCalls();

    const QString method = QStringLiteral("controlServiceAutostart");
    QCOMPARE(errorOf(DaemonFixture::call(method, {true})), QString());
    QCOMPARE(errorOf(DaemonFixture::call(method, {false})), QString());
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
    QCOMPARE(m_world->systemd.callTexts(),
        QStringList({QStringLiteral("EnableUnitFiles([aliendalvik.service], false, true)"),
            QStringLiteral("DisableUnitFiles([aliendalvik.service], false)")}));
}

void TestRuntimeControl::startedRuntimeIsServed()
{
    m_world->systemd.setFollowsRequests(true);
    QVERIFY(m_world->start());
    DaemonFixture::call(QStringLiteral("controlService"), {true});
    QVERIFY(m_world->android->waitForPublished(launcherService()));
    DaemonFixture::call(QStringLiteral("controlService"), {false});
    QVERIFY(m_world->android->waitForUnpublished(launcherService()));
}

void TestRuntimeControl::missingUnitIsSurvived()
{
    m_world->systemd.failLoadUnit(QStringLiteral("Unit aliendalvik.service not found."));
    QVERIFY(m_world->start());
    QTRY_COMPARE(m_world->daemon->lines(),
        QStringList{QStringLiteral("critical com.tovra.lumd.service Could not find Alien Dalvik "
                                   "service: \"Unit aliendalvik.service not found.\"")});
    m_world->systemd.clearCalls();

    // It looks no further for a unit that it could not load, but what it is asked it does.
    m_world->systemd.setUnitState(QStringLiteral("activating"), QStringLiteral("test"));
    DaemonFixture::call(QStringLiteral("controlService"), {true});
    DaemonFixture::call(QStringLiteral("controlService"), {false});
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("StopUnit")));
    QCOMPARE(m_world->systemd.callTexts(),
        QStringList({QStringLiteral("StartUnit(aliendalvik.service, replace)"),
            QStringLiteral("StopUnit(aliendalvik.service, replace)")}));
    m_world->daemon->kill(); // all that it printed is read then
    QCOMPARE(m_world->daemon->lines().size(), 1);
}

void TestRuntimeControl::runtimeThatIsUpIsServedAtOnce_data()
{
    QTest::addColumn<QString>("state");
    QTest::newRow("active") << QStringLiteral("active");
    QTest::newRow("activating") << QStringLiteral("activating");
}

void TestRuntimeControl::runtimeThatIsUpIsServedAtOnce()
{
    QFETCH(QString, state);
    m_world->systemd.setUnitStateSilently(state, QStringLiteral("test"));
    QVERIFY(m_world->start());
    QVERIFY(m_world->android->waitForPublished(launcherService()));
    QCOMPARE(launcherLedger(), creations());
    QCOMPARE(m_world->android->published().size(), 1);
    QCOMPARE(m_world->android->published().first().interface,
        QStringLiteral("alien.applications.IAlienNativeLauncherService"));
    QTRY_COMPARE(serviceLines(), QStringList({stateLine(state), registering()}));
}

void TestRuntimeControl::runtimeThatIsDownIsNotServed_data()
{
    QTest::addColumn<QString>("state");
    QTest::newRow("inactive") << QStringLiteral("inactive");
    QTest::newRow("deactivating") << QStringLiteral("deactivating");
    QTest::newRow("failed") << QStringLiteral("failed");
}

void TestRuntimeControl::runtimeThatIsDownIsNotServed()
{
    QFETCH(QString, state);
    m_world->systemd.setUnitStateSilently(state, QStringLiteral("test"));
    QVERIFY(m_world->start());
    QVERIFY(see(QStringLiteral("activating")));
    QVERIFY(m_world->android->waitForPublished(launcherService()));
    QCOMPARE(launcherLedger(), creations());
    QTRY_COMPARE(m_world->daemon->lines(),
        QStringList({stateLine(state), stateLine(QStringLiteral("activating")), registering()}));
}

void TestRuntimeControl::serviceIsWithdrawnInOrder()
{
    QVERIFY(m_world->start());
    QVERIFY(see(QStringLiteral("activating")));
    QVERIFY(see(QStringLiteral("active")));
    QVERIFY(m_world->android->waitForPublished(launcherService()));
    QCOMPARE(launcherLedger(), creations());
    m_world->android->clearLedger();

    QVERIFY(see(QStringLiteral("deactivating")));
    QVERIFY(m_world->android->waitForUnpublished(launcherService()));
    QCOMPARE(launcherLedger(), releases());
    QCOMPARE(m_world->android->leaks(), QStringList());
    QVERIFY(see(QStringLiteral("inactive")));
    QCOMPARE(launcherLedger(), releases());
    QCOMPARE(m_world->android->errors(), QStringList());
}

void TestRuntimeControl::runtimeNeverSeenActivatingIsNotServed()
{
    m_world->systemd.setUnitStateSilently(QStringLiteral("inactive"), QStringLiteral("test"));
    QVERIFY(m_world->start());
    for (const char *state : {"active", "activating"})
        QVERIFY2(see(QString::fromLatin1(state)), state);
    QVERIFY(m_world->android->waitForPublished(launcherService()));
    QCOMPARE(launcherLedger(), creations());
    QTRY_COMPARE(serviceLines(),
        QStringList({stateLine(QStringLiteral("inactive")), stateLine(QStringLiteral("active")),
            stateLine(QStringLiteral("activating")), registering()}));
}

void TestRuntimeControl::killedRuntimeIsServedWhenItIsBack()
{
    QVERIFY(m_world->start());
    QVERIFY(see(QStringLiteral("activating")));
    QVERIFY(see(QStringLiteral("active")));
    QVERIFY(m_world->android->waitForPublished(launcherService()));
    m_world->android->clearLedger();

    // Killed: the unit fails without a way down, and what was published serves again.
    for (const char *state : {"failed", "activating", "active"})
        QVERIFY2(see(QString::fromLatin1(state)), state);
    QCOMPARE(launcherLedger(), QStringList());

    // Stopped and started.
    for (const char *state : {"deactivating", "inactive", "activating", "active"})
        QVERIFY2(see(QString::fromLatin1(state)), state);
    QVERIFY(m_world->android->waitForPublished(launcherService()));
    QCOMPARE(launcherLedger(), releases() + creations());
    QCOMPARE(m_world->android->published().size(), 1);
    QCOMPARE(m_world->android->errors(), QStringList());
}

void TestRuntimeControl::missingDeviceIsTriedAgain()
{
    m_world->systemd.setUnitStateSilently(QStringLiteral("inactive"), QStringLiteral("test"));
    m_world->android->setPresent(false);
    QVERIFY(m_world->start());
    QVERIFY(see(QStringLiteral("activating")));

    m_world->android->setPresent(true);
    for (const char *state : {"failed", "activating"})
        QVERIFY2(see(QString::fromLatin1(state)), state);
    QVERIFY(m_world->android->waitForPublished(launcherService()));
    QTRY_COMPARE(serviceLines(),
        QStringList({stateLine(QStringLiteral("inactive")), stateLine(QStringLiteral("activating")),
            QStringLiteral("warning com.tovra.lumd.service Unable to find Alien service manager "
                           "for alien.launcher"),
            stateLine(QStringLiteral("failed")), stateLine(QStringLiteral("activating")),
            registering()}));
}

LUM_TEST_MAIN(TestRuntimeControl)
#include "tst_runtimecontrol.moc"
