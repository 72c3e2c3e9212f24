// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

#include <QDBusArgument>
#include <QDBusConnection>

#include <limits>
#include <mutex>
#include <set>

using FakeBinder::ParcelReader;
using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
using FakeBinder::Request;

Q_DECLARE_METATYPE(FakeBinder::Reply)
Q_DECLARE_METATYPE(FakeBinder::ParcelWriter)

namespace {

// On Android level 27.
constexpr quint32 queryStatsCode = 6;
constexpr quint32 deleteCacheCode = 100;
constexpr quint32 clearDataCode = 101;
constexpr quint32 forceStopCode = 72;
constexpr quint32 allowCode = 1;
constexpr quint32 forbidCode = 2;
constexpr quint32 isAllowedCode = 13;

constexpr qint64 lowest = std::numeric_limits<qint64>::min();
constexpr qint64 highest = std::numeric_limits<qint64>::max();

const QString storageStats = QStringLiteral("storagestats");
const QString deviceIdle = QStringLiteral("deviceidle");
const QString package = QStringLiteral("com.foo");

ParcelWriter parcel()
{
    return ParcelWriter(ParcelWriter::Style::Gbinder);
}

Reply sizes(qint64 code, qint64 data, qint64 cache)
{
    return Reply::data(
        ParcelWriter().int32(0).int32(1).int64(code).int64(data).int64(cache).bytes());
}

/// The three numbers of getAppSize, or what was wrong.
QString sizeText(const QDBusMessage &reply)
{
    if (reply.signature() != QLatin1String("(xxx)"))
        return errorOf(reply) + reply.signature();
    const auto argument = reply.arguments().value(0).value<QDBusArgument>();
    qint64 code = 0;
    qint64 data = 0;
    qint64 cache = 0;
    argument.beginStructure();
    argument >> code >> data >> cache;
    argument.endStructure();
    return QStringLiteral("%1 %2 %3").arg(code).arg(data).arg(cache);
}

/// Android's list of the packages that may start at boot.
struct AllowList
{
    enum class Manner { Obeys, Ignores, Contradicts };

    Reply handle(const Request &request)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const QString name = ParcelReader(request.payload).string16();
        if (request.code == isAllowedCode)
            return Reply::data(
                ParcelWriter().int32(0).int32(names.count(name) > 0 ? 1 : 0).bytes());
        if (manner == Manner::Ignores)
            return Reply::data(ParcelWriter().int32(0).bytes());
        if ((request.code == allowCode) == (manner == Manner::Obeys))
            names.insert(name);
        else
            names.erase(name);
        return Reply::data(ParcelWriter().int32(0).bytes());
    }

    std::mutex mutex;
    Manner manner = Manner::Obeys;
    std::set<QString> names;
};
} // namespace

Q_DECLARE_METATYPE(AllowList::Manner)

class TestAppManagement : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onStartOnBootupChanged(const QString &name, bool isAllowed);

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void sizeOfTheDataIsWithoutTheCache_data();
    void sizeOfTheDataIsWithoutTheCache();
    void requestsAreForwarded_data();
    void requestsAreForwarded();
    void changeOfStartOnBootIsAnnounced_data();
    void changeOfStartOnBootIsAnnounced();
    void startOnBootIsReadFromTheRuntime();
    void failedChangeIsSilentOnTheBus();
    void nothingHappensWithoutTheRuntime_data();
    void nothingHappensWithoutTheRuntime();

private:
    std::unique_ptr<AppFixture> m_world;
    QStringList m_changes;
};

void TestAppManagement::onStartOnBootupChanged(const QString &name, bool isAllowed)
{
    m_changes.append(QStringLiteral("%1 %2").arg(name).arg(isAllowed));
}

void TestAppManagement::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    QVERIFY(QDBusConnection::systemBus().connect(QString(), QStringLiteral("/com/tovra/lumd"),
        QStringLiteral("com.tovra.lumd"), QStringLiteral("appStartOnBootupChanged"),
        QStringLiteral("sb"), this, SLOT(onStartOnBootupChanged(QString, bool))));
    MockSystemd::settleListeners();
}

void TestAppManagement::cleanup()
{
    m_changes.clear();
    m_world->renew();
}

void TestAppManagement::sizeOfTheDataIsWithoutTheCache_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("warning");
    const QString none;
    QTest::newRow("sizes") << sizes(100, 70, 30) << QStringLiteral("100 40 30") << none;
    QTest::newRow("more cache than data")
        << sizes(0, 1, 5000000000) << QStringLiteral("0 -4999999999 5000000000") << none;
    QTest::newRow("greatest numbers")
        << sizes(highest, highest, 1) << QStringLiteral("9223372036854775807 9223372036854775806 1")
        << none;
    QTest::newRow("beyond the least number")
        << sizes(0, lowest, 1) << QStringLiteral("0 9223372036854775807 1") << none;
    QTest::newRow("failed call") << Reply::failure(-1) << QStringLiteral("-1 0 -1")
                                 << QStringLiteral("critical com.tovra.lumd.binder Error "
                                                   "requesting package stats: -1");
    // Its message is read as if it were the sizes.
    QTest::newRow("exception") << Reply::data(
        ParcelWriter().int32(-1).int32(0).int64(1).int64(2).int64(3).bytes())
                               << QStringLiteral("1 -1 3") << none;
    QTest::newRow("reply without data") << Reply::data({}) << QStringLiteral("-1 0 -1") << none;
}

void TestAppManagement::sizeOfTheDataIsWithoutTheCache()
{
    QFETCH(Reply, reply);
    QFETCH(QString, result);
    QFETCH(QString, warning);
    m_world->android->registerService(storageStats, [reply](const Request &) { return reply; });
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QCOMPARE(sizeText(DaemonFixture::call(QStringLiteral("getAppSize"), {package})), result);
    const QStringList numbers = result.split(QLatin1Char(' '));
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList{QStringLiteral("debug App size query for \"com.foo\" : %1 , %2 , %3")
                .arg(numbers.value(0), numbers.value(1), numbers.value(2))});
    const QStringList criticals =
        m_world->daemon->lines().filter(QRegularExpression(QStringLiteral("^critical")));
    QCOMPARE(criticals.join(QLatin1Char('\n')), warning);
    const auto requests = m_world->requests(storageStats, queryStatsCode);
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().payload,
        parcel().nullString16().string16(package).int32(0).nullString16().bytes());
}

void TestAppManagement::requestsAreForwarded_data()
{
    QTest::addColumn<QString>("service");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<ParcelWriter>("body");
    const QString packageManager = QStringLiteral("package");
    QTest::newRow("deleteAppCacheFiles")
        << packageManager << deleteCacheCode << parcel().string16(package).int32(0).nullObject();
    QTest::newRow("clearAppUserData")
        << packageManager << clearDataCode << parcel().string16(package).nullObject().int32(0);
    QTest::newRow("forceStopApp") << QStringLiteral("activity") << forceStopCode
                                  << parcel().string16(package).int32(0);
}

void TestAppManagement::requestsAreForwarded()
{
    QFETCH(QString, service);
    QFETCH(quint32, code);
    QFETCH(ParcelWriter, body);
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(service));
    const QString method = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(errorOf(DaemonFixture::call(method, {package})), QString());
    const auto requests = m_world->requests(service, code);
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().payload, body.bytes());
    QCOMPARE(m_world->daemonLines(), QStringList());
}

void TestAppManagement::changeOfStartOnBootIsAnnounced_data()
{
    QTest::addColumn<AllowList::Manner>("manner");
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("wanted");
    QTest::addColumn<QStringList>("changes");
    using Manner = AllowList::Manner;
    const QStringList none;
    const QStringList on{QStringLiteral("com.foo 1")};
    const QStringList off{QStringLiteral("com.foo 0")};
    QTest::newRow("allow") << Manner::Obeys << false << true << on;
    QTest::newRow("forbid") << Manner::Obeys << true << false << off;
    QTest::newRow("allow again") << Manner::Obeys << true << true << none;
    QTest::newRow("forbid again") << Manner::Obeys << false << false << none;
    QTest::newRow("the runtime ignores it") << Manner::Ignores << false << true << none;
    QTest::newRow("the runtime does the opposite") << Manner::Contradicts << true << true << off;
}

void TestAppManagement::changeOfStartOnBootIsAnnounced()
{
    QFETCH(AllowList::Manner, manner);
    QFETCH(bool, before);
    QFETCH(bool, wanted);
    QFETCH(QStringList, changes);
    const auto list = std::make_shared<AllowList>();
    list->manner = manner;
    list->names = {QStringLiteral("com.bar")};
    if (before)
        list->names.insert(package);
    m_world->android->registerService(
        deviceIdle, [list](const Request &request) { return list->handle(request); });
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));

    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("setAppStartOnBootup"), {package, wanted})),
        QString());
    // Sent before the reply was.
    QCoreApplication::processEvents();
    QCOMPARE(m_changes, changes);
    m_world->android->settle();
    QVector<quint32> codes;
    for (const Request &request : m_world->android->requests()) {
        codes.append(request.code);
        QCOMPARE(request.service, deviceIdle);
        QCOMPARE(request.payload, parcel().string16(package).bytes());
    }
    QCOMPARE(
        codes, QVector<quint32>({isAllowedCode, wanted ? allowCode : forbidCode, isAllowedCode}));
    // One link serves all three.
    QCOMPARE(m_world->android->ledger().count(QStringLiteral("client_new deviceidle")), 1);
}

void TestAppManagement::startOnBootIsReadFromTheRuntime()
{
    const auto list = std::make_shared<AllowList>();
    list->names = {package};
    m_world->android->registerService(
        deviceIdle, [list](const Request &request) { return list->handle(request); });
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    const QString method = QStringLiteral("getAppStartOnBootup");
    QCOMPARE(resultOf(DaemonFixture::call(method, {package})), QStringLiteral("true"));
    QCOMPARE(resultOf(DaemonFixture::call(method, {QStringLiteral("com.bar")})),
        QStringLiteral("false"));
    QCOMPARE(m_world->requests(deviceIdle, isAllowedCode).size(), 2);
    QCOMPARE(m_changes, QStringList());
}

void TestAppManagement::failedChangeIsSilentOnTheBus()
{
    m_world->android->registerService(
        deviceIdle, [](const Request &) { return Reply::failure(-1); });
    QVERIFY(m_world->start());
    QVERIFY(m_world->see(QStringLiteral("active")));
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("setAppStartOnBootup"), {package, true})),
        QString());
    QCoreApplication::processEvents();
    QCOMPARE(m_changes, QStringList());
    const QString check = QStringLiteral(
        "critical com.tovra.lumd.binder PowerSaveWhitelist check for \"com.foo\" failed");
    const QString setting = QStringLiteral(
        "critical com.tovra.lumd.binder PowerSaveWhitelist setting for \"com.foo\" failed");
    QTRY_COMPARE(m_world->daemon->lines().filter(QRegularExpression(QStringLiteral("^critical"))),
        QStringList({check, setting, check}));
}

void TestAppManagement::nothingHappensWithoutTheRuntime_data()
{
    QTest::addColumn<QString>("state");
    QTest::newRow("down") << QStringLiteral("inactive");
    QTest::newRow("up without its services") << QStringLiteral("active");
}

void TestAppManagement::nothingHappensWithoutTheRuntime()
{
    QFETCH(QString, state);
    m_world->systemd.setUnitStateSilently(state, QStringLiteral("test"));
    if (state == QLatin1String("inactive")) {
        // They would answer if they were asked.
        for (const char *service : {"package", "activity", "storagestats", "deviceidle"})
            m_world->android->registerService(QString::fromLatin1(service));
    }
    QVERIFY(m_world->start());
    m_world->systemd.clearCalls();
    for (const char *method : {"deleteAppCacheFiles", "clearAppUserData", "forceStopApp"})
        QCOMPARE(errorOf(DaemonFixture::call(QString::fromLatin1(method), {package})), QString());
    QCOMPARE(resultOf(DaemonFixture::call(QStringLiteral("getAppStartOnBootup"), {package})),
        QStringLiteral("false"));
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("setAppStartOnBootup"), {package, true})),
        QString());
    QCOMPARE(sizeText(DaemonFixture::call(QStringLiteral("getAppSize"), {package})),
        QStringLiteral("0 0 0"));
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList{QStringLiteral("debug App size query for \"com.foo\" : 0 , 0 , 0")});
    QCOMPARE(m_changes, QStringList());
    QCOMPARE(
        m_world->daemon->lines().filter(QRegularExpression(QStringLiteral("^(critical|warning)"))),
        QStringList());
    // What was sent before this has arrived when it has.
    DaemonFixture::call(QStringLiteral("controlServiceAutostart"), {false});
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
    QCOMPARE(m_world->starts(), 0);
    QCOMPARE(m_world->notifications.texts(), QStringList());
    QCOMPARE(m_world->android->requests().size(), 0);
}

LUM_TEST_MAIN(TestAppManagement)
#include "tst_appmanagement.moc"
