// SPDX-License-Identifier: BSD-3-Clause
#include "runtime/servicecontroller.h"
#include "tests/runtime/controllertest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QDBusConnection>
#include <QMetaProperty>
#include <QtTest>

namespace {

const QString activeState = QStringLiteral("ActiveState");
const QString subState = QStringLiteral("SubState");
const QString unitFileState = QStringLiteral("UnitFileState");
const QString serviceCategory = QStringLiteral("com.tovra.lumd.service");

QString stateLine(const char *state, const char *sub)
{
    return QStringLiteral("debug com.tovra.lumd.service Alien Dalvik is \"%1\" ( \"%2\" )")
        .arg(QString::fromLatin1(state), QString::fromLatin1(sub));
}

} // namespace

class TestServiceController : public ControllerTest
{
    Q_OBJECT

private Q_SLOTS:
    void propertiesAreReadOnlyAndAnnounced();
    void instanceIsOneObjectWithoutParent();
    void construction();
    void anyStateIsMirrored_data();
    void anyStateIsMirrored();
    void missingPropertiesReadAsEmpty();
    void missingUnitIsInvalidForEver();
    void missingUnitIsLoggedByDefault();
    void failedSubscribeLeavesTheFirstState();
    void failedGetAllLeavesAnEmptyState();
    void missingBusIsAnInvalidUnit();
};

void TestServiceController::propertiesAreReadOnlyAndAnnounced()
{
    const QMetaObject &meta = ServiceController::staticMetaObject;
    QCOMPARE(meta.propertyCount() - meta.propertyOffset(), 2);
    const QMetaProperty state = meta.property(meta.propertyOffset());
    QCOMPARE(state.name(), "serviceState");
    QCOMPARE(state.typeName(), "QString");
    QVERIFY(!state.isWritable());
    QCOMPARE(state.notifySignal().methodSignature(), QByteArray("serviceStateChanged()"));
    const QMetaProperty enabled = meta.property(meta.propertyOffset() + 1);
    QCOMPARE(enabled.name(), "serviceEnabled");
    QCOMPARE(enabled.typeName(), "bool");
    QVERIFY(!enabled.isWritable());
    QCOMPARE(enabled.notifySignal().methodSignature(), QByteArray("serviceEnabledChanged()"));
}

void TestServiceController::instanceIsOneObjectWithoutParent()
{
    ServiceController *const controller = ServiceController::instance();
    QVERIFY(controller);
    QVERIFY(!controller->parent());
    QCOMPARE(ServiceController::instance(), controller);
    QCOMPARE(m_systemd->callTexts().count(QStringLiteral("Subscribe()")), 1);
}

void TestServiceController::construction()
{
    m_systemd->setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    m_systemd->setUnitFileStateSilently(QStringLiteral("enabled"));
    LogCapture log;

    const ServiceController *const controller = ServiceController::instance();

    QCOMPARE(controller->serviceState(), QStringLiteral("active"));
    QCOMPARE(controller->serviceEnabled(), true);
    QCOMPARE(m_systemd->callTexts(),
        texts({"Subscribe()", "LoadUnit(aliendalvik.service)",
            "GetAll(org.freedesktop.systemd1.Unit)"}));
    QCOMPARE(log.lines(), QStringList{stateLine("active", "running")});
}

void TestServiceController::anyStateIsMirrored_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state :
        {"active", "inactive", "activating", "deactivating", "failed", "reloading", "maintenance"})
        QTest::newRow(state) << QString::fromLatin1(state);
}

void TestServiceController::anyStateIsMirrored()
{
    QFETCH(QString, state);
    m_systemd->setUnitState(state, QStringLiteral("test"));
    const ServiceController *const controller = listeningController();
    QVERIFY(QTest::qWaitFor([=] { return controller->serviceState() == state; }, 10000));
}

void TestServiceController::missingPropertiesReadAsEmpty()
{
    for (const QString &name : {activeState, subState, unitFileState})
        m_systemd->removeUnitProperty(name);
    LogCapture log;

    const ServiceController *const controller = ServiceController::instance();

    QCOMPARE(controller->serviceState(), QString());
    QCOMPARE(controller->serviceEnabled(), false);
    QCOMPARE(log.lines(), QStringList{stateLine("", "")});
}

void TestServiceController::missingUnitIsInvalidForEver()
{
    m_systemd->failLoadUnit(QStringLiteral("Unit aliendalvik.service not found."));
    m_systemd->setUnitFileStateSilently(QStringLiteral("enabled"));
    ServiceController *const controller = listeningController();
    const QSignalSpy stateSpy(controller, &ServiceController::serviceStateChanged);
    const QSignalSpy enabledSpy(controller, &ServiceController::serviceEnabledChanged);

    QCOMPARE(controller->serviceState(), QStringLiteral("invalid"));
    QCOMPARE(controller->serviceEnabled(), false);
    QCOMPARE(m_systemd->callTexts(), texts({"Subscribe()", "LoadUnit(aliendalvik.service)"}));

    // The unit's coming changes nothing; a signal that the test itself hears tells when the
    // object would have heard it too.
    m_systemd->failLoadUnit(QString());
    QVERIFY(QDBusConnection::systemBus().connect(QString(), MockSystemd::unitPath(),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"),
        &QTestEventLoop::instance(), SLOT(exitLoop())));
    m_systemd->setUnitState(QStringLiteral("active"), QStringLiteral("running"));
    QTestEventLoop::instance().enterLoop(10);
    QVERIFY(!QTestEventLoop::instance().timeout());
    QCOMPARE(controller->serviceState(), QStringLiteral("invalid"));
    QCOMPARE(stateSpy.count(), 0);
    QCOMPARE(enabledSpy.count(), 0);
    QCOMPARE(m_systemd->callTexts().size(), 2);

    // Its state refuses nothing.
    m_systemd->clearCalls();
    controller->controlService(true);
    controller->controlService(false);
    QCOMPARE(requests(),
        texts(
            {"StartUnit(aliendalvik.service, replace)", "StopUnit(aliendalvik.service, replace)"}));
}

void TestServiceController::missingUnitIsLoggedByDefault()
{
    m_systemd->failLoadUnit(QStringLiteral("Unit aliendalvik.service not found."));
    LogCapture log(LogCapture::Level::Default);
    ServiceController::instance();
    QCOMPARE(log.lines(),
        texts({"critical com.tovra.lumd.service Could not find Alien Dalvik service: "
               "\"Unit aliendalvik.service not found.\""}));
}

void TestServiceController::failedSubscribeLeavesTheFirstState()
{
    m_systemd->failSubscribe();
    m_systemd->setUnitStateSilently(QStringLiteral("activating"), QStringLiteral("start"));
    LogCapture log;

    const ServiceController *const controller = ServiceController::instance();

    QCOMPARE(controller->serviceState(), QStringLiteral("activating"));
    QCOMPARE(log.lines(), QStringList{stateLine("activating", "start")});
    QCOMPARE(m_systemd->callTexts(),
        texts({"Subscribe()", "LoadUnit(aliendalvik.service)",
            "GetAll(org.freedesktop.systemd1.Unit)"}));
    QVERIFY(!m_systemd->isSubscribed());
}

void TestServiceController::failedGetAllLeavesAnEmptyState()
{
    m_systemd->failGetAll();
    m_systemd->setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    m_systemd->setUnitFileStateSilently(QStringLiteral("enabled"));
    LogCapture log;

    const ServiceController *const controller = listeningController();

    QCOMPARE(controller->serviceState(), QString());
    QCOMPARE(controller->serviceEnabled(), false);
    QCOMPARE(log.lines(), QStringList{stateLine("", "")});

    // It still follows the changes.
    m_systemd->setUnitState(QStringLiteral("deactivating"), QStringLiteral("stop"));
    QVERIFY(QTest::qWaitFor(
        [=] { return controller->serviceState() == QLatin1String("deactivating"); }, 10000));
}

void TestServiceController::missingBusIsAnInvalidUnit()
{
    m_systemd.reset();
    m_bus.reset();
    LogCapture log;
    const ServiceController *const controller = ServiceController::instance();
    QCOMPARE(controller->serviceState(), QStringLiteral("invalid"));
    QCOMPARE(controller->serviceEnabled(), false);
    const QStringList lines = log.lines(serviceCategory);
    QCOMPARE(lines.size(), 1);
    QVERIFY(lines.first().startsWith(
        QLatin1String("critical com.tovra.lumd.service Could not find Alien Dalvik service: \"")));
}

LUM_TEST_MAIN(TestServiceController)
#include "tst_servicecontroller.moc"
