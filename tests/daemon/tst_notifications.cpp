// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"
#include "daemon/lumdaemon.h"

#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDir>

namespace {

void makeClockEntry()
{
    makeFile(
        QStringLiteral("/usr/share/applications/lumd_launcher_com_clock-com_clock_Main.desktop"),
        "[Desktop Entry]\nName=Clock\nX-lumd-packageName=com.clock\n");
}

/// No catalogue is loaded: a text is its id.
QString installResult(const QString &summary, const QString &body)
{
    return QStringLiteral("\"lumd-ap-name\" 0 \"icon-s-android\" \"%1\" \"%2\" actions() "
                          "hints(image-path=icon-s-android:QString transient=true:bool) -1")
        .arg(summary, body);
}

QString uninstallResult(const QString &summary)
{
    return QStringLiteral("\"lumd-ap-name\" 0 \"icon-s-android\" \"%1\" \"\" actions() "
                          "hints(image-path=icon-s-android:QString) -1")
        .arg(summary);
}

} // namespace

class TestNotifications : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void shortMessages_data();
    void shortMessages();
    void installResults_data();
    void installResults();
    void uninstallResults_data();
    void uninstallResults();

private:
    std::unique_ptr<AppFixture> m_world;
    std::unique_ptr<ApkConfig> m_config;
    std::unique_ptr<LumDaemon> m_daemon;
};

void TestNotifications::initTestCase()
{
    // Before any bus is joined: that is when libdbus reads it.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/user/1000/dbus/user_bus_socket");
    m_world = std::make_unique<AppFixture>();
    makeClockEntry();
    m_config = std::make_unique<ApkConfig>();
    m_daemon = std::make_unique<LumDaemon>(m_config.get());
}

void TestNotifications::init()
{
    m_world->notifications.clear();
}

void TestNotifications::cleanupTestCase()
{
    m_daemon.reset();
    QDBusConnection::disconnectFromBus(QStringLiteral("qt_default_session_bus"));
}

void TestNotifications::shortMessages_data()
{
    QTest::addColumn<bool>("isWarning");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QString text = QStringLiteral("\u00c4pfel <b>%1</b>");
    QTest::newRow("plain") << false << text
                           << QStringLiteral(
                                  "\"\" 0 \"icon-s-android\" \"\" \"\u00c4pfel <b>%1</b>\" "
                                  "actions() hints(image-path=icon-s-android:QString "
                                  "transient=true:bool) -1");
    QTest::newRow("warning") << true << text
                             << QStringLiteral(
                                    "\"\" 0 \"icon-lock-warning\" \"\" \"\u00c4pfel <b>%1</b>\" "
                                    "actions() hints(image-path=icon-lock-warning:QString "
                                    "transient=true:bool urgency=2:uchar) -1");
    QTest::newRow("empty") << false << QString() << remark(Remark::Notice, QString());
}

void TestNotifications::shortMessages()
{
    QFETCH(bool, isWarning);
    QFETCH(QString, text);
    QFETCH(QString, expected);
    m_daemon->publishNotification(text, isWarning);
    QTRY_COMPARE(m_world->notifications.texts(), QStringList{expected});
}

void TestNotifications::installResults_data()
{
    QTest::addColumn<bool>("success");
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("expected");
    const QString none;
    const QString clock = QStringLiteral("com.clock");
    const QString unknown = QStringLiteral("com.unknown");
    const QString message = QStringLiteral("Because");
    QTest::newRow("success") << true << clock << none
                             << installResult(QStringLiteral("lumd-install-success: Clock"), none);
    QTest::newRow("success with a message")
        << true << clock << message
        << installResult(QStringLiteral("lumd-install-success: Clock"), message);
    QTest::newRow("success of an unknown app")
        << true << unknown << none
        << installResult(QStringLiteral("lumd-install-success: com.unknown"), none);
    QTest::newRow("success of no app")
        << true << none << none << installResult(QStringLiteral("lumd-install-success"), none);
    QTest::newRow("failure") << false << clock << message
                             << installResult(
                                    QStringLiteral("lumd-install-failed: Clock"), message);
    QTest::newRow("failure of no app")
        << false << QStringLiteral("") << QStringLiteral("")
        << installResult(QStringLiteral("lumd-install-failed"), none);
}

void TestNotifications::installResults()
{
    QFETCH(bool, success);
    QFETCH(QString, package);
    QFETCH(QString, message);
    QFETCH(QString, expected);
    QVERIFY(QMetaObject::invokeMethod(m_daemon.get(), "onNotifyInstallationResult",
        Q_ARG(bool, success), Q_ARG(QString, package), Q_ARG(QString, message)));
    QTRY_COMPARE(m_world->notifications.texts(), QStringList{expected});
}

void TestNotifications::uninstallResults_data()
{
    QTest::addColumn<bool>("success");
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("expected");
    const QString clock = QStringLiteral("com.clock");
    // Never the name of the app, which may be gone already.
    QTest::newRow("success") << true << clock
                             << uninstallResult(
                                    QStringLiteral("lumd-uninstall-success: com.clock"));
    QTest::newRow("failure") << false << clock
                             << uninstallResult(QStringLiteral("lumd-uninstall-failed: com.clock"));
    QTest::newRow("success of no app")
        << true << QString() << uninstallResult(QStringLiteral("lumd-uninstall-success: "));
    QTest::newRow("failure of no app")
        << false << QString() << uninstallResult(QStringLiteral("lumd-uninstall-failed: "));
}

void TestNotifications::uninstallResults()
{
    QFETCH(bool, success);
    QFETCH(QString, package);
    QFETCH(QString, expected);
    QVERIFY(QMetaObject::invokeMethod(m_daemon.get(), "onNotifyUninstallationResult",
        Q_ARG(bool, success), Q_ARG(QString, package)));
    QTRY_COMPARE(m_world->notifications.texts(), QStringList{expected});
}

LUM_TEST_MAIN(TestNotifications)
#include "tst_notifications.moc"
