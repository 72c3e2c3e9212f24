// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/mocksystemd.h"
#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusReply>

/// Receives the unit's signals as any program on the bus does.
class Listener : public QObject
{
    Q_OBJECT

public:
    Listener()
    {
        QDBusConnection::systemBus().connect(QStringLiteral("org.freedesktop.systemd1"),
            MockSystemd::unitPath(), QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("PropertiesChanged"), this,
            SLOT(take(QString, QVariantMap, QStringList)));
    }

    QStringList changes;

private Q_SLOTS:
    void take(const QString &interface, const QVariantMap &changed, const QStringList &invalidated)
    {
        QStringList words = {interface};
        for (auto it = changed.cbegin(); it != changed.cend(); ++it)
            words.append(it.key() + QLatin1Char('=') + it.value().toString());
        changes.append((words + invalidated).join(QLatin1Char(' ')));
    }
};

class TestMockSystemd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void answersBlockingCallsOfTheSameThread();
    void recordsCallsWithTheirArguments();
    void emitsNothingBeforeSubscribe();
    void aRefusedSubscribeIsNone();
    void announcesChangesAfterSubscribe();
    void silentChangesShowInGetAllAlone();
    void emitsWhatItIsTold();
    void loadUnitFailsOnDemand();
    void getAllFailsOnDemand();
    void aRemovedPropertyIsAbsent();
    void followsRequestsWhenAsked();
    void waitingForACallThatNeverComesFails();

private:
    QDBusReply<QVariantMap> getAll();

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<MockSystemd> m_systemd;
    std::unique_ptr<QDBusInterface> m_manager;
    const QString m_unit = QStringLiteral("aliendalvik.service");
};

void TestMockSystemd::init()
{
    m_bus = std::make_unique<PrivateBus>(PrivateBus::Kind::System);
    m_systemd = std::make_unique<MockSystemd>();
    m_manager = std::make_unique<QDBusInterface>(QStringLiteral("org.freedesktop.systemd1"),
        QStringLiteral("/org/freedesktop/systemd1"),
        QStringLiteral("org.freedesktop.systemd1.Manager"), QDBusConnection::systemBus());
}

void TestMockSystemd::cleanup()
{
    m_manager.reset();
    m_systemd.reset();
    m_bus.reset();
}

QDBusReply<QVariantMap> TestMockSystemd::getAll()
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.systemd1"),
        MockSystemd::unitPath(), QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("GetAll"));
    call.setArguments({QStringLiteral("org.freedesktop.systemd1.Unit")});
    return QDBusConnection::systemBus().call(call);
}

void TestMockSystemd::answersBlockingCallsOfTheSameThread()
{
    QVERIFY(m_manager->isValid());
    const QDBusReply<QDBusObjectPath> path = m_manager->call(QStringLiteral("LoadUnit"), m_unit);
    QVERIFY2(path.isValid(), qPrintable(path.error().message()));
    QCOMPARE(path.value().path(), MockSystemd::unitPath());
    const QDBusReply<QVariantMap> properties = getAll();
    QVERIFY2(properties.isValid(), qPrintable(properties.error().message()));
    QCOMPARE(properties.value().value(QStringLiteral("ActiveState")).toString(),
        QStringLiteral("inactive"));
    QCOMPARE(properties.value().value(QStringLiteral("UnitFileState")).toString(),
        QStringLiteral("disabled"));
}

void TestMockSystemd::recordsCallsWithTheirArguments()
{
    m_manager->call(QStringLiteral("Subscribe"));
    m_manager->asyncCall(QStringLiteral("EnableUnitFiles"), QStringList{m_unit}, false, true);
    m_manager->asyncCall(QStringLiteral("DisableUnitFiles"), QStringList{m_unit}, false);
    m_manager->asyncCall(QStringLiteral("StartUnit"), m_unit, QStringLiteral("replace"));
    m_manager->asyncCall(QStringLiteral("StopUnit"), m_unit, QStringLiteral("replace"));
    QVERIFY(m_systemd->waitForCall(QStringLiteral("StopUnit")));
    QCOMPARE(m_systemd->callTexts(),
        (QStringList{QStringLiteral("Subscribe()"),
            QStringLiteral("EnableUnitFiles([aliendalvik.service], false, true)"),
            QStringLiteral("DisableUnitFiles([aliendalvik.service], false)"),
            QStringLiteral("StartUnit(aliendalvik.service, replace)"),
            QStringLiteral("StopUnit(aliendalvik.service, replace)")}));
    QCOMPARE(m_systemd->calls().at(1).arguments, (QVariantList{QStringList{m_unit}, false, true}));
    m_systemd->clearCalls();
    QVERIFY(m_systemd->calls().isEmpty());
}

void TestMockSystemd::emitsNothingBeforeSubscribe()
{
    const Listener listener;
    m_systemd->setUnitState(QStringLiteral("active"), QStringLiteral("running"));
    m_manager->call(QStringLiteral("Subscribe"));
    QVERIFY(m_systemd->isSubscribed());
    // Signals of one sender arrive in order, so the first would have come before the second.
    m_systemd->setUnitFileState(QStringLiteral("enabled"));
    QTRY_COMPARE(listener.changes.size(), 1);
    QCOMPARE(listener.changes.first(),
        QStringLiteral("org.freedesktop.systemd1.Unit UnitFileState=enabled"));
}

void TestMockSystemd::aRefusedSubscribeIsNone()
{
    m_systemd->failSubscribe();
    QCOMPARE(m_manager->call(QStringLiteral("Subscribe")).type(), QDBusMessage::ErrorMessage);
    QVERIFY(!m_systemd->isSubscribed());
    QCOMPARE(m_systemd->callTexts(), QStringList{QStringLiteral("Subscribe()")});
}

void TestMockSystemd::announcesChangesAfterSubscribe()
{
    const Listener listener;
    m_manager->call(QStringLiteral("Subscribe"));
    m_systemd->setUnitState(QStringLiteral("activating"), QStringLiteral("start-pre"));
    QTRY_COMPARE(listener.changes,
        QStringList{QStringLiteral(
            "org.freedesktop.systemd1.Unit ActiveState=activating SubState=start-pre")});
    QCOMPARE(
        getAll().value().value(QStringLiteral("SubState")).toString(), QStringLiteral("start-pre"));
}

void TestMockSystemd::silentChangesShowInGetAllAlone()
{
    const Listener listener;
    m_manager->call(QStringLiteral("Subscribe"));
    m_systemd->setUnitStateSilently(QStringLiteral("failed"), QStringLiteral("failed"));
    m_systemd->setUnitFileStateSilently(QStringLiteral("masked"));
    m_systemd->emitPropertiesChanged(QStringLiteral("last"), {});
    QTRY_COMPARE(listener.changes, QStringList{QStringLiteral("last")});
    const QVariantMap unit = getAll().value();
    QCOMPARE(unit.value(QStringLiteral("ActiveState")).toString(), QStringLiteral("failed"));
    QCOMPARE(unit.value(QStringLiteral("UnitFileState")).toString(), QStringLiteral("masked"));
}

void TestMockSystemd::emitsWhatItIsTold()
{
    const Listener listener;
    m_manager->call(QStringLiteral("Subscribe"));
    m_systemd->emitPropertiesChanged(QStringLiteral("org.freedesktop.systemd1.Service"),
        {{QStringLiteral("MainPID"), 7}}, {QStringLiteral("UnitFileState")});
    QTRY_COMPARE(listener.changes,
        QStringList{QStringLiteral("org.freedesktop.systemd1.Service MainPID=7 UnitFileState")});
}

void TestMockSystemd::loadUnitFailsOnDemand()
{
    m_systemd->failLoadUnit(QStringLiteral("Unit aliendalvik.service not found."));
    const QDBusReply<QDBusObjectPath> refused = m_manager->call(QStringLiteral("LoadUnit"), m_unit);
    QCOMPARE(refused.error().name(), QStringLiteral("org.freedesktop.systemd1.NoSuchUnit"));
    QCOMPARE(refused.error().message(), QStringLiteral("Unit aliendalvik.service not found."));
    m_systemd->failLoadUnit({});
    const QDBusReply<QDBusObjectPath> path = m_manager->call(QStringLiteral("LoadUnit"), m_unit);
    QVERIFY(path.isValid());
}

void TestMockSystemd::getAllFailsOnDemand()
{
    m_systemd->failGetAll();
    QVERIFY(!getAll().isValid());
    m_systemd->failGetAll(false);
    QVERIFY(getAll().isValid());
}

void TestMockSystemd::aRemovedPropertyIsAbsent()
{
    m_systemd->removeUnitProperty(QStringLiteral("ActiveState"));
    QVERIFY(!getAll().value().contains(QStringLiteral("ActiveState")));
    QVERIFY(getAll().value().contains(QStringLiteral("SubState")));
}

void TestMockSystemd::followsRequestsWhenAsked()
{
    const Listener listener;
    MockSystemd::settleListeners();
    m_manager->call(QStringLiteral("Subscribe"));
    m_manager->call(QStringLiteral("StartUnit"), m_unit, QStringLiteral("replace"));
    QCOMPARE(getAll().value().value(QStringLiteral("ActiveState")).toString(),
        QStringLiteral("inactive"));
    m_systemd->setFollowsRequests(true);
    m_manager->call(QStringLiteral("StartUnit"), m_unit, QStringLiteral("replace"));
    m_manager->call(QStringLiteral("StopUnit"), m_unit, QStringLiteral("replace"));
    const QString unit = QStringLiteral("org.freedesktop.systemd1.Unit ");
    QTRY_COMPARE(listener.changes,
        (QStringList{unit + QStringLiteral("ActiveState=activating SubState=start"),
            unit + QStringLiteral("ActiveState=active SubState=running"),
            unit + QStringLiteral("ActiveState=deactivating SubState=stop-sigterm"),
            unit + QStringLiteral("ActiveState=inactive SubState=dead")}));
}

void TestMockSystemd::waitingForACallThatNeverComesFails()
{
    QVERIFY(!m_systemd->waitForCall(QStringLiteral("StartUnit"), 20));
}

LUM_TEST_MAIN(TestMockSystemd)
#include "tst_mocksystemd.moc"
