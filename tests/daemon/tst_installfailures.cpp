// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDir>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

const QByteArray contents = QByteArrayLiteral("PK\3\4 an app");

QString source(const QString &name = QStringLiteral("a.apk"))
{
    return QStringLiteral("/run/apps/") + name;
}

/// A file that is there and cannot be opened, not even by root.
bool makeSocket(const QString &path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, qPrintable(path), sizeof(address.sun_path));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const bool ok =
        fd >= 0 && ::bind(fd, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0;
    ::close(fd);
    return ok;
}

QDBusPendingCall beginInstall(const QString &path)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        QStringLiteral("/com/tovra/lumd"), QStringLiteral("com.tovra.lumd"),
        QStringLiteral("installFile"));
    message.setArguments({path});
    return QDBusConnection::systemBus().asyncCall(message);
}

} // namespace

class TestInstallFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void missingRuntimeIsReported();
    void missingRuntimeIsOffered();
    void pathMustBeAbsolute_data();
    void pathMustBeAbsolute();
    void fileMustExist_data();
    void fileMustExist();
    void whatCannotBeCopiedLeavesNothing_data();
    void whatCannotBeCopiedLeavesNothing();
    void pathThatNamesNoFileFindsAFolderInTheWay_data();
    void pathThatNamesNoFileFindsAFolderInTheWay();
    void nameMustLeaveRoomForTheTemporaryOne();
    void bytesInAPipeAreNotRead();
    void fileThatVanishesWhileItIsReadIsCopiedToItsEnd();

private:
    std::unique_ptr<AppFixture> m_world;
};

void TestInstallFailures::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestInstallFailures::init()
{
    makeFile(QStringLiteral("/opt/alien/system.img"));
    for (const QString &folder : {QStringLiteral("/home/.android"), source({})})
        QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(QDir().mkpath(source({})));
}

void TestInstallFailures::cleanup()
{
    m_world->renew();
}

void TestInstallFailures::missingRuntimeIsReported()
{
    QVERIFY(QFile::remove(QStringLiteral("/opt/alien/system.img")));
    QVERIFY(m_world->start());
    // Before the path is looked at.
    m_world->expectFailure(QStringLiteral("relative.apk"),
        {QStringLiteral("critical This device does not come with Android(tm) App Support")}, 0);
    QCOMPARE(entries(incoming()), QStringList());
}

void TestInstallFailures::missingRuntimeIsOffered()
{
    QVERIFY(QFile::remove(QStringLiteral("/opt/alien/system.img")));
    makeFile(QStringLiteral("/etc/lumd/platform/vsu.conf"), "[vsu]\nrepos=apps, aliendalvik\n");
    TestNamespace::setActiveSession(0);
    TestNamespace::replaceProgram(QStringLiteral("/usr/bin/invoker"),
        "#!/bin/sh\nfor word; do echo \"$word\"; done > /run/offer\nexit 3\n");
    QVERIFY(m_world->start());
    // Start-up has waited for the seat of user 0, whose bus nobody serves.
    m_world->expectFailure(QStringLiteral("relative.apk"),
        {QStringLiteral("warning ACL is not installed, offering installation")}, 0);
    QCOMPARE(fileContents(QStringLiteral("/run/offer")),
        QByteArray("--type=sorbel-qt5\n--no-wait\n/usr/bin/store-client\nshowApp\naliendalvik\n"));
    QVERIFY(QFile::remove(QStringLiteral("/etc/lumd/platform/vsu.conf")));
    TestNamespace::setActiveSession(1000);
}

void TestInstallFailures::pathMustBeAbsolute_data()
{
    QTest::addColumn<QString>("path");
    for (const char *path : {"", "a.apk", "./a.apk", "../apps/a.apk", "~/a.apk", " /run/apps/a.apk",
             "file:///run/apps/a.apk"})
        QTest::newRow(path) << QString::fromLatin1(path);
}

void TestInstallFailures::pathMustBeAbsolute()
{
    QFETCH(QString, path);
    makeFile(source());
    QVERIFY(m_world->start());
    m_world->expectFailure(
        path, {QStringLiteral("critical Absolute path required: \"%1\"").arg(path)}, 0);
}

void TestInstallFailures::fileMustExist_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << source(QStringLiteral("b.apk"));
    QTest::newRow("missing folder") << source(QStringLiteral("b/a.apk"));
    QTest::newRow("a file as a folder") << source() + QLatin1Char('/');
    QTest::newRow("link to nowhere") << source(QStringLiteral("link.apk"));
    QTest::newRow("link to itself") << source(QStringLiteral("loop.apk"));
    QTest::newRow("longer than a path can be")
        << QString(5000, QLatin1Char('/')) + QLatin1String("run/apps/a.apk");
    QTest::newRow("longer than a name can be") << source(QString(300, QLatin1Char('x')));
    // No string of the bus can hold the name's bytes.
    QTest::newRow("not UTF-8") << source(QStringLiteral("a\ufffd.apk"));
}

void TestInstallFailures::fileMustExist()
{
    QFETCH(QString, path);
    makeFile(source());
    QCOMPARE(::symlink("/run/apps/nowhere", "/run/apps/link.apk"), 0);
    QCOMPARE(::symlink("loop.apk", "/run/apps/loop.apk"), 0);
    const int fd = ::open("/run/apps/a\xff.apk", O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
    QVERIFY(fd >= 0);
    ::close(fd);
    QVERIFY(m_world->start());
    m_world->expectFailure(
        path, {QStringLiteral("critical File does not exist: \"%1\"").arg(path)}, 0);
    // Qt cannot remove it.
    QCOMPARE(::unlink("/run/apps/a\xff.apk"), 0);
}

void TestInstallFailures::whatCannotBeCopiedLeavesNothing_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("folder") << source(QStringLiteral("folder.apk"));
    QTest::newRow("socket") << source(QStringLiteral("socket.apk"));
    // Nobody ever writes to it.
    QTest::newRow("pipe") << source(QStringLiteral("pipe.apk"));
    QTest::newRow("link to a pipe") << source(QStringLiteral("link.apk"));
    QTest::newRow("device") << QStringLiteral("/dev/zero");
    QTest::newRow("file of the kernel") << QStringLiteral("/proc/version");
    QTest::newRow("larger than any disk") << source(QStringLiteral("sparse.apk"));
}

void TestInstallFailures::whatCannotBeCopiedLeavesNothing()
{
    QFETCH(QString, path);
    QVERIFY(QDir().mkpath(source(QStringLiteral("folder.apk"))));
    QVERIFY(makeSocket(source(QStringLiteral("socket.apk"))));
    QCOMPARE(::mkfifo(qPrintable(source(QStringLiteral("pipe.apk"))), 0644), 0);
    QVERIFY(QFile::link(QStringLiteral("pipe.apk"), source(QStringLiteral("link.apk"))));
    makeFile(source(QStringLiteral("sparse.apk")));
    QVERIFY(QFile::resize(source(QStringLiteral("sparse.apk")), qint64(100) << 40));
    QVERIFY(m_world->start());
    m_world->expectFailure(path, {couldNotCopy(path, QFileInfo(path).fileName())});
    QCOMPARE(entries(incoming()), QStringList());
}

void TestInstallFailures::pathThatNamesNoFileFindsAFolderInTheWay_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("target");
    QTest::newRow("root") << QStringLiteral("/") << incoming().chopped(1);
    QTest::newRow("slash") << source({}) << incoming().chopped(1);
    QTest::newRow("dot") << source(QStringLiteral(".")) << incoming(QStringLiteral("."));
    QTest::newRow("parent") << source(QStringLiteral("..")) << incoming(QStringLiteral(".."));
}

void TestInstallFailures::pathThatNamesNoFileFindsAFolderInTheWay()
{
    QFETCH(QString, path);
    QFETCH(QString, target);
    QVERIFY(m_world->start());
    m_world->expectFailure(path,
        {QStringLiteral("warning File already exists in incoming folder: \"%1\"").arg(target),
            QStringLiteral("critical Could not copy incoming file: \"%1\" -> \"%2.tmp\"")
                .arg(path, target)});
    QVERIFY(QFileInfo(incoming()).isDir());
    QCOMPARE(entries(incoming()), QStringList());
}

void TestInstallFailures::nameMustLeaveRoomForTheTemporaryOne()
{
    const QString name = QString(248, QLatin1Char('x')) + QLatin1String(".apk");
    makeFile(source(name));
    QVERIFY(m_world->start());
    m_world->expectFailure(source(name), {couldNotCopy(source(name), name)});
    QCOMPARE(entries(incoming()), QStringList());
}

void TestInstallFailures::bytesInAPipeAreNotRead()
{
    QCOMPARE(::mkfifo(qPrintable(source()), 0644), 0);
    const int fd = ::open(qPrintable(source()), O_RDWR | O_CLOEXEC | O_NONBLOCK);
    QVERIFY(fd >= 0);
    QCOMPARE(::write(fd, contents.constData(), size_t(contents.size())), ssize_t(contents.size()));
    QVERIFY(m_world->start());
    m_world->expectFailure(source(), {couldNotCopy(source(), QStringLiteral("a.apk"))});
    QCOMPARE(entries(incoming()), QStringList());
    QByteArray left(2 * contents.size(), 0);
    left.truncate(int(::read(fd, left.data(), size_t(left.size()))));
    ::close(fd);
    QCOMPARE(left, contents);
}

void TestInstallFailures::fileThatVanishesWhileItIsReadIsCopiedToItsEnd()
{
    const QString name = QStringLiteral("a.apk");
    const QByteArray large(64 * 1024 * 1024, 'x');
    makeFile(source(), large);
    QVERIFY(m_world->start());
    QDBusPendingCall reply = beginInstall(source());
    QTRY_VERIFY(!entries(incoming()).isEmpty());
    QVERIFY(QFile::remove(source()));
    reply.waitForFinished();
    QCOMPARE(resultOf(reply.reply()), QStringLiteral("true"));
    QCOMPARE(entries(incoming()), QStringList{name});
    QVERIFY(fileContents(incoming(name)) == large);
}

LUM_TEST_MAIN(TestInstallFailures)
#include "tst_installfailures.moc"
