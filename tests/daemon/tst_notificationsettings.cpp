// SPDX-License-Identifier: BSD-3-Clause
// What the daemon sets in its notifications. A device's library need not make of it what the
// stand-in makes, so the library's functions are this file's own here: they record.
#include "config/apkconfig.h"
#include "daemon/lumdaemon.h"

#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <notification.h>

namespace {

/// Of each published notification what was set, as "WHAT VALUE", in order of WHAT.
QVector<QStringList> published;

} // namespace

Notification::Notification(QObject *parent) : QObject(parent) { }

void Notification::setAppName(const QString &name)
{
    m_hints.insert(QStringLiteral("appName"), name);
}

void Notification::setAppIcon(const QString &icon)
{
    m_hints.insert(QStringLiteral("appIcon"), icon);
}

void Notification::setIcon(const QString &icon)
{
    m_hints.insert(QStringLiteral("icon"), icon);
}

void Notification::setIsTransient(bool transient)
{
    m_hints.insert(QStringLiteral("isTransient"), transient);
}

void Notification::setUrgency(Urgency urgency)
{
    m_hints.insert(QStringLiteral("urgency"), static_cast<int>(urgency));
}

void Notification::setPreviewSummary(const QString &summary)
{
    m_hints.insert(QStringLiteral("previewSummary"), summary);
}

void Notification::setPreviewBody(const QString &body)
{
    m_hints.insert(QStringLiteral("previewBody"), body);
}

void Notification::publish()
{
    QStringList set;
    for (auto each = m_hints.cbegin(); each != m_hints.cend(); ++each)
        set.append(each.key() + QLatin1Char(' ') + each.value().toString());
    published.append(set);
}

class TestNotificationSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { published.clear(); }
    void cleanupTestCase() { m_daemon.reset(); }

    void shortMessageHasOneIcon_data();
    void shortMessageHasOneIcon();
    void installResultHasBothIcons_data();
    void installResultHasBothIcons();
    void uninstallResultHasBothIconsAndStays();

private:
    std::unique_ptr<AppFixture> m_world;
    std::unique_ptr<ApkConfig> m_config;
    std::unique_ptr<LumDaemon> m_daemon;
};

void TestNotificationSettings::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    m_config = std::make_unique<ApkConfig>();
    m_daemon = std::make_unique<LumDaemon>(m_config.get());
}

void TestNotificationSettings::shortMessageHasOneIcon_data()
{
    QTest::addColumn<bool>("isWarning");
    QTest::addColumn<QStringList>("set");
    QTest::newRow("plain") << false
                           << texts({"icon icon-s-android", "isTransient true", "previewBody a"});
    QTest::newRow("warning") << true
                             << texts({"icon icon-lock-warning", "isTransient true",
                                    "previewBody a", "urgency 2"});
}

void TestNotificationSettings::shortMessageHasOneIcon()
{
    QFETCH(bool, isWarning);
    QFETCH(QStringList, set);
    m_daemon->publishNotification(QStringLiteral("a"), isWarning);
    QCOMPARE(published, QVector<QStringList>{set});
}

void TestNotificationSettings::installResultHasBothIcons_data()
{
    QTest::addColumn<bool>("success");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QStringList>("set");
    QTest::newRow("success") << true << QString()
                             << texts({"appIcon icon-s-android", "appName lumd-ap-name",
                                    "icon icon-s-android", "isTransient true",
                                    "previewSummary lumd-install-success: com.a"});
    QTest::newRow("failure") << false << QStringLiteral("b")
                             << texts({"appIcon icon-s-android", "appName lumd-ap-name",
                                    "icon icon-s-android", "isTransient true", "previewBody b",
                                    "previewSummary lumd-install-failed: com.a"});
}

void TestNotificationSettings::installResultHasBothIcons()
{
    QFETCH(bool, success);
    QFETCH(QString, message);
    QFETCH(QStringList, set);
    QVERIFY(QMetaObject::invokeMethod(m_daemon.get(), "onNotifyInstallationResult",
        Q_ARG(bool, success), Q_ARG(QString, QStringLiteral("com.a")), Q_ARG(QString, message)));
    QCOMPARE(published, QVector<QStringList>{set});
}

void TestNotificationSettings::uninstallResultHasBothIconsAndStays()
{
    for (const bool success : {true, false})
        QVERIFY(QMetaObject::invokeMethod(m_daemon.get(), "onNotifyUninstallationResult",
            Q_ARG(bool, success), Q_ARG(QString, QStringLiteral("com.a"))));
    QCOMPARE(published,
        QVector<QStringList>(
            {texts({"appIcon icon-s-android", "appName lumd-ap-name", "icon icon-s-android",
                 "previewSummary lumd-uninstall-success: com.a"}),
                texts({"appIcon icon-s-android", "appName lumd-ap-name", "icon icon-s-android",
                    "previewSummary lumd-uninstall-failed: com.a"})}));
}

LUM_TEST_MAIN(TestNotificationSettings)
#include "tst_notificationsettings.moc"
