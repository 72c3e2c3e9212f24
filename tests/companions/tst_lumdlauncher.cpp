// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/announcementtest.h"
#include "tests/daemon/intenttest.h"
#include "tests/support/childprocess.h"
#include "tests/support/testmain.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTimer>

#include <optional>

using FakeBinder::ParcelWriter;

namespace {

const QString service = QStringLiteral("com.tovra.lumd");

/// In the place of the daemon: records what is called, and answers from the event loop.
class MockDaemon : public QDBusVirtualObject
{
public:
    explicit MockDaemon(const QString &error = {}, int delayMilliseconds = 0);
    ~MockDaemon() override;

    QVector<QDBusMessage> calls() const { return m_calls; }

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusConnection m_bus;
    QString m_error;
    int m_delayMilliseconds;
    QVector<QDBusMessage> m_calls;
};

MockDaemon::MockDaemon(const QString &error, int delayMilliseconds)
    : m_bus(QDBusConnection::connectToBus(
          QDBusConnection::SystemBus, QStringLiteral("mockdaemon-%1").arg(quintptr(this)))),
      m_error(error),
      m_delayMilliseconds(delayMilliseconds)
{
    if (!m_bus.registerVirtualObject(QStringLiteral("/com/tovra/lumd"), this)
        || !m_bus.registerService(service))
        qFatal("mock daemon: %s", qPrintable(m_bus.lastError().message()));
}

MockDaemon::~MockDaemon()
{
    m_bus.unregisterService(service);
    m_bus.unregisterObject(QStringLiteral("/com/tovra/lumd"));
    QDBusConnection::disconnectFromBus(m_bus.name());
}

QString MockDaemon::introspect(const QString &path) const
{
    Q_UNUSED(path)
    return {};
}

bool MockDaemon::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    m_calls.append(message);
    const QDBusMessage reply = m_error.isNull()
        ? message.createReply()
        : message.createErrorReply(QDBusError::Failed, m_error);
    QTimer::singleShot(m_delayMilliseconds, this, [connection, reply] { connection.send(reply); });
    return true;
}

/// How the program ended, and what it printed.
struct Outcome
{
    int exitCode = 0;
    QStringList lines;
};

/// Runs it while the event loop turns.
Outcome run(const QStringList &arguments)
{
    ChildProcess launcher;
    launcher.start(QStringLiteral(LAUNCHER_PROGRAM), arguments, {}, ChildProcess::Collect::Both);
    if (!QTest::qWaitFor([&launcher] { return !launcher.isRunning(); }, 50000)
        || !launcher.waitForExit())
        return {-1, {QStringLiteral("it does not end")}};
    return {launcher.exitCode(), launcher.lines()};
}

const QString usage = QStringLiteral("lumd-launcher: usage: lumd-launcher APK PACKAGE/CLASS");

QString badActivity(const QString &activity)
{
    return QStringLiteral("lumd-launcher: \"%1\" is not a package and a class joined by a slash")
        .arg(activity);
}

} // namespace

class TestLumdLauncher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void activityIsLaunched_data();
    void activityIsLaunched();
    void badArgumentsAreRefused_data();
    void badArgumentsAreRefused();
    void refusalOfTheDaemonIsTold();
    void lateAnswerIsWaitedFor();
    void missingDaemonIsTold();
    void missingBusIsTold();
    void generatedEntryLaunchesItsActivity();
};

void TestLumdLauncher::activityIsLaunched_data()
{
    QTest::addColumn<QString>("activity");
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("className");
    const auto row = [](const char *activity, const char *package, const char *className) {
        QTest::newRow(activity) << QString::fromUtf8(activity) << QString::fromUtf8(package)
                                << QString::fromUtf8(className);
    };
    row("com.foo/com.foo.Main", "com.foo", "com.foo.Main");
    row("com.foo/.Main", "com.foo", ".Main");
    row("com.foo/com.foo.Main$Inner", "com.foo", "com.foo.Main$Inner");
    row("com.foo/a/b", "com.foo", "a/b");
    row("com.\u00e4/\u00e4.M", "com.\u00e4", "\u00e4.M");
}

void TestLumdLauncher::activityIsLaunched()
{
    QFETCH(QString, activity);
    QFETCH(QString, package);
    QFETCH(QString, className);
    const PrivateBus bus(PrivateBus::Kind::System);
    const MockDaemon daemon;
    const Outcome outcome = run({QStringLiteral("com.foo.apk"), activity});
    QCOMPARE(outcome.lines, QStringList());
    QCOMPARE(outcome.exitCode, 0);

    QCOMPARE(daemon.calls().size(), 1);
    const QDBusMessage call = daemon.calls().first();
    QCOMPARE(call.path(), QStringLiteral("/com/tovra/lumd"));
    QCOMPARE(call.interface(), service);
    QCOMPARE(call.member(), QStringLiteral("launchIntent"));
    QCOMPARE(call.signature(), QStringLiteral("ssssssa{sv}"));
    QStringList texts;
    for (const QVariant &argument : call.arguments().mid(0, 6))
        texts.append(argument.toString());
    QCOMPARE(texts,
        QStringList({QStringLiteral("android.intent.action.MAIN"), QString(), QString(), package,
            className, QStringLiteral("android.intent.category.LAUNCHER")}));
    QCOMPARE(qdbus_cast<QVariantMap>(call.arguments().value(6)), QVariantMap());
}

void TestLumdLauncher::badArgumentsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("words");
    const QString apk = QStringLiteral("com.foo.apk");
    QTest::newRow("none") << QStringList() << usage;
    QTest::newRow("one") << QStringList{QStringLiteral("com.foo/com.foo.Main")} << usage;
    QTest::newRow("three") << QStringList{apk, QStringLiteral("com.foo/a"), apk} << usage;
    for (const char *activity : {"", "/", "com.foo", "com.foo/", "/com.foo.Main"}) {
        const QString text = QString::fromLatin1(activity);
        QTest::newRow(activity) << QStringList{apk, text} << badActivity(text);
    }
}

void TestLumdLauncher::badArgumentsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, words);
    const PrivateBus bus(PrivateBus::Kind::System);
    const MockDaemon daemon;
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.lines, QStringList{words});
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(daemon.calls().size(), 0);
}

void TestLumdLauncher::refusalOfTheDaemonIsTold()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    const MockDaemon daemon(QStringLiteral("not today"));
    const Outcome outcome =
        run({QStringLiteral("com.foo.apk"), QStringLiteral("com.foo/com.foo.Main")});
    QCOMPARE(outcome.lines,
        QStringList{QStringLiteral("lumd-launcher: cannot launch com.foo: not today")});
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(daemon.calls().size(), 1);
}

void TestLumdLauncher::lateAnswerIsWaitedFor()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    constexpr int aboveTheUsualTimeLimit = 27000; // Qt D-Bus gives up after 25 seconds
    const MockDaemon daemon({}, aboveTheUsualTimeLimit);
    const Outcome outcome =
        run({QStringLiteral("com.foo.apk"), QStringLiteral("com.foo/com.foo.Main")});
    QCOMPARE(outcome.lines, QStringList());
    QCOMPARE(outcome.exitCode, 0);
}

void TestLumdLauncher::missingDaemonIsTold()
{
    const PrivateBus bus(PrivateBus::Kind::System);
    const Outcome outcome =
        run({QStringLiteral("com.foo.apk"), QStringLiteral("com.foo/com.foo.Main")});
    QCOMPARE(outcome.lines,
        QStringList{QStringLiteral("lumd-launcher: cannot launch com.foo: The name com.tovra.lumd "
                                   "was not provided by any .service files")});
    QCOMPARE(outcome.exitCode, 1);
}

void TestLumdLauncher::missingBusIsTold()
{
    const Outcome outcome =
        run({QStringLiteral("com.foo.apk"), QStringLiteral("com.foo/com.foo.Main")});
    QCOMPARE(outcome.lines,
        QStringList{QStringLiteral("lumd-launcher: cannot launch com.foo: Not connected to D-Bus "
                                   "server")});
    QCOMPARE(outcome.exitCode, 1);
}

void TestLumdLauncher::generatedEntryLaunchesItsActivity()
{
    AppFixture world;
    world.android->registerService(QStringLiteral("SurfaceFlinger"),
        [](const auto &) { return FakeBinder::Reply::data(ParcelWriter().boolean(true).bytes()); });
    world.android->registerService(QStringLiteral("activity"));
    QVERIFY(world.start());
    QVERIFY(world.see(QStringLiteral("activating")));
    QVERIFY(world.see(QStringLiteral("active")));
    QVERIFY(world.waitForLink(QStringLiteral("activity")));
    const Launcher launcher = clockLauncher();
    FakeBinder::Call announcement;
    announcement.code = launcherAdded;
    announcement.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    announcement.payload = launcher.payload();
    QVERIFY(world.android->transact(QStringLiteral("alien.launcher"), announcement).delivered);

    const QString entry = QString::fromUtf8(fileContents(launcher.entryPath()));
    const QString line =
        QRegularExpression(QStringLiteral("^Exec=(.*)$"), QRegularExpression::MultilineOption)
            .match(entry)
            .captured(1);
    QStringList words = QProcess::splitCommand(line);
    QCOMPARE(words.value(0), QStringLiteral("lumd-launcher"));
    words.removeFirst();
    const Outcome outcome = run(words);
    QCOMPARE(outcome.lines, QStringList());
    QCOMPARE(outcome.exitCode, 0);

    Intent intent;
    intent.action = QStringLiteral("android.intent.action.MAIN");
    intent.flags = 0x10004000;
    intent.package = launcher.packageName;
    intent.className = launcher.className;
    intent.categories = QStringList{QStringLiteral("android.intent.category.LAUNCHER")};
    const auto requests = world.requests(QStringLiteral("activity"), startActivityCode);
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().payload, startActivityBody(intent));
}

LUM_TEST_MAIN(TestLumdLauncher)
#include "tst_lumdlauncher.moc"
