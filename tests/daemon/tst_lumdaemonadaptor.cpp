// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/lumdaemonadaptor.h"

#include "tests/daemon/interfacetext.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <functional>

namespace {

QString text(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString text(const AppSizeInfo &info)
{
    return QStringLiteral("%1 %2 %3").arg(info.codeBytes).arg(info.dataBytes).arg(info.cacheBytes);
}

QString text(const QVariantMap &map)
{
    QStringList entries;
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry)
        entries.append(entry.key() + QLatin1Char('=') + entry.value().toString());
    return entries.join(QLatin1Char(' '));
}

/// Calls one method and gives its result as text, empty for a method without one.
using Call = std::function<QString(LumDaemonAdaptor &)>;

} // namespace

Q_DECLARE_METATYPE(Call)

/// Has every slot and signal that the adaptor looks for, and results that are no defaults.
class RecordingParent : public QObject
{
    Q_OBJECT

public:
    QStringList calls;

public Q_SLOTS:
    bool installFile(const QString &filename) { return note("installFile", {filename}); }
    bool installPreloadFile(const QString &filename)
    {
        return note("installPreloadFile", {filename});
    }
    bool installPartnerSpaceFile(const QString &filename)
    {
        return note("installPartnerSpaceFile", {filename});
    }
    bool removeFile(const QString &filename) { return note("removeFile", {filename}); }
    qulonglong getAndroidAppDataUsage()
    {
        note("getAndroidAppDataUsage");
        return ULLONG_MAX;
    }
    void controlService(bool start) { note("controlService", {text(start)}); }
    void controlServiceAutostart(bool enable) { note("controlServiceAutostart", {text(enable)}); }
    void notifyRuntimeUpgrade(bool upgrading) { note("notifyRuntimeUpgrade", {text(upgrading)}); }
    bool getAppStartOnBootup(const QString &packageName)
    {
        return note("getAppStartOnBootup", {packageName});
    }
    void setAppStartOnBootup(const QString &packageName, bool autoStartAllowed)
    {
        note("setAppStartOnBootup", {packageName, text(autoStartAllowed)});
    }
    void deleteAppCacheFiles(const QString &packageName)
    {
        note("deleteAppCacheFiles", {packageName});
    }
    void clearAppUserData(const QString &packageName) { note("clearAppUserData", {packageName}); }
    void forceStopApp(const QString &packageName) { note("forceStopApp", {packageName}); }
    AppSizeInfo getAppSize(const QString &packageName)
    {
        note("getAppSize", {packageName});
        return {1, -2, LLONG_MAX};
    }
    void openAppSettings(const QString &packageName) { note("openAppSettings", {packageName}); }
    void viewLicenses() { note("viewLicenses"); }
    void launchApp(const QString &packageName) { note("launchApp", {packageName}); }
    void launchIntent(const QString &action, const QString &data, const QString &type,
        const QString &packageName, const QString &className, const QString &category,
        const QVariantMap &extras)
    {
        note("launchIntent", {action, data, type, packageName, className, category, text(extras)});
    }

Q_SIGNALS:
    void installPackage(const QString &filename);
    void uninstallPackage(const QString &filename);
    void installPackageFromRPM(const QString &filename);
    void uninstallPackageFromRPM(const QString &filename);
    void appStartOnBootupChanged(const QString &package, bool autoStartAllowed);

private:
    bool note(const char *name, const QStringList &arguments = {})
    {
        calls.append(QLatin1String(name) + QLatin1Char('(') + arguments.join(QLatin1Char('|'))
            + QLatin1Char(')'));
        return true;
    }
};

class TestLumDaemonAdaptor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void slotCallsItsNamesakeAndHandsBackTheResult_data();
    void slotCallsItsNamesakeAndHandsBackTheResult();
    void parentWithoutTheSlotGivesTheDefault_data();
    void parentWithoutTheSlotGivesTheDefault();
    void isRunningIsFalseAndAsksNobody();
    void signalIsRelayed_data();
    void signalIsRelayed();
    void interfaceTextIsTheOneOnRecord();
    void everyMethodOfTheInterfaceIsASlot();
};

void TestLumDaemonAdaptor::slotCallsItsNamesakeAndHandsBackTheResult_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("forwarded");
    QTest::addColumn<QString>("result");

    const auto row = [](const char *name, const Call &call, const char *arguments,
                         const QString &result = {}) {
        QTest::newRow(name) << call
                            << QLatin1String(name) + QLatin1Char('(') + QString::fromUtf8(arguments)
                + QLatin1Char(')')
                            << result;
    };
    using Adaptor = LumDaemonAdaptor;
    const QString yes = text(true);
    const QString name = QStringLiteral("com.foo");
    const QString file = QStringLiteral("/tmp/\u00e4 b.apk");
    row(
        "installFile", [=](Adaptor &a) { return text(a.installFile(file)); }, "/tmp/\u00e4 b.apk",
        yes);
    row(
        "installPreloadFile", [=](Adaptor &a) { return text(a.installPreloadFile(file)); },
        "/tmp/\u00e4 b.apk", yes);
    row(
        "installPartnerSpaceFile",
        [=](Adaptor &a) { return text(a.installPartnerSpaceFile(file)); }, "/tmp/\u00e4 b.apk",
        yes);
    row(
        "removeFile", [=](Adaptor &a) { return text(a.removeFile(file)); }, "/tmp/\u00e4 b.apk",
        yes);
    row(
        "getAndroidAppDataUsage",
        [](Adaptor &a) { return QString::number(a.getAndroidAppDataUsage()); }, "",
        QStringLiteral("18446744073709551615"));
    row("controlService", [](Adaptor &a) { return a.controlService(true), QString(); }, "true");
    row(
        "controlServiceAutostart",
        [](Adaptor &a) { return a.controlServiceAutostart(true), QString(); }, "true");
    row(
        "notifyRuntimeUpgrade", [](Adaptor &a) { return a.notifyRuntimeUpgrade(true), QString(); },
        "true");
    row(
        "getAppStartOnBootup", [=](Adaptor &a) { return text(a.getAppStartOnBootup(name)); },
        "com.foo", yes);
    row(
        "setAppStartOnBootup",
        [=](Adaptor &a) { return a.setAppStartOnBootup(name, true), QString(); }, "com.foo|true");
    row(
        "deleteAppCacheFiles", [=](Adaptor &a) { return a.deleteAppCacheFiles(name), QString(); },
        "com.foo");
    row(
        "clearAppUserData", [=](Adaptor &a) { return a.clearAppUserData(name), QString(); },
        "com.foo");
    row("forceStopApp", [=](Adaptor &a) { return a.forceStopApp(name), QString(); }, "com.foo");
    row(
        "getAppSize", [=](Adaptor &a) { return text(a.getAppSize(name)); }, "com.foo",
        QStringLiteral("1 -2 9223372036854775807"));
    row(
        "openAppSettings", [=](Adaptor &a) { return a.openAppSettings(name), QString(); },
        "com.foo");
    row("viewLicenses", [](Adaptor &a) { return a.viewLicenses(), QString(); }, "");
    row("launchApp", [=](Adaptor &a) { return a.launchApp(name), QString(); }, "com.foo");
    row(
        "launchIntent",
        [](Adaptor &a) {
            a.launchIntent(QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                QStringLiteral("4"), QStringLiteral("5"), QStringLiteral("6"),
                {{QStringLiteral("a"), 7}, {QStringLiteral("b"), QStringLiteral("8")}});
            return QString();
        },
        "1|2|3|4|5|6|a=7 b=8");
}

void TestLumDaemonAdaptor::slotCallsItsNamesakeAndHandsBackTheResult()
{
    QFETCH(Call, call);
    QFETCH(QString, forwarded);
    QFETCH(QString, result);
    RecordingParent parent;
    LumDaemonAdaptor adaptor(&parent);

    QCOMPARE(call(adaptor), result);
    QCOMPARE(parent.calls, QStringList{forwarded});
}

void TestLumDaemonAdaptor::parentWithoutTheSlotGivesTheDefault_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("result");

    using Adaptor = LumDaemonAdaptor;
    const QString no = text(false);
    const QString name = QStringLiteral("com.foo");
    QTest::newRow("installFile") << Call([=](Adaptor &a) { return text(a.installFile(name)); })
                                 << no;
    QTest::newRow("installPreloadFile")
        << Call([=](Adaptor &a) { return text(a.installPreloadFile(name)); }) << no;
    QTest::newRow("installPartnerSpaceFile")
        << Call([=](Adaptor &a) { return text(a.installPartnerSpaceFile(name)); }) << no;
    QTest::newRow("removeFile") << Call([=](Adaptor &a) { return text(a.removeFile(name)); }) << no;
    QTest::newRow("getAndroidAppDataUsage")
        << Call([](Adaptor &a) { return QString::number(a.getAndroidAppDataUsage()); })
        << QStringLiteral("0");
    QTest::newRow("getAppStartOnBootup")
        << Call([=](Adaptor &a) { return text(a.getAppStartOnBootup(name)); }) << no;
    QTest::newRow("getAppSize") << Call([=](Adaptor &a) { return text(a.getAppSize(name)); })
                                << QStringLiteral("0 0 0");
}

void TestLumDaemonAdaptor::parentWithoutTheSlotGivesTheDefault()
{
    QFETCH(Call, call);
    LogCapture qtWarnsOfTheMissingSlot;
    QObject parent;
    LumDaemonAdaptor adaptor(&parent);
    QTEST(call(adaptor), "result");
}

void TestLumDaemonAdaptor::isRunningIsFalseAndAsksNobody()
{
    const LogCapture log;
    QObject parent;
    LumDaemonAdaptor adaptor(&parent);
    QVERIFY(!adaptor.isRunning());
    QCOMPARE(log.lines(), QStringList());
}

void TestLumDaemonAdaptor::signalIsRelayed_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QVariantList>("arguments");

    const auto row = [](const char *name, const char *parameters, const QVariantList &arguments) {
        const QByteArray signal = QByteArray(name) + parameters;
        QTest::newRow(name) << QByteArray(name) << QByteArray(QByteArray("2") + signal)
                            << arguments;
    };
    const QVariantList file{QStringLiteral("/tmp/a.apk")};
    row("installPackage", "(QString)", file);
    row("uninstallPackage", "(QString)", file);
    row("installPackageFromRPM", "(QString)", file);
    row("uninstallPackageFromRPM", "(QString)", file);
    row("appStartOnBootupChanged", "(QString,bool)", {QStringLiteral("com.foo"), true});
}

void TestLumDaemonAdaptor::signalIsRelayed()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, signal);
    QFETCH(QVariantList, arguments);
    RecordingParent parent;
    const QGenericArgument second = arguments.size() > 1
        ? QGenericArgument("bool", arguments.at(1).constData())
        : QGenericArgument();
    const auto emitSignal = [&] {
        return QMetaObject::invokeMethod(&parent, name.constData(),
            QGenericArgument("QString", arguments.at(0).constData()), second);
    };
    QVERIFY(emitSignal()); // before there is an adaptor: lost
    LumDaemonAdaptor adaptor(&parent);
    QSignalSpy spy(&adaptor, signal.constData());
    QVERIFY(emitSignal());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first(), arguments);
}

void TestLumDaemonAdaptor::interfaceTextIsTheOneOnRecord()
{
    const auto info = [](const char *name) {
        const QMetaObject &meta = LumDaemonAdaptor::staticMetaObject;
        return QByteArray(meta.classInfo(meta.indexOfClassInfo(name)).value());
    };
    QCOMPARE(info("D-Bus Interface"), QByteArray("com.tovra.lumd"));
    QCOMPARE(info("D-Bus Introspection"), QByteArray(interfaceText));
}

void TestLumDaemonAdaptor::everyMethodOfTheInterfaceIsASlot()
{
    const QMetaObject &meta = LumDaemonAdaptor::staticMetaObject;
    QStringList members;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const bool isSignal = meta.method(i).methodType() == QMetaMethod::Signal;
        members.append((isSignal ? QStringLiteral("signal ") : QStringLiteral("method "))
            + QString::fromLatin1(meta.method(i).name()));
    }

    QStringList expected;
    const QRegularExpression element(QStringLiteral("<(method|signal) name=\"(\\w+)\""));
    auto matches = element.globalMatch(QLatin1String(interfaceText));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        expected.append(match.captured(1) + QLatin1Char(' ') + match.captured(2));
    }
    members.sort();
    expected.sort();
    QCOMPARE(expected.size(), 24);
    QCOMPARE(members, expected);
}

LUM_TEST_MAIN(TestLumDaemonAdaptor)
#include "tst_lumdaemonadaptor.moc"
