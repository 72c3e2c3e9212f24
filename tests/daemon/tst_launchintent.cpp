// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/intenttest.h"
#include "tests/support/testmain.h"

#include <functional>

namespace {

const QString mainAction = QStringLiteral("android.intent.action.MAIN");
const QString home = QStringLiteral("/storage/8ff87de4-0b37-4799-b09a-82773e869e07");
const QString empty = QStringLiteral("");

} // namespace

class TestLaunchIntent : public IntentTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyArgumentHasItsField_data();
    void everyArgumentHasItsField();
    void dataIsTranslatedForTheRuntime_data();
    void dataIsTranslatedForTheRuntime();
    void layoutFollowsTheAndroidLevel_data();
    void layoutFollowsTheAndroidLevel();
    void wordsTellTheArguments();
    void appSettingsAreOpenedForThePackage_data();
    void appSettingsAreOpenedForThePackage();
    void licensesAreShown();
};

void TestLaunchIntent::everyArgumentHasItsField_data()
{
    QTest::addColumn<IntentCall>("call");
    QTest::addColumn<Intent>("intent");
    const auto row = [](const char *title, const std::function<void(IntentCall &)> &fillCall,
                         const std::function<void(Intent &)> &fillIntent) {
        IntentCall call;
        fillCall(call);
        Intent intent;
        fillIntent(intent);
        QTest::newRow(title) << call << intent;
    };
    constexpr qint32 newTaskOnHome = 0x10004000;
    const QString package = QStringLiteral("com.foo");
    const QString className = QStringLiteral("com.foo.Bar");
    row("action alone", [](IntentCall &) { }, [](Intent &) { });
    row(
        "no action", [](IntentCall &call) { call.action = empty; },
        [](Intent &intent) { intent.action = empty; });
    row(
        "no action, package",
        [package](IntentCall &call) {
            call.action = empty;
            call.package = package;
        },
        [package](Intent &intent) {
            intent.action = empty;
            intent.package = package;
        });
    row(
        "main action", [](IntentCall &call) { call.action = mainAction; },
        [](Intent &intent) {
            intent.action = mainAction;
            intent.flags = newTaskOnHome;
        });
    row(
        "main action, package",
        [package](IntentCall &call) {
            call.action = mainAction;
            call.package = package;
        },
        [package](Intent &intent) {
            intent.action = mainAction;
            intent.flags = newTaskOnHome;
            intent.package = package;
        });
    for (const char *action :
        {"android.intent.action.main", "android.intent.action.MAIN2", "MAIN"}) {
        const QString other = QString::fromLatin1(action);
        row(
            action, [other](IntentCall &call) { call.action = other; },
            [other](Intent &intent) { intent.action = other; });
    }
    row(
        "type", [](IntentCall &call) { call.type = QStringLiteral("image/png"); },
        [](Intent &intent) { intent.type = QStringLiteral("image/png"); });
    row(
        "package and class",
        [package, className](IntentCall &call) {
            call.package = package;
            call.className = className;
        },
        [package, className](Intent &intent) {
            intent.package = package;
            intent.className = className;
        });
    row(
        "class without a package", [className](IntentCall &call) { call.className = className; },
        [](Intent &) {});
    row(
        "category", [](IntentCall &call) { call.category = QStringLiteral("a, b"); },
        [](Intent &intent) { intent.categories = QStringList{QStringLiteral("a, b")}; });
    row(
        "not ASCII", [](IntentCall &call) { call.action = QStringLiteral(u"\u00e4\U0001f600"); },
        [](Intent &intent) { intent.action = QStringLiteral(u"\u00e4\U0001f600"); });
}

void TestLaunchIntent::everyArgumentHasItsField()
{
    QFETCH(IntentCall, call);
    QFETCH(Intent, intent);
    QCOMPARE(launch(call), QString());
    QCOMPARE(takeBodies(), QVector<QByteArray>{startActivityBody(intent)});
    QCOMPARE(
        m_windowQuestions, intent.package.isEmpty() ? QStringList() : QStringList{intent.package});
    QCOMPARE(warnings(), QStringList());
    QCOMPARE(m_world->starts(), 0);
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

void TestLaunchIntent::dataIsTranslatedForTheRuntime_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("uri");
    const auto row = [](const QString &data, const QString &uri) {
        QTest::newRow(qPrintable(data)) << data << uri;
    };
    const QString file = QStringLiteral("file://");
    row(QStringLiteral("/home/user/a.pdf"), file + home + QStringLiteral("/a.pdf"));
    row(QStringLiteral("file:///home/user/a.pdf"), file + home + QStringLiteral("/a.pdf"));
    row(QStringLiteral("/home/user/a b%20#?.pdf"),
        file + home + QStringLiteral("/a b%2520%23%3F.pdf"));
    row(QStringLiteral("/home/user/android_storage/DCIM/1.jpg"),
        QStringLiteral("file:///storage/emulated/0/DCIM/1.jpg"));
    row(QStringLiteral("/run/media/user/SD/a"), QStringLiteral("file:///storage/SD/a"));
    row(QStringLiteral("/opt/a"), QStringLiteral("file:///opt/a"));
    row(QStringLiteral("https://example.org/a?b=c#d"),
        QStringLiteral("https://example.org/a?b=c#d"));
    row(QStringLiteral("content://com.foo/1"), QStringLiteral("content://com.foo/1"));
    row(QStringLiteral("tel:123"), QStringLiteral("tel:123"));
    row(QStringLiteral("http://a:99999/"), QString());
}

void TestLaunchIntent::dataIsTranslatedForTheRuntime()
{
    QFETCH(QString, data);
    QFETCH(QString, uri);
    IntentCall call;
    call.data = data;
    QCOMPARE(launch(call), QString());
    Intent intent;
    intent.data = uri;
    QCOMPARE(takeBodies(), QVector<QByteArray>{startActivityBody(intent)});
}

void TestLaunchIntent::layoutFollowsTheAndroidLevel_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<bool>("hasIdentifier");
    QTest::addColumn<bool>("isSupported");
    QTest::newRow("27") << 27 << 3U << false << true;
    QTest::newRow("28") << 28 << 6U << false << true;
    QTest::newRow("29") << 29 << 7U << true << true;
    QTest::newRow("30") << 30 << 7U << true << false;
}

void TestLaunchIntent::layoutFollowsTheAndroidLevel()
{
    QFETCH(int, level);
    QFETCH(quint32, code);
    QFETCH(bool, hasIdentifier);
    QFETCH(bool, isSupported);
    m_world->renew();
    makeFile(QStringLiteral("/opt/alien/build.prop"),
        "ro.build.version.sdk=" + QByteArray::number(level) + '\n');
    QVERIFY(start());
    const QString package = QStringLiteral("com.foo");
    const QString className = QStringLiteral("com.foo.Bar");
    const QString category = QStringLiteral("c");
    QCOMPARE(launch({mainAction, QStringLiteral("tel:1"), QStringLiteral("t"), package, className,
                 category, {{QStringLiteral("k"), true}}}),
        QString());
    Intent intent{mainAction, QStringLiteral("tel:1"), QStringLiteral("t"), 0x10004000, package,
        className, {category}, {}};
    intent.extras = bundle(parcel().string16(QStringLiteral("k")).int32(9).boolean(true), 1);
    QCOMPARE(takeBodies(code), QVector<QByteArray>{startActivityBody(intent, hasIdentifier)});
    const QString unsupported =
        QStringLiteral("critical com.tovra.lumd.binder Unsupported android SDK version!");
    QTRY_COMPARE(warnings(), isSupported ? QStringList() : QStringList{unsupported});
}

void TestLaunchIntent::wordsTellTheArguments()
{
    IntentCall call{QStringLiteral("a"), QStringLiteral("/d"), QStringLiteral("t"),
        QStringLiteral("p"), QStringLiteral("c"), QStringLiteral("not told"), {}};
    call.extras = {{QStringLiteral("y"), true}, {QStringLiteral("x"), 1}};
    QCOMPARE(launch(call), QString());
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug Launching intent \"a\" \"/d\" \"t\" \"p\" \"c\" "
                                    "QMap((\"x\", QVariant(int, 1))(\"y\", QVariant(bool, true)))"),
            QStringLiteral("debug Launching  \"a\" \"p\"")}));
    m_world->daemon->clearLines();
    QCOMPARE(launch({}), QString());
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug Launching intent \"android.intent.action.VIEW\" \"\" "
                                    "\"\" \"\" \"\" QMap()"),
            QStringLiteral("debug Launching  \"android.intent.action.VIEW\" \"\"")}));
}

void TestLaunchIntent::appSettingsAreOpenedForThePackage_data()
{
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("uri");
    QTest::newRow("package") << QStringLiteral("com.foo") << QStringLiteral("package:com.foo");
    QTest::newRow("percent") << QStringLiteral("a%20b c") << QStringLiteral("package:a%2520b c");
    QTest::newRow("delimiters") << QStringLiteral("a?b#c") << QStringLiteral("package:a%3Fb%23c");
    QTest::newRow("nothing") << empty << QStringLiteral("package:");
}

void TestLaunchIntent::appSettingsAreOpenedForThePackage()
{
    QFETCH(QString, package);
    QFETCH(QString, uri);
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("openAppSettings"), {package})), QString());
    Intent intent;
    intent.action = QStringLiteral("android.settings.APPLICATION_DETAILS_SETTINGS");
    intent.data = uri;
    intent.flags = 0x10008000;
    intent.package = QStringLiteral("com.android.settings");
    QCOMPARE(takeBodies(), QVector<QByteArray>{startActivityBody(intent)});
    QCOMPARE(m_windowQuestions, QStringList{intent.package});
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug Opening app settings for \"%1\"").arg(package),
            QStringLiteral("debug Launching  \"android.settings.APPLICATION_DETAILS_SETTINGS\" "
                           "\"com.android.settings\"")}));
}

void TestLaunchIntent::licensesAreShown()
{
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("viewLicenses"))), QString());
    Intent intent;
    intent.action = QStringLiteral("android.settings.LEGAL_INFO");
    intent.flags = 0x10008000;
    intent.package = QStringLiteral("com.android.settings");
    QCOMPARE(takeBodies(), QVector<QByteArray>{startActivityBody(intent)});
    QCOMPARE(m_windowQuestions, QStringList{intent.package});
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug Opening legal information settings page"),
            QStringLiteral("debug Launching  \"android.settings.LEGAL_INFO\" "
                           "\"com.android.settings\"")}));
}

LUM_TEST_MAIN(TestLaunchIntent)
#include "tst_launchintent.moc"
