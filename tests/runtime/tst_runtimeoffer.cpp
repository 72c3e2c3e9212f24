// SPDX-License-Identifier: BSD-3-Clause
#include "runtime/runtimeoffer.h"

#include "tests/support/mounts.h"
#include "tests/support/systemcalls.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <functional>

#ifdef MEASURES_COVERAGE
extern "C" void __gcov_dump();
#endif

namespace {

const QString launcherProgram = QStringLiteral("/usr/bin/invoker");
const QString record = QStringLiteral("/run/record/offer");
constexpr int copysExitCode = 7;

/// Each text has a time of its own: QSettings knows a new file by its size and time alone, and
/// the clock may not have gone on since the last one.
void writeFile(const QString &path, const QByteArray &text)
{
    QFile file(path);
    const uint length = uint(text.size());
    const auto time = QDateTime::fromSecsSinceEpoch(qChecksum(text.constData(), length));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush()
        || !file.setFileTime(time, QFileDevice::FileModificationTime))
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
}

void setRepositories(const QByteArray &text)
{
    QDir().mkpath(QStringLiteral("/etc/lumd/platform"));
    writeFile(QStringLiteral("/etc/lumd/platform/vsu.conf"), text);
}

/// A user of several groups, where the namespace has more than root.
constexpr uint seatUser = 1234;

void replaceUsersAndGroups()
{
    const QString users = QStringLiteral("/run/record/users");
    const QString groups = QStringLiteral("/run/record/groups");
    writeFile(users, "root:x:0:0::/:/bin/sh\nnemo:x:1234:4321::/:/bin/sh\n");
    writeFile(groups, "root:x:0:\nnemo:x:4321:\nwifi:x:5001:nemo\nlog:x:5002:\ncar:x:5003:nemo\n");
    Mounts::bind(users, QStringLiteral("/etc/passwd"));
    Mounts::bind(groups, QStringLiteral("/etc/group"));
}

/// Puts a launcher in place that notes whose it is and what it was told, and then goes on.
void replaceLauncher(const QByteArray &end)
{
    TestNamespace::replaceProgram(launcherProgram,
        "#!/bin/sh\n{ id -u; id -g; id -G; for word in \"$0\" \"$@\"; do echo \"$word\"; done; } > "
            + record.toLatin1() + "\n" + end + "\n");
}

/// Those of this process, as the launcher notes them.
QByteArray rootsIds()
{
    QProcess id;
    id.start(
        QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("id -u; id -g; id -G")});
    id.waitForFinished();
    return id.readAllStandardOutput();
}

QByteArray arguments()
{
    return "--type=sorbel-qt5\n--no-wait\n/usr/bin/store-client\nshowApp\naliendalvik\n";
}

/// What a process does that makes the offer, of whose end the test learns.
struct Offer
{
    QByteArray errors; ///< what was written to standard error
    QByteArray returns; ///< a line for each return from the function, in no order
};

/// The lines but for those in which a measured process says that its user may not write the counts.
QByteArray messages(const QByteArray &errors)
{
    QByteArrayList lines = errors.split('\n');
    const auto isOfMeasurement = [](const QByteArray &line) {
        return line.startsWith("profiling: ");
    };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isOfMeasurement), lines.end());
    return lines.join('\n');
}

/// Makes the offer in a process of its own, after a preparation there. A line of `returns` says
/// which process came back, the caller or a copy of it, and with what.
Offer offer(const std::function<void()> &prepare = [] { })
{
    int errors[2];
    int returns[2];
    if (pipe2(errors, O_CLOEXEC) != 0 || pipe2(returns, O_CLOEXEC) != 0)
        qFatal("cannot make a pipe");
    const pid_t subject = fork();
    if (subject == 0) {
        dup2(errors[1], STDERR_FILENO);
        prepare();
        const pid_t caller = getpid();
        const int result = offerRuntimePackage();
        const bool isCaller = getpid() == caller;
        const QByteArray line =
            QByteArray(isCaller ? "caller " : "copy ") + QByteArray::number(result) + '\n';
#ifdef MEASURES_COVERAGE
        __gcov_dump();
#endif
        _exit(write(returns[1], line.constData(), size_t(line.size())) == line.size() && isCaller
                ? 0
                : copysExitCode);
    }
    close(errors[1]);
    close(returns[1]);
    Offer outcome;
    QFile errorPipe;
    QFile returnPipe;
    if (errorPipe.open(errors[0], QIODevice::ReadOnly, QFile::AutoCloseHandle)
        && returnPipe.open(returns[0], QIODevice::ReadOnly, QFile::AutoCloseHandle)) {
        outcome.errors = messages(errorPipe.readAll());
        outcome.returns = returnPipe.readAll();
    }
    waitpid(subject, nullptr, 0);
    return outcome;
}

} // namespace

class TestRuntimeOffer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void imageIsAFileOfThatName();
    void repositoriesOfTheDevicesModeCount_data();
    void repositoriesOfTheDevicesModeCount();
    void repositoriesAreReadAtEachCall();

    void launcherRunsAsTheUserOfTheSeat();
    void launcherRunsAsRootWithoutASession();
    void launcherIsCalledByItsName();
    void launcherOfRootsOwnSessionKeepsTheGroups();
    void exitStatusOfTheLauncherIsTheResult_data();
    void exitStatusOfTheLauncherIsTheResult();
    void killedLauncherIsReported();
    void missingLauncherBringsASecondCallerBack();
    void refusedUserBringsASecondCallerBack_data();
    void refusedUserBringsASecondCallerBack();
    void launcherOfAnUnknownUserHasNoGroups();
    void refusedForkIsReported();
    void lostChildIsReported();
};

void TestRuntimeOffer::initTestCase()
{
    QVERIFY(QDir().mkpath(QStringLiteral("/run/record")));
    // The launcher of any user writes there.
    QCOMPARE(::chmod("/run/record", 01777), 0);
    replaceUsersAndGroups();
}

void TestRuntimeOffer::init()
{
    QFile::remove(record);
    TestNamespace::clearActiveSession();
}

void TestRuntimeOffer::imageIsAFileOfThatName()
{
    QVERIFY(!runtimeImageExists());
    writeFile(QStringLiteral("/opt/alien/system.img.old"), {});
    QVERIFY(!runtimeImageExists());
    writeFile(QStringLiteral("/opt/alien/system.img"), {});
    QVERIFY(runtimeImageExists());
    QVERIFY(QFile::remove(QStringLiteral("/opt/alien/system.img")));
    QCOMPARE(::symlink("nowhere", "/opt/alien/system.img"), 0);
    QVERIFY(!runtimeImageExists());
}

void TestRuntimeOffer::repositoriesOfTheDevicesModeCount_data()
{
    QTest::addColumn<QByteArray>("configuration");
    QTest::addColumn<bool>("isThere");
    const auto row = [](const char *title, const char *text, bool isThere) {
        QTest::newRow(title) << QByteArray("[vsu]\n") + text << isThere;
    };
    row("nothing", "", false);
    row("usual mode", "repos=apps, aliendalvik, jolly\n", true);
    row("the only one", "repos=aliendalvik\n", true);
    row("development alone", "rndRepos=aliendalvik\n", false);
    row("development mode", "deviceMode=2\nrndRepos=apps, aliendalvik\n", true);
    row("development mode, usual alone", "deviceMode=2\nrepos=aliendalvik\n", false);
    row("a bit more than 2", "deviceMode=3\nrndRepos=aliendalvik\n", false);
    row("a higher bit", "deviceMode=6\nrndRepos=aliendalvik\n", false);
    row("a higher bit, usual", "deviceMode=6\nrepos=aliendalvik\n", true);
    row("upper case", "repos=Aliendalvik\n", false);
    row("longer", "repos=aliendalvik-l500d\n", false);
    row("with its version", "repos=apps, aliendalvik 1.0\n", false);
}

void TestRuntimeOffer::repositoriesOfTheDevicesModeCount()
{
    QFETCH(QByteArray, configuration);
    QFETCH(bool, isThere);
    setRepositories(configuration);
    QCOMPARE(runtimeInRepos(), isThere);
}

void TestRuntimeOffer::repositoriesAreReadAtEachCall()
{
    QVERIFY(!runtimeInRepos());
    setRepositories("[vsu]\nrepos=aliendalvik\n");
    QVERIFY(runtimeInRepos());
    setRepositories("[vsu]\nrepos=apps\n");
    QVERIFY(!runtimeInRepos());
}

void TestRuntimeOffer::launcherRunsAsTheUserOfTheSeat()
{
    // Where there is but root, only that the launcher runs.
    const bool hasUsers = SystemCalls::hasUser(seatUser);
    TestNamespace::setActiveSession(hasUsers ? seatUser : 0);
    replaceLauncher("exit 0");
    const Offer outcome = offer();
    const QByteArray ids = hasUsers ? QByteArray("1234\n4321\n4321 5001 5003\n") : rootsIds();
    QCOMPARE(readFile(record), ids + launcherProgram.toLatin1() + "\n" + arguments());
    QCOMPARE(outcome.returns, QByteArray("caller 0\n"));
    QCOMPARE(outcome.errors, QByteArray());
}

void TestRuntimeOffer::launcherRunsAsRootWithoutASession()
{
    replaceLauncher("exit 0");
    const Offer outcome = offer();
    QCOMPARE(readFile(record), rootsIds() + launcherProgram.toLatin1() + "\n" + arguments());
    QCOMPARE(outcome.returns, QByteArray("caller 0\n"));
    QCOMPARE(outcome.errors, QByteArray());
}

// A script is not told what it is called by; the shell puts that before the option that it refuses.
void TestRuntimeOffer::launcherIsCalledByItsName()
{
    replaceLauncher("exit 0");
    Mounts::bind(QStringLiteral("/bin/sh"), launcherProgram);
    const QByteArray errors = offer().errors;
    QVERIFY2(errors.startsWith("invoker: "), errors.constData());
}

void TestRuntimeOffer::launcherOfRootsOwnSessionKeepsTheGroups()
{
    // Where there is but root, it has no other groups.
    const bool hasUsers = SystemCalls::hasUser(seatUser);
    TestNamespace::setActiveSession(0);
    replaceLauncher("exit 0");
    const Offer outcome = offer([hasUsers] {
        const gid_t group = 5002;
        if (hasUsers && setgroups(1, &group) != 0)
            qFatal("cannot join a group");
    });
    const QByteArray ids = hasUsers ? QByteArray("0\n0\n0 5002\n") : rootsIds();
    QCOMPARE(readFile(record), ids + launcherProgram.toLatin1() + "\n" + arguments());
    QCOMPARE(outcome.returns, QByteArray("caller 0\n"));
    QCOMPARE(outcome.errors, QByteArray());
}

void TestRuntimeOffer::exitStatusOfTheLauncherIsTheResult_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {0, 1, 3, 127, 255})
        QTest::addRow("%d", status) << status;
}

void TestRuntimeOffer::exitStatusOfTheLauncherIsTheResult()
{
    QFETCH(int, status);
    replaceLauncher("exit " + QByteArray::number(status));
    const Offer outcome = offer();
    QCOMPARE(outcome.returns, "caller " + QByteArray::number(status) + "\n");
    QCOMPARE(outcome.errors, QByteArray());
}

void TestRuntimeOffer::killedLauncherIsReported()
{
    replaceLauncher("kill -KILL $$");
    const Offer outcome = offer();
    QCOMPARE(outcome.returns, QByteArray("caller 1\n"));
    QCOMPARE(outcome.errors, QByteArray("Could not install ACL package: aliendalvik\n"));
}

void TestRuntimeOffer::missingLauncherBringsASecondCallerBack()
{
    QVERIFY(!QFile::exists(launcherProgram));
    const Offer outcome = offer();
    // The copy comes back first: the caller's result is the exit code that it then ends with.
    QCOMPARE(outcome.returns, "copy 1\ncaller " + QByteArray::number(copysExitCode) + "\n");
    QCOMPARE(outcome.errors, QByteArray("Could not install ACL package: aliendalvik\n"));
}

void TestRuntimeOffer::refusedUserBringsASecondCallerBack_data()
{
    QTest::addColumn<uint>("user");
    QTest::addColumn<long>("systemCall");
    QTest::newRow("root") << 0U << long(SYS_setuid);
    // In a namespace of root alone all of these are refused in any case.
    QTest::newRow("user") << seatUser << long(SYS_setuid);
    QTest::newRow("group") << seatUser << long(SYS_setgid);
    QTest::newRow("groups") << seatUser << long(SYS_setgroups);
}

void TestRuntimeOffer::refusedUserBringsASecondCallerBack()
{
    QFETCH(uint, user);
    QFETCH(long, systemCall);
    TestNamespace::setActiveSession(user);
    replaceLauncher("exit 0");
    const Offer outcome = offer([systemCall] { SystemCalls::refuse({systemCall}, EPERM); });
    QCOMPARE(outcome.returns, "copy 1\ncaller " + QByteArray::number(copysExitCode) + "\n");
    QCOMPARE(outcome.errors, QByteArray("Could not setuid to logged-in user"));
    QVERIFY(!QFile::exists(record));
}

void TestRuntimeOffer::launcherOfAnUnknownUserHasNoGroups()
{
    // Where there is but root, that the launcher does not run with root's groups.
    const bool hasUsers = SystemCalls::hasUser(seatUser + 1);
    TestNamespace::setActiveSession(seatUser + 1);
    replaceLauncher("exit 0");
    const Offer outcome = offer();
    QCOMPARE(outcome.errors, QByteArray(hasUsers ? "" : "Could not setuid to logged-in user"));
    QCOMPARE(readFile(record),
        hasUsers ? "1235\n65534\n65534\n" + launcherProgram.toLatin1() + "\n" + arguments()
                 : QByteArray("missing"));
}

void TestRuntimeOffer::refusedForkIsReported()
{
    replaceLauncher("exit 0");
    const Offer outcome = offer([] { SystemCalls::refuse(SystemCalls::ofFork(), EAGAIN); });
    QCOMPARE(outcome.returns, QByteArray("caller 1\n"));
    QCOMPARE(outcome.errors, QByteArray("Could not install ACL package: aliendalvik\n"));
    QVERIFY(!QFile::exists(record));
}

void TestRuntimeOffer::lostChildIsReported()
{
    replaceLauncher("exit 0");
    // The kernel buries the children of a process that ignores their end.
    const Offer outcome = offer([] { signal(SIGCHLD, SIG_IGN); });
    QCOMPARE(outcome.returns, QByteArray("caller 1\n"));
    QCOMPARE(outcome.errors,
        QByteArray("Could not install ACL package: aliendalvik (No child processes)\n"));
}

LUM_TEST_MAIN(TestRuntimeOffer)
#include "tst_runtimeoffer.moc"
