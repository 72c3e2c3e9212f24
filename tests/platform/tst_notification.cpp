// SPDX-License-Identifier: BSD-3-Clause
#include <notification.h>

#include "tests/support/logcapture.h"
#include "tests/support/notificationserver.h"
#include "tests/support/ownclock.h"
#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"
#include "userbus/userbus.h"

#include <chrono>
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
    void missingBusIsWaitedForTenSeconds();
    void restartedBusGetsTheNextOne();
    void serverThatNeverAnswersIsNotWaitedFor();

private:
    /// Until it has had all that was published.
    void waitForBus();

    std::optional<PrivateBus> m_bus;
    // For all rows of a function.
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
    row("nothing", "\"\" 0 \"\" \"\" \"\" actions() hints() -1", [](Notification &) { });
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
    row("characters that Unicode does not assign",
        "\"\" 0 \"i\uffff\" \"\" \"\ufdd0\" actions() hints(image-path=i\uffff:QString) -1",
        [](Notification &n) {
            n.setIcon(QStringLiteral("i\uffff"));
            n.setPreviewBody(QStringLiteral("\ufdd0"));
        });
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
    waitForBus();
    // It is lost: a server that comes later does not get it.
    const NotificationServer server(m_bus->address());
    notification.setPreviewBody(QStringLiteral("later"));
    notification.publish();
    QTRY_COMPARE(server.notices().size(), 1);
    QCOMPARE(server.notices().first().body, QStringLiteral("later"));
}

void TestNotification::missingBusIsWaitedForTenSeconds()
{
    const LogCapture log;
    m_bus.reset();
    Notification notification;
    notification.publish();
    QCOMPARE(log.lines(), QStringList());
    shiftClock(std::chrono::seconds(10));
    QTRY_COMPARE(log.lines(),
        QStringList{QStringLiteral("warning com.tovra.lumd.daemon User's bus not reached in 10 s, "
                                   "dropping message: org.freedesktop.Notifications.Notify")});

    notification.setPreviewBody(QStringLiteral("later"));
    notification.publish();
    m_bus.emplace(PrivateBus::Kind::User, 1000);
    const NotificationServer server(m_bus->address());
    shiftClock(std::chrono::seconds(1));
    QTRY_COMPARE(server.notices().size(), 1);
    QCOMPARE(server.notices().first().body, QStringLiteral("later"));
}

void TestNotification::restartedBusGetsTheNextOne()
{
    Notification notification;
    for (const QString &body : {QStringLiteral("first"), QStringLiteral("second")}) {
        const NotificationServer server(m_bus->address());
        notification.setPreviewBody(body);
        notification.publish();
        QTRY_COMPARE(server.notices().size(), 1);
        QCOMPARE(server.notices().first().body, body);
        m_bus.reset();
        m_bus.emplace(PrivateBus::Kind::User, 1000);
    }
}

void TestNotification::serverThatNeverAnswersIsNotWaitedFor()
{
    const LogCapture log;
    {
        // Has the name, and no object behind it.
        QDBusConnection silent =
            QDBusConnection::connectToBus(m_bus->address(), QStringLiteral("silent"));
        QVERIFY(silent.registerService(QStringLiteral("org.freedesktop.Notifications")));
        Notification notification;
        notification.publish();
        waitForBus();
        shiftClock(std::chrono::seconds(30));
        waitForBus();
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("silent"));
    QCOMPARE(log.lines(), QStringList());
}

void TestNotification::waitForBus()
{
    bool isOver = false;
    const UserBusCall call{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "GetId", [](sd_bus_message *) { return 0; }};
    UserBus::instance().call(call, this, [&isOver](UserBus::Outcome) { isOver = true; });
    QTRY_VERIFY(isOver);
}

LUM_TEST_MAIN(TestNotification)
#include "tst_notification.moc"
