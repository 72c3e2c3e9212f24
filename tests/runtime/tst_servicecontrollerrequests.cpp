// SPDX-License-Identifier: BSD-3-Clause
#include "runtime/servicecontroller.h"
#include "tests/runtime/controllertest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QSemaphore>
#include <QThread>
#include <QtTest>

#include <functional>

using Request = std::function<void(ServiceController &)>;
Q_DECLARE_METATYPE(Request)

/// A systemd that answers its first call only when it is told to go on, or after ten seconds.
class HesitantSystemd : public QDBusVirtualObject
{
    Q_OBJECT

public:
    HesitantSystemd()
        : m_bus(QDBusConnection::connectToBus(
              QDBusConnection::SystemBus, QStringLiteral("hesitant systemd")))
    {
        m_bus.registerVirtualObject(QStringLiteral("/org/freedesktop/systemd1"), this);
        m_bus.registerService(QStringLiteral("org.freedesktop.systemd1"));
        moveToThread(&m_thread);
        m_thread.start();
    }
    ~HesitantSystemd() override
    {
        QDBusConnection::disconnectFromBus(m_bus.name());
        m_thread.quit();
        m_thread.wait();
    }

    void goOn() { m_goOn.release(); }
    bool answeredAfterGoOn() { return m_answered.tryAcquire(1, 20000) && m_wasToldInTime; }

    QString introspect(const QString &path) const override
    {
        Q_UNUSED(path)
        return {};
    }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (!m_answeredFirst)
            m_wasToldInTime = m_goOn.tryAcquire(1, 10000);
        m_answeredFirst = true;
        connection.send(message.createReply());
        m_answered.release();
        return true;
    }

private:
    QDBusConnection m_bus;
    QThread m_thread;
    QSemaphore m_goOn;
    QSemaphore m_answered;
    bool m_answeredFirst = false;
    bool m_wasToldInTime = false;
};

class TestServiceControllerRequests : public ControllerTest
{
    Q_OBJECT

private Q_SLOTS:
    void startAndStopAreRefusedWhereTheyMakeNoSense_data();
    void startAndStopAreRefusedWhereTheyMakeNoSense();
    void autostartIsNeverRefused_data();
    void autostartIsNeverRefused();
    void requestsChangeNothingByThemselves();
    void failedRequestsPassUnseen();
    void startedRuntimeShowsInTheState();
    void requestsDoNotWaitForTheAnswer_data();
    void requestsDoNotWaitForTheAnswer();
};

void TestServiceControllerRequests::startAndStopAreRefusedWhereTheyMakeNoSense_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("start");
    QTest::addColumn<bool>("stop");
    const auto row = [](const char *state, bool start, bool stop) {
        QTest::addRow("state '%s'", state) << QString::fromLatin1(state) << start << stop;
    };
    row("active", false, true);
    row("activating", false, true);
    row("inactive", true, false);
    row("deactivating", true, false);
    row("failed", true, true);
    row("reloading", true, true);
    row("maintenance", true, true);
    row("", true, true);
    row("Active", true, true);
    row("INACTIVE", true, true);
    row("active ", true, true);
}

void TestServiceControllerRequests::startAndStopAreRefusedWhereTheyMakeNoSense()
{
    QFETCH(QString, state);
    QFETCH(bool, start);
    QFETCH(bool, stop);
    ServiceController *const controller = listeningController();
    m_systemd->setUnitState(state, QStringLiteral("test"));
    QVERIFY(QTest::qWaitFor([=] { return controller->serviceState() == state; }, 10000));
    LogCapture log;

    m_systemd->clearCalls();
    controller->controlService(true);
    QCOMPARE(
        requests(), start ? texts({"StartUnit(aliendalvik.service, replace)"}) : QStringList());

    m_systemd->clearCalls();
    controller->controlService(false);
    QCOMPARE(requests(), stop ? texts({"StopUnit(aliendalvik.service, replace)"}) : QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TestServiceControllerRequests::autostartIsNeverRefused_data()
{
    QTest::addColumn<QString>("word");
    for (const char *word : {"enabled", "disabled", "static", "masked"})
        QTest::newRow(word) << QString::fromLatin1(word);
}

void TestServiceControllerRequests::autostartIsNeverRefused()
{
    QFETCH(QString, word);
    ServiceController *const controller = listeningController();
    m_systemd->setUnitFileState(word);
    QVERIFY(QTest::qWaitFor(
        [&] { return controller->serviceEnabled() == (word == QLatin1String("enabled")); }, 10000));

    m_systemd->clearCalls();
    controller->controlAutostart(true);
    QCOMPARE(requests(), texts({"EnableUnitFiles([aliendalvik.service], false, true)"}));
    const QVariantList enable = m_systemd->calls().first().arguments;
    QCOMPARE(enable.at(0), QVariant(QStringList{QStringLiteral("aliendalvik.service")}));
    QCOMPARE(enable.at(1), QVariant(false));
    QCOMPARE(enable.at(2), QVariant(true));

    m_systemd->clearCalls();
    controller->controlAutostart(false);
    QCOMPARE(requests(), texts({"DisableUnitFiles([aliendalvik.service], false)"}));
    const QVariantList disable = m_systemd->calls().first().arguments;
    QCOMPARE(disable.at(0), QVariant(QStringList{QStringLiteral("aliendalvik.service")}));
    QCOMPARE(disable.at(1), QVariant(false));
}

void TestServiceControllerRequests::requestsChangeNothingByThemselves()
{
    ServiceController *const controller = listeningController();
    const QSignalSpy stateSpy(controller, &ServiceController::serviceStateChanged);
    const QSignalSpy enabledSpy(controller, &ServiceController::serviceEnabledChanged);
    m_systemd->clearCalls();

    controller->controlService(true);
    controller->controlService(true);
    controller->controlAutostart(true);

    QCOMPARE(requests(),
        texts({"StartUnit(aliendalvik.service, replace)", "StartUnit(aliendalvik.service, replace)",
            "EnableUnitFiles([aliendalvik.service], false, true)"}));
    QCOMPARE(controller->serviceState(), QStringLiteral("inactive"));
    QCOMPARE(controller->serviceEnabled(), false);
    QCOMPARE(stateSpy.count(), 0);
    QCOMPARE(enabledSpy.count(), 0);
}

void TestServiceControllerRequests::failedRequestsPassUnseen()
{
    ServiceController *const controller = listeningController();
    LogCapture log;
    // With systemd gone from the bus every request fails.
    m_systemd.reset();

    controller->controlService(true);
    controller->controlAutostart(true);
    controller->controlAutostart(false);
    QDBusMessage last = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("GetId"));
    QCOMPARE(QDBusConnection::systemBus().call(last).type(), QDBusMessage::ReplyMessage);
    QCoreApplication::processEvents();

    QCOMPARE(controller->serviceState(), QStringLiteral("inactive"));
    QCOMPARE(controller->serviceEnabled(), false);
    QCOMPARE(log.lines(), QStringList());
}

void TestServiceControllerRequests::startedRuntimeShowsInTheState()
{
    m_systemd->setFollowsRequests(true);
    ServiceController *const controller = listeningController();
    QStringList states;
    connect(controller, &ServiceController::serviceStateChanged, this,
        [&] { states.append(controller->serviceState()); });

    controller->controlService(true);
    QVERIFY(QTest::qWaitFor([&] { return states.size() == 2; }, 10000));
    controller->controlService(false);
    QVERIFY(QTest::qWaitFor([&] { return states.size() == 4; }, 10000));

    QCOMPARE(states, texts({"activating", "active", "deactivating", "inactive"}));
    controller->disconnect(this);
}

void TestServiceControllerRequests::requestsDoNotWaitForTheAnswer_data()
{
    QTest::addColumn<Request>("request");
    QTest::newRow("start") << Request([](auto &controller) { controller.controlService(true); });
    QTest::newRow("stop") << Request([](auto &controller) { controller.controlService(false); });
    QTest::newRow("enable") << Request([](auto &controller) { controller.controlAutostart(true); });
    QTest::newRow("disable") << Request(
        [](auto &controller) { controller.controlAutostart(false); });
}

void TestServiceControllerRequests::requestsDoNotWaitForTheAnswer()
{
    QFETCH(Request, request);
    // A state in which nothing is refused.
    if (m_systemd)
        m_systemd->setUnitStateSilently(QStringLiteral("failed"), QStringLiteral("failed"));
    ServiceController *const controller = listeningController();
    m_systemd.reset();
    HesitantSystemd systemd;

    request(*controller);
    systemd.goOn();

    QVERIFY(systemd.answeredAfterGoOn());
}

LUM_TEST_MAIN(TestServiceControllerRequests)
#include "tst_servicecontrollerrequests.moc"
