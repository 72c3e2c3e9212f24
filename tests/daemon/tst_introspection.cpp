// SPDX-License-Identifier: BSD-3-Clause
// What the objects say of themselves, and what is installed for those who make code from it.
#include "tests/daemon/daemonfixture.h"
#include "tests/daemon/interfacetext.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>

namespace {

const char *TextBefore =
    "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\"\n"
    "\"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n"
    "<node>\n";

const char *StandardInterfaces = R"xml(  <interface name="org.freedesktop.DBus.Properties">
    <method name="Get">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="out"/>
    </method>
    <method name="Set">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="in"/>
    </method>
    <method name="GetAll">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="values" type="a{sv}" direction="out"/>
      <annotation name="org.qtproject.QtDBus.QtTypeName.Out0" value="QVariantMap"/>
    </method>
    <signal name="PropertiesChanged">
      <arg name="interface_name" type="s" direction="out"/>
      <arg name="changed_properties" type="a{sv}" direction="out"/>
      <annotation name="org.qtproject.QtDBus.QtTypeName.Out1" value="QVariantMap"/>
      <arg name="invalidated_properties" type="as" direction="out"/>
    </signal>
  </interface>
  <interface name="org.freedesktop.DBus.Introspectable">
    <method name="Introspect">
      <arg name="xml_data" type="s" direction="out"/>
    </method>
  </interface>
  <interface name="org.freedesktop.DBus.Peer">
    <method name="Ping"/>
    <method name="GetMachineId">
      <arg name="machine_uuid" type="s" direction="out"/>
    </method>
  </interface>
</node>
)xml";

const QString object = QStringLiteral("/com/tovra/lumd");
const QString introspectable = QStringLiteral("org.freedesktop.DBus.Introspectable");

QDBusMessage introspect(
    const QString &path, const QString &interface, const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("com.tovra.lumd"), path, interface, QStringLiteral("Introspect"));
    message.setArguments(arguments);
    return QDBusConnection::systemBus().call(message);
}

QByteArray textOf(const QDBusMessage &reply)
{
    return (errorOf(reply) + reply.arguments().value(0).toString()).toUtf8();
}

/// From the first interface's start to the end of that interface.
QByteArray firstInterface(const QByteArray &text)
{
    const QByteArray end("  </interface>\n");
    const int begin = text.indexOf("  <interface ");
    return text.mid(begin, text.indexOf(end, begin) + end.size() - begin);
}

} // namespace

class TestIntrospection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void objectReadsAsItDidBeforeThereWasAnotherOne_data();
    void objectReadsAsItDidBeforeThereWasAnotherOne();
    void introspectTakesNoArgument();
    void installedTextIsThatOfTheObject_data();
    void installedTextIsThatOfTheObject();
    void monitorIsIntrospectable();

private:
    std::unique_ptr<DaemonFixture> m_world;
};

void TestIntrospection::initTestCase()
{
    m_world = std::make_unique<DaemonFixture>();
    QVERIFY(m_world->start());
}

void TestIntrospection::objectReadsAsItDidBeforeThereWasAnotherOne_data()
{
    QTest::addColumn<QString>("interface");
    QTest::newRow("by its interface") << introspectable;
    QTest::newRow("without an interface") << QString();
}

void TestIntrospection::objectReadsAsItDidBeforeThereWasAnotherOne()
{
    QFETCH(QString, interface);
    QCOMPARE(textOf(introspect(object, interface)),
        QByteArray(TextBefore) + interfaceText + StandardInterfaces);
}

void TestIntrospection::introspectTakesNoArgument()
{
    const QDBusMessage reply = introspect(object, introspectable, {true});
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
}

void TestIntrospection::installedTextIsThatOfTheObject_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("path");
    QTest::newRow("old") << QStringLiteral("com.tovra.lumd.xml") << object;
    QTest::newRow("monitor") << QStringLiteral("com.tovra.lumd.Monitor1.xml")
                             << object + QStringLiteral("/monitor");
}

void TestIntrospection::installedTextIsThatOfTheObject()
{
    QFETCH(QString, file);
    QFETCH(QString, path);
    const QByteArray installed = fileContents(QStringLiteral(INTERFACES "/") + file);
    QVERIFY(installed.contains("<interface name=\"" + file.chopped(4).toUtf8() + "\">"));
    QCOMPARE(firstInterface(installed), firstInterface(textOf(introspect(path, introspectable))));
    QCOMPARE(installed.count("<interface "), 1);
}

void TestIntrospection::monitorIsIntrospectable()
{
    const QByteArray text = textOf(introspect(object + QStringLiteral("/monitor"), introspectable));
    QCOMPARE(text, TextBefore + firstInterface(text) + StandardInterfaces);
}

LUM_TEST_MAIN(TestIntrospection)
#include "tst_introspection.moc"
