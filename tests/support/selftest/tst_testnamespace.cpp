// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <systemd/sd-login.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

/// The machine's root folder, opened before the namespace was entered: what is looked up
/// through it is the machine's.
const int outsideRoot = ::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC);

QString outside(const QString &path)
{
    return QStringLiteral("/proc/self/fd/%1%2").arg(outsideRoot).arg(path);
}

bool existsOutside(const QString &path)
{
    return QFileInfo::exists(outside(path));
}

QStringList visible(const QString &folder)
{
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

class TestTestNamespace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void privateFoldersAreEmptyAndWritable_data();
    void privateFoldersAreEmptyAndWritable();
    void absentFoldersCanBeMade_data();
    void absentFoldersCanBeMade();
    void theMachineIsSeenFromInside();
    void theRestIsStillThere();
    void symbolicLinksStaySymbolicLinks();
    void onlyTheFoldersOfTheSystemAreInRun();
    void everybodyIsRoot();
    void aProgramIsReplaced();
    void aProgramIsReplacedAgain();
    void aProgramThatDoesNotExistIsMade();
    void aSmallDiskFillsUp();
    void aReadOnlyFolderTakesNothing();
    void anActiveSessionIsSeen();
    void noSessionIsActiveAtFirst();
    void theMonitorTellsOfANewSession();
};

void TestTestNamespace::privateFoldersAreEmptyAndWritable_data()
{
    QTest::addColumn<QString>("folder");
    for (const char *folder : {"/usr/share/applications", "/usr/share/tovra-settings/entries",
             "/usr/share/lumd", "/usr/share/translations", "/etc/lumd", "/opt/alien"})
        QTest::newRow(folder) << QString::fromLatin1(folder);
}

void TestTestNamespace::privateFoldersAreEmptyAndWritable()
{
    QFETCH(QString, folder);
    QCOMPARE(visible(folder), QStringList());
    const QString file = folder + QStringLiteral("/lumd-namespace-mark");
    QVERIFY(write(file, "mark"));
    QVERIFY(QFileInfo::exists(file));
    QVERIFY(!existsOutside(file));
}

void TestTestNamespace::absentFoldersCanBeMade_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("icons") << QStringLiteral("/var/lib/lumd");
    QTest::newRow("data root") << QStringLiteral("/home/.android");
}

void TestTestNamespace::absentFoldersCanBeMade()
{
    QFETCH(QString, folder);
    QVERIFY(!QFileInfo::exists(folder));
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(write(folder + QStringLiteral("/lumd-namespace-mark"), "mark"));
    QVERIFY(!existsOutside(folder + QStringLiteral("/lumd-namespace-mark")));
}

void TestTestNamespace::theMachineIsSeenFromInside()
{
    // Else the other functions would find nothing there whatever happened.
    QTemporaryDir folder;
    QVERIFY(existsOutside(folder.path()));
    QVERIFY(existsOutside(QStringLiteral("/etc/passwd")));
}

void TestTestNamespace::theRestIsStillThere()
{
    for (const char *folder : {"/etc", "/usr/share", "/var/lib", "/home"}) {
        const QString path = QString::fromLatin1(folder);
        QStringList before = visible(outside(path));
        QStringList now = visible(path);
        for (const char *own :
            {"applications", "tovra-settings", "lumd", "localtime", "translations", ".android"}) {
            before.removeAll(QString::fromLatin1(own));
            now.removeAll(QString::fromLatin1(own));
        }
        QVERIFY(!before.isEmpty() || path == QLatin1String("/home"));
        QCOMPARE(now, before);
    }
    QFile accounts(QStringLiteral("/etc/passwd"));
    QVERIFY(accounts.open(QIODevice::ReadOnly));
    QVERIFY(accounts.readAll().startsWith("root:"));
}

void TestTestNamespace::symbolicLinksStaySymbolicLinks()
{
    char here[256] = {};
    char there[256] = {};
    QVERIFY(::readlink("/etc/os-release", here, sizeof(here) - 1) > 0);
    QVERIFY(
        ::readlink(qPrintable(outside(QStringLiteral("/etc/os-release"))), there, sizeof(there) - 1)
        > 0);
    QCOMPARE(QByteArray(here), QByteArray(there));
}

void TestTestNamespace::onlyTheFoldersOfTheSystemAreInRun()
{
    QCOMPARE(visible(QStringLiteral("/run")),
        (QStringList{QStringLiteral("dbus"), QStringLiteral("programs"), QStringLiteral("systemd"),
            QStringLiteral("user")}));
    QCOMPARE(visible(QStringLiteral("/run/systemd")),
        (QStringList{
            QStringLiteral("seats"), QStringLiteral("sessions"), QStringLiteral("users")}));
    QCOMPARE(visible(QStringLiteral("/run/systemd/seats")), QStringList());
    QVERIFY(write(QStringLiteral("/run/lumd-namespace-mark"), "mark"));
    QVERIFY(!existsOutside(QStringLiteral("/run/lumd-namespace-mark")));
}

void TestTestNamespace::everybodyIsRoot()
{
    QCOMPARE(getuid(), 0U);
    QVERIFY(write(QStringLiteral("/run/owned"), "x"));
    QCOMPARE(::chown("/run/owned", 0, 0), 0);
}

void TestTestNamespace::aProgramIsReplaced()
{
    const QFileInfo before(QStringLiteral("/usr/bin/du"));
    const qint64 size = before.size();
    TestNamespace::replaceProgram(QStringLiteral("/usr/bin/du"), "#!/bin/sh\necho 42 $1\n");
    QProcess process;
    process.start(QStringLiteral("/usr/bin/du"), {QStringLiteral("-s")});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardOutput(), QByteArray("42 -s\n"));
    QCOMPARE(QFileInfo(outside(QStringLiteral("/usr/bin/du"))).size(), size);
}

void TestTestNamespace::aProgramIsReplacedAgain()
{
    TestNamespace::replaceProgram(QStringLiteral("/usr/bin/du"), "#!/bin/sh\necho one\n");
    TestNamespace::replaceProgram(QStringLiteral("/usr/bin/du"), "#!/bin/sh\necho two\n");
    QProcess process;
    process.start(QStringLiteral("/usr/bin/du"), QStringList());
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardOutput(), QByteArray("two\n"));
}

void TestTestNamespace::aProgramThatDoesNotExistIsMade()
{
    const QString program = QStringLiteral("/usr/bin/lumd-namespace-program");
    QVERIFY(!QFileInfo::exists(program));
    TestNamespace::replaceProgram(program, "#!/bin/sh\necho here\n");
    QProcess process;
    process.start(program, QStringList());
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardOutput(), QByteArray("here\n"));
    process.start(QStringLiteral("/usr/bin/env"), QStringList());
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(!existsOutside(program));
}

void TestTestNamespace::aSmallDiskFillsUp()
{
    const QString disk = QStringLiteral("/var/lib/lumd");
    TestNamespace::mountSmallDisk(disk, 64);
    QVERIFY(write(disk + QStringLiteral("/fits"), QByteArray(32 * 1024, 'x')));
    QVERIFY(!write(disk + QStringLiteral("/does not"), QByteArray(64 * 1024, 'x')));
}

void TestTestNamespace::aReadOnlyFolderTakesNothing()
{
    const QString folder = QStringLiteral("/usr/share/applications");
    QVERIFY(write(folder + QStringLiteral("/before"), "x"));
    TestNamespace::setReadOnly(folder, true);
    QVERIFY(!write(folder + QStringLiteral("/during"), "x"));
    QVERIFY(!QFile::remove(folder + QStringLiteral("/before")));
    QVERIFY(write(QStringLiteral("/usr/share/lumd/beside"), "x"));
    TestNamespace::setReadOnly(folder, false);
    QVERIFY(write(folder + QStringLiteral("/after"), "x"));
    TestNamespace::setReadOnly(folder, true);
    QVERIFY(!write(folder + QStringLiteral("/again"), "x"));
}

void TestTestNamespace::anActiveSessionIsSeen()
{
    uid_t uid = 0;
    TestNamespace::setActiveSession(1000);
    QVERIFY(sd_seat_get_active("seat0", nullptr, &uid) >= 0);
    QCOMPARE(uid, 1000U);
    char *session = nullptr;
    QVERIFY(sd_seat_get_active("seat0", &session, nullptr) >= 0);
    QCOMPARE(QByteArray(session), QByteArray("1"));
    free(session);
    TestNamespace::clearActiveSession();
    QVERIFY(sd_seat_get_active("seat0", nullptr, &uid) < 0);
}

void TestTestNamespace::noSessionIsActiveAtFirst()
{
    uid_t uid = 0;
    QVERIFY(sd_seat_get_active("seat0", nullptr, &uid) < 0);
}

void TestTestNamespace::theMonitorTellsOfANewSession()
{
    sd_login_monitor *monitor = nullptr;
    QVERIFY(sd_login_monitor_new("seat", &monitor) >= 0);
    pollfd events = {sd_login_monitor_get_fd(monitor),
        static_cast<short>(sd_login_monitor_get_events(monitor)), 0};
    QCOMPARE(poll(&events, 1, 0), 0);
    TestNamespace::setActiveSession(1000);
    QCOMPARE(poll(&events, 1, 10000), 1);
    sd_login_monitor_flush(monitor);
    QCOMPARE(poll(&events, 1, 0), 0);
    TestNamespace::clearActiveSession();
    QCOMPARE(poll(&events, 1, 10000), 1);
    sd_login_monitor_unref(monitor);
}

LUM_TEST_MAIN(TestTestNamespace)
#include "tst_testnamespace.moc"
