// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/apkmanager.h"

#include "tests/launcher/launcherfiles.h"
#include "tests/launcher/launcherreceiver.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

#include <memory>

using FakeBinder::ParcelWriter;
using LauncherFiles::logLine;

namespace {

const ApkLauncher &maps()
{
    static const ApkLauncher launcher{QStringLiteral("Maps"), "icon", QStringLiteral("a.maps"),
        QStringLiteral("a.maps.Main"), QStringLiteral("1.2")};
    return launcher;
}

} // namespace

class TestApkManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_runtime = std::make_unique<ActiveRuntime>(); }

    void serviceIsOfferedByItsNames();
    void launcherIsReadAsItIs_data();
    void launcherIsReadAsItIs();
    void launcherIsLoggedBeforeItIsEmitted();
    void completeListIsEmittedWhateverThePayload();
    void removedPackageIsTakenByteForByte_data();
    void removedPackageIsTakenByteForByte();
    void removedPackageIsLoggedBeforeItIsEmitted();
    void unknownCodeIsRefused_data();
    void unknownCodeIsRefused();
    void otherInterfaceIsIgnored_data();
    void otherInterfaceIsIgnored();
    void debugLinesAreOffByThemselves();

private:
    std::unique_ptr<ActiveRuntime> m_runtime;
};

void TestApkManager::serviceIsOfferedByItsNames()
{
    {
        const LauncherReceiver receiver;
        const QVector<FakeBinder::PublishedService> published = FakeBinder::published();
        QCOMPARE(published.size(), 1);
        QCOMPARE(published.first().name, QStringLiteral("alien.launcher"));
        QCOMPARE(published.first().interface, LauncherReceiver::interfaceName());
        QVERIFY(!receiver.manager.parent());
        QCOMPARE(FakeBinder::ledger(),
            QStringList({
                QStringLiteral("servicemanager_new /dev/puddlejumper"),
                QStringLiteral("servicemanager_new_local_object ")
                    + LauncherReceiver::interfaceName(),
                QStringLiteral("servicename_new alien.launcher"),
            }));
    }
    QCOMPARE(FakeBinder::leaks(), QStringList());
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestApkManager::launcherIsReadAsItIs_data()
{
    QTest::addColumn<ApkLauncher>("launcher");
    const auto row = [](const char *name, const QString &value, const QByteArray &icon) {
        QTest::newRow(name) << ApkLauncher{value + QLatin1Char('c'), icon, value + QLatin1Char('p'),
            value + QLatin1Char('n'), value + QLatin1Char('v')};
    };

    QTest::newRow("usual") << maps();
    QTest::newRow("all empty") << ApkLauncher{
        QStringLiteral(""), "", QStringLiteral(""), QStringLiteral(""), QStringLiteral("")};
    QTest::newRow("all null") << ApkLauncher();
    row("no icon", QStringLiteral("a"), {});
    row("icon with NULs", QStringLiteral("a"), QByteArray("\0\0\xff", 3));
    row("icon of 10 MB", QStringLiteral("a"), QByteArray(10 << 20, 'i'));
    row("slashes", QStringLiteral("../a/b/"), "i");
    row("line feeds", QStringLiteral("a\nb\r"), "i");
    row("NUL", QString(QChar(0)), "i");
    row("not ASCII", QStringLiteral("\u00e4\u6f22\U0001f600"), "i");
    row("lone surrogate", QString(QChar(0xd800)), "i");
    row("placeholders", QStringLiteral("%1%2"), "i");
    row("long", QString(100000, QLatin1Char('x')), "i");
}

void TestApkManager::launcherIsReadAsItIs()
{
    QFETCH(ApkLauncher, launcher);

    LauncherReceiver receiver;
    const FakeBinder::Answer answer = receiver.call(1, LauncherReceiver::announcement(launcher));
    QVERIFY(answer.delivered);
    QCOMPARE(answer.status, 0);
    QVERIFY(!answer.hasReply);
    QCOMPARE(receiver.added.size(), 1);
    QCOMPARE(receiver.signalCount(), 1);
    const ApkLauncher &got = receiver.added.first();
    QCOMPARE(got.packageName, launcher.packageName);
    QCOMPARE(got.packageName.isNull(), launcher.packageName.isNull());
    QCOMPARE(got.className, launcher.className);
    QCOMPARE(got.className.isNull(), launcher.className.isNull());
    QCOMPARE(got.caption, launcher.caption);
    QCOMPARE(got.caption.isNull(), launcher.caption.isNull());
    QCOMPARE(got.packageVersion, launcher.packageVersion);
    QCOMPARE(got.packageVersion.isNull(), launcher.packageVersion.isNull());
    QVERIFY(got.icon == launcher.icon);
}

void TestApkManager::launcherIsLoggedBeforeItIsEmitted()
{
    LauncherReceiver receiver;
    const LogCapture log;
    QStringList linesAtEmission;
    connect(&receiver.manager, &ApkManager::addLauncher, this,
        [&] { linesAtEmission = LauncherReceiver::lines(log); });
    receiver.call(1, LauncherReceiver::announcement(maps()));
    QCOMPARE(linesAtEmission,
        QStringList({
            logLine("debug", QStringLiteral("Read 4 bytes for \"a.maps\" icon")),
            logLine("debug", QStringLiteral("Launcher added from alien: \"Maps\" ( \"a.maps\" )")),
        }));
    QCOMPARE(LauncherReceiver::lines(log), linesAtEmission);
}

void TestApkManager::completeListIsEmittedWhateverThePayload()
{
    LauncherReceiver receiver;
    const LogCapture log;
    for (const QByteArray &payload :
        {QByteArray(), QByteArray("abc"), LauncherReceiver::announcement(maps())}) {
        const int before = receiver.completed;
        const FakeBinder::Answer answer = receiver.call(2, payload);
        QCOMPARE(answer.status, 0);
        QVERIFY(!answer.hasReply);
        QCOMPARE(receiver.completed, before + 1);
    }
    QCOMPARE(receiver.signalCount(), 3);
    QCOMPARE(LauncherReceiver::lines(log), QStringList());
}

void TestApkManager::removedPackageIsTakenByteForByte_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("package");
    const auto row = [](const char *name, const QString &sent, const QString &package) {
        QTest::newRow(name) << ParcelWriter().string16(sent).bytes() << package;
    };

    row("usual", QStringLiteral("a.maps"), QStringLiteral("a.maps"));
    row("empty", QStringLiteral(""), QStringLiteral(""));
    row("null", QString(), QString());
    // The bytes of the UTF-8 form, each one a character.
    row("two bytes", QStringLiteral("\u00e4"), QStringLiteral("\u00c3\u00a4"));
    row("three bytes", QStringLiteral("\u6f22"), QStringLiteral("\u00e6\u00bc\u00a2"));
    row("four bytes", QStringLiteral("\U0001f600"), QStringLiteral("\u00f0\u009f\u0098\u0080"));
    row("cut at a NUL", QStringLiteral("a") + QChar(0) + QStringLiteral("b"), QStringLiteral("a"));
    row("slash and line feed", QStringLiteral("../a\n"), QStringLiteral("../a\n"));
    row("placeholders", QStringLiteral("%1"), QStringLiteral("%1"));
    row("lone surrogate", QString(QChar(0xd800)), QString());
    QTest::newRow("no payload") << QByteArray() << QString();
    QTest::newRow("more behind") << ParcelWriter().string16(QStringLiteral("a")).int32(5).bytes()
                                 << QStringLiteral("a");
    const QByteArray whole = ParcelWriter().string16(QStringLiteral("abc")).bytes();
    for (int size = 0; size < whole.size(); ++size)
        QTest::addRow("cut at %d", size) << whole.left(size) << QString();
    for (const qint32 length : {-2, 4, 1000, 0x7fffffff, -0x7fffffff - 1})
        QTest::addRow("length %d", length)
            << ParcelWriter().int32(length).bytes() + whole.mid(4) << QString();
}

void TestApkManager::removedPackageIsTakenByteForByte()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, package);

    LauncherReceiver receiver;
    const FakeBinder::Answer answer = receiver.call(3, payload);
    QCOMPARE(answer.status, 0);
    QVERIFY(!answer.hasReply);
    QCOMPARE(receiver.removed, QStringList(package));
    QCOMPARE(receiver.removed.first().isNull(), package.isNull());
    QCOMPARE(receiver.signalCount(), 1);
}

void TestApkManager::removedPackageIsLoggedBeforeItIsEmitted()
{
    LauncherReceiver receiver;
    const LogCapture log;
    QStringList linesAtEmission;
    connect(&receiver.manager, &ApkManager::packageRemoved, this,
        [&] { linesAtEmission = LauncherReceiver::lines(log); });
    receiver.call(3, ParcelWriter().string16(QStringLiteral("a.maps")).bytes());
    QCOMPARE(linesAtEmission,
        QStringList(logLine("debug", QStringLiteral("Package removed from alien: \"a.maps\""))));
    QCOMPARE(LauncherReceiver::lines(log), linesAtEmission);
}

void TestApkManager::unknownCodeIsRefused_data()
{
    QTest::addColumn<quint32>("code");

    for (const quint32 code : {0u, 4u, 5u, 0xffffffffu})
        QTest::addRow("%u", code) << code;
}

void TestApkManager::unknownCodeIsRefused()
{
    QFETCH(quint32, code);

    LauncherReceiver receiver;
    const LogCapture log;
    const FakeBinder::Answer answer = receiver.call(code, LauncherReceiver::announcement(maps()));
    QVERIFY(answer.delivered);
    QCOMPARE(answer.status, 1);
    QVERIFY(!answer.hasReply);
    QCOMPARE(receiver.signalCount(), 0);
    QCOMPARE(LauncherReceiver::lines(log),
        QStringList(logLine("debug", QStringLiteral("Unknown binder call ( %1 )").arg(code))));
}

void TestApkManager::otherInterfaceIsIgnored_data()
{
    QTest::addColumn<QString>("interface");

    QTest::newRow("none") << QString();
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("another") << QStringLiteral("alien.applications.IAlienService");
    QTest::newRow("other case") << LauncherReceiver::interfaceName().toLower();
    QTest::newRow("a prefix") << LauncherReceiver::interfaceName().chopped(1);
    QTest::newRow("longer") << LauncherReceiver::interfaceName() + QLatin1Char('2');
    QTest::newRow("blank") << LauncherReceiver::interfaceName() + QLatin1Char(' ');
}

void TestApkManager::otherInterfaceIsIgnored()
{
    QFETCH(QString, interface);

    LauncherReceiver receiver;
    const LogCapture log;
    for (const quint32 code : {0u, 1u, 2u, 3u, 4u}) {
        const FakeBinder::Answer answer =
            receiver.call(code, LauncherReceiver::announcement(maps()), interface);
        QVERIFY(answer.delivered);
        QCOMPARE(answer.status, 77);
        QVERIFY(!answer.hasReply);
    }
    QCOMPARE(receiver.signalCount(), 0);
    QCOMPARE(log.lines(), QStringList());
}

void TestApkManager::debugLinesAreOffByThemselves()
{
    LauncherReceiver receiver;
    const LogCapture log(LogCapture::Level::Default);
    receiver.call(1, LauncherReceiver::announcement(maps()), LauncherReceiver::interfaceName(),
        GBINDER_TX_FLAG_ONEWAY);
    receiver.call(3, LauncherReceiver::announcement(maps()), LauncherReceiver::interfaceName(),
        GBINDER_TX_FLAG_ONEWAY);
    receiver.call(4);
    QCOMPARE(receiver.signalCount(), 2);
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestApkManager)
#include "tst_apkmanager.moc"
