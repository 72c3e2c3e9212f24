// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopmanager.h"

#include "launcher/fileoperations.h"
#include "tests/launcher/launcherfiles.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace LauncherFiles;

namespace {

constexpr char variable[] = "LUMD_PACKAGE_BLACKLIST_PATH";

const QString &blacklist()
{
    static const QString path = QStringLiteral("/etc/lumd/app-blacklist");
    return path;
}

enum class Kind { Fifo, LinkToFifo, LinkToSocket, LinkToDevice };

bool makeSocket(const char *path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, path, sizeof(address.sun_path));
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isBound =
        bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0;
    close(descriptor);
    return isBound;
}

bool make(Kind kind, const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    switch (kind) {
    case Kind::Fifo:
        return mkfifo(name.constData(), 0644) == 0;
    case Kind::LinkToFifo:
        return mkfifo("/run/fifo", 0644) == 0 && symlink("/run/fifo", name.constData()) == 0;
    case Kind::LinkToSocket:
        return makeSocket("/run/socket") && symlink("/run/socket", name.constData()) == 0;
    case Kind::LinkToDevice:
        return symlink("/dev/zero", name.constData()) == 0;
    }
    return false;
}

void addKinds()
{
    QTest::addColumn<Kind>("kind");
    QTest::newRow("FIFO") << Kind::Fifo;
    QTest::newRow("link to a FIFO") << Kind::LinkToFifo;
    QTest::newRow("link to a socket") << Kind::LinkToSocket;
    QTest::newRow("link to a device") << Kind::LinkToDevice;
}

} // namespace

Q_DECLARE_METATYPE(Kind)

// What is no regular file is never waited for: each of these would hold the process for ever
// if it were opened as a file is.
class TestDesktopManagerOddFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void oddFileCannotBeRead_data() { addKinds(); }
    void oddFileCannotBeRead();
    void fifoInThePlaceOfEachFileIsReplaced_data();
    void fifoInThePlaceOfEachFileIsReplaced();
    void fifoInThePlaceOfAnEntryIsNoInstalledLauncher();
    void linkToAnOddFileIsAnEntryWithoutAPackage_data();
    void linkToAnOddFileIsAnEntryWithoutAPackage();
    void oddBlacklistIsPassedOverInSilence_data() { addKinds(); }
    void oddBlacklistIsPassedOverInSilence();
};

void TestDesktopManagerOddFiles::cleanup()
{
    const QStringList paths = allFiles();
    for (const QString &path : paths)
        QFile::remove(path);
    QFile::remove(QStringLiteral("/run/odd"));
    QFile::remove(blacklist());
    QVERIFY(qunsetenv(variable));
}

void TestDesktopManagerOddFiles::oddFileCannotBeRead()
{
    QFETCH(Kind, kind);

    const QString path = QStringLiteral("/run/odd");
    QVERIFY(make(kind, path));
    QVERIFY(!readFile(path));
    QVERIFY(fileDiffers(path, {}));
}

void TestDesktopManagerOddFiles::fifoInThePlaceOfEachFileIsReplaced_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("lines");

    const ApkLauncher app = launcher("a");
    QTest::newRow("entry") << desktopPath(app) << rewrittenLines(app);
    QTest::newRow("icon") << iconPath(app) << announcedLines(app);
    QTest::newRow("settings entry") << settingsPath(app) << announcedLines(app);
}

void TestDesktopManagerOddFiles::fifoInThePlaceOfEachFileIsReplaced()
{
    QFETCH(QString, path);
    QFETCH(QStringList, lines);

    const ApkLauncher app = launcher("a");
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(app);
    const QByteArray contents = read(path);
    QVERIFY(QFile::remove(path));
    QVERIFY(make(Kind::Fifo, path));
    const QSignalSpy installed(&manager, &DesktopManager::newApplicationInstalled);
    const LogCapture log;
    manager.onCreateLauncher(app);
    QVERIFY(QFileInfo(path).isFile());
    QCOMPARE(read(path), contents);
    QCOMPARE(log.lines(), lines);
    // Something was there, so that the launcher is not new.
    QCOMPARE(installed.size(), 0);
    QCOMPARE(allFiles(), filesOf(app));
}

void TestDesktopManagerOddFiles::fifoInThePlaceOfAnEntryIsNoInstalledLauncher()
{
    const ApkLauncher app = launcher("a");
    QVERIFY(make(Kind::Fifo, desktopPath(app)));
    DesktopManager manager{ApkConfig()};
    const LogCapture log;
    QCOMPARE(manager.desktopFiles(), QStringList());
    QCOMPARE(manager.packageForDesktopFile(desktopPath(app)), desktopPath(app));
    QCOMPARE(manager.appName(app.packageName), app.packageName);
    manager.onLaunchersComplete();
    QCOMPARE(listing(applications).size(), 1);
    QCOMPARE(log.lines(), QStringList());
}

void TestDesktopManagerOddFiles::linkToAnOddFileIsAnEntryWithoutAPackage_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::newRow("FIFO") << Kind::LinkToFifo;
    QTest::newRow("socket") << Kind::LinkToSocket;
    QTest::newRow("device") << Kind::LinkToDevice;
}

void TestDesktopManagerOddFiles::linkToAnOddFileIsAnEntryWithoutAPackage()
{
    QFETCH(Kind, kind);

    const ApkLauncher app = launcher("a");
    QVERIFY(make(kind, desktopPath(app)));
    DesktopManager manager{ApkConfig()};
    const LogCapture log;
    manager.onLaunchersComplete();
    QCOMPARE(warnings(log),
        QStringList({
            logLine("warning",
                QStringLiteral("File \"%1\" does not have key: \"X-lumd-packageName\"")
                    .arg(desktopPath(app))),
            pathLine("warning", "Could not remove:", iconPath(app)),
        }));
    QCOMPARE(listing(applications), QStringList());
}

void TestDesktopManagerOddFiles::oddBlacklistIsPassedOverInSilence()
{
    QFETCH(Kind, kind);

    QVERIFY(make(kind, blacklist()));
    write(QStringLiteral("/run/second"), "a\n");
    qputenv(variable, "/run/second");
    const LogCapture log(LogCapture::Level::Default);
    DesktopManager manager{ApkConfig()};
    manager.onCreateLauncher(launcher("a"));
    QVERIFY(read(desktopPath(launcher("a"))).contains("\nNoDisplay=true\n"));

    // The same as the second of the two.
    qputenv(variable, blacklist().toUtf8());
    DesktopManager other{ApkConfig()};
    other.onCreateLauncher(launcher("a"));
    QCOMPARE(read(desktopPath(launcher("a"))), entryText(launcher("a")));
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestDesktopManagerOddFiles)
#include "tst_desktopmanageroddfiles.moc"
