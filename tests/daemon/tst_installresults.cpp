// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

namespace {

const QString installObserver = QStringLiteral("android.content.pm.IPackageInstallObserver2");
const QString deleteObserver = QStringLiteral("android.content.pm.IPackageDeleteObserver");

QString apk()
{
    return QStringLiteral("/run/apps/a.apk");
}

FakeBinder::Call installed(qint32 result, const QString &package, const QString &message = {})
{
    FakeBinder::Call call;
    call.code = 2;
    call.interface = installObserver;
    call.payload = FakeBinder::ParcelWriter()
                       .string16(package)
                       .int32(result)
                       .string16(message)
                       .int32(0)
                       .bytes();
    return call;
}

FakeBinder::Call deleted(qint32 result, const QString &package)
{
    FakeBinder::Call call;
    call.code = 1;
    call.interface = deleteObserver;
    call.payload = FakeBinder::ParcelWriter().string16(package).int32(result).bytes();
    return call;
}

} // namespace

class TestInstallResults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void resultReachesTheUserInEnglish_data();
    void resultReachesTheUserInEnglish();
    void languageOfTheUserWins();
    void languageWithoutCatalogueFallsBackToEnglish();
    void noTextIsAnId_data();
    void noTextIsAnId();
    void pendingLaunchIsToldInTheUsersWords_data();
    void pendingLaunchIsToldInTheUsersWords();
    void missingServerIsSurvived();
    void missingBusIsSurvived();

private:
    /// Installs an app and gives the observer that the runtime got for it; 0 on failure.
    quint32 observerOfAnInstall();

    std::unique_ptr<AppFixture> m_world;
};

void TestInstallResults::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    makeFile(apk());
    makeFile(QStringLiteral("/usr/share/applications/lumd_launcher_com_clock-com_clock_M.desktop"),
        "[Desktop Entry]\nName=Clock\nX-lumd-packageName=com.clock\n");
    AppFixture::installCatalogues();
}

void TestInstallResults::cleanup()
{
    m_world->renew();
}

quint32 TestInstallResults::observerOfAnInstall()
{
    if (!m_world->start() || !m_world->bringUpRuntime())
        return 0;
    DaemonFixture::call(QStringLiteral("installFile"), {apk()});
    const auto requests = m_world->requests(QStringLiteral("package"), installCode);
    return requests.isEmpty() ? 0 : requests.first().localObjects.value(0);
}

void TestInstallResults::resultReachesTheUserInEnglish_data()
{
    QTest::addColumn<qint32>("result");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QString>("body");
    const QString failed = QStringLiteral("App could not be installed: Clock");
    QTest::newRow("installed") << 1 << QString() << QStringLiteral("App installed: Clock")
                               << QString();
    QTest::newRow("Android's own words")
        << -4 << QStringLiteral("no room") << failed << QStringLiteral("no room");
    QTest::newRow("aborted") << -115 << QString() << failed << QStringLiteral("Aborted");
    QTest::newRow("storage") << -4 << QString() << failed
                             << QStringLiteral("There is not enough storage space");
}

void TestInstallResults::resultReachesTheUserInEnglish()
{
    QFETCH(qint32, result);
    QFETCH(QString, message);
    QFETCH(QString, summary);
    QFETCH(QString, body);
    const quint32 observer = observerOfAnInstall();
    QVERIFY(observer != 0);
    const FakeBinder::Answer answer = m_world->android->transactObject(
        observer, installed(result, QStringLiteral("com.clock"), message));
    QVERIFY(answer.delivered);
    QTRY_COMPARE(m_world->notifications.texts(),
        QStringList{QStringLiteral("\"Android App Support\" 0 \"icon-s-android\" \"%1\" \"%2\" "
                                   "actions() hints(image-path=icon-s-android:QString "
                                   "transient=true:bool) -1")
                .arg(summary, body)});
}

void TestInstallResults::languageOfTheUserWins()
{
    m_world->daemon->setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    const quint32 observer = observerOfAnInstall();
    QVERIFY(observer != 0);
    m_world->android->transactObject(observer, installed(-4, QStringLiteral("com.clock")));
    QTRY_COMPARE(m_world->notifications.texts(),
        QStringList{QStringLiteral("\"Android-App-Unterst\u00fctzung\" 0 \"icon-s-android\" "
                                   "\"App konnte nicht installiert werden: Clock\" \"Es ist nicht "
                                   "genug Speicherplatz vorhanden\" actions() "
                                   "hints(image-path=icon-s-android:QString transient=true:bool) "
                                   "-1")});
}

void TestInstallResults::languageWithoutCatalogueFallsBackToEnglish()
{
    m_world->daemon->setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("fi_FI.UTF-8"));
    const quint32 observer = observerOfAnInstall();
    QVERIFY(observer != 0);
    m_world->android->transactObject(observer, installed(1, QString()));
    QTRY_COMPARE(m_world->notifications.notices().size(), 1);
    QCOMPARE(m_world->notifications.notices().first().summary, QStringLiteral("App installed"));
}

void TestInstallResults::noTextIsAnId_data()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("English") << QStringLiteral("C.UTF-8");
    QTest::newRow("German") << QStringLiteral("de_DE.UTF-8");
}

void TestInstallResults::noTextIsAnId()
{
    QFETCH(QString, locale);
    m_world->daemon->setEnvironment(QStringLiteral("LC_ALL"), locale);
    const quint32 observer = observerOfAnInstall();
    QVERIFY(observer != 0);
    constexpr int firstResult = -116;
    constexpr int lastResult = 1;
    for (int result = firstResult; result <= lastResult; ++result)
        m_world->android->transactObject(observer, installed(result, QStringLiteral("com.a")));
    // The object for deletions was made next to the one for installations.
    for (const int result : {1, -1})
        QVERIFY(
            m_world->android->transactObject(observer + 1, deleted(result, QStringLiteral("com.a")))
                .delivered);
    const int count = lastResult - firstResult + 1 + 2;
    QTRY_COMPARE(m_world->notifications.notices().size(), count);
    for (const QString &text : m_world->notifications.texts())
        QVERIFY2(!text.contains(QLatin1String("lumd-")), qPrintable(text));
    const auto last = m_world->notifications.notices().mid(count - 2);
    QVERIFY(last.at(0).summary.endsWith(QLatin1String(": com.a")));
    QVERIFY(last.at(0).summary != last.at(1).summary);
}

void TestInstallResults::pendingLaunchIsToldInTheUsersWords_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("text");
    QTest::newRow("English") << QStringLiteral("C.UTF-8")
                             << QStringLiteral("Starting Android App Support to open Clock");
    QTest::newRow("German") << QStringLiteral("de_DE.UTF-8")
                            << QStringLiteral("Android-App-Unterst\u00fctzung wird gestartet, um "
                                              "Clock zu \u00f6ffnen");
}

void TestInstallResults::pendingLaunchIsToldInTheUsersWords()
{
    QFETCH(QString, locale);
    QFETCH(QString, text);
    m_world->daemon->setEnvironment(QStringLiteral("LC_ALL"), locale);
    QVERIFY(m_world->start());
    DaemonFixture::call(QStringLiteral("launchApp"), {QStringLiteral("com.clock")});
    QTRY_COMPARE(m_world->notifications.texts(), QStringList{remark(Remark::Notice, text)});
}

void TestInstallResults::missingServerIsSurvived()
{
    const quint32 observer = observerOfAnInstall();
    QVERIFY(observer != 0);
    // Another bus takes the place of the one with a server.
    m_world->userBus.stop();
    const PrivateBus withoutServer(PrivateBus::Kind::User, 1000);
    QVERIFY(m_world->android->transactObject(observer, installed(1, QStringLiteral("com.a")))
            .delivered);
    QVERIFY(DaemonFixture::settle());
    QVERIFY(m_world->daemon->isRunning());
}

void TestInstallResults::missingBusIsSurvived()
{
    m_world->userBus.stop();
    const quint32 observer = observerOfAnInstall();
    QVERIFY(observer != 0);
    for (int i = 0; i < 3; ++i)
        QVERIFY(m_world->android->transactObject(observer, installed(1, QStringLiteral("com.a")))
                .delivered);
    QVERIFY(DaemonFixture::settle());
    QVERIFY(m_world->daemon->isRunning());
}

LUM_TEST_MAIN(TestInstallResults)
#include "tst_installresults.moc"
