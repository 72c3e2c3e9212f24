// SPDX-License-Identifier: BSD-3-Clause
#include "requestheader.h"
#include "servicesofalevel.h"
#include "wirebytes.h"

#include <QtTest>

using namespace Wire;

namespace {

const char *const NameNotFound = "android.content.pm.PackageManager$NameNotFoundException";

QByteArray text(const char *ascii)
{
    return string16(QString::fromLatin1(ascii));
}

/// A call as Android's own client makes it.
AndroidService::Reading take(AndroidService &service, int sdk, const char *interface, quint32 code,
    const QByteArray &arguments)
{
    return service.take(
        code, RequestHeader::toParcel(sdk, QString::fromLatin1(interface)) + arguments, false);
}

AndroidService::Reading askForSizes(const Services &services, int sdk)
{
    return take(services.service(QStringLiteral("storagestats")), sdk,
        "android.app.usage.IStorageStatsManager", sdk == 27 ? 6 : 7,
        nullString() + text("a.b") + word(0) + nullString());
}

/// The stack trace behind an exception's message, as the service sends it.
QByteArray stackTrace(const char *interface)
{
    const QByteArray trace = string16(QStringLiteral("\tat %1$Stub.onTransact(Unknown Source:0)\n")
            .arg(QString::fromLatin1(interface)));
    return word(4 + trace.size()) + trace;
}

QByteArray startOf(const QByteArray &extras)
{
    const QByteArray intent = text("act") + word(0) + nullString() + word(0) + text("a.b")
        + nullString() + word(0) + word(0) + word(0) + word(0) + word(-2) + extras;
    return nullObject() + string16({}) + word(1) + intent + nullString() + nullObject()
        + string16({}) + word(0) + word(0) + word(0) + word(0);
}

} // namespace

class TestAndroidAnswers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizesAreAnswered();
    void unknownPackageHasNoSizes_data();
    void unknownPackageHasNoSizes();
    void stackTraceIsSentOnceASecond();
    void wrongInterfaceIsASecurityException_data();
    void wrongInterfaceIsASecurityException();
    void nativeServiceDeniesAWrongInterface_data();
    void nativeServiceDeniesAWrongInterface();
    void unknownCodeIsAnsweredWithItsStatus();
    void damagedArgumentsAreRefused();
    void damagedExtrasDoNotStopTheStart();
    void strictModeOfTheCallerIsRecorded();
    void callThatIsMadeToFailFailsThatWay();
    void unknownTimeZoneBecomesGmt();
    void clearingIsAnsweredBeforeItIsDone();
};

void TestAndroidAnswers::sizesAreAnswered()
{
    Services services(28);
    AndroidApp app;
    app.package = QStringLiteral("a.b");
    app.codeBytes = 1;
    app.dataBytes = 2;
    app.cacheBytes = 3;
    QVERIFY(services.apps().add(app));
    const AndroidService::Answer answer = askForSizes(services, 28).answer();
    QCOMPARE(answer.status, 0);
    QCOMPARE(
        answer.data.toHex(), (word(0) + word(1) + longWord(1) + longWord(2) + longWord(3)).toHex());
}

void TestAndroidAnswers::unknownPackageHasNoSizes_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<QByteArray>("trace");
    const QByteArray trace = stackTrace("android.app.usage.IStorageStatsManager");
    QTest::newRow("27") << 27 << QByteArray();
    QTest::newRow("28") << 28 << trace;
    QTest::newRow("29") << 29 << trace;
}

void TestAndroidAnswers::unknownPackageHasNoSizes()
{
    QFETCH(int, sdk);
    QFETCH(QByteArray, trace);
    const Services services(sdk);
    const AndroidService::Reading reading = askForSizes(services, sdk);
    QVERIFY(!reading.record.contains(QStringLiteral("error")));
    const AndroidService::Answer answer = reading.answer();
    QCOMPARE(answer.status, 0);
    const QByteArray cause =
        text("android.os.ParcelableException") + text(NameNotFound) + text("a.b");
    QCOMPARE(answer.data.toHex(),
        (word(-9) + string16(QString::fromLatin1(NameNotFound) + QStringLiteral(": a.b")) + trace
            + word(4 + cause.size()) + cause)
            .toHex());
}

void TestAndroidAnswers::stackTraceIsSentOnceASecond()
{
    const Services services(29);
    const int traced = askForSizes(services, 29).answer().data.size();
    const int trace = stackTrace("android.app.usage.IStorageStatsManager").size() - 4;
    const auto comes = [&services](int size) {
        return QTest::qWaitFor(
            [&] { return askForSizes(services, 29).answer().data.size() == size; }, 20000);
    };
    // on a slow machine not every two calls lie within a second
    QVERIFY(comes(traced - trace));
    QVERIFY(comes(traced));
}

void TestAndroidAnswers::wrongInterfaceIsASecurityException_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<QByteArray>("trace");
    QTest::newRow("27") << 27 << QByteArray();
    QTest::newRow("28") << 28 << stackTrace("android.app.IAlarmManager");
    QTest::newRow("29") << 29 << stackTrace("android.app.IAlarmManager");
}

void TestAndroidAnswers::wrongInterfaceIsASecurityException()
{
    QFETCH(int, sdk);
    QFETCH(QByteArray, trace);
    const Services services(sdk);
    const AndroidService::Reading reading =
        take(services.service(QStringLiteral("alarm")), sdk, "android.app.IOther", 3, text("UTC"));
    QVERIFY(reading.record.value(QStringLiteral("error"))
            .toString()
            .startsWith(QLatin1String("interface is \"android.app.IOther\"")));
    const AndroidService::Answer answer = reading.answer();
    QCOMPARE(answer.status, 0);
    QCOMPARE(answer.data.toHex(),
        (word(-1) + text("Binder invocation to an incorrect interface") + trace).toHex());
    QVERIFY(services.timeZone().isNull());
}

void TestAndroidAnswers::nativeServiceDeniesAWrongInterface_data()
{
    QTest::addColumn<QString>("service");
    QTest::addColumn<quint32>("code");
    QTest::newRow("SurfaceFlinger") << QStringLiteral("SurfaceFlinger") << 103U;
    QTest::newRow("alien") << QStringLiteral("alien") << 1U;
}

void TestAndroidAnswers::nativeServiceDeniesAWrongInterface()
{
    QFETCH(QString, service);
    QFETCH(quint32, code);
    const Services services(29);
    const AndroidService::Answer answer =
        take(services.service(service), 29, "android.app.IOther", code, text("a.b")).answer();
    QCOMPARE(answer.status, -1);
    QCOMPARE(answer.data, QByteArray());
    QCOMPARE(services.windows().packages(), QStringList());
}

void TestAndroidAnswers::unknownCodeIsAnsweredWithItsStatus()
{
    const Services services(29);
    const AndroidService::Reading reading =
        take(services.service(QStringLiteral("alarm")), 29, "android.app.IOther", 99, {});
    QVERIFY(reading.record.value(QStringLiteral("error"))
            .toString()
            .startsWith(QLatin1String("code 99 of \"alarm\" is unknown")));
    QCOMPARE(reading.answer().status, -74);
}

void TestAndroidAnswers::damagedArgumentsAreRefused()
{
    const Services services(29);
    const AndroidService::Reading reading = take(services.service(QStringLiteral("alarm")), 29,
        "android.app.IAlarmManager", 3, text("UTC") + word(0));
    QVERIFY(reading.record.contains(QStringLiteral("error")));
    QCOMPARE(reading.answer().status, -22);
    QVERIFY(services.timeZone().isNull());
}

void TestAndroidAnswers::damagedExtrasDoNotStopTheStart()
{
    Services services(28);
    AndroidApp app;
    app.package = QStringLiteral("a.b");
    QVERIFY(services.apps().add(app));
    const AndroidService::Reading reading = take(services.service(QStringLiteral("activity")), 28,
        "android.app.IActivityManager", 6, startOf(bundle(1, text("list"))));
    QCOMPARE(reading.record.value(QStringLiteral("error")),
        QJsonValue(QStringLiteral("4 bytes wanted before offset 20 of 20")));
    QVERIFY(reading.record.contains(QStringLiteral("data")));
    const AndroidService::Answer answer = reading.answer();
    QCOMPARE(answer.status, 0);
    QCOMPARE(answer.data, word(0) + word(0));
    QCOMPARE(services.windows().packages(), QStringList{QStringLiteral("a.b")});
}

void TestAndroidAnswers::strictModeOfTheCallerIsRecorded()
{
    const Services services(29);
    const AndroidService::Reading reading = take(
        services.service(QStringLiteral("alarm")), 29, "android.app.IAlarmManager", 3, text("UTC"));
    QCOMPARE(reading.record.value(QStringLiteral("strictMode")), QJsonValue(qint32(0x80000000)));
}

void TestAndroidAnswers::callThatIsMadeToFailFailsThatWay()
{
    const Services services(27);
    AndroidService &alarm = services.service(QStringLiteral("alarm"));
    const auto call = [&alarm] {
        return take(alarm, 27, "android.app.IAlarmManager", 3, text("UTC"));
    };
    alarm.failNext({-32, 0});
    QCOMPARE(call().answer().status, -32);
    alarm.failNext({0, -5});
    const AndroidService::Reading failed = call();
    QVERIFY(failed.record.contains(QStringLiteral("failed")));
    QCOMPARE(failed.answer().data, word(-5) + text("made to fail"));
    QVERIFY(services.timeZone().isNull());
    QCOMPARE(call().answer().data, word(0));
    QCOMPARE(services.timeZone(), QStringLiteral("UTC"));
}

void TestAndroidAnswers::unknownTimeZoneBecomesGmt()
{
    const Services services(29);
    AndroidService &alarm = services.service(QStringLiteral("alarm"));
    for (const auto &[zone, set] : {std::pair("Asia/Tokyo", "Asia/Tokyo"),
             std::pair("", "Asia/Tokyo"), std::pair("Middle/Earth", "GMT")}) {
        const AndroidService::Answer answer =
            take(alarm, 29, "android.app.IAlarmManager", 3, text(zone)).answer();
        QCOMPARE(answer.data, word(0));
        QCOMPARE(services.timeZone(), QLatin1String(set));
    }
}

void TestAndroidAnswers::clearingIsAnsweredBeforeItIsDone()
{
    Services services(29);
    AndroidApp app;
    app.package = QStringLiteral("a.b");
    app.dataBytes = 700;
    QVERIFY(services.apps().add(app));
    AndroidService &packages = services.service(QStringLiteral("package"));
    const AndroidService::Answer answer = take(packages, 29, "android.content.pm.IPackageManager",
        104, text("a.b") + nullObject() + word(0))
                                              .answer();
    QCOMPARE(answer.data, word(0));
    QCOMPARE(services.apps().app(app.package).dataBytes, qint64(700));
    QTRY_COMPARE(services.apps().app(app.package).dataBytes, qint64(0));
}

QTEST_GUILESS_MAIN(TestAndroidAnswers)
#include "tst_androidanswers.moc"
