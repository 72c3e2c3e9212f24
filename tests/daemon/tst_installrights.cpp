// SPDX-License-Identifier: BSD-3-Clause
// Whose rights a file is opened with, once the policy lets everybody install. In a namespace of
// root alone every caller is root by number, and every file is there for him.
#include "tests/daemon/appfixture.h"
#include "tests/daemon/callas.h"
#include "tests/support/systemcalls.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace {

const QByteArray contents = QByteArrayLiteral("PK\3\4 an app");
const QString name = QStringLiteral("a.apk");
const QString source = QStringLiteral("/run/apps/a.apk");
constexpr uint nemo = 12345;
constexpr uint disk = 6; // beside his own group, see caller.cpp

bool hasUsers()
{
    return SystemCalls::hasUser(nemo);
}

void makeSource(uint owner, uint group, int mode)
{
    makeFile(source, contents);
    if (hasUsers() && chown(qPrintable(source), owner, group) != 0)
        qFatal("cannot give the file away");
    if (chmod(qPrintable(source), mode_t(mode)) != 0)
        qFatal("cannot set the mode");
}

QString install(const Identity &caller, const QString &path = source)
{
    return callAs(caller, plain(), QStringLiteral("installFile"), {path});
}

} // namespace

Q_DECLARE_METATYPE(Identity)

class TestInstallRights : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void callerInstallsWhatHeMayRead_data();
    void callerInstallsWhatHeMayRead();
    void pathMayNotLeadThroughAShutFolder_data();
    void pathMayNotLeadThroughAShutFolder();
    void refusedFileLeavesNothingAndStopsNothing();
    void privilegedCallersInstallEveryFile_data();
    void privilegedCallersInstallEveryFile();
    void rightsAreThoseOfTheConnection();
    void callerThatHasGoneHasNobodysRights_data();
    void callerThatHasGoneHasNobodysRights();

private:
    std::unique_ptr<AppFixture> m_world;
};

void TestInstallRights::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    replaceUsersAndGroups();
    makeFile(QStringLiteral("/etc/lumd/platform/policy.conf"), "[policy]\n6=true\n");
}

void TestInstallRights::init()
{
    for (const char *folder : {"/run/apps", "/home/.android"})
        QVERIFY(QDir(QString::fromLatin1(folder)).removeRecursively());
    QVERIFY(QDir().mkpath(QStringLiteral("/run/apps")));
}

void TestInstallRights::cleanup()
{
    m_world->renew();
}

void TestInstallRights::callerInstallsWhatHeMayRead_data()
{
    QTest::addColumn<uint>("owner");
    QTest::addColumn<uint>("group");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("isInstalled");
    QTest::newRow("for all") << 0U << 0U << 0644 << true;
    QTest::newRow("for its owner") << nemo << 0U << 0600 << true;
    QTest::newRow("for his group") << 0U << nemo << 0640 << true;
    QTest::newRow("for another group of his") << 0U << disk << 0640 << true;
    QTest::newRow("for root") << 0U << 0U << 0600 << false;
    QTest::newRow("for root's group") << 0U << 0U << 0640 << false;
    QTest::newRow("for nobody, as the list of passwords") << 0U << 42U << 0640 << false;
    QTest::newRow("for others, and not for its owner") << nemo << 0U << 0044 << false;
}

void TestInstallRights::callerInstallsWhatHeMayRead()
{
    QFETCH(uint, owner);
    QFETCH(uint, group);
    QFETCH(int, mode);
    QFETCH(bool, isInstalled);
    makeSource(owner, group, mode);
    QVERIFY(m_world->start());
    isInstalled = isInstalled || !hasUsers();
    QCOMPARE(install(ordinary()), isInstalled ? QStringLiteral("true") : QStringLiteral("false"));
    QCOMPARE(entries(incoming()), isInstalled ? QStringList{name} : QStringList());
    if (isInstalled) {
        QCOMPARE(fileContents(incoming(name)), contents);
        QCOMPARE(rights(incoming(name)), QStringLiteral("0:0 644"));
    } else {
        QTRY_COMPARE(m_world->daemonLines(),
            QStringList({QStringLiteral("debug installFile: \"%1\"").arg(source),
                couldNotCopy(source, name)}));
    }
}

void TestInstallRights::pathMayNotLeadThroughAShutFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("file") << source;
    QTest::newRow("link") << QStringLiteral("/run/links/a.apk");
}

void TestInstallRights::pathMayNotLeadThroughAShutFolder()
{
    QFETCH(QString, path);
    makeSource(0, 0, 0644);
    QVERIFY(QDir().mkpath(QStringLiteral("/run/links")));
    QFile::link(source, QStringLiteral("/run/links/a.apk"));
    QCOMPARE(chmod("/run/apps", 0700), 0);
    QVERIFY(m_world->start());
    QCOMPARE(
        install(ordinary(), path), hasUsers() ? QStringLiteral("false") : QStringLiteral("true"));
    QCOMPARE(entries(incoming()), hasUsers() ? QStringList() : QStringList{name});
    QCOMPARE(
        install({QStringLiteral("root"), QStringLiteral("root")}, path), QStringLiteral("true"));
}

void TestInstallRights::refusedFileLeavesNothingAndStopsNothing()
{
    makeSource(0, 0, 0600);
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    QCOMPARE(install(ordinary()), hasUsers() ? QStringLiteral("false") : QStringLiteral("true"));
    const int soFar = hasUsers() ? 0 : 1;
    QCOMPARE(m_world->requests(QStringLiteral("package"), installCode).size(), soFar);
    // lumd has its own rights again: the same file for root, and the same folder.
    QCOMPARE(install({QStringLiteral("root"), QStringLiteral("root")}), QStringLiteral("true"));
    QCOMPARE(m_world->requests(QStringLiteral("package"), installCode).size(), soFar + 1);
    QCOMPARE(fileContents(incoming(name)), contents);
}

void TestInstallRights::privilegedCallersInstallEveryFile_data()
{
    QTest::addColumn<Identity>("caller");
    const QString user = QStringLiteral("nemo");
    QTest::newRow("root") << Identity{QStringLiteral("root"), QStringLiteral("root")};
    QTest::newRow("disk") << Identity{user, QStringLiteral("disk")};
    QTest::newRow("privileged") << Identity{user, QStringLiteral("privileged")};
}

void TestInstallRights::privilegedCallersInstallEveryFile()
{
    QFETCH(Identity, caller);
    makeSource(0, 0, 0600);
    QVERIFY(m_world->start());
    QCOMPARE(install(caller), QStringLiteral("true"));
    QCOMPARE(fileContents(incoming(name)), contents);
}

void TestInstallRights::rightsAreThoseOfTheConnection()
{
    makeSource(0, 0, 0600);
    QVERIFY(m_world->start());
    const Identity root{QStringLiteral("root"), QStringLiteral("root")};
    const QString method = QStringLiteral("installFile");
    const QString refused = hasUsers() ? QStringLiteral("false") : QStringLiteral("true");
    QCOMPARE(callAs(ordinary(), becoming(root), method, {source}), refused);
    // Nor are root's for one who has given them up.
    QCOMPARE(callAs(root, becoming(ordinary()), method, {source}), refused);
}

void TestInstallRights::callerThatHasGoneHasNobodysRights_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("for all") << 0644;
    QTest::newRow("for its owner") << 0600;
}

void TestInstallRights::callerThatHasGoneHasNobodysRights()
{
    QFETCH(int, mode);
    makeSource(nemo, nemo, mode);
    QVERIFY(m_world->start());
    m_world->daemon->signal(SIGSTOP);
    QCOMPARE(callAs(ordinary(), QStringLiteral("hasty"), QStringLiteral("installFile"), {source}),
        QString());
    m_world->daemon->signal(SIGCONT);
    // In a namespace of root alone there is no nobody either.
    const bool isInstalled = mode == 0644 && hasUsers();
    QTRY_VERIFY(m_world->daemonLines().size() >= 2);
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(m_world->daemonLines().contains(couldNotCopy(source, name)), !isInstalled);
    QCOMPARE(entries(incoming()), isInstalled ? QStringList{name} : QStringList());
}

LUM_TEST_MAIN(TestInstallRights)
#include "tst_installrights.moc"
