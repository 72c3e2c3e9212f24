// SPDX-License-Identifier: BSD-3-Clause
#include <notification.h>

#include "tests/support/notificationserver.h"
#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"

#include <functional>
#include <optional>

using Fill = std::function<void(Notification &)>;
Q_DECLARE_METATYPE(Fill)

class TestNotification : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void everyFieldReachesTheServer_data();
    void everyFieldReachesTheServer();
    void notificationOutlivesItsObject();
    void eachPublicationIsANewNotification();
    void missingServerIsSurvived();
    void missingBusIsSurvived();
    void lostBusIsSurvived();

private:
    std::optional<PrivateBus> m_bus;
    // For all rows of a function: the session bus is not joined anew.
    std::optional<NotificationServer> m_server;
};

void TestNotification::init()
{
    if (m_bus)
        return;
    m_bus.emplace(PrivateBus::Kind::User, 1000);
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus->address().toUtf8());
}

void TestNotification::everyFieldReachesTheServer_data()
{
    QTest::addColumn<Fill>("fill");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *title, const char *expected, const Fill &fill) {
        QTest::newRow(title) << fill << QString::fromUtf8(expected);
    };
    row("nothing", "\"\" 0 \"\" \"\" \"\" actions() hints() -1", [](Notification &) {});
    row("app name", "\"A\u00e4\" 0 \"\" \"\" \"\" actions() hints() -1",
        [](Notification &n) { n.setAppName(QStringLiteral("A\u00e4")); });
    row("icon", "\"\" 0 \"i\" \"\" \"\" actions() hints(image-path=i:QString) -1",
        [](Notification &n) { n.setIcon(QStringLiteral("i")); });
    row("app icon", "\"\" 0 \"a\" \"\" \"\" actions() hints() -1",
        [](Notification &n) { n.setAppIcon(QStringLiteral("a")); });
    row("both icons", "\"\" 0 \"a\" \"\" \"\" actions() hints(image-path=i:QString) -1",
        [](Notification &n) {
            n.setIcon(QStringLiteral("i"));
            n.setAppIcon(QStringLiteral("a"));
        });
    row("transient", "\"\" 0 \"\" \"\" \"\" actions() hints(transient=true:bool) -1",
        [](Notification &n) { n.setIsTransient(true); });
    row("not transient", "\"\" 0 \"\" \"\" \"\" actions() hints() -1", [](Notification &n) {
        n.setIsTransient(true);
        n.setIsTransient(false);
    });
    row("low", "\"\" 0 \"\" \"\" \"\" actions() hints(urgency=0:uchar) -1",
        [](Notification &n) { n.setUrgency(Notification::Low); });
    row("critical", "\"\" 0 \"\" \"\" \"\" actions() hints(urgency=2:uchar) -1",
        [](Notification &n) { n.setUrgency(Notification::Critical); });
    row("texts", "\"\" 0 \"\" \"s\" \"b\n2\" actions() hints() -1", [](Notification &n) {
        n.setPreviewSummary(QStringLiteral("s"));
        n.setPreviewBody(QStringLiteral("b\n2"));
    });
}

void TestNotification::everyFieldReachesTheServer()
{
    QFETCH(Fill, fill);
    QFETCH(QString, expected);
    if (!m_server)
        m_server.emplace(m_bus->address());
    m_server->clear();
    Notification notification;
    fill(notification);
    notification.publish();
    QTRY_COMPARE(m_server->texts(), QStringList{expected});
}

void TestNotification::notificationOutlivesItsObject()
{
    const NotificationServer server(m_bus->address());
    {
        Notification notification;
        notification.setPreviewBody(QStringLiteral("b"));
        notification.publish();
    }
    QTRY_COMPARE(server.notices().size(), 1);
}

void TestNotification::eachPublicationIsANewNotification()
{
    const NotificationServer server(m_bus->address());
    Notification notification;
    notification.publish();
    notification.publish();
    QTRY_COMPARE(server.notices().size(), 2);
    QCOMPARE(server.notices().at(1).replaces, 0U);
}

void TestNotification::missingServerIsSurvived()
{
    Notification notification;
    notification.publish();
    // It is lost: a server that comes later does not get it.
    const NotificationServer server(m_bus->address());
    notification.setPreviewBody(QStringLiteral("later"));
    notification.publish();
    QTRY_COMPARE(server.notices().size(), 1);
    QCOMPARE(server.notices().first().body, QStringLiteral("later"));
}

void TestNotification::missingBusIsSurvived()
{
    m_bus.reset();
    Notification notification;
    notification.publish();
    notification.publish();
    QVERIFY(!QDBusConnection::sessionBus().isConnected());
}

void TestNotification::lostBusIsSurvived()
{
    Notification notification;
    notification.publish();
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    m_bus.reset();
    QTRY_VERIFY(!QDBusConnection::sessionBus().isConnected());
    notification.publish();
}

LUM_TEST_MAIN(TestNotification)
#include "tst_notification.moc"
