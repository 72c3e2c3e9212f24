// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/callas.h"
#include "tests/daemon/daemonfixture.h"
#include "tests/daemon/interfacetext.h"
#include "tests/support/systemcalls.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QRegularExpression>

namespace {

constexpr int ordinaryId = 12345;
constexpr int busGroupId = 100;

// What a system bus comes with, before the files of its services; the last rule for everybody is
// what a careless one among those adds.
const char *SystemBusPolicy = R"(<busconfig>
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
    <allow send_interface="org.freedesktop.DBus.Properties"/>
  </policy>
  <policy user="root">
    <allow own="*"/>
    <allow send_destination="org.freedesktop.systemd1"/>
  </policy>
  <include>%1</include>
</busconfig>
)";

enum class Who { Root, Member, MemberBySecondGroup, Stranger };

bool hasManyUsers()
{
    return SystemCalls::hasUser(ordinaryId);
}

bool isMember(Who who)
{
    return who == Who::Member || who == Who::MemberBySecondGroup;
}

// The bus knows users and groups by these files. Where the namespace has but one user he goes by
// the name of the one who is to call, and root is somebody else.
void nameUsers(Who who)
{
    const bool isAnother = !hasManyUsers() && who != Who::Root;
    const int caller = isAnother ? 0 : ordinaryId;
    const int group = isAnother && isMember(who) ? 0 : busGroupId;
    const auto user = [](const char *name, int uid, int gid) {
        return QStringLiteral("%1:x:%2:%3::/:/bin/sh\n")
            .arg(QLatin1String(name))
            .arg(uid)
            .arg(gid)
            .toUtf8();
    };
    makeFile(QStringLiteral("/run/users"),
        user("root", isAnother ? ordinaryId : 0, 0)
            + user("nemo", caller, who == Who::Member ? group : caller));
    makeFile(QStringLiteral("/run/groups"),
        BUS_GROUP ":x:" + QByteArray::number(group) + ':'
            + (who == Who::MemberBySecondGroup ? "nemo\n" : "\n"));
}

/// Gives the words of what went wrong.
QString reloadUsers(Who who)
{
    nameUsers(who);
    return errorOf(QDBusConnection::systemBus().call(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ReloadConfig"))));
}

void startCaller(ChildProcess &caller, Who who, const QString &manner, const QString &method,
    const QStringList &arguments = {})
{
    const bool isRoot = who == Who::Root || !hasManyUsers();
    const int group = isMember(who) ? busGroupId : ordinaryId;
    caller.start(QStringLiteral(CALLER_PROGRAM),
        QStringList({QString::number(isRoot ? 0 : ordinaryId), QString::number(isRoot ? 0 : group),
            manner, method})
            + arguments,
        {}, ChildProcess::Collect::Output);
}

/// What caller.cpp prints.
QString call(Who who, const QString &method, const QStringList &arguments = {},
    const QString &manner = plain())
{
    const QString trouble = reloadUsers(who);
    if (!trouble.isEmpty())
        return trouble;
    ChildProcess caller;
    startCaller(caller, who, manner, method, arguments);
    if (!caller.waitForExit() || caller.exitCode() != 0)
        return QStringLiteral("the caller failed");
    return caller.lines().join(QLatin1Char('\n'));
}

bool isRefused(const QString &result)
{
    return result.startsWith(
        QLatin1String("org.freedesktop.DBus.Error.AccessDenied: Rejected send message"));
}

struct Method
{
    QString name;
    QStringList arguments; // of the right types, but for the last one of launchIntent
};

QVector<Method> allMethods()
{
    QVector<Method> methods;
    const QRegularExpression element(QStringLiteral(
        "<method name=\"([^\"]*)\"|<arg name=\"[^\"]*\" type=\"([^\"]*)\" direction=\"in\""));
    auto matches = element.globalMatch(QString::fromLatin1(interfaceText));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (!match.captured(1).isEmpty())
            methods.append({match.captured(1), {}});
        else
            methods.last().arguments.append(match.captured(2) == QLatin1String("b")
                    ? QStringLiteral("true")
                    : QStringLiteral("com.a"));
    }
    return methods;
}

void addCallers()
{
    QTest::addColumn<Who>("who");
    QTest::newRow("root") << Who::Root;
    QTest::newRow("member") << Who::Member;
    QTest::newRow("member by a second group") << Who::MemberBySecondGroup;
    QTest::newRow("stranger") << Who::Stranger;
}

} // namespace

Q_DECLARE_METATYPE(Who)

/// The bus policy as it is installed, read by a dbus-daemon. In a namespace with one user the bus
/// takes that user for each of the callers in turn, so every rule is looked at there as well.
class TestBusPolicy : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onSignal(const QDBusMessage &message);

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void everyMethodIsForRootAndTheGroupAlone_data();
    void everyMethodIsForRootAndTheGroupAlone();
    void everybodyMayIntrospectAndPing_data();
    void everybodyMayIntrospectAndPing();
    void strangerGetsNothingElse_data();
    void strangerGetsNothingElse();
    void noCallWithADescriptorPasses_data();
    void noCallWithADescriptorPasses();
    void noSignalWithADescriptorPasses_data();
    void noSignalWithADescriptorPasses();
    void whoMayCallGetsTheSignalsOfTheMonitorAndNobodyElse_data();
    void whoMayCallGetsTheSignalsOfTheMonitorAndNobodyElse();
    void nobodyButRootOwnsTheName_data();
    void nobodyButRootOwnsTheName();

private:
    std::unique_ptr<DaemonFixture> m_world;
    QStringList m_signals;
};

void TestBusPolicy::onSignal(const QDBusMessage &message)
{
    m_signals.append(message.member());
}

void TestBusPolicy::initTestCase()
{
    makeFile(QStringLiteral("/run/dbus/system_bus_socket.policy"),
        QString::fromLatin1(SystemBusPolicy).arg(QStringLiteral(BUS_POLICY)).toUtf8());
    replaceUsersAndGroups();
    nameUsers(Who::Root);
    m_world = std::make_unique<DaemonFixture>();
}

void TestBusPolicy::cleanup()
{
    m_world->systemd.setUnitStateSilently(QStringLiteral("inactive"), QStringLiteral("dead"));
    m_world->renew();
    QCOMPARE(reloadUsers(Who::Root), QString());
}

void TestBusPolicy::everyMethodIsForRootAndTheGroupAlone_data()
{
    addCallers();
}

void TestBusPolicy::everyMethodIsForRootAndTheGroupAlone()
{
    QFETCH(Who, who);
    QVERIFY(m_world->start());
    const QVector<Method> methods = allMethods();
    QCOMPARE(methods.size(), 19);
    for (const Method &method : methods) {
        const QString result = call(who, method.name, method.arguments);
        QVERIFY2(isRefused(result) == (who == Who::Stranger), qPrintable(method.name + result));
        if (who != Who::Stranger && method.name != QLatin1String("launchIntent"))
            QVERIFY2(!result.contains(QLatin1String("Error")), qPrintable(method.name + result));
    }
}

void TestBusPolicy::everybodyMayIntrospectAndPing_data()
{
    addCallers();
}

void TestBusPolicy::everybodyMayIntrospectAndPing()
{
    QFETCH(Who, who);
    QVERIFY(m_world->start());
    QCOMPARE(call(who, QStringLiteral("org.freedesktop.DBus.Peer.Ping")), QStringLiteral("done"));
    const QString text =
        call(who, QStringLiteral("org.freedesktop.DBus.Introspectable.Introspect"));
    QVERIFY2(text.contains(QLatin1String("<method name=\"installFile\">")), qPrintable(text));
}

void TestBusPolicy::strangerGetsNothingElse_data()
{
    QTest::addColumn<QString>("method");
    for (const char *method :
        {"org.freedesktop.DBus.Properties.Get", "org.freedesktop.DBus.Properties.GetAll",
            "org.freedesktop.DBus.Properties.Set", "com.tovra.lumd.unknown",
            "com.tovra.other.isRunning", ".isRunning", ".Introspect", ".Ping"})
        QTest::newRow(method) << QString::fromLatin1(method);
}

void TestBusPolicy::strangerGetsNothingElse()
{
    QFETCH(QString, method);
    QVERIFY(m_world->start());
    const QString address =
        QDBusConnection::systemBus().interface()->serviceOwner(QStringLiteral("com.tovra.lumd"));
    QVERIFY(isRefused(call(Who::Stranger, method)));
    QVERIFY(isRefused(call(Who::Stranger, method, {}, address)));
    QVERIFY(!isRefused(call(Who::Member, method)));
    QVERIFY(!isRefused(call(Who::Member, method, {}, address)));
}

void TestBusPolicy::noCallWithADescriptorPasses_data()
{
    addCallers();
}

void TestBusPolicy::noCallWithADescriptorPasses()
{
    QFETCH(Who, who);
    QVERIFY(m_world->start());
    const QStringList descriptor{QStringLiteral("@")};
    for (const char *method : {"launchIntent", "com.tovra.lumd.unknown", ".isRunning",
             "org.freedesktop.DBus.Peer.Ping", "org.freedesktop.DBus.Introspectable.Introspect",
             "org.freedesktop.DBus.Properties.Get"})
        QVERIFY2(isRefused(call(who, QString::fromLatin1(method), descriptor)), method);
}

void TestBusPolicy::noSignalWithADescriptorPasses_data()
{
    addCallers();
}

void TestBusPolicy::noSignalWithADescriptorPasses()
{
    QFETCH(Who, who);
    QCOMPARE(reloadUsers(Who::Root), QString());
    QDBusConnection bus = QDBusConnection::systemBus();
    QVERIFY(bus.connect(QString(), QString(), QStringLiteral("com.tovra.test"), QString(), this,
        SLOT(onSignal(QDBusMessage))));
    QVERIFY(bus.registerService(QStringLiteral("com.tovra.lumd")));
    m_signals.clear();
    call(who, QStringLiteral("com.tovra.test.Full"), {QStringLiteral("@")},
        QStringLiteral("signal"));
    call(who, QStringLiteral("com.tovra.test.Empty"), {}, QStringLiteral("signal"));
    QTRY_VERIFY(m_signals.contains(QStringLiteral("Empty")));
    QCOMPARE(m_signals, QStringList{QStringLiteral("Empty")});
    bus.unregisterService(QStringLiteral("com.tovra.lumd"));
    bus.disconnect(QString(), QString(), QStringLiteral("com.tovra.test"), QString(), this,
        SLOT(onSignal(QDBusMessage)));
}

void TestBusPolicy::whoMayCallGetsTheSignalsOfTheMonitorAndNobodyElse_data()
{
    addCallers();
}

void TestBusPolicy::whoMayCallGetsTheSignalsOfTheMonitorAndNobodyElse()
{
    QFETCH(Who, who);
    QVERIFY(m_world->start());
    QCOMPARE(reloadUsers(who), QString());
    ChildProcess listener;
    startCaller(listener, who, QStringLiteral("listening"), QStringLiteral("com.tovra.test"));
    QVERIFY(listener.waitForLine(QStringLiteral("listening")));
    m_world->systemd.setUnitState(QStringLiteral("activating"), QStringLiteral("start"));
    QVERIFY(m_world->daemon->waitForLine(QStringLiteral(
        "debug com.tovra.lumd.service Alien Dalvik is \"activating\" ( \"start\" )")));
    QVERIFY(DaemonFixture::settle());
    QDBusConnection::systemBus().send(
        QDBusMessage::createSignal(QStringLiteral("/com/tovra/lumd/monitor"),
            QStringLiteral("com.tovra.test"), QStringLiteral("End")));
    QVERIFY(listener.waitForLine(QStringLiteral("End")));
    QStringList told{
        QStringLiteral("listening"), QStringLiteral("PropertiesChanged"), QStringLiteral("End")};
    if (who == Who::Stranger)
        told.removeAt(1);
    QCOMPARE(listener.lines(), told);
}

void TestBusPolicy::nobodyButRootOwnsTheName_data()
{
    addCallers();
}

void TestBusPolicy::nobodyButRootOwnsTheName()
{
    QFETCH(Who, who);
    QCOMPARE(call(who, QStringLiteral("none"), {}, QStringLiteral("owner")),
        who == Who::Root ? QStringLiteral("true") : QStringLiteral("false"));
}

LUM_TEST_MAIN(TestBusPolicy)
#include "tst_buspolicy.moc"
