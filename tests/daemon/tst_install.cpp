// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString packageService = QStringLiteral("package");
const QByteArray contents = QByteArrayLiteral("PK\3\4 an app");

QString source(const QString &name)
{
    return QStringLiteral("/run/apps/") + name;
}

QStringList wordsOfAnInstall(const QString &given, const QString &name)
{
    return {QStringLiteral("debug installFile: \"%1\"").arg(given),
        QStringLiteral("debug Asking ACL to install: \"%1\" \"%2\"").arg(given, packaged(name)),
        QStringLiteral("debug Installing \"%1\"").arg(incomingInRuntime(name))};
}

QStringList wordsOfADeferredInstall(const QString &given, const QString &name)
{
    QStringList words = wordsOfAnInstall(given, name);
    words.last() = QStringLiteral("debug Aliendalvik not running. Saving  \"%1\"  for later")
                       .arg(incomingInRuntime(name));
    return words;
}

} // namespace

class TestInstall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void everyEntryPointHandsOverTheStagedFile_data();
    void everyEntryPointHandsOverTheStagedFile();
    void rightsOfTheSourceDoNotMatter();
    void laterAndroidLevelsInstallThroughTheRuntimesOwnService();
    void runtimeIsStartedOnlyWhenItIsDown_data();
    void runtimeIsStartedOnlyWhenItIsDown();
    void runtimeIsStartedOnceForTwoRequests();
    void secondRequestForAFileReplacesTheFirst();
    void leftoversAreClearedAway();
    void incomingFolderMayBeALink();
    void markerIsEmptiedAndNeverNoticed_data();
    void markerIsEmptiedAndNeverNoticed();
    void noSignalTellsOfARequest();

    void onSignal(const QDBusMessage &message) { m_signals.append(message.member()); }

private:
    QString install(const QString &path);

    std::unique_ptr<AppFixture> m_world;
    QStringList m_signals;
};

void TestInstall::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestInstall::init()
{
    for (const QString &folder : {QStringLiteral("/home/.android"), source({}), marker()})
        QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(QDir().mkpath(marker()));
}

void TestInstall::cleanup()
{
    m_world->renew();
}

QString TestInstall::install(const QString &path)
{
    return resultOf(DaemonFixture::call(QStringLiteral("installFile"), {path}));
}

void TestInstall::everyEntryPointHandsOverTheStagedFile_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isSilent");
    QTest::addColumn<bool>("isMarked");

    const QString user = QStringLiteral("installFile");
    const QString preload = QStringLiteral("installPreloadFile");
    const QString partner = QStringLiteral("installPartnerSpaceFile");
    const QString name = QStringLiteral("com.foo.bar-12.apk");
    const QString elsewhere = source(name);
    const QString delivered = packaged(name);
    const QString folder = packaged();
    QTest::newRow("user") << user << elsewhere << false << false;
    QTest::newRow("delivered by a package") << user << delivered << true << false;
    QTest::newRow("delivered, like a resource")
        << user << packaged(QStringLiteral(":x.apk")) << true << false;
    QTest::newRow("delivered, doubled slash")
        << user << folder + QLatin1Char('/') + name << false << false;
    QTest::newRow("delivered, dot")
        << user << folder + QLatin1String("./") + name << false << false;
    QTest::newRow("preload") << preload << elsewhere << true << false;
    QTest::newRow("preload, delivered by a package") << preload << delivered << true << false;
    QTest::newRow("partner space") << partner << elsewhere << true << true;
    QTest::newRow("partner space, delivered by a package") << partner << delivered << true << true;
}

void TestInstall::everyEntryPointHandsOverTheStagedFile()
{
    QFETCH(QString, method);
    QFETCH(QString, path);
    QFETCH(bool, isSilent);
    QFETCH(bool, isMarked);
    const QString name = QFileInfo(path).fileName();
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    makeFile(path, contents);

    QCOMPARE(resultOf(DaemonFixture::call(method, {path})), QStringLiteral("true"));
    QTRY_COMPARE(m_world->daemonLines(), wordsOfAnInstall(path, name));
    const auto requests = m_world->requests(packageService, installCode);
    QCOMPARE(requests.size(), 1);
    const quint32 observer = requests.first().localObjects.value(0);
    QCOMPARE(observer == 0, isSilent);
    QCOMPARE(requests.first().payload, installBody(incomingInRuntime(name), observer));

    QCOMPARE(entries(incoming()), QStringList{name});
    QCOMPARE(fileContents(incoming(name)), contents);
    QCOMPARE(rights(incoming(name)), QStringLiteral("0:0 644"));
    QCOMPARE(fileContents(path), contents);
    QCOMPARE(entries(marker()), isMarked ? QStringList{name} : QStringList());
    if (isMarked)
        QCOMPARE(fileContents(marker(name)), QByteArray(""));
    QCOMPARE(m_world->starts(), 0);
    QCOMPARE(m_world->notifications.texts(), QStringList());
}

void TestInstall::rightsOfTheSourceDoNotMatter()
{
    const QString path = source(QStringLiteral("a.apk"));
    makeFile(path, contents);
    // Where the namespace knows no other user, only the mode is put to the test.
    if (chown(qPrintable(path), 1, 1) != 0)
        QCOMPARE(errno, EINVAL);
    QCOMPARE(chmod(qPrintable(path), 04711), 0);
    QVERIFY(m_world->start());
    QCOMPARE(install(path), QStringLiteral("true"));
    QCOMPARE(rights(incoming(QStringLiteral("a.apk"))), QStringLiteral("0:0 644"));
}

void TestInstall::laterAndroidLevelsInstallThroughTheRuntimesOwnService()
{
    makeFile(QStringLiteral("/opt/alien/build.prop"), "ro.build.version.sdk=28\n");
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    const QString path = source(QStringLiteral("a.apk"));
    makeFile(path, contents);
    QCOMPARE(install(path), QStringLiteral("true"));
    constexpr quint32 installBehindLevel27 = 2;
    const auto requests = m_world->requests(QStringLiteral("alien"), installBehindLevel27);
    QCOMPARE(names(requests), QStringList{incomingInRuntime(QStringLiteral("a.apk"))});
    QCOMPARE(requests.first().localObjects.size(), 1);
    QCOMPARE(m_world->requests(packageService, installCode).size(), 0);
    makeFile(QStringLiteral("/opt/alien/build.prop"), "ro.build.version.sdk=27\n");
}

void TestInstall::runtimeIsStartedOnlyWhenItIsDown_data()
{
    addStatesAndStarts();
}

void TestInstall::runtimeIsStartedOnlyWhenItIsDown()
{
    QFETCH(QString, state);
    QFETCH(int, starts);
    const QString path = source(QStringLiteral("a.apk"));
    makeFile(path, contents);
    m_world->systemd.setUnitStateSilently(state, QStringLiteral("test"));
    QVERIFY(m_world->start());
    QCOMPARE(install(path), QStringLiteral("true"));
    // What was sent before this has arrived when it has.
    DaemonFixture::call(QStringLiteral("controlServiceAutostart"), {false});
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
    QCOMPARE(m_world->starts(), starts);
    QTRY_COMPARE(m_world->daemonLines(), wordsOfADeferredInstall(path, QStringLiteral("a.apk")));
}

void TestInstall::runtimeIsStartedOnceForTwoRequests()
{
    makeFile(source(QStringLiteral("a.apk")), contents);
    makeFile(source(QStringLiteral("b.apk")), contents);
    QVERIFY(m_world->start());
    QCOMPARE(install(source(QStringLiteral("a.apk"))), QStringLiteral("true"));
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("StartUnit")));
    QVERIFY(m_world->see(QStringLiteral("activating")));
    QCOMPARE(install(source(QStringLiteral("b.apk"))), QStringLiteral("true"));
    DaemonFixture::call(QStringLiteral("controlServiceAutostart"), {false});
    QVERIFY(m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
    QCOMPARE(m_world->starts(), 1);
}

void TestInstall::secondRequestForAFileReplacesTheFirst()
{
    const QString name = QStringLiteral("a.apk");
    const QString first = source(QStringLiteral("1/a.apk"));
    const QString second = source(QStringLiteral("2/a.apk"));
    makeFile(first, QByteArrayLiteral("a longer first app"));
    makeFile(second, contents);
    QVERIFY(m_world->start());
    QCOMPARE(install(first), QStringLiteral("true"));
    QCOMPARE(install(second), QStringLiteral("true"));
    QStringList words = wordsOfADeferredInstall(second, name);
    words.insert(1,
        QStringLiteral("warning File already exists in incoming folder: \"%1\"")
            .arg(incoming(name)));
    QTRY_COMPARE(m_world->daemonLines(), wordsOfADeferredInstall(first, name) + words);
    QCOMPARE(fileContents(incoming(name)), contents);
    QCOMPARE(entries(incoming()), QStringList{name});

    QVERIFY(m_world->bringUpRuntime());
    QVERIFY(m_world->android->waitForRequest(packageService, installCode));
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(names(m_world->requests(packageService, installCode)),
        QStringList{incomingInRuntime(name)});
}

void TestInstall::leftoversAreClearedAway()
{
    const QString name = QStringLiteral("a.apk");
    makeFile(source(name), contents);
    QVERIFY(m_world->start());
    makeFile(incoming(name), QByteArrayLiteral("an app of before"));
    makeFile(incoming(name + QLatin1String(".tmp")), QByteArrayLiteral("half of it"));
    QCOMPARE(install(source(name)), QStringLiteral("true"));
    QStringList words = wordsOfADeferredInstall(source(name), name);
    words.insert(1,
        QStringLiteral("warning File already exists in incoming folder: \"%1\"")
            .arg(incoming(name)));
    words.insert(2,
        QStringLiteral("warning Tmp file already exists in incoming folder: \"%1.tmp\"")
            .arg(incoming(name)));
    QTRY_COMPARE(m_world->daemonLines(), words);
    QCOMPARE(entries(incoming()), QStringList{name});
    QCOMPARE(fileContents(incoming(name)), contents);
}

void TestInstall::incomingFolderMayBeALink()
{
    const QString folder = QStringLiteral("/run/elsewhere/");
    const QString link = incoming().chopped(1);
    QVERIFY(QDir().mkpath(folder) && QDir().mkpath(QFileInfo(link).path()));
    QVERIFY(QFile::link(folder, link));
    const QString name = QStringLiteral("a.apk");
    makeFile(source(name), contents);
    QVERIFY(m_world->start());
    QCOMPARE(install(source(name)), QStringLiteral("true"));
    QTRY_COMPARE(m_world->daemonLines(), wordsOfADeferredInstall(source(name), name));
    QCOMPARE(entries(folder), QStringList{name});
    QCOMPARE(rights(folder), QStringLiteral("0:0 755"));
    QVERIFY(QFileInfo(link).isSymLink());
}

void TestInstall::markerIsEmptiedAndNeverNoticed_data()
{
    QTest::addColumn<bool>("hasFolder");
    QTest::newRow("a marker of old") << true;
    QTest::newRow("no folder") << false;
}

void TestInstall::markerIsEmptiedAndNeverNoticed()
{
    QFETCH(bool, hasFolder);
    const QString name = QStringLiteral("a-1.apk");
    makeFile(source(name), contents);
    if (hasFolder)
        makeFile(marker(name), QByteArrayLiteral("old"));
    else
        QVERIFY(QDir(marker()).removeRecursively());
    QVERIFY(m_world->start());
    QCOMPARE(
        resultOf(DaemonFixture::call(QStringLiteral("installPartnerSpaceFile"), {source(name)})),
        QStringLiteral("true"));
    QTRY_COMPARE(m_world->daemonLines(), wordsOfADeferredInstall(source(name), name));
    QCOMPARE(QFile::exists(marker(name)), hasFolder);
    QCOMPARE(fileContents(marker(name)), hasFolder ? QByteArray("") : QByteArray());
}

void TestInstall::noSignalTellsOfARequest()
{
    const QString path = QStringLiteral("/com/tovra/lumd");
    const QString interface = QStringLiteral("com.tovra.lumd");
    QDBusConnection bus = QDBusConnection::systemBus();
    QVERIFY(bus.connect({}, path, interface, {}, this, SLOT(onSignal(QDBusMessage))));
    makeFile(packaged(QStringLiteral("a.apk")), contents);
    makeFile(source(QStringLiteral("b.apk")), contents);
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    for (const QString &apk :
        {packaged(QStringLiteral("a.apk")), source(QStringLiteral("b.apk"))}) {
        QCOMPARE(install(apk), QStringLiteral("true"));
        QCOMPARE(resultOf(DaemonFixture::call(QStringLiteral("removeFile"), {apk})),
            QStringLiteral("true"));
    }
    // Sent last, it arrives last.
    QVERIFY(bus.send(QDBusMessage::createSignal(path, interface, QStringLiteral("end"))));
    QTRY_COMPARE(m_signals, QStringList{QStringLiteral("end")});
}

LUM_TEST_MAIN(TestInstall)
#include "tst_install.moc"
