// SPDX-License-Identifier: BSD-3-Clause
#include "client/androidapps.h"
#include "client/shownname.h"
#include "tests/support/testmain.h"

class TestClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foreignTextIsShownWithoutControlCodes_data();
    void foreignTextIsShownWithoutControlCodes();
    void appIsFoundByWhatAPersonCallsIt_data();
    void appIsFoundByWhatAPersonCallsIt();
    void classOfALauncherIsReadFromItsEntry();
};

void TestClient::foreignTextIsShownWithoutControlCodes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char *name, const QString &text, const QString &shown) {
        QTest::newRow(name) << text << shown;
    };
    const QChar high(0xd83d);
    row("plain", QStringLiteral("Caf\u00e9 'x' $(y)"), QStringLiteral("Caf\u00e9 'x' $(y)"));
    row("line ends", QStringLiteral("a\nb\rc\td"), QStringLiteral("a\\nb\\rc\\td"));
    row("NUL and DEL", QString(QChar(0)) + QChar(0x7f), QStringLiteral("\\x00\\x7f"));
    row("backslash", QStringLiteral("\\n"), QStringLiteral("\\\\n"));
    row("Unicode's line ends", QStringLiteral("\u2028\u2029\u0085"),
        QStringLiteral("\\u2028\\u2029\\x85"));
    row("direction", QStringLiteral("\u200f\u202b\u2066"), QStringLiteral("\\u200f\\u202b\\u2066"));
    row("byte order mark", QStringLiteral("\ufeff"), QStringLiteral("\\ufeff"));
    row("half a pair", QStringLiteral("a") + high + QStringLiteral("b"),
        QStringLiteral("a\\ud83db"));
    row("half a pair at the end", QString(high), QStringLiteral("\\ud83d"));
    row("emoji of a family", QStringLiteral("\U0001f469\u200d\U0001f467"),
        QStringLiteral("\U0001f469\u200d\U0001f467"));
}

void TestClient::foreignTextIsShownWithoutControlCodes()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QCOMPARE(shownName(text), shown);
}

void TestClient::appIsFoundByWhatAPersonCallsIt_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("found");
    QTest::addColumn<QString>("candidates");
    const auto row = [](const char *name, const char *found, const char *candidates = "") {
        QTest::newRow(name) << QString::fromUtf8(name) << QString::fromUtf8(found)
                            << QString::fromUtf8(candidates);
    };
    row("com.maps", "com.maps -1");
    row("Maps", "com.maps 0");
    row("maps", "com.maps 0");
    row("NAVIGATION", "com.maps 1");
    row("/usr/share/applications/nav.desktop", "com.maps 1");
    row("nav.desktop", "com.maps 1");
    row("nav", "com.maps 1");
    row("/nav.desktop", "");
    row("com.maps2", "com.maps2 -1");
    row("Clock", "", "com.clock com.watch");
    row("clock", "com.watch 1");
    row("Twin", "com.twin -1");
    row("navi", "", "com.maps");
    row("com.", "", "com.clock com.maps com.maps2 com.twin com.watch");
    row("", "");
    row("nothing", "");
}

void TestClient::appIsFoundByWhatAPersonCallsIt()
{
    QFETCH(QString, name);
    QFETCH(QString, found);
    QFETCH(QString, candidates);
    const auto launcher = [](const char *file, const char *caption) {
        return AndroidLauncher{
            QStringLiteral("/usr/share/applications/%1.desktop").arg(QLatin1String(file)),
            QLatin1String(caption), {}, {}, false};
    };
    const QVector<AndroidApp> apps = {
        {QStringLiteral("com.clock"), {launcher("c1", "Clock")}},
        {QStringLiteral("com.maps"), {launcher("maps1", "Maps"), launcher("nav", "Navigation")}},
        {QStringLiteral("com.maps2"), {}},
        {QStringLiteral("com.twin"), {launcher("t1", "Twin"), launcher("t2", "Twin")}},
        {QStringLiteral("com.watch"), {launcher("w1", "Clock"), launcher("w2", "clock")}},
    };
    const NamedApp named = findApp(apps, name);
    QStringList packages;
    for (const AndroidApp &app : named.candidates)
        packages.append(app.package);
    QCOMPARE(packages.join(QLatin1Char(' ')), candidates);
    QCOMPARE(named.kind,
        !found.isEmpty()           ? NamedApp::Kind::Found
            : candidates.isEmpty() ? NamedApp::Kind::Unknown
                                   : NamedApp::Kind::Doubtful);
    if (!found.isEmpty())
        QCOMPARE(QStringLiteral("%1 %2").arg(named.app.package).arg(named.launcher), found);
}

void TestClient::classOfALauncherIsReadFromItsEntry()
{
    AndroidLauncher launcher;
    launcher.desktopFile = QStringLiteral("/usr/share/applications/a.desktop");
    QCOMPARE(launcher.className(), QString());
    QFile entry(launcher.desktopFile);
    QVERIFY(entry.open(QIODevice::WriteOnly));
    entry.write("[Desktop Entry]\nName=Exec=lumd-launcher a/b\n"
                "Exec=lumd-launcher com.foo.apk com.foo/com.foo.Main$Inner\n");
    entry.close();
    QCOMPARE(launcher.className(), QStringLiteral("com.foo.Main$Inner"));
}

LUM_TEST_MAIN(TestClient)
#include "tst_client.moc"
