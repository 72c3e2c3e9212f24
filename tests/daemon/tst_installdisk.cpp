// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/systemcalls.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDir>

#include <sys/mount.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace {

const QByteArray contents = QByteArrayLiteral("PK\3\4 an app");

QString source()
{
    return QStringLiteral("/run/apps/a.apk");
}

QString alreadyThere(const QString &name)
{
    return QStringLiteral("warning File already exists in incoming folder: \"%1\"")
        .arg(incoming(name));
}

QString couldNotRename()
{
    return QStringLiteral("critical Could not rename file: \"%1.tmp\" -> \"%1\"")
        .arg(incoming(QStringLiteral("a.apk")));
}

QString cannotSet(const char *property)
{
    return QStringLiteral("warning Cannot set %1 of directory: \"%2\"")
        .arg(QLatin1String(property), incoming().chopped(1));
}

} // namespace

/// Installs into a folder that does not take them.
class TestInstallDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void fullDiskLeavesNothingBehind_data();
    void fullDiskLeavesNothingBehind();
    void readOnlyFolderIsLeftAsItIs();
    void folderInTheWayLeavesTheTemporaryFile();
    void folderInTheTemporaryFilesWayStopsTheCopy();
    void linkThatLeadsNowhereGoesWithTheFailure_data();
    void linkThatLeadsNowhereGoesWithTheFailure();
    void refusedModeLeavesTheStagedFile();
    void refusedOwnerLeavesTheStagedFile();

private:
    static QString install(const QString &path);
    /// Drops the lines of a start at which that could not be set.
    bool forgetStart(const char *property);

    std::unique_ptr<AppFixture> m_world;
};

void TestInstallDisk::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestInstallDisk::init()
{
    QVERIFY(QDir(QStringLiteral("/home/.android")).removeRecursively());
}

void TestInstallDisk::cleanup()
{
    m_world->renew();
}

QString TestInstallDisk::install(const QString &path)
{
    return resultOf(DaemonFixture::call(QStringLiteral("installFile"), {path}));
}

bool TestInstallDisk::forgetStart(const char *property)
{
    const bool isTold = m_world->daemon->waitForLine(cannotSet(property).insert(
        int(std::strlen("warning ")), QLatin1String("com.tovra.lumd.daemon ")));
    m_world->daemon->clearLines();
    return isTold;
}

void TestInstallDisk::fullDiskLeavesNothingBehind_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("far too large") << 1024 * 1024;
    QTest::newRow("a byte too large") << 64 * 1024 + 1;
}

void TestInstallDisk::fullDiskLeavesNothingBehind()
{
    QFETCH(int, size);
    TestNamespace::mountSmallDisk(incoming(), 64);
    makeFile(source(), QByteArray(size, 'x'));
    QVERIFY(m_world->start());
    const QString name = QStringLiteral("a.apk");
    m_world->expectFailure(source(), {couldNotCopy(source(), name)});
    QCOMPARE(entries(incoming()), QStringList());

    // The disk is as good as before.
    makeFile(source(), QByteArray(64 * 1024, 'y'));
    QCOMPARE(install(source()), QStringLiteral("true"));
    QCOMPARE(fileContents(incoming(name)), QByteArray(64 * 1024, 'y'));
    m_world->daemon->kill();
    QCOMPARE(::umount(qPrintable(incoming())), 0);
}

void TestInstallDisk::readOnlyFolderIsLeftAsItIs()
{
    makeFile(source(), contents);
    QVERIFY(m_world->start());
    makeFile(incoming(QStringLiteral("b.apk")));
    TestNamespace::setReadOnly(incoming(), true);
    m_world->expectFailure(source(),
        {cannotSet("ownership"), cannotSet("permission"),
            couldNotCopy(source(), QStringLiteral("a.apk"))});
    QCOMPARE(entries(incoming()), QStringList{QStringLiteral("b.apk")});
    m_world->daemon->kill();
    TestNamespace::setReadOnly(incoming(), false);
    QCOMPARE(::umount(qPrintable(incoming())), 0);
}

void TestInstallDisk::folderInTheWayLeavesTheTemporaryFile()
{
    const QString name = QStringLiteral("a.apk");
    makeFile(source(), contents);
    QVERIFY(m_world->start());
    QVERIFY(QDir().mkpath(incoming(name)));
    m_world->expectFailure(source(), {alreadyThere(name), couldNotRename()});
    QVERIFY(QFileInfo(incoming(name)).isDir());
    QCOMPARE(fileContents(incoming(QStringLiteral("a.apk.tmp"))), contents);

    // The next install of that name clears it.
    QVERIFY(QDir().rmdir(incoming(name)));
    QCOMPARE(install(source()), QStringLiteral("true"));
    QCOMPARE(entries(incoming()), QStringList{name});
}

void TestInstallDisk::folderInTheTemporaryFilesWayStopsTheCopy()
{
    const QString name = QStringLiteral("a.apk");
    makeFile(source(), contents);
    QVERIFY(m_world->start());
    QVERIFY(QDir().mkpath(incoming(QStringLiteral("a.apk.tmp"))));
    makeFile(incoming(name));
    m_world->expectFailure(source(),
        {alreadyThere(name),
            QStringLiteral("warning Tmp file already exists in incoming folder: \"%1.tmp\"")
                .arg(incoming(name)),
            couldNotCopy(source(), name)});
    QCOMPARE(entries(incoming()), QStringList{QStringLiteral("a.apk.tmp")});
}

void TestInstallDisk::linkThatLeadsNowhereGoesWithTheFailure_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QStringList>("left");
    QTest::newRow("copy") << QStringLiteral("a.apk.tmp")
                          << couldNotCopy(source(), QStringLiteral("a.apk")) << QStringList();
    QTest::newRow("rename") << QStringLiteral("a.apk") << couldNotRename()
                            << QStringList{QStringLiteral("a.apk.tmp")};
}

void TestInstallDisk::linkThatLeadsNowhereGoesWithTheFailure()
{
    QFETCH(QString, link);
    QFETCH(QString, words);
    QFETCH(QStringList, left);
    makeFile(source(), contents);
    QVERIFY(m_world->start());
    QVERIFY(QFile::link(QStringLiteral("/no/where"), incoming(link)));
    m_world->expectFailure(source(), {words});
    QCOMPARE(entries(incoming()), left);
}

void TestInstallDisk::refusedModeLeavesTheStagedFile()
{
    makeFile(source(), contents);
    QCOMPARE(::chmod(qPrintable(source()), 0600), 0);
    SystemCalls::refuse(SystemCalls::ofChmod(), EPERM);
    QVERIFY(m_world->start());
    QVERIFY(forgetStart("permission"));
    m_world->expectFailure(source(),
        {cannotSet("permission"),
            QStringLiteral("critical Cannot change permissions: \"%1\" ( Operation not permitted )")
                .arg(incoming(QStringLiteral("a.apk")))});
    QCOMPARE(entries(incoming()), QStringList{QStringLiteral("a.apk")});
    QCOMPARE(fileContents(incoming(QStringLiteral("a.apk"))), contents);
}

void TestInstallDisk::refusedOwnerLeavesTheStagedFile()
{
    makeFile(source(), contents);
    QCOMPARE(::chmod(qPrintable(source()), 0600), 0);
    SystemCalls::refuse(SystemCalls::ofChown(), EROFS);
    QVERIFY(m_world->start());
    QVERIFY(forgetStart("ownership"));
    m_world->expectFailure(source(),
        {cannotSet("ownership"),
            QStringLiteral("critical Cannot change ownership: \"%1\" ( Read-only file system )")
                .arg(incoming(QStringLiteral("a.apk")))});
    QCOMPARE(entries(incoming()), QStringList{QStringLiteral("a.apk")});
    QCOMPARE(rights(incoming(QStringLiteral("a.apk"))), QStringLiteral("0:0 644"));
}

LUM_TEST_MAIN(TestInstallDisk)
#include "tst_installdisk.moc"
