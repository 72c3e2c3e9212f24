// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienpackagemanager.h"

#include "tests/clients/clienttest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <optional>

using FakeBinder::ParcelWriter;

namespace {

const QString package = QStringLiteral("package");
const QString app = QStringLiteral("com.foo");
const QString installInterface = QStringLiteral("android.content.pm.IPackageInstallObserver2");
const QString deleteInterface = QStringLiteral("android.content.pm.IPackageDeleteObserver");
constexpr int untouched = -99;
constexpr bool success = true;
constexpr bool failure = false;

/// What an install result's log line says.
QString resultLine(qint32 code, const char *packageName, const char *message)
{
    return QStringLiteral("debug com.tovra.lumd.binder Package install result %1 for \"%2\" ( "
                          "\"%3\" )")
        .arg(code)
        .arg(QLatin1String(packageName), QLatin1String(message));
}

ParcelWriter result(qint32 code, const QString &message)
{
    return ParcelWriter().string16(app).int32(code).string16(message).int32(0);
}

} // namespace

class TestAlienPackageManagerResults : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void installResultIsReported_data();
    void installResultIsReported();
    void extrasAreReadAndNotUsed_data();
    void extrasAreReadAndNotUsed();
    void extrasWithABadMagicNumberDoNotKeepTheResult();
    void actionOfTheUserFailsTheInstall();
    void deleteResultIsReported_data();
    void deleteResultIsReported();
    void unknownCallIsRefused_data();
    void unknownCallIsRefused();
    void callOfAnotherInterfaceIsIgnored_data();
    void callOfAnotherInterfaceIsIgnored();
    void callWithoutInterfaceIsIgnored();

private:
    /// Calls the observer that the delete handed over for its interface, and for all others the
    /// one of the install.
    FakeBinder::Answer call(
        quint32 code, const QString &interface, const QByteArray &payload, quint32 flags = 1)
    {
        return FakeBinder::transactObject(
            interface == deleteInterface ? m_deleteObserver : m_installObserver,
            {code, interface, payload, {}, flags, untouched});
    }

    void expectSilence()
    {
        QCOMPARE(m_installed->size(), 0);
        QCOMPARE(m_uninstalled->size(), 0);
    }

    std::optional<AlienPackageManager> m_manager;
    std::optional<QSignalSpy> m_installed;
    std::optional<QSignalSpy> m_uninstalled;
    quint32 m_installObserver = 0;
    quint32 m_deleteObserver = 0;
};

void TestAlienPackageManagerResults::init()
{
    QVERIFY(installRuntime(27));
    m_manager.emplace(nullptr);
    FakeBinder::registerService(package, {}, FakeBinder::Notice::None);
    QVERIFY(m_unit->become(QStringLiteral("active")));
    m_manager->installPackage(QStringLiteral("/a.apk"), false);
    m_installObserver = handedOver();
    m_manager->deletePackage(app, false);
    m_deleteObserver = handedOver();
    QVERIFY(m_installObserver != 0);
    QVERIFY(m_deleteObserver != 0);
    QVERIFY(m_deleteObserver != m_installObserver);
    m_installed.emplace(&*m_manager, &AlienPackageManager::installationResultReceived);
    m_uninstalled.emplace(&*m_manager, &AlienPackageManager::uninstallationResultReceived);
}

void TestAlienPackageManagerResults::cleanup()
{
    m_installed.reset();
    m_uninstalled.reset();
    m_manager.reset();
    ClientTest::cleanup();
}

void TestAlienPackageManagerResults::installResultIsReported_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("line");

    const auto row = [](const char *name, const ParcelWriter &payload, bool isSuccess,
                         const QString &packageName, const QString &message, const QString &line) {
        QTest::newRow(name) << payload.bytes() << QVariantList{isSuccess, packageName, message}
                            << line;
    };
    const QString done = QStringLiteral("Done");
    const QString conflict = QStringLiteral("lumd-install-fail-conflict");
    row("success", result(1, QString()), success, app, {}, resultLine(1, "com.foo", ""));
    row("success with a message", result(1, done), success, app, done,
        resultLine(1, "com.foo", "Done"));
    row("failure", result(-4, QString()), failure, app, QStringLiteral("lumd-install-fail-storage"),
        resultLine(-4, "com.foo", ""));
    row("failure with an empty message", result(-115, QStringLiteral("")), failure, app,
        QStringLiteral("Aborted"), resultLine(-115, "com.foo", ""));
    row("failure with a message of Android's", result(-4, QStringLiteral("No room")), failure, app,
        QStringLiteral("No room"), resultLine(-4, "com.foo", "No room"));
    row("neither", result(0, QString()), failure, app, QStringLiteral("lumd-install-fail-other"),
        resultLine(0, "com.foo", ""));
    row("above success", result(2, QString()), failure, app,
        QStringLiteral("lumd-install-fail-other"), resultLine(2, "com.foo", ""));
    row("nothing", ParcelWriter(), failure, {}, conflict, resultLine(-1, "", ""));
    row("name alone", ParcelWriter().string16(app), failure, app, conflict,
        resultLine(-1, "com.foo", ""));
    row("without a word about extras", ParcelWriter().string16(app).int32(1).string16(done),
        success, app, done, resultLine(1, "com.foo", "Done"));
}

void TestAlienPackageManagerResults::installResultIsReported()
{
    QFETCH(QByteArray, payload);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, line);
    for (const quint32 flags : {1U, 0U}) {
        LogCapture log;
        const FakeBinder::Answer answer = call(2, installInterface, payload, flags);
        QCOMPARE(answer.status, 0);
        QVERIFY(!answer.hasReply);
        QCOMPARE(log.lines(), QStringList(line));
        QCOMPARE(m_installed->size(), 1);
        QCOMPARE(m_installed->takeFirst(), arguments);
    }
    expectSilence();
}

void TestAlienPackageManagerResults::extrasAreReadAndNotUsed_data()
{
    QTest::addColumn<qint32>("word");
    // Any but 0 says that they follow.
    for (const qint32 word : {1, 2, -1})
        QTest::newRow(QByteArray::number(word).constData()) << word;
}

void TestAlienPackageManagerResults::extrasAreReadAndNotUsed()
{
    QFETCH(qint32, word);
    ParcelWriter payload = ParcelWriter().string16(app).int32(1).nullString16().int32(word);
    payload.int32(20).raw("BNDL").int32(1).string16(QStringLiteral("k")).int32(1).int32(5);
    LogCapture log;
    QCOMPARE(call(2, installInterface, payload.bytes()).status, 0);
    QCOMPARE(log.lines(),
        QStringList(resultLine(1, "com.foo", ""))
            + texts({"debug com.tovra.lumd.parcel Bundle size:  1",
                "debug com.tovra.lumd.parcel Key:  \"k\" Value:  QVariant(int, 5)"}));
    QCOMPARE(m_installed->size(), 1);
    QCOMPARE(m_installed->takeFirst(), QVariantList({success, app, QString()}));
}

void TestAlienPackageManagerResults::extrasWithABadMagicNumberDoNotKeepTheResult()
{
    ParcelWriter payload = ParcelWriter().string16(app).int32(-4).nullString16().int32(1);
    payload.int32(20).int32(0).int32(1);
    LogCapture log(LogCapture::Level::Default);
    QCOMPARE(call(2, installInterface, payload.bytes()).status, 0);
    QCOMPARE(
        log.lines(), texts({"critical com.tovra.lumd.parcel Bad bundle magic number 0x%08x 0"}));
    QCOMPARE(m_installed->size(), 1);
    QCOMPARE(m_installed->takeFirst(),
        QVariantList({failure, app, QStringLiteral("lumd-install-fail-storage")}));
}

void TestAlienPackageManagerResults::actionOfTheUserFailsTheInstall()
{
    LogCapture log;
    // The intent that would ask the user is not read.
    const FakeBinder::Answer answer =
        call(1, installInterface, ParcelWriter().string16(app).int32(1).bytes());
    QCOMPARE(answer.status, 0);
    QVERIFY(!answer.hasReply);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(m_installed->size(), 1);
    QCOMPARE(m_installed->takeFirst(),
        QVariantList({failure, QString(), QStringLiteral("Package installation failed")}));
}

void TestAlienPackageManagerResults::deleteResultIsReported_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QVariantList>("arguments");
    const auto row = [](const char *name, const ParcelWriter &payload, bool isSuccess,
                         const QString &packageName) {
        QTest::newRow(name) << payload.bytes() << QVariantList{isSuccess, packageName};
    };
    row("success", ParcelWriter().string16(app).int32(1), success, app);
    row("failure", ParcelWriter().string16(app).int32(-1), failure, app);
    row("neither", ParcelWriter().string16(app).int32(0), failure, app);
    row("above success", ParcelWriter().string16(app).int32(2), failure, app);
    row("name alone", ParcelWriter().string16(app), failure, app);
    row("nothing", ParcelWriter(), failure, {});
}

void TestAlienPackageManagerResults::deleteResultIsReported()
{
    QFETCH(QByteArray, payload);
    QFETCH(QVariantList, arguments);
    LogCapture log;
    const FakeBinder::Answer answer = call(1, deleteInterface, payload);
    QCOMPARE(answer.status, 0);
    QVERIFY(!answer.hasReply);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(m_uninstalled->size(), 1);
    QCOMPARE(m_uninstalled->takeFirst(), arguments);
    expectSilence();
}

void TestAlienPackageManagerResults::unknownCallIsRefused_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<QString>("line");
    const auto row = [](const char *name, const QString &interface, quint32 code) {
        QTest::newRow(name)
            << interface << code
            << QStringLiteral("warning com.tovra.lumd.binder Unknown binder call ( %1 )").arg(code);
    };
    row("install 0", installInterface, 0);
    row("install 3", installInterface, 3);
    row("install, largest", installInterface, 0xffffffff);
    row("delete 0", deleteInterface, 0);
    row("delete 2", deleteInterface, 2);
    row("delete, largest", deleteInterface, 0xffffffff);
}

void TestAlienPackageManagerResults::unknownCallIsRefused()
{
    QFETCH(QString, interface);
    QFETCH(quint32, code);
    QFETCH(QString, line);
    LogCapture log;
    const FakeBinder::Answer answer = call(code, interface, result(1, QString()).bytes());
    QCOMPARE(answer.status, 1);
    QVERIFY(!answer.hasReply);
    QCOMPARE(log.lines(), QStringList(line));
    expectSilence();
}

void TestAlienPackageManagerResults::callOfAnotherInterfaceIsIgnored_data()
{
    QTest::addColumn<QString>("interface");
    QTest::newRow("other") << QStringLiteral("android.content.pm.IPackageDataObserver");
    QTest::newRow("longer") << installInterface + QLatin1Char('x');
    QTest::newRow("shorter") << installInterface.chopped(1);
    QTest::newRow("other case") << deleteInterface.toUpper();
    QTest::newRow("empty") << QStringLiteral("");
}

void TestAlienPackageManagerResults::callOfAnotherInterfaceIsIgnored()
{
    QFETCH(QString, interface);
    LogCapture log;
    for (const quint32 code : {1U, 2U, 3U}) {
        const FakeBinder::Answer answer = call(code, interface, result(1, QString()).bytes());
        QVERIFY(answer.delivered);
        QCOMPARE(answer.status, untouched);
        QVERIFY(!answer.hasReply);
    }
    QCOMPARE(log.lines(), QStringList());
    expectSilence();
}

void TestAlienPackageManagerResults::callWithoutInterfaceIsIgnored()
{
    LogCapture log;
    const FakeBinder::Answer answer = call(2, QString(), {});
    QVERIFY(answer.delivered);
    QCOMPARE(answer.status, untouched);
    QVERIFY(!answer.hasReply);
    QCOMPARE(log.lines(),
        texts({"debug com.tovra.lumd.binder lumd - installation event - no interface?"}));
    expectSilence();
}

LUM_TEST_MAIN(TestAlienPackageManagerResults)
#include "tst_alienpackagemanagerresults.moc"
