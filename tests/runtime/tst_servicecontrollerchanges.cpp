// SPDX-License-Identifier: BSD-3-Clause
#include "runtime/servicecontroller.h"
#include "tests/runtime/controllertest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QtTest>

namespace {

const QString unitInterface = QStringLiteral("org.freedesktop.systemd1.Unit");
const QString activeState = QStringLiteral("ActiveState");
const QString subState = QStringLiteral("SubState");
const QString unitFileState = QStringLiteral("UnitFileState");

QString stateLine(const char *state, const char *sub)
{
    return QStringLiteral("debug com.tovra.lumd.service Alien Dalvik is \"%1\" ( \"%2\" )")
        .arg(QString::fromLatin1(state), QString::fromLatin1(sub));
}

QVariantMap nowActive()
{
    return {{activeState, QStringLiteral("active")}, {subState, QStringLiteral("running")}};
}

} // namespace

class TestServiceControllerChanges : public ControllerTest
{
    Q_OBJECT

private Q_SLOTS:
    void changesAreMirrored();
    void enabledIsTheExactWord_data();
    void enabledIsTheExactWord();
    void enabledSignalGoesFirst();
    void otherInterfacesAreIgnored();
    void otherUnitIsIgnored();
    void otherSenderIsIgnored();
    void changeDuringTheFirstReadIsNotHeard();
    void repeatedStateEmitsNothing();
    void subStateAloneEmitsAndLogsNothing();
    void invalidatedNamesAreIgnored();
    void stateWithoutSubStateIsMirrored();
    void unitFileStateOfAnotherTypeIsNotEnabled();
    void debugLinesAreOffByDefault();
};

void TestServiceControllerChanges::changesAreMirrored()
{
    ServiceController *const controller = listeningController();
    QStringList states;
    connect(controller, &ServiceController::serviceStateChanged, this,
        [&] { states.append(controller->serviceState()); });
    LogCapture log;

    m_systemd->setUnitState(QStringLiteral("activating"), QStringLiteral("start"));
    m_systemd->setUnitState(QStringLiteral("active"), QStringLiteral("running"));
    m_systemd->setUnitState(QStringLiteral("Active"), QStringLiteral("running"));
    m_systemd->setUnitState(QStringLiteral("deactivating"), QStringLiteral("stop"));
    m_systemd->setUnitState(QStringLiteral("failed"), QStringLiteral("failed"));
    QVERIFY(fence());

    QCOMPARE(states, texts({"activating", "active", "Active", "deactivating", "failed"}));
    QCOMPARE(log.lines(),
        (QStringList{stateLine("activating", "start"), stateLine("active", "running"),
            stateLine("Active", "running"), stateLine("deactivating", "stop"),
            stateLine("failed", "failed")}));
    controller->disconnect(this);
}

void TestServiceControllerChanges::enabledIsTheExactWord_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("enabled") << QStringLiteral("enabled") << true;
    for (const char *word : {"enabled-runtime", "Enabled", "ENABLED", "enabled ", "disabled",
             "static", "masked", "linked", "indirect", ""})
        QTest::addRow("'%s'", word) << QString::fromLatin1(word) << false;
}

void TestServiceControllerChanges::enabledIsTheExactWord()
{
    QFETCH(QString, word);
    QFETCH(bool, enabled);
    ServiceController *const controller = listeningController();
    // From the other value, so that each row is a change if it is one at all.
    m_systemd->setUnitFileState(enabled ? QStringLiteral("disabled") : QStringLiteral("enabled"));
    QVERIFY(QTest::qWaitFor([=] { return controller->serviceEnabled() == !enabled; }, 10000));
    const QSignalSpy enabledSpy(controller, &ServiceController::serviceEnabledChanged);
    const QSignalSpy stateSpy(controller, &ServiceController::serviceStateChanged);

    m_systemd->setUnitFileState(word);
    m_systemd->setUnitFileState(word);
    QVERIFY(QTest::qWaitFor([=] { return controller->serviceEnabled() == enabled; }, 10000));
    QVERIFY(fence());

    QCOMPARE(enabledSpy.count(), 2); // the word and the fence
    QCOMPARE(stateSpy.count(), 0);
}

void TestServiceControllerChanges::enabledSignalGoesFirst()
{
    ServiceController *const controller = listeningController();
    QStringList order;
    connect(controller, &ServiceController::serviceStateChanged, this,
        [&] { order.append(QStringLiteral("state ") + controller->serviceState()); });
    connect(controller, &ServiceController::serviceEnabledChanged, this, [&] {
        // The state is still the one from before.
        order.append(QStringLiteral("enabled, state ") + controller->serviceState());
    });

    m_systemd->emitPropertiesChanged(unitInterface,
        {{activeState, QStringLiteral("active")}, {subState, QStringLiteral("running")},
            {unitFileState, QStringLiteral("enabled")}});
    QVERIFY(QTest::qWaitFor([&] { return order.size() == 2; }, 10000));

    QCOMPARE(order, texts({"enabled, state inactive", "state active"}));
    controller->disconnect(this);
}

void TestServiceControllerChanges::otherInterfacesAreIgnored()
{
    ServiceController *const controller = listeningController();
    const QSignalSpy stateSpy(controller, &ServiceController::serviceStateChanged);
    const QSignalSpy enabledSpy(controller, &ServiceController::serviceEnabledChanged);
    LogCapture log;

    for (const char *interface : {"org.freedesktop.systemd1.Service",
             "org.freedesktop.systemd1.unit", "org.freedesktop.systemd1.Unit2", ""})
        m_systemd->emitPropertiesChanged(QString::fromLatin1(interface),
            {{activeState, QStringLiteral("active")}, {unitFileState, QStringLiteral("enabled")}});
    QVERIFY(fence());

    QCOMPARE(controller->serviceState(), QStringLiteral("inactive"));
    QCOMPARE(stateSpy.count(), 0);
    QCOMPARE(enabledSpy.count(), 1); // the fence
    QCOMPARE(log.lines(), QStringList());
}

void TestServiceControllerChanges::otherUnitIsIgnored()
{
    const ServiceController *const controller = listeningController();
    LogCapture log;

    for (const char *unit : {"alien_2eservice", "aliendalvik_2eservice/a", "aliendalvik_2etimer"})
        m_systemd->emitPropertiesChanged(unitInterface, nowActive(), {},
            QStringLiteral("/org/freedesktop/systemd1/unit/") + QString::fromLatin1(unit));
    QVERIFY(fence());

    QCOMPARE(controller->serviceState(), QStringLiteral("inactive"));
    QCOMPARE(log.lines(), QStringList());
}

void TestServiceControllerChanges::otherSenderIsIgnored()
{
    const ServiceController *const controller = listeningController();
    LogCapture log;

    QDBusConnection forger =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("forger"));
    QDBusMessage signal = QDBusMessage::createSignal(MockSystemd::unitPath(),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    signal.setArguments({unitInterface, nowActive(), QStringList()});
    QVERIFY(forger.send(signal));
    // Answered when the bus has passed on what came before.
    forger.interface()->isServiceRegistered(QStringLiteral("a.b"));
    QDBusConnection::disconnectFromBus(forger.name());
    QVERIFY(fence());

    QCOMPARE(controller->serviceState(), QStringLiteral("inactive"));
    QCOMPARE(log.lines(), QStringList());
}

void TestServiceControllerChanges::changeDuringTheFirstReadIsNotHeard()
{
    m_systemd->announceDuringGetAll(QStringLiteral("active"), QStringLiteral("running"));
    LogCapture log;
    const ServiceController *const controller = listeningController();
    QVERIFY(fence());
    QCOMPARE(controller->serviceState(), QStringLiteral("inactive"));
    QCOMPARE(log.lines(), QStringList{stateLine("inactive", "dead")});
}

void TestServiceControllerChanges::repeatedStateEmitsNothing()
{
    m_systemd->setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    ServiceController *const controller = listeningController();
    const QSignalSpy stateSpy(controller, &ServiceController::serviceStateChanged);
    LogCapture log;

    m_systemd->setUnitState(QStringLiteral("active"), QStringLiteral("exited"));
    QVERIFY(fence());

    QCOMPARE(stateSpy.count(), 0);
    QCOMPARE(log.lines(), QStringList{stateLine("active", "exited")});
}

void TestServiceControllerChanges::subStateAloneEmitsAndLogsNothing()
{
    ServiceController *const controller = listeningController();
    const QSignalSpy stateSpy(controller, &ServiceController::serviceStateChanged);
    LogCapture log;

    m_systemd->emitPropertiesChanged(unitInterface, {{subState, QStringLiteral("running")}});
    m_systemd->emitPropertiesChanged(unitInterface, {});
    QVERIFY(fence());

    QCOMPARE(stateSpy.count(), 0);
    QCOMPARE(controller->serviceState(), QStringLiteral("inactive"));
    QCOMPARE(log.lines(), QStringList());
}

void TestServiceControllerChanges::invalidatedNamesAreIgnored()
{
    m_systemd->setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    m_systemd->setUnitFileStateSilently(QStringLiteral("enabled"));
    ServiceController *const controller = listeningController();
    QVERIFY(controller->serviceEnabled());
    const QSignalSpy stateSpy(controller, &ServiceController::serviceStateChanged);
    const QSignalSpy enabledSpy(controller, &ServiceController::serviceEnabledChanged);
    m_systemd->setUnitStateSilently(QStringLiteral("inactive"), QStringLiteral("dead"));
    m_systemd->setUnitFileStateSilently(QStringLiteral("disabled"));
    m_systemd->clearCalls();

    m_systemd->emitPropertiesChanged(unitInterface, {}, {activeState, subState, unitFileState});
    // No value came with it, and none is asked for: a change that carries one is awaited.
    m_systemd->emitPropertiesChanged(unitInterface, {{activeState, QStringLiteral("reloading")}});
    QVERIFY(QTest::qWaitFor(
        [=] { return controller->serviceState() == QLatin1String("reloading"); }, 10000));

    QCOMPARE(stateSpy.count(), 1);
    QCOMPARE(enabledSpy.count(), 0);
    QCOMPARE(controller->serviceEnabled(), true);
    QCOMPARE(requests(), QStringList());
}

void TestServiceControllerChanges::stateWithoutSubStateIsMirrored()
{
    const ServiceController *const controller = listeningController();
    LogCapture log;
    m_systemd->emitPropertiesChanged(unitInterface, {{activeState, QStringLiteral("active")}});
    QVERIFY(fence());
    QCOMPARE(controller->serviceState(), QStringLiteral("active"));
    QCOMPARE(log.lines(), QStringList{stateLine("active", "")});
}

void TestServiceControllerChanges::unitFileStateOfAnotherTypeIsNotEnabled()
{
    m_systemd->setUnitFileStateSilently(QStringLiteral("enabled"));
    ServiceController *const controller = listeningController();
    const QSignalSpy enabledSpy(controller, &ServiceController::serviceEnabledChanged);
    m_systemd->emitPropertiesChanged(unitInterface, {{unitFileState, true}});
    QVERIFY(QTest::qWaitFor([&] { return enabledSpy.count() == 1; }, 10000));
    QCOMPARE(controller->serviceEnabled(), false);
}

void TestServiceControllerChanges::debugLinesAreOffByDefault()
{
    LogCapture log(LogCapture::Level::Default);
    const ServiceController *const controller = listeningController();
    m_systemd->setUnitState(QStringLiteral("active"), QStringLiteral("running"));
    QVERIFY(QTest::qWaitFor(
        [=] { return controller->serviceState() == QLatin1String("active"); }, 10000));
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestServiceControllerChanges)
#include "tst_servicecontrollerchanges.moc"
