// SPDX-License-Identifier: BSD-3-Clause
#include "appcatalogue.h"
#include "eventlog.h"
#include "installresult.h"
#include "packageinstaller.h"
#include "windowlist.h"
#include "wirebytes.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Wire;

namespace {

/// An installer of one level whose Android lies in a folder of its own.
class World
{
public:
    explicit World(int sdk)
        : m_apps(m_folder.filePath(QStringLiteral("apps"))),
          m_windows(0),
          m_launcher(&m_log, sdk),
          m_installer({sdk, m_folder.path(), &m_apps, &m_windows, &m_launcher, &m_log}, {0, 40})
    {
    }

    void write(const QString &path, const QByteArray &content) const
    {
        QFile file(m_folder.path() + path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()
            || !file.setPermissions(file.permissions() | QFileDevice::ReadOther))
            qFatal("cannot write %s", qPrintable(path));
    }

    /// The last event, once there are so many.
    QJsonObject event(int count = 1)
    {
        const bool came =
            QTest::qWaitFor([this, count] { return m_log.events().size() >= count; }, 20000);
        return came ? m_log.events().last() : QJsonObject();
    }

    const QTemporaryDir m_folder;
    EventLog m_log;
    AppCatalogue m_apps;
    WindowList m_windows;
    LauncherChannel m_launcher;
    PackageInstaller m_installer;
};

QByteArray key(const char *name)
{
    return string16(QString::fromLatin1(name));
}

} // namespace

class TestPackageInstaller : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unreadableApkFailsAsItsLevelDoes_data();
    void unreadableApkFailsAsItsLevelDoes();
    void resultIsWritten_data();
    void resultIsWritten();
    void clearingIsDoneAfterItsDelay_data();
    void clearingIsDoneAfterItsDelay();
    void clearingAnAppThatIsNotThereFails();
};

void TestPackageInstaller::unreadableApkFailsAsItsLevelDoes_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("returnCode");
    QTest::addColumn<QString>("message");
    const auto row = [](int sdk, const char *path, int returnCode, const char *message) {
        QTest::addRow("%d %s", sdk, path)
            << sdk << QString::fromLatin1(path) << returnCode << QString::fromLatin1(message);
    };
    row(27, "/missing.apk", -3, nullptr);
    row(27, "/letter.apk", -2, nullptr);
    row(27, "/nameless.apk", -2, nullptr);
    row(28, "/missing.apk", -3, "Failed to open /missing.apk");
    row(29, "/missing.apk", -3, "Failed to open /missing.apk");
    row(29, "/letter.apk", -100, "Failed to parse /letter.apk");
    row(29, "/nameless.apk", -106, "\"\" is no package name");
}

void TestPackageInstaller::unreadableApkFailsAsItsLevelDoes()
{
    QFETCH(int, sdk);
    QFETCH(QString, path);
    QFETCH(int, returnCode);
    QFETCH(QString, message);
    World world(sdk);
    world.write(QStringLiteral("/letter.apk"), "Dear Sir or Madam");
    world.write(QStringLiteral("/nameless.apk"), "{}");
    world.m_installer.install(path, {});
    const QJsonObject event = world.event();
    QCOMPARE(event.value(QStringLiteral("returnCode")), QJsonValue(returnCode));
    QCOMPARE(event.value(QStringLiteral("package")), QJsonValue(QJsonValue::Null));
    QCOMPARE(event.value(QStringLiteral("message")),
        message.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(message));
}

void TestPackageInstaller::resultIsWritten_data()
{
    QTest::addColumn<QByteArray>("apk");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("success") << QByteArray("{}")
                             << key("a.b") + word(1) + nullString() + word(1)
            + bundle(1, key("android.intent.extra.REPLACING") + word(9) + word(0));
    QTest::newRow("failure") << QByteArray(R"({"fail": -25, "message": "old"})")
                             << key("a.b") + word(-25) + key("old") + word(0);
    QTest::newRow("permission of another app")
        << QByteArray(R"({"fail": -112, "existingPermission": "p", "existingPackage": "q"})")
        << key("a.b") + word(-112) + nullString() + word(1)
            + bundle(2,
                key("android.content.pm.extra.FAILURE_EXISTING_PERMISSION") + word(0) + key("p")
                    + key("android.content.pm.extra.FAILURE_EXISTING_PACKAGE") + word(0)
                    + key("q"));
}

void TestPackageInstaller::resultIsWritten()
{
    QFETCH(QByteArray, apk);
    QFETCH(QByteArray, bytes);
    const InstallResult result =
        InstallResult::fromApk(QStringLiteral("a.b"), QJsonDocument::fromJson(apk).object());
    QCOMPARE(result.toParcel().toHex(), bytes.toHex());
    const InstallResult unreadable = InstallResult::failure(-2);
    QCOMPARE(
        unreadable.toParcel().toHex(), (nullString() + word(-2) + nullString() + word(0)).toHex());
}

void TestPackageInstaller::clearingIsDoneAfterItsDelay_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<int>("dataBytes");
    QTest::addColumn<QStringList>("windows");
    QTest::newRow("cache") << QStringLiteral("cache") << 500
                           << QStringList{QStringLiteral("a.b"), QStringLiteral("other")};
    QTest::newRow("data") << QStringLiteral("data") << 0 << QStringList{QStringLiteral("other")};
}

void TestPackageInstaller::clearingIsDoneAfterItsDelay()
{
    QFETCH(QString, what);
    QFETCH(int, dataBytes);
    QFETCH(QStringList, windows);
    const QString package = QStringLiteral("a.b");
    World world(29);
    AndroidApp app;
    app.package = package;
    app.dataBytes = 700;
    app.cacheBytes = 200;
    QVERIFY(world.m_apps.add(app));
    world.m_windows.open(package);
    world.m_windows.open(QStringLiteral("other"));
    if (what == QLatin1String("cache"))
        world.m_installer.clearCache(package, {});
    else
        world.m_installer.clearData(package, {});
    QCOMPARE(world.m_apps.app(package).cacheBytes, qint64(200));
    QCOMPARE(world.m_apps.app(package).dataBytes, qint64(700));
    QCOMPARE(world.m_windows.packages().size(), 2);

    QJsonObject event = world.event();
    event.remove(QStringLiteral("seq"));
    QCOMPARE(event,
        (QJsonObject{{QStringLiteral("event"), QStringLiteral("clear")},
            {QStringLiteral("what"), what}, {QStringLiteral("package"), package},
            {QStringLiteral("succeeded"), true}, {QStringLiteral("observed"), false}}));
    QCOMPARE(world.m_apps.app(package).cacheBytes, qint64(0));
    QCOMPARE(world.m_apps.app(package).dataBytes, qint64(dataBytes));
    QCOMPARE(world.m_windows.packages(), windows);
}

void TestPackageInstaller::clearingAnAppThatIsNotThereFails()
{
    World world(29);
    world.m_installer.setClearDelay(0);
    world.m_installer.clearData(QStringLiteral("a.b"), {});
    QCOMPARE(world.event().value(QStringLiteral("succeeded")), QJsonValue(false));
}

QTEST_GUILESS_MAIN(TestPackageInstaller)
#include "tst_packageinstaller.moc"
