// SPDX-License-Identifier: BSD-3-Clause
#include "androidintent.h"
#include "androidparcel.h"
#include "servicesofalevel.h"
#include "wirebytes.h"

#include <QtTest>

#include <array>
#include <functional>
#include <vector>

using namespace Wire;

namespace {

QByteArray package()
{
    return string16(QStringLiteral("a.b"));
}

QByteArray intent(int sdk)
{
    return string16(QStringLiteral("act")) + word(0) + nullString()
        + (sdk >= 29 ? string16({}) : QByteArray()) + word(0) + nullString() + nullString()
        + word(0) + word(0) + word(0) + word(0) + word(-2) + word(-1);
}

QByteArray start(int sdk)
{
    return nullObject() + string16({}) + word(1) + intent(sdk) + nullString() + nullObject()
        + string16({}) + word(0) + word(0) + word(0) + word(0);
}

struct Request
{
    const char *service;
    const char *method;
    std::array<quint32, 3> codes; // 27, 28, 29; 0 where the level has no such method
    std::function<QByteArray(int sdk)> bytes;
    const char *arguments;
};

const std::vector<Request> &requests()
{
    static const auto packageAlone = [](int) { return package(); };
    static const std::vector<Request> all{
        {"activity", "startActivity", {3, 6, 7}, start, nullptr},
        {"activity", "forceStopPackage", {72, 77, 68}, [](int) { return package() + word(0); },
            R"({"package": "a.b"})"},
        {"alarm", "setTimeZone", {3, 3, 3}, packageAlone, R"({"zone": "a.b"})"},
        {"alien", "launchPackage", {1, 1, 1}, packageAlone, R"({"package": "a.b"})"},
        {"alien", "installPackage", {0, 2, 2}, [](int) { return package() + nullObject(); },
            R"({"path": "a.b", "observer": null})"},
        {"deviceidle", "addPowerSaveWhitelistApp", {1, 1, 1}, packageAlone,
            R"({"package": "a.b"})"},
        {"deviceidle", "removePowerSaveWhitelistApp", {2, 2, 2}, packageAlone,
            R"({"package": "a.b"})"},
        {"deviceidle", "isPowerSaveWhitelistApp", {13, 16, 16}, packageAlone,
            R"({"package": "a.b"})"},
        {"package", "getPackageUid", {5, 5, 5}, [](int) { return package() + word(9) + word(0); },
            R"({"package": "a.b", "flags": 9})"},
        {"package", "installPackageAsUser", {60, 0, 0},
            [](int) { return package() + nullObject() + word(66) + nullString() + word(0); },
            R"({"path": "a.b", "observer": null, "flags": 66, "installer": null})"},
        {"package", "deletePackageAsUser", {64, 63, 66},
            [](int) { return package() + word(-1) + nullObject() + word(0) + word(2); },
            R"({"package": "a.b", "version": -1, "observer": null, "flags": 2})"},
        {"package", "deleteApplicationCacheFilesAsUser", {100, 100, 103},
            [](int) { return package() + word(0) + nullObject(); },
            R"({"package": "a.b", "observer": null})"},
        {"package", "clearApplicationUserData", {101, 101, 104},
            [](int) { return package() + nullObject() + word(0); },
            R"({"package": "a.b", "observer": null})"},
        {"storagestats", "queryStatsForPackage", {6, 7, 7},
            [](int) { return nullString() + package() + word(0) + nullString(); },
            R"({"volume": null, "package": "a.b", "callingPackage": null})"},
        {"SurfaceFlinger", "hasWindow", {103, 103, 103}, packageAlone, R"({"package": "a.b"})"},
    };
    return all;
}

QJsonObject startArguments(int sdk)
{
    AndroidParcel parcel(intent(sdk));
    return {{QStringLiteral("caller"), QJsonValue()},
        {QStringLiteral("callingPackage"), QStringLiteral("")},
        {QStringLiteral("intent"), AndroidIntent::read(parcel, sdk).record},
        {QStringLiteral("resolvedType"), QJsonValue()}, {QStringLiteral("resultTo"), QJsonValue()},
        {QStringLiteral("resultWho"), QStringLiteral("")}, {QStringLiteral("requestCode"), 0},
        {QStringLiteral("startFlags"), 0}};
}

} // namespace

class TestAndroidServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestIsRead_data();
    void requestIsRead();
    void everyOtherCodeIsUnknown_data();
    void everyOtherCodeIsUnknown();
    void requestOfAnotherLengthIsRefused_data();
    void requestOfAnotherLengthIsRefused();
    void wrongRequestIsRefused_data();
    void wrongRequestIsRefused();

private:
    static void rowsOfAllRequests();
};

void TestAndroidServices::rowsOfAllRequests()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<int>("index");
    for (int sdk = 27; sdk <= 29; ++sdk) {
        for (size_t i = 0; i < requests().size(); ++i) {
            const Request &request = requests().at(i);
            if (request.codes.at(size_t(sdk - 27)) != 0)
                QTest::addRow("%d %s %s", sdk, request.service, request.method) << sdk << int(i);
        }
    }
}

void TestAndroidServices::requestIsRead_data()
{
    rowsOfAllRequests();
}

void TestAndroidServices::requestIsRead()
{
    QFETCH(int, sdk);
    QFETCH(int, index);
    const Request &request = requests().at(size_t(index));
    const Services services(sdk);
    AndroidParcel parcel(request.bytes(sdk));
    QString method;
    const AndroidService::Call call =
        services.service(QLatin1String(request.service))
            .read(request.codes.at(size_t(sdk - 27)), parcel, &method);
    QCOMPARE(parcel.error(), QString());
    QCOMPARE(method, QLatin1String(request.method));
    QCOMPARE(call.arguments,
        request.arguments ? QJsonDocument::fromJson(request.arguments).object()
                          : startArguments(sdk));
    QVERIFY(call.carryOut);
}

void TestAndroidServices::everyOtherCodeIsUnknown_data()
{
    QTest::addColumn<int>("sdk");
    QTest::newRow("27") << 27;
    QTest::newRow("28") << 28;
    QTest::newRow("29") << 29;
}

void TestAndroidServices::everyOtherCodeIsUnknown()
{
    QFETCH(int, sdk);
    const Services services(sdk);
    QMap<QString, QSet<quint32>> known;
    for (const Request &request : requests())
        known[QLatin1String(request.service)].insert(request.codes.at(size_t(sdk - 27)));
    for (auto it = known.cbegin(); it != known.cend(); ++it) {
        for (quint32 code = 0; code < 200; ++code) {
            if (code != 0 && it->contains(code))
                continue;
            AndroidParcel parcel(package());
            QString method;
            const AndroidService::Call call =
                services.service(it.key()).read(code, parcel, &method);
            QCOMPARE(parcel.error(),
                QStringLiteral("code %1 of \"%2\" is unknown before offset 0 of 12")
                    .arg(code)
                    .arg(it.key()));
            QCOMPARE(method, QStringLiteral("unknown"));
            QVERIFY(!call.carryOut);
        }
    }
}

void TestAndroidServices::requestOfAnotherLengthIsRefused_data()
{
    rowsOfAllRequests();
}

void TestAndroidServices::requestOfAnotherLengthIsRefused()
{
    QFETCH(int, sdk);
    QFETCH(int, index);
    const Request &request = requests().at(size_t(index));
    const quint32 code = request.codes.at(size_t(sdk - 27));
    const Services services(sdk);
    const AndroidService &service = services.service(QLatin1String(request.service));
    const QByteArray bytes = request.bytes(sdk);
    QString method;
    for (int size = 0; size < bytes.size(); ++size) {
        AndroidParcel parcel(bytes.left(size));
        service.read(code, parcel, &method);
        QVERIFY2(!parcel.ok(), qPrintable(QString::number(size)));
    }
    AndroidParcel parcel(bytes + word(0));
    service.read(code, parcel, &method);
    QVERIFY2(parcel.error().startsWith(QLatin1String("4 bytes left unread")),
        qPrintable(parcel.error()));
}

void TestAndroidServices::wrongRequestIsRefused_data()
{
    QTest::addColumn<QString>("service");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const char *service, quint32 code, const QByteArray &data,
                         const char *error) {
        QTest::newRow(name) << QString(QLatin1String(service)) << code << data
                            << QString(QLatin1String(error));
    };
    const QByteArray head = nullObject() + string16({}) + word(1) + intent(29) + nullString()
        + nullObject() + string16({}) + word(0) + word(0);
    row("force stop for another user", "activity", 68, package() + word(10), "user is 10");
    row("start without an Intent", "activity", 7, start(29).replace(32, 4, word(0)),
        "start without an Intent");
    row("start with profiler info", "activity", 7, head + word(1) + word(0),
        "start with profiler info");
    row("start with options", "activity", 7, head + word(0) + word(-1), "start with options");
    row("start with the Intent of 28", "activity", 7, start(28),
        "empty string16 without terminator");
    row("delete for all users", "package", 66,
        package() + word(-1) + nullObject() + word(-1) + word(2), "user is -1");
    row("delete with user and flags exchanged", "package", 66,
        package() + word(-1) + nullObject() + word(2) + word(0), "user is 2");
    row("cache with the arguments of user data", "package", 103, package() + nullObject() + word(0),
        "user is");
    row("user data with the arguments of cache", "package", 104, package() + word(0) + nullObject(),
        "object of type 0x00000000");
    row("sizes for another user", "storagestats", 7,
        nullString() + package() + word(1) + nullString(), "user is 1");
    row("sizes with package and volume alone", "storagestats", 7,
        nullString() + package() + word(0), "4 bytes wanted");
}

void TestAndroidServices::wrongRequestIsRefused()
{
    QFETCH(QString, service);
    QFETCH(quint32, code);
    QFETCH(QByteArray, data);
    QFETCH(QString, error);
    const Services services(29);
    AndroidParcel parcel(data);
    QString method;
    services.service(service).read(code, parcel, &method);
    QVERIFY2(parcel.error().startsWith(error), qPrintable(parcel.error()));
}

QTEST_APPLESS_MAIN(TestAndroidServices)
#include "tst_androidservices.moc"
