// SPDX-License-Identifier: BSD-3-Clause
// The client against a lumd that answers and tells whatever the test wants.
#include "client/lumdclient.h"
#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace {

const QString service = QStringLiteral("com.tovra.lumd");
const QString monitorPath = QStringLiteral("/com/tovra/lumd/monitor");
const QString monitor = QStringLiteral("com.tovra.lumd.Monitor1");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

class FakeLumd : public QDBusVirtualObject
{
    Q_OBJECT

public:
    QVariantList answer;
    bool isMute = false;
    QDBusMessage question;

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        question = message;
        return isMute || connection.send(message.createReply(answer));
    }
    QString introspect(const QString &) const override { return {}; }
};

QVariantList stateAnswer(const QString &runtimeState)
{
    return {
        QVariantMap{{QStringLiteral("RuntimeState"), runtimeState}, {QStringLiteral("Ready"), true},
            {QStringLiteral("PendingChanges"), 2U}, {QStringLiteral("PendingLaunches"), 3U},
            {QStringLiteral("SdkLevel"), 27}, {QStringLiteral("Version"), QStringLiteral("1.2")},
            {QStringLiteral("Later"), QStringLiteral("unknown")}}};
}

QString text(const DaemonState &state)
{
    return QStringLiteral("%1 %2 %3 %4 %5 %6")
        .arg(state.runtimeState)
        .arg(state.isReady)
        .arg(state.pendingChanges)
        .arg(state.pendingLaunches)
        .arg(state.sdkLevel)
        .arg(state.version);
}

/// The names of connections, so of each program one.
QStringList connections()
{
    return QDBusConnection::systemBus().interface()->registeredServiceNames().value().filter(
        QStringLiteral(":"));
}

void send(const QString &interface, const QString &name, const QVariantList &arguments,
    const QString &path = monitorPath)
{
    QDBusMessage signal = QDBusMessage::createSignal(path, interface, name);
    signal.setArguments(arguments);
    QDBusConnection::systemBus().send(signal);
}

} // namespace

class TestLumdClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void answersOfAnotherTypeAreErrors();
    void signalsArePassedOn();
    void signalsThatHoldSomethingElseArePassedOver();
    void signalsOfOthersAreNotBelieved();
    void stateIsToldWithEachChangeOfIt();
    void changeBeforeTheFirstAnswerIsPartOfThat();
    void daemonIsSeenToGoAndToCome();

private:
    /// Has the client watch and waits until it has the state.
    bool watch();
    /// Waits until the client has read all that was sent to it before.
    bool settle();

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeLumd> m_lumd;
    std::unique_ptr<LumdClient> m_client;
    QStringList m_events;
};

void TestLumdClient::init()
{
    m_bus = std::make_unique<PrivateBus>(PrivateBus::Kind::System);
    m_lumd = std::make_unique<FakeLumd>();
    m_lumd->answer = stateAnswer(QStringLiteral("active"));
    QDBusConnection bus = QDBusConnection::systemBus();
    QVERIFY(bus.registerVirtualObject(QStringLiteral("/"), m_lumd.get(), QDBusConnection::SubPath));
    QVERIFY(bus.registerService(service));
    m_client = std::make_unique<LumdClient>();
    const auto note = [this](const QString &event) { m_events.append(event); };
    const LumdClient *const client = m_client.get();
    using Text = const QString &;
    connect(client, &LumdClient::daemonAppeared, this, [note] { note(QStringLiteral("come")); });
    connect(client, &LumdClient::daemonVanished, this, [note] { note(QStringLiteral("gone")); });
    connect(client, &LumdClient::stateChanged, this,
        [note](const DaemonState &state) { note(text(state)); });
    connect(client, &LumdClient::installFinished, this, [note](Text app, bool success, Text why) {
        note(QStringLiteral("installed %1 %2 %3").arg(app).arg(success).arg(why));
    });
    connect(client, &LumdClient::removeFinished, this, [note](Text app, bool success) {
        note(QStringLiteral("removed %1 %2").arg(app).arg(success));
    });
    connect(client, &LumdClient::requestQueued, this,
        [note](Text kind, Text what) { note(QStringLiteral("queued %1 %2").arg(kind, what)); });
    connect(client, &LumdClient::launcherChanged, this,
        [note](Text app, const AndroidLauncher &launcher) {
            note(QStringLiteral("launcher %1 %2 %3 %4")
                    .arg(app, launcher.desktopFile, launcher.name, launcher.icon));
        });
    connect(client, &LumdClient::launcherGone, this,
        [note](Text app, Text file) { note(QStringLiteral("lost %1 %2").arg(app, file)); });
    connect(client, &LumdClient::packageRemoved, this,
        [note](Text app) { note(QStringLiteral("away %1").arg(app)); });
    connect(client, &LumdClient::listComplete, this, [note] { note(QStringLiteral("all")); });
    connect(client, &LumdClient::startOnBootChanged, this, [note](Text app, bool allowed) {
        note(QStringLiteral("boot %1 %2").arg(app).arg(allowed));
    });
}

void TestLumdClient::cleanup()
{
    m_client.reset();
    QDBusConnection::systemBus().unregisterObject(
        QStringLiteral("/"), QDBusConnection::UnregisterTree);
}

bool TestLumdClient::watch()
{
    m_client->watch([this](const Answer<Nothing> &answer) {
        m_events.append(answer.error ? QStringLiteral("absent") : QStringLiteral("there"));
    });
    return QTest::qWaitFor([this] { return m_events.size() == 2; }, 10000);
}

bool TestLumdClient::settle()
{
    bool isAnswered = false;
    m_client->fetchState([&isAnswered](const Answer<DaemonState> &) { isAnswered = true; });
    return QTest::qWaitFor([&isAnswered] { return isAnswered; }, 10000);
}

void TestLumdClient::answersOfAnotherTypeAreErrors()
{
    QStringList kinds;
    const auto note = [&kinds](const auto &answer) {
        kinds.append(QStringLiteral("%1 %2").arg(int(answer.error.kind)).arg(answer.error.text));
    };
    const QString package = QStringLiteral("com.a");
    for (const QVariantList &answer : {QVariantList{}, QVariantList{QStringLiteral("text")}}) {
        m_lumd->answer = answer;
        kinds.clear();
        m_client->fetchState(note);
        m_client->listApps(note);
        m_client->installFile(package, note);
        m_client->removeApp(package, note);
        m_client->fetchSize(package, note);
        m_client->fetchDataUsage(note);
        m_client->fetchStartOnBoot(package, note);
        QTRY_COMPARE_WITH_TIMEOUT(kinds.size(), 7, 10000);
        const QString wrong =
            QStringLiteral("%1 An answer of another type").arg(int(ClientError::Kind::Failed));
        QCOMPARE(kinds.count(wrong), 7);
    }
    AndroidIntent intent;
    intent.extras.insert(QStringLiteral("k"), QByteArrayLiteral("bytes"));
    kinds.clear();
    m_client->launchIntent(intent, note);
    QTRY_COMPARE_WITH_TIMEOUT(kinds.size(), 1, 10000);
    QVERIFY(!kinds.first().startsWith(QLatin1Char('0')));
}

void TestLumdClient::signalsArePassedOn()
{
    QVERIFY(watch());
    QCOMPARE(
        m_events, QStringList({QStringLiteral("there"), QStringLiteral("active 1 2 3 27 1.2")}));
    m_events.clear();
    send(monitor, QStringLiteral("InstallFinished"),
        {QStringLiteral("a"), false, QStringLiteral("why")});
    send(monitor, QStringLiteral("RemoveFinished"), {QStringLiteral("a"), true});
    send(monitor, QStringLiteral("RequestQueued"), {QStringLiteral("k"), QStringLiteral("w")});
    send(monitor, QStringLiteral("LauncherChanged"),
        {QStringLiteral("f"), QStringLiteral("a"), QStringLiteral("n"), QStringLiteral("i")});
    send(monitor, QStringLiteral("LauncherGone"), {QStringLiteral("f"), QStringLiteral("a")});
    send(monitor, QStringLiteral("PackageRemoved"), {QStringLiteral("a")});
    send(monitor, QStringLiteral("ListComplete"), {});
    send(service, QStringLiteral("appStartOnBootupChanged"), {QStringLiteral("a"), true},
        QStringLiteral("/com/tovra/lumd"));
    const QStringList all = {QStringLiteral("installed a 0 why"), QStringLiteral("removed a 1"),
        QStringLiteral("queued k w"), QStringLiteral("launcher a f n i"),
        QStringLiteral("lost a f"), QStringLiteral("away a"), QStringLiteral("all"),
        QStringLiteral("boot a 1")};
    QTRY_COMPARE_WITH_TIMEOUT(m_events.size(), all.size(), 10000);
    QCOMPARE(m_events, all);
}

void TestLumdClient::signalsThatHoldSomethingElseArePassedOver()
{
    QVERIFY(watch());
    m_events.clear();
    for (const char *const name : {"InstallFinished", "RemoveFinished", "RequestQueued",
             "LauncherChanged", "LauncherGone", "PackageRemoved"})
        send(monitor, QLatin1String(name), {1});
    send(service, QStringLiteral("appStartOnBootupChanged"), {QStringLiteral("a")});
    send(properties, QStringLiteral("PropertiesChanged"), {1});
    send(properties, QStringLiteral("PropertiesChanged"),
        {monitor, QVariantMap{{QStringLiteral("Ready"), QStringLiteral("no")}}});
    send(monitor, QStringLiteral("Unheard"), {QStringLiteral("a")});
    send(service, QStringLiteral("InstallFinished"),
        {QStringLiteral("a"), false, QStringLiteral("why")});
    QVERIFY(settle());
    QCOMPARE(m_events, QStringList());
}

void TestLumdClient::signalsOfOthersAreNotBelieved()
{
    const QStringList before = connections();
    QVERIFY(watch());
    m_events.clear();
    QDBusConnection other =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("other"));
    QVERIFY(other.isConnected());
    // The bus passes on what is sent to one program alone, whatever that listens to.
    QStringList targets = connections();
    for (const QString &name : before + QStringList{other.baseService()})
        targets.removeOne(name);
    QCOMPARE(targets.size(), 1);
    QDBusMessage forged = QDBusMessage::createTargetedSignal(
        targets.first(), monitorPath, monitor, QStringLiteral("PackageRemoved"));
    forged.setArguments({QStringLiteral("a")});
    QVERIFY(other.send(forged));
    QVERIFY(other.interface()->isServiceRegistered(service).value());
    QVERIFY(settle());
    QCOMPARE(m_events, QStringList());
}

void TestLumdClient::stateIsToldWithEachChangeOfIt()
{
    QVERIFY(watch());
    m_events.clear();
    const auto change = [](const QVariantMap &changed) {
        send(properties, QStringLiteral("PropertiesChanged"), {monitor, changed, QStringList()});
    };
    change({{QStringLiteral("PendingChanges"), 5U}});
    change({{QStringLiteral("PendingChanges"), 5U}});
    change({{QStringLiteral("Later"), 1}});
    change({{QStringLiteral("RuntimeState"), QStringLiteral("failed")},
        {QStringLiteral("Ready"), false}, {QStringLiteral("PendingLaunches"), 0U},
        {QStringLiteral("SdkLevel"), 0}});
    QVERIFY(settle());
    QCOMPARE(m_events,
        QStringList({QStringLiteral("active 1 5 3 27 1.2"), QStringLiteral("failed 0 5 0 0 1.2")}));
}

void TestLumdClient::changeBeforeTheFirstAnswerIsPartOfThat()
{
    m_lumd->isMute = true;
    m_client->watch([](const Answer<Nothing> &) { });
    QTRY_COMPARE_WITH_TIMEOUT(m_lumd->question.member(), QStringLiteral("GetAll"), 10000);
    send(properties, QStringLiteral("PropertiesChanged"),
        {monitor, QVariantMap{{QStringLiteral("PendingChanges"), 9U}}, QStringList()});
    const QDBusMessage question = m_lumd->question;
    QDBusConnection::systemBus().send(
        question.createReply(stateAnswer(QStringLiteral("activating"))));
    QTRY_COMPARE_WITH_TIMEOUT(m_events.size(), 1, 10000);
    QCOMPARE(m_events, QStringList{QStringLiteral("activating 1 2 3 27 1.2")});
}

void TestLumdClient::daemonIsSeenToGoAndToCome()
{
    QVERIFY(watch());
    m_events.clear();
    QVERIFY(QDBusConnection::systemBus().unregisterService(service));
    QTRY_COMPARE_WITH_TIMEOUT(m_events, QStringList{QStringLiteral("gone")}, 10000);
    m_lumd->answer = stateAnswer(QStringLiteral("inactive"));
    QVERIFY(QDBusConnection::systemBus().registerService(service));
    QTRY_COMPARE_WITH_TIMEOUT(m_events.size(), 3, 10000);
    QCOMPARE(m_events,
        QStringList({QStringLiteral("gone"), QStringLiteral("come"),
            QStringLiteral("inactive 1 2 3 27 1.2")}));
}

LUM_TEST_MAIN(TestLumdClient)
#include "tst_lumdclient.moc"
