// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/daemonfixture.h"
#include "tests/daemon/interfacetext.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>

namespace {

QString introspection(const QString &path)
{
    const QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        path, QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"));
    return QDBusConnection::systemBus().call(message).arguments().value(0).toString();
}

QStringList interfacesIn(const QString &text)
{
    QStringList names;
    const QRegularExpression element(QStringLiteral("<interface name=\"([^\"]*)\""));
    auto matches = element.globalMatch(text);
    while (matches.hasNext())
        names.append(matches.next().captured(1));
    return names;
}

} // namespace

class TestBusInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void interfaceTextIsTheOneOnRecord();
    void nothingButTheInterfaceIsOnTheObject();
    void isRunningIsAnsweredInSilence();
    void internalSlotIsAnUnknownMethod_data();
    void internalSlotIsAnUnknownMethod();
    void callWithoutAnInterfaceIsServed();

private:
    std::unique_ptr<DaemonFixture> m_world;
};

void TestBusInterface::initTestCase()
{
    m_world = std::make_unique<DaemonFixture>();
    QVERIFY(m_world->start());
}

void TestBusInterface::interfaceTextIsTheOneOnRecord()
{
    const QString text = introspection(QStringLiteral("/com/tovra/lumd"));
    const int begin = text.indexOf(QLatin1String("  <interface name=\"com.tovra.lumd\">"));
    QVERIFY2(begin >= 0, qPrintable(text));
    const QString endTag = QStringLiteral("  </interface>\n");
    const int end = text.indexOf(endTag, begin) + endTag.size();
    QCOMPARE(text.mid(begin, end - begin).toUtf8(), QByteArray(interfaceText));
}

void TestBusInterface::nothingButTheInterfaceIsOnTheObject()
{
    const QStringList standard{QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("org.freedesktop.DBus.Introspectable"),
        QStringLiteral("org.freedesktop.DBus.Peer")};
    QCOMPARE(interfacesIn(introspection(QStringLiteral("/com/tovra/lumd"))),
        QStringList{QStringLiteral("com.tovra.lumd")} + standard);
    const QString parent = introspection(QStringLiteral("/com/tovra"));
    QCOMPARE(interfacesIn(parent).filter(QStringLiteral("tovra")), QStringList());
    QVERIFY2(parent.contains(QStringLiteral("<node name=\"lumd\"/>")), qPrintable(parent));
}

void TestBusInterface::isRunningIsAnsweredInSilence()
{
    for (const char *state : {"active", "inactive"}) {
        m_world->systemd.setUnitState(QString::fromLatin1(state), QStringLiteral("test"));
        QVERIFY(m_world->daemon->waitForLine(
            QStringLiteral("debug com.tovra.lumd.service Alien Dalvik is \"%1\" ( \"test\" )")
                .arg(QLatin1String(state))));
        const QDBusMessage reply = DaemonFixture::call(QStringLiteral("isRunning"));
        QCOMPARE(errorOf(reply), QString());
        QCOMPARE(reply.signature(), QStringLiteral("b"));
        QCOMPARE(reply.arguments(), QVariantList{false});
    }
    m_world->daemon->kill(); // all that it printed is read then
    const QRegularExpression followsTheUnit(
        QStringLiteral("^debug com\\.tovra\\.lumd\\.(service|binder) "));
    for (const QString &line : m_world->daemon->lines())
        QVERIFY2(line.contains(followsTheUnit), qPrintable(line));
}

void TestBusInterface::internalSlotIsAnUnknownMethod_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");

    // The second is none: all that the object offers is looked through then. The third is the one
    // under which Qt would offer the slots of the daemon itself.
    for (const char *interface : {"com.tovra.lumd", "", "local.LumDaemon"}) {
        const auto row = [interface](const char *method, const QVariantList &arguments) {
            QTest::addRow("%s of '%s'", method, interface)
                << QString::fromLatin1(interface) << QString::fromLatin1(method) << arguments;
        };
        const QVariant text = QStringLiteral("com.foo");
        row("publishNotification", {text, true});
        row("onNotifyInstallationResult", {true, text, text});
        row("onNotifyUninstallationResult", {true, text});
        row("onAlienServiceAvailable", {true});
        row("onPackageManagerAvailable", {true});
        row("onActivityManagerAvailable", {true});
        row("installFile", {text, 0});
        row("launchIntent", {text, text, text, text, text, text});
        row("deleteLater", {});
        row("installPackage", {text});
    }
}

void TestBusInterface::internalSlotIsAnUnknownMethod()
{
    QFETCH(QString, interface);
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("com.tovra.lumd"), QStringLiteral("/com/tovra/lumd"), interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = QDBusConnection::systemBus().call(message);
    QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    const QString error = QStringLiteral("org.freedesktop.DBus.Error.Unknown");
    QCOMPARE(reply.errorName(),
        error
            + (interface.startsWith(QLatin1String("local")) ? QLatin1String("Interface")
                                                            : QLatin1String("Method")));
}

void TestBusInterface::callWithoutAnInterfaceIsServed()
{
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        QStringLiteral("/com/tovra/lumd"), QString(), QStringLiteral("isRunning"));
    const QDBusMessage reply = QDBusConnection::systemBus().call(message);
    QCOMPARE(errorOf(reply), QString());
    QCOMPARE(reply.arguments(), QVariantList{false});
}

LUM_TEST_MAIN(TestBusInterface)
#include "tst_businterface.moc"
