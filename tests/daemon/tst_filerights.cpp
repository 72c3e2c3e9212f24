// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/filerights.h"

#include "tests/support/mounts.h"
#include "tests/support/systemcalls.h"
#include "tests/support/testmain.h"

#include <QFile>

#include <grp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <thread>

namespace {

constexpr uint nobody = 65534;
const FileRights nemos = {1001, 2002, {2002, 3003}};

// The tests that borrow need users beside root; without these nothing can be borrowed.
bool hasUsers()
{
    return SystemCalls::hasUser(nemos.user) && SystemCalls::hasUser(nobody);
}

void writeFile(const QString &path, const QByteArray &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write %s", qPrintable(path));
}

/// What the kernel says of the calling thread: ids, groups and capabilities.
QByteArray threadsRights()
{
    QFile status(QStringLiteral("/proc/thread-self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return QByteArray("cannot be read");
    QByteArray rights;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("Uid:") || line.startsWith("Gid:") || line.startsWith("Groups:")
            || line.startsWith("CapEff:"))
            rights += line.simplified() + '\n';
    }
    return rights;
}

bool canRead(const char *path)
{
    QFile file(QString::fromLatin1(path));
    return file.open(QIODevice::ReadOnly);
}

/// What a process that does this says, and the signal that ends it; 0 for none.
struct End
{
    int signal = 0;
    QByteArray words;
};

template <typename Function> End endOf(Function function)
{
    int words[2];
    if (pipe(words) != 0)
        qFatal("cannot make a pipe");
    const pid_t process = fork();
    if (process == 0) {
        dup2(words[1], STDERR_FILENO);
        // The test library would report what is to happen here as a failure.
        signal(SIGABRT, SIG_DFL);
        qInstallMessageHandler(nullptr);
        function();
        _exit(0);
    }
    close(words[1]);
    End end;
    QFile reader;
    if (reader.open(words[0], QIODevice::ReadOnly, QFile::AutoCloseHandle))
        end.words = reader.readAll().trimmed();
    int status = 0;
    waitpid(process, &status, 0);
    end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return end;
}

} // namespace

using Groups = std::vector<gid_t>;
Q_DECLARE_METATYPE(Groups)

class TestFileRights : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void groupsThatAreToldCount();
    void groupsThatAreUntoldAreThoseOfTheList();
    void unknownUserHasNoGroups();
    void nobodyIsOfNoGroup();
    void rightsAreBorrowedAndGivenBack_data();
    void rightsAreBorrowedAndGivenBack();
    void otherThreadsKeepTheirs();
    void filesOpenAsForTheirOwner_data();
    void filesOpenAsForTheirOwner();
    void foldersOfOtherProcessesStayShut();
    void processStaysAsOpenToItsDebuggerAsItWas();
    void refusedRightsAreNotInForce_data();
    void refusedRightsAreNotInForce();
    void rightsThatCannotBeReadEndTheProcess_data();
    void rightsThatCannotBeReadEndTheProcess();
    void rightsThatCannotBeGivenBackEndTheProcess_data();
    void rightsThatCannotBeGivenBackEndTheProcess();
};

void TestFileRights::initTestCase()
{
    const QString users = QStringLiteral("/run/users");
    const QString groups = QStringLiteral("/run/groups");
    writeFile(users, "root:x:0:0::/:/bin/sh\nnemo:x:1001:2002::/:/bin/sh\n");
    writeFile(groups, "root:x:0:\nnemo:x:2002:\nwifi:x:3003:nemo\nlog:x:4004:\ncar:x:5005:nemo\n");
    Mounts::bind(users, QStringLiteral("/etc/passwd"));
    Mounts::bind(groups, QStringLiteral("/etc/group"));
}

void TestFileRights::groupsThatAreToldCount()
{
    const FileRights rights = FileRights::ofUser(1001, QVector<uint>{7, 8});
    QCOMPARE(rights.user, 1001U);
    QCOMPARE(rights.group, 7U);
    QCOMPARE(rights.groups, (std::vector<gid_t>{7, 8}));
}

void TestFileRights::groupsThatAreUntoldAreThoseOfTheList()
{
    const FileRights rights = FileRights::ofUser(1001, std::nullopt);
    QCOMPARE(rights.user, 1001U);
    QCOMPARE(rights.group, 2002U);
    QCOMPARE(rights.groups, (std::vector<gid_t>{2002, 3003, 5005}));
}

void TestFileRights::unknownUserHasNoGroups()
{
    const FileRights rights = FileRights::ofUser(1002, std::nullopt);
    QCOMPARE(rights.user, 1002U);
    QCOMPARE(rights.group, nobody);
    QCOMPARE(rights.groups, std::vector<gid_t>());
}

void TestFileRights::nobodyIsOfNoGroup()
{
    const FileRights rights = FileRights::ofNobody();
    QCOMPARE(rights.user, nobody);
    QCOMPARE(rights.group, nobody);
    QCOMPARE(rights.groups, std::vector<gid_t>());
}

void TestFileRights::rightsAreBorrowedAndGivenBack_data()
{
    QTest::addColumn<Groups>("groups");
    QTest::newRow("of no group") << Groups();
    QTest::newRow("of one group") << Groups{0};
    QTest::newRow("of several groups") << Groups{0, 7, 9};
}

void TestFileRights::rightsAreBorrowedAndGivenBack()
{
    QFETCH(Groups, groups);
    if (hasUsers())
        QCOMPARE(setgroups(groups.size(), groups.data()), 0);
    const QByteArray own = threadsRights();
    QByteArray borrowed;
    {
        const BorrowedRights rights(nemos);
        QCOMPARE(rights.areInForce(), hasUsers());
        borrowed = threadsRights();
    }
    if (hasUsers())
        QCOMPARE(borrowed,
            QByteArray("Uid: 0 0 0 1001\nGid: 0 0 0 2002\nGroups: 2002 3003\n"
                       "CapEff: 0000000000000000\n"));
    else
        QCOMPARE(borrowed, own);
    QCOMPARE(threadsRights(), own);
}

void TestFileRights::otherThreadsKeepTheirs()
{
    const QByteArray own = threadsRights();
    QByteArray others;
    // Not born of the thread that has borrowed, which would hand its rights down.
    int turn[2];
    QCOMPARE(pipe(turn), 0);
    std::thread other([&others, &turn] {
        char byte = 0;
        if (read(turn[0], &byte, 1) == 1)
            others = threadsRights();
    });
    {
        const BorrowedRights rights(nemos);
        QCOMPARE(rights.areInForce(), hasUsers());
        const bool isTold = write(turn[1], "x", 1) == 1;
        other.join();
        QVERIFY(isTold);
    }
    QCOMPARE(others, own);
    close(turn[0]);
    close(turn[1]);
}

void TestFileRights::filesOpenAsForTheirOwner_data()
{
    QTest::addColumn<uint>("owner");
    QTest::addColumn<uint>("group");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("opens");
    QTest::newRow("root's") << 0U << 0U << 0600 << false;
    QTest::newRow("root's, for its group") << 0U << 0U << 0640 << false;
    QTest::newRow("root's, for all") << 0U << 0U << 0644 << true;
    QTest::newRow("his own") << 1001U << 0U << 0400 << true;
    QTest::newRow("his own, shut") << 1001U << 2002U << 0044 << false;
    QTest::newRow("his group's") << 0U << 2002U << 0040 << true;
    QTest::newRow("another group's of his") << 0U << 3003U << 0040 << true;
    QTest::newRow("a group's that is not his") << 0U << 4004U << 0040 << false;
}

void TestFileRights::filesOpenAsForTheirOwner()
{
    QFETCH(uint, owner);
    QFETCH(uint, group);
    QFETCH(int, mode);
    QFETCH(bool, opens);
    writeFile(QStringLiteral("/run/file"), "x");
    if (hasUsers())
        QCOMPARE(chown("/run/file", owner, group), 0);
    QCOMPARE(chmod("/run/file", mode_t(mode)), 0);
    {
        const BorrowedRights rights(nemos);
        QCOMPARE(canRead("/run/file"), hasUsers() ? opens : true);
    }
    QVERIFY(canRead("/run/file"));
}

void TestFileRights::foldersOfOtherProcessesStayShut()
{
    // File and folder are for all, but the way there is not; and another process is there.
    QCOMPARE(mkdir("/run/shut", 0700), 0);
    QCOMPARE(mkdir("/run/shut/open", 0755), 0);
    writeFile(QStringLiteral("/run/shut/open/file"), "x");
    QCOMPARE(chmod("/run/shut/open/file", 0644), 0);
    QCOMPARE(chdir("/run/shut/open"), 0);
    const pid_t other = fork();
    if (other == 0) {
        pause();
        _exit(0);
    }
    QCOMPARE(chdir("/"), 0);
    const QByteArray path = "/proc/" + QByteArray::number(other) + "/cwd/file";
    const bool opensForRoot = canRead(path.constData());
    bool opensForNemo = true;
    {
        const BorrowedRights rights(nemos);
        opensForNemo = canRead(path.constData());
    }
    kill(other, SIGKILL);
    waitpid(other, nullptr, 0);
    QVERIFY(opensForRoot);
    QCOMPARE(opensForNemo, !hasUsers());
}

void TestFileRights::processStaysAsOpenToItsDebuggerAsItWas()
{
    for (const int dumpable : {1, 0}) {
        QCOMPARE(prctl(PR_SET_DUMPABLE, dumpable), 0);
        {
            const BorrowedRights rights(nemos);
        }
        const int after = prctl(PR_GET_DUMPABLE);
        prctl(PR_SET_DUMPABLE, 1);
        QCOMPARE(after, dumpable);
    }
}

void TestFileRights::refusedRightsAreNotInForce_data()
{
    QTest::addColumn<long>("systemCall");
    QTest::newRow("groups") << long(SYS_setgroups);
    QTest::newRow("group") << long(SYS_setfsgid);
    QTest::newRow("user") << long(SYS_setfsuid);
}

void TestFileRights::refusedRightsAreNotInForce()
{
    QFETCH(long, systemCall);
    const End end = endOf([systemCall] {
        const QByteArray own = threadsRights();
        // The other two have no error to tell, but the id that is in force: 0.
        SystemCalls::refuse({systemCall}, systemCall == SYS_setgroups ? EPERM : 0);
        const BorrowedRights rights(nemos);
        if (rights.areInForce() || threadsRights() != own)
            abort();
    });
    QCOMPARE(end.signal, 0);
}

void TestFileRights::rightsThatCannotBeReadEndTheProcess_data()
{
    QTest::addColumn<long>("systemCall");
    QTest::addColumn<QByteArray>("words");
    QTest::newRow("groups") << long(SYS_getgroups)
                            << QByteArray("Cannot read the groups of the process");
    QTest::newRow("capabilities") << long(SYS_capget)
                                  << QByteArray("Cannot read the capabilities of the process");
}

void TestFileRights::rightsThatCannotBeReadEndTheProcess()
{
    QFETCH(long, systemCall);
    const End end = endOf([systemCall] {
        SystemCalls::refuse({systemCall}, EPERM);
        const BorrowedRights rights(nemos);
    });
    QCOMPARE(end.signal, SIGABRT);
    QTEST(end.words, "words");
}

void TestFileRights::rightsThatCannotBeGivenBackEndTheProcess_data()
{
    refusedRightsAreNotInForce_data();
    QTest::newRow("capabilities") << long(SYS_capset);
}

void TestFileRights::rightsThatCannotBeGivenBackEndTheProcess()
{
    QFETCH(long, systemCall);
    const End end = endOf([systemCall] {
        const BorrowedRights rights(nemos);
        SystemCalls::refuse({systemCall}, EPERM);
    });
    // Without other users nothing was borrowed.
    QCOMPARE(end.signal, hasUsers() ? SIGABRT : 0);
    QCOMPARE(end.words,
        hasUsers() ? QByteArray("Cannot give the process its own rights back") : QByteArray());
}

LUM_TEST_MAIN(TestFileRights)
#include "tst_filerights.moc"
