// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/daemonfixture.h"
#include "tests/daemon/interfacetext.h"
#include "tests/support/testmain.h"

#include <QDBusArgument>
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

/// A result as "signature value".
QString resultText(const QDBusMessage &reply)
{
    QStringList values;
    for (const QVariant &argument : reply.arguments()) {
        if (argument.userType() != qMetaTypeId<QDBusArgument>()) {
            values.append(argument.toString());
            continue;
        }
        const auto structure = argument.value<QDBusArgument>();
        structure.beginStructure();
        while (!structure.atEnd())
            values.append(structure.asVariant().toString());
        structure.endStructure();
    }
    return (QStringList{reply.signature()} + values).join(QLatin1Char(' ')).trimmed();
}

} // namespace

class TestBusInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void interfaceTextIsTheOneOnRecord();
    void nothingButTheInterfaceIsOnTheObject();
    void methodWithoutAFlowAnswersWithTheDefault_data();
    void methodWithoutAFlowAnswersWithTheDefault();
    void internalSlotIsAnUnknownMethod_data();
    void internalSlotIsAnUnknownMethod();

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

void TestBusInterface::methodWithoutAFlowAnswersWithTheDefault_data()
{
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("result");

    const QVariantList text{QStringLiteral("com.foo")};
    const QVariantList flag{false};
    QTest::newRow("installFile") << text << QStringLiteral("b false");
    QTest::newRow("installPreloadFile") << text << QStringLiteral("b false");
    QTest::newRow("installPartnerSpaceFile") << text << QStringLiteral("b false");
    QTest::newRow("removeFile") << text << QStringLiteral("b false");
    QTest::newRow("getAndroidAppDataUsage") << QVariantList() << QStringLiteral("t 0");
    QTest::newRow("controlService") << flag << QString();
    QTest::newRow("controlServiceAutostart") << flag << QString();
    QTest::newRow("isRunning") << QVariantList() << QStringLiteral("b false");
    QTest::newRow("notifyRuntimeUpgrade") << flag << QString();
    QTest::newRow("getAppStartOnBootup") << text << QStringLiteral("b false");
    QTest::newRow("setAppStartOnBootup") << text + flag << QString();
    QTest::newRow("deleteAppCacheFiles") << text << QString();
    QTest::newRow("clearAppUserData") << text << QString();
    QTest::newRow("forceStopApp") << text << QString();
    QTest::newRow("getAppSize") << text << QStringLiteral("(xxx) 0 0 0");
    QTest::newRow("openAppSettings") << text << QString();
    QTest::newRow("viewLicenses") << QVariantList() << QString();
    QTest::newRow("launchApp") << text << QString();
    QTest::newRow("launchIntent") << text + text + text + text + text + text
            + QVariantList{QVariantMap{{QStringLiteral("key"), 1}}}
                                  << QString();
}

void TestBusInterface::methodWithoutAFlowAnswersWithTheDefault()
{
    QFETCH(QVariantList, arguments);
    const QDBusMessage reply =
        DaemonFixture::call(QString::fromLatin1(QTest::currentDataTag()), arguments);
    QCOMPARE(errorOf(reply), QString());
    QTEST(resultText(reply), "result");
}

void TestBusInterface::internalSlotIsAnUnknownMethod_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");

    const QVariant text = QStringLiteral("com.foo");
    const QVariantList flag{true};
    const auto row = [](const char *tag, const char *method, const QVariantList &arguments) {
        QTest::newRow(tag) << QString::fromLatin1(method) << arguments;
    };
    row("triggerPackageMod", "triggerPackageMod", {text});
    row("publishNotification", "publishNotification", {text, true});
    row("installFile with a source", "installFile", {text, 0});
    row("launchIntent without extras", "launchIntent", {text, text, text, text, text, text});
    row("onNotifyInstallationResult", "onNotifyInstallationResult", {true, text, text});
    row("onNotifyUninstallationResult", "onNotifyUninstallationResult", {true, text});
    row("onAlienServiceAvailable", "onAlienServiceAvailable", flag);
    row("onPackageManagerAvailable", "onPackageManagerAvailable", flag);
    row("onActivityManagerAvailable", "onActivityManagerAvailable", flag);
    row("deleteLater", "deleteLater", {});
}

void TestBusInterface::internalSlotIsAnUnknownMethod()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    const QDBusMessage reply = DaemonFixture::call(method, arguments);
    QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
}

LUM_TEST_MAIN(TestBusInterface)
#include "tst_businterface.moc"
