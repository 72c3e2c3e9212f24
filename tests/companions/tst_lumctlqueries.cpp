// SPDX-License-Identifier: BSD-3-Clause
#include "tests/companions/lumctlrun.h"
#include "tests/daemon/announcementtest.h"
#include "tests/daemon/appfixture.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QJsonArray>
#include <QJsonDocument>

#include <csignal>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;

namespace {

QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

bool announce(AppFixture &world, const Launcher &launcher)
{
    FakeBinder::Call call;
    call.code = launcherAdded;
    call.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    call.payload = launcher.payload();
    return world.android->transact(QStringLiteral("alien.launcher"), call).delivered;
}

Launcher named(const QString &caption, const QString &package = QStringLiteral("com.odd"))
{
    return {package, package + QStringLiteral(".Main"), caption, QStringLiteral("1"), "icon"};
}

/// The daemon with its launcher service and these launchers, and a runtime that is up.
struct Served
{
    AppFixture world;
    bool isServed = false;

    explicit Served(const QVector<Launcher> &launchers)
    {
        isServed = world.start() && world.see(QStringLiteral("activating"))
            && world.see(QStringLiteral("active"))
            && world.android->waitForPublished(QStringLiteral("alien.launcher"));
        for (const Launcher &launcher : launchers)
            isServed = isServed && announce(world, launcher);
    }
};

} // namespace

class TestLumctlQueries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void statusShowsTheStateOfTheRuntime();
    void statusOfARuntimeThatIsDown();
    void appsAreListedByPackage();
    void nothingIsListedInAPipeWithoutApps();
    void detailsOfAnAppWhileTheRuntimeIsUp();
    void detailsOfAnAppWhileTheRuntimeIsDown();
    void whatIsNotClearListsItsCandidates();
    void namesReachTheTerminalEscaped();
    void fiveHundredAppsWithEndlessNamesAreListed();
    void terminalGetsColumnsOfItsWidth();
    void completionOffersWhatCanBeTyped();
    void germanIsSpokenToGermans();
    void missingDaemonIsTold_data();
    void missingDaemonIsTold();
    void refusalOfTheBusIsTold();
    void daemonThatHangsIsGivenUpInTime();
};

void TestLumctlQueries::initTestCase()
{
    AppFixture::installCatalogues();
}

void TestLumctlQueries::statusShowsTheStateOfTheRuntime()
{
    Served served({});
    QVERIFY(served.isServed);
    QVERIFY(served.world.bringUpRuntime());
    QCOMPARE(lumctl(words("status")),
        QStringList({QStringLiteral("Android runtime:  active"),
            QStringLiteral("Package changes:  are handed over at once"),
            QStringLiteral("Changes kept:     0"), QStringLiteral("Launches kept:    0"),
            QStringLiteral("Android level:    27"),
            QStringLiteral("lumd:             " LUMD_VERSION), QStringLiteral("exit 0")}));
    QCOMPARE(json(lumctlJson(words("status"))),
        QByteArrayLiteral(
            "{\"exit\":0,\"pendingChanges\":0,\"pendingLaunches\":0,\"ready\":true,"
            "\"runtimeState\":\"active\",\"sdkLevel\":27,\"version\":\"" LUMD_VERSION "\"}"));
}

void TestLumctlQueries::statusOfARuntimeThatIsDown()
{
    AppFixture world;
    QVERIFY(world.start());
    const QStringList lines = lumctl(words("status"));
    QCOMPARE(lines.mid(0, 2),
        QStringList({QStringLiteral("Android runtime:  inactive"),
            QStringLiteral("Package changes:  are kept until the runtime is up")}));
}

void TestLumctlQueries::appsAreListedByPackage()
{
    Served served({mapLauncher(), clockLauncher(), alarmLauncher()});
    QVERIFY(served.isServed);
    QStringList lines = lumctl(words("list"));
    lines.sort();
    QCOMPARE(lines,
        QStringList({QStringLiteral("com.a_b.map\t7\tMap"), QStringLiteral("exit 0"),
            QStringLiteral("org.example.clock\t1.2\tAlarm"),
            QStringLiteral("org.example.clock\t1.2\tK\u00e4llo")}));

    const QJsonObject document = lumctlJson(words("list"));
    QCOMPARE(document.value(QStringLiteral("exit")).toInt(-1), 0);
    const QJsonArray apps = document.value(QStringLiteral("apps")).toArray();
    QCOMPARE(apps.size(), 2);
    const QString entry = mapLauncher().entryPath();
    QCOMPARE(json(apps.first().toObject()),
        QStringLiteral("{\"launchers\":[{\"desktopFile\":\"%1\",\"hidden\":false,\"icon\":\"%2\","
                       "\"name\":\"Map\",\"version\":\"7\"}],\"name\":\"Map\","
                       "\"package\":\"com.a_b.map\",\"version\":\"7\"}")
            .arg(entry, mapLauncher().iconPath())
            .toUtf8());
}

void TestLumctlQueries::nothingIsListedInAPipeWithoutApps()
{
    AppFixture world;
    QVERIFY(world.start());
    QCOMPARE(lumctl(words("list")), QStringList{QStringLiteral("exit 0")});
    QCOMPARE(json(lumctlJson(words("list"))), QByteArrayLiteral("{\"apps\":[],\"exit\":0}"));
}

void TestLumctlQueries::detailsOfAnAppWhileTheRuntimeIsUp()
{
    Served served({mapLauncher()});
    QVERIFY(served.isServed);
    served.world.android->registerService(QStringLiteral("storagestats"), [](const auto &) {
        return Reply::data(
            ParcelWriter().int32(0).int32(1).int64(5000).int64(700).int64(200).bytes());
    });
    served.world.android->registerService(QStringLiteral("deviceidle"),
        [](const auto &) { return Reply::data(ParcelWriter().int32(0).int32(1).bytes()); });
    QCOMPARE(lumctl(words("info Map")),
        QStringList({QStringLiteral("Package:        com.a_b.map"),
            QStringLiteral("Version:        7"), QStringLiteral("Launcher:       Map"),
            QStringLiteral("Desktop file:   ") + mapLauncher().entryPath(),
            QStringLiteral("Hidden:         no"), QStringLiteral("Code:           4.88 KiB"),
            QStringLiteral("Data:           500 bytes"),
            QStringLiteral("Cache:          200 bytes"), QStringLiteral("Start on boot:  on"),
            QStringLiteral("exit 0")}));
    const QJsonObject document = lumctlJson(words("info com.a_b.map"));
    QCOMPARE(json(document.value(QStringLiteral("size")).toObject()),
        QByteArrayLiteral("{\"cache\":200,\"code\":5000,\"data\":500}"));
    QCOMPARE(document.value(QStringLiteral("startOnBoot")), QJsonValue(true));
    QCOMPARE(document.value(QStringLiteral("package")), QJsonValue(QStringLiteral("com.a_b.map")));
}

void TestLumctlQueries::detailsOfAnAppWhileTheRuntimeIsDown()
{
    Served served({mapLauncher()});
    QVERIFY(served.isServed);
    // Up, but without the service that knows the sizes.
    QVERIFY(lumctlJson(words("info map")).value(QStringLiteral("size")).isNull());
    QVERIFY(served.world.see(QStringLiteral("inactive")));
    QCOMPARE(lumctl(words("info map")).filter(QStringLiteral("unknown")).size(), 4);
    const QJsonObject document = lumctlJson(words("info map"));
    QVERIFY(document.value(QStringLiteral("size")).isNull());
    QVERIFY(document.value(QStringLiteral("startOnBoot")).isNull());
}

void TestLumctlQueries::whatIsNotClearListsItsCandidates()
{
    Served served({mapLauncher(), clockLauncher()});
    QVERIFY(served.isServed);
    QCOMPARE(lumctl(words("info ma")),
        QStringList({QStringLiteral("lumctl: \u201cma\u201d is not clear; it may be one of these:"),
            QStringLiteral("lumctl:   com.a_b.map  Map"), QStringLiteral("exit 6")}));
    QCOMPARE(lumctl(words("info nothing")),
        QStringList({QStringLiteral("lumctl: No app is called \u201cnothing\u201d"),
            QStringLiteral("exit 6")}));
    const QJsonObject document = lumctlJson(words("info ma"));
    QCOMPARE(document.value(QStringLiteral("exit")).toInt(), 6);
    const QJsonObject error = document.value(QStringLiteral("error")).toObject();
    QCOMPARE(error.value(QStringLiteral("kind")), QJsonValue(QStringLiteral("doubtful")));
    QCOMPARE(error.value(QStringLiteral("candidates")),
        QJsonValue(QJsonArray{QStringLiteral("com.a_b.map")}));
}

void TestLumctlQueries::namesReachTheTerminalEscaped()
{
    const struct
    {
        QString name;
        QString shown;
    } rows[] = {
        {QStringLiteral("a\x1b[31mb"), QStringLiteral("a\\x1b[31mb")},
        {QStringLiteral("a\t\a"), QStringLiteral("a\\t\\x07")},
        {QStringLiteral("a\u009b1m"), QStringLiteral("a\\x9b1m")},
        {QStringLiteral("\u202egpa"), QStringLiteral("\\u202egpa")},
        {QStringLiteral("a 'b' \"c\" $(d)"), QStringLiteral("a 'b' \"c\" $(d)")},
        {QStringLiteral("\u05e9\u05dc\u05d5\u05dd"), QStringLiteral("\u05e9\u05dc\u05d5\u05dd")},
        {QStringLiteral("\U0001f469\u200d\U0001f680"),
            QStringLiteral("\U0001f469\u200d\U0001f680")},
    };
    // As it may be found on the disk: in an announcement lumd has blanks for the worst of them.
    QStringList shown;
    for (const auto &row : rows) {
        const Launcher launcher = named(row.name, QStringLiteral("com.odd%1").arg(shown.size()));
        makeFile(launcher.entryPath(), entryText(launcher));
        shown.append(QStringLiteral("%1\t\t%2").arg(launcher.packageName, row.shown));
    }
    AppFixture world;
    QVERIFY(world.start());
    QCOMPARE(lumctl(words("list")), shown + QStringList{QStringLiteral("exit 0")});
    const QRegularExpression raw(QStringLiteral("[\\x00-\\x1f\\x7f-\\x9f\\x{202e}]"));
    LumctlRun run(words("list --json"));
    run.start();
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines().size(), 1);
    const QString line = run.lines().first();
    QVERIFY2(!line.contains(raw), qPrintable(line));
    const QJsonArray apps =
        QJsonDocument::fromJson(line.toUtf8()).object().value(QStringLiteral("apps")).toArray();
    QCOMPARE(apps.size(), shown.size());
    for (int i = 0; i < apps.size(); ++i)
        QCOMPARE(apps.at(i).toObject().value(QStringLiteral("name")).toString(), rows[i].name);
}

void TestLumctlQueries::fiveHundredAppsWithEndlessNamesAreListed()
{
    constexpr int count = 500;
    constexpr int length = 5000;
    const QString name(length, QLatin1Char('n'));
    // On the disk already: to announce them all takes lumd its time.
    for (int i = 0; i < count; ++i) {
        const Launcher launcher = named(name, QStringLiteral("com.app%1").arg(i));
        makeFile(launcher.entryPath(), entryText(launcher));
    }
    AppFixture world;
    QVERIFY(world.start());
    const QStringList lines = lumctl(words("list"));
    QCOMPARE(lines.size(), count + 1);
    QCOMPARE(lines.first(), QStringLiteral("com.app0\t\t") + name);
    QCOMPARE(lumctlJson(words("list")).value(QStringLiteral("apps")).toArray().size(), count);
}

void TestLumctlQueries::terminalGetsColumnsOfItsWidth()
{
    Served served({mapLauncher(), named(QString(5000, QLatin1Char('n')))});
    QVERIFY(served.isServed);
    for (const bool isPlain : {false, true}) {
        LumctlRun run(words("list"));
        if (isPlain)
            run.setEnvironment(QStringLiteral("NO_COLOR"), QStringLiteral("1"));
        run.start(true);
        QVERIFY(run.waitForEnd());
        const QString heading = QStringLiteral("PACKAGE      VERSION  NAME");
        QStringList lines = run.lines();
        lines.replaceInStrings(QStringLiteral("\r"), QString());
        QCOMPARE(lines,
            QStringList({isPlain ? heading : QStringLiteral("\x1b[1m%1\x1b[0m").arg(heading),
                QStringLiteral("com.a_b.map  7        Map"),
                QStringLiteral("com.odd      1        ") + QString(57, QLatin1Char('n'))
                    + QChar(0x2026)}));
    }
}

void TestLumctlQueries::completionOffersWhatCanBeTyped()
{
    Served served({mapLauncher(), named(QStringLiteral("a\u202e[0m"))});
    QVERIFY(served.isServed);
    QCOMPARE(lumctl(words("complete-names")),
        QStringList({QStringLiteral("Map"), QStringLiteral("com.a_b.map"),
            QStringLiteral("com.odd"), QStringLiteral("exit 0")}));
}

void TestLumctlQueries::germanIsSpokenToGermans()
{
    AppFixture world;
    QVERIFY(world.start());
    LumctlRun run(words("status"));
    run.setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    run.start();
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.lines().first(), QStringLiteral("Android-Laufzeit:       inactive"));
}

void TestLumctlQueries::missingDaemonIsTold_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char *line : {"status", "list", "info a", "remove a", "launch a", "open http://a",
             "intent --action a", "stop a", "clear-cache a", "clear-data --yes a", "autostart a on",
             "settings a", "licences", "runtime start", "runtime enable", "runtime status",
             "monitor", "install /bin/sh"})
        QTest::newRow(line) << words(line);
}

void TestLumctlQueries::missingDaemonIsTold()
{
    QFETCH(QStringList, arguments);
    const QStringList expected = {
        QStringLiteral("lumctl: lumd is not running"), QStringLiteral("exit 3")};
    QCOMPARE(lumctl(arguments), expected); // without a bus
    const PrivateBus bus(PrivateBus::Kind::System);
    QCOMPARE(lumctl(arguments), expected);
    QCOMPARE(json(lumctlJson(arguments)),
        QByteArrayLiteral("{\"error\":{\"kind\":\"no-lumd\",\"message\":\"lumd is not running\"},"
                          "\"exit\":3}"));
}

void TestLumctlQueries::refusalOfTheBusIsTold()
{
    makeFile(QStringLiteral("/run/dbus/system_bus_socket.policy"),
        "<busconfig><policy context=\"mandatory\">"
        "<deny send_destination=\"com.tovra.lumd\" send_type=\"method_call\"/>"
        "</policy></busconfig>");
    const PrivateBus bus(PrivateBus::Kind::System);
    QVERIFY(QDBusConnection::systemBus().registerService(QStringLiteral("com.tovra.lumd")));
    QCOMPARE(lumctl(words("status")),
        QStringList({QStringLiteral("lumctl: Not allowed: lumd is for root and the members of the "
                                    "group users"),
            QStringLiteral("exit 4")}));
}

void TestLumctlQueries::daemonThatHangsIsGivenUpInTime()
{
    AppFixture world;
    QVERIFY(world.start());
    world.daemon->signal(SIGSTOP);
    QElapsedTimer elapsed;
    elapsed.start();
    QCOMPARE(lumctl(words("list --timeout 2")),
        QStringList({QStringLiteral("lumctl: lumd does not answer within the time limit"),
            QStringLiteral("exit 5")}));
    QVERIFY2(elapsed.elapsed() >= 2000, qPrintable(QString::number(elapsed.elapsed())));
    world.daemon->signal(SIGCONT);
}

LUM_TEST_MAIN(TestLumctlQueries)
#include "tst_lumctlqueries.moc"
