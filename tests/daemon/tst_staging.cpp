// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/staging.h"

#include "tests/daemon/openwatch.h"
#include "tests/support/systemcalls.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>

namespace {

const QByteArray contents = QByteArrayLiteral("PK\3\4 an app");
const QString source = QStringLiteral("/run/apps/a.apk");
const QString copy = QStringLiteral("/run/staged/a.apk.tmp");
const FileRights nemos = {1001, 2002, {2002, 3003}};
constexpr qint64 terabyte = qint64(1) << 40;

/// What happens when the file has been looked at, and when its bytes are about to be sent.
std::function<void()> onLook;
std::function<void()> onSend;
std::size_t sentAtOnce = 0;

bool hasUsers()
{
    return SystemCalls::hasUser(nemos.user);
}

void writeFile(const QString &path, const QByteArray &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
}

bool stage(const QString &path = source)
{
    return copyForStaging(path, std::nullopt, copy);
}

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

void replaceSource()
{
    writeFile(QStringLiteral("/run/apps/other"), "another file");
    if (::rename("/run/apps/other", qPrintable(source)) != 0)
        qFatal("cannot replace the file");
}

} // namespace

extern "C" {

int __real_fstat(int fd, struct stat *status);
int __wrap_fstat(int fd, struct stat *status)
{
    const int result = __real_fstat(fd, status);
    if (onLook)
        std::exchange(onLook, nullptr)();
    return result;
}

ssize_t __real_sendfile(int to, int from, off_t *offset, size_t count);
ssize_t __wrap_sendfile(int to, int from, off_t *offset, size_t count)
{
    if (onSend)
        std::exchange(onSend, nullptr)();
    return __real_sendfile(to, from, offset, sentAtOnce == 0 ? count : qMin(count, sentAtOnce));
}

} // extern "C"

class TestStaging : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void fileIsCopiedWhole_data();
    void fileIsCopiedWhole();
    void firstDescriptorIsOneLikeAnother();
    void bytesMaySetOffInParts();
    void nobodyElseReadsAnUnfinishedCopy();
    void linkIsFollowed();
    void whatIsNoRegularFileIsNeverOpened_data();
    void whatIsNoRegularFileIsNeverOpened();
    void fileWhoseSizeIsALieIsRefused_data();
    void fileWhoseSizeIsALieIsRefused();
    void fileThatChangesItsSizeIsRefused_data();
    void fileThatChangesItsSizeIsRefused();
    void fileThatWasLookedAtIsTheOneThatIsCopied_data();
    void fileThatWasLookedAtIsTheOneThatIsCopied();
    void fileThatDoesNotFitIsNotBegun();
    void holesAreFilled();
    void leaseIsNotWaitedFor();
    void nothingIsOverwritten_data();
    void nothingIsOverwritten();
    void fileIsOpenedWithTheGivenRights_data();
    void fileIsOpenedWithTheGivenRights();
    void ownDescriptorsAreOpenedWithTheGivenRights();
};

void TestStaging::init()
{
    onLook = nullptr;
    onSend = nullptr;
    sentAtOnce = 0;
    for (const char *folder : {"/run/apps", "/run/staged"}) {
        QVERIFY(QDir(QString::fromLatin1(folder)).removeRecursively());
        QVERIFY(QDir().mkpath(QString::fromLatin1(folder)));
    }
    writeFile(source, contents);
}

void TestStaging::fileIsCopiedWhole_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("a byte") << QByteArray("x");
    QTest::newRow("zeros") << QByteArray(5000, 0);
    QTest::newRow("a page") << QByteArray(4096, 'x');
    QTest::newRow("megabytes") << QByteArray(3 * 1024 * 1024 + 1, 'y');
}

void TestStaging::fileIsCopiedWhole()
{
    QFETCH(QByteArray, bytes);
    writeFile(source, bytes);
    QVERIFY(stage());
    QVERIFY(readFile(copy) == bytes);
}

// The first is free in a process whose standard input is closed.
void TestStaging::firstDescriptorIsOneLikeAnother()
{
    close(STDIN_FILENO);
    QVERIFY(stage());
    QCOMPARE(readFile(copy), contents);
    QCOMPARE(fcntl(STDIN_FILENO, F_GETFD), -1);
}

void TestStaging::bytesMaySetOffInParts()
{
    sentAtOnce = 5;
    QVERIFY(stage());
    QCOMPARE(readFile(copy), contents);
}

void TestStaging::nobodyElseReadsAnUnfinishedCopy()
{
    umask(0);
    QCOMPARE(chmod(qPrintable(source), 0666), 0);
    struct stat status = {};
    onSend = [&status] { stat(qPrintable(copy), &status); };
    QVERIFY(stage());
    QCOMPARE(status.st_mode & 07777, mode_t(0600));
}

void TestStaging::linkIsFollowed()
{
    const QString link = QStringLiteral("/run/apps/link.apk");
    QVERIFY(QFile::link(source, link));
    QVERIFY(stage(link));
    QVERIFY(!QFileInfo(copy).isSymLink());
    QCOMPARE(readFile(copy), contents);
}

void TestStaging::whatIsNoRegularFileIsNeverOpened_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"missing", "folder", "pipe", "socket", "link to a pipe", "loop"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TestStaging::whatIsNoRegularFileIsNeverOpened()
{
    QFETCH(QString, name);
    QVERIFY(QDir(QStringLiteral("/run/apps")).mkdir(QStringLiteral("folder")));
    QCOMPARE(mkfifo("/run/apps/pipe", 0644), 0);
    QVERIFY(makeSocket(QStringLiteral("/run/apps/socket")));
    QCOMPARE(symlink("pipe", "/run/apps/link to a pipe"), 0);
    QCOMPARE(symlink("loop", "/run/apps/loop"), 0);
    const OpenWatch watch("/run/apps");
    QVERIFY(!stage(QStringLiteral("/run/apps/") + name));
    QCOMPARE(watch.opened(), QStringList());
    QVERIFY(!QFile::exists(copy));
}

void TestStaging::fileWhoseSizeIsALieIsRefused_data()
{
    QTest::addColumn<QString>("path");
    // Regular files by their word, of which only the first two have bytes.
    QTest::newRow("version") << QStringLiteral("/proc/version");
    QTest::newRow("own memory") << QStringLiteral("/proc/self/environ");
    QTest::newRow("device") << QStringLiteral("/dev/zero");
}

void TestStaging::fileWhoseSizeIsALieIsRefused()
{
    QFETCH(QString, path);
    QVERIFY(QFile::exists(path));
    QVERIFY(!stage(path));
    QVERIFY(QFileInfo(copy).size() == 0);
}

void TestStaging::fileThatChangesItsSizeIsRefused_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("shorter") << contents.size() - 1;
    QTest::newRow("empty") << 0;
    QTest::newRow("longer") << contents.size() + 1;
}

void TestStaging::fileThatChangesItsSizeIsRefused()
{
    QFETCH(int, size);
    onSend = [size] {
        if (truncate(qPrintable(source), size) != 0)
            qFatal("cannot change the size");
    };
    QVERIFY(!stage());
}

void TestStaging::fileThatWasLookedAtIsTheOneThatIsCopied_data()
{
    QTest::addColumn<bool>("isEarly");
    QTest::newRow("replaced before it is opened") << true;
    QTest::newRow("replaced before it is copied") << false;
}

void TestStaging::fileThatWasLookedAtIsTheOneThatIsCopied()
{
    QFETCH(bool, isEarly);
    (isEarly ? onLook : onSend) = replaceSource;
    QVERIFY(stage());
    QCOMPARE(readFile(source), QByteArray("another file"));
    QCOMPARE(readFile(copy), contents);
}

void TestStaging::fileThatDoesNotFitIsNotBegun()
{
    QCOMPARE(truncate(qPrintable(source), 100 * terabyte), 0);
    bool isBegun = false;
    onSend = [&isBegun] { isBegun = true; };
    QVERIFY(!stage());
    QVERIFY(!isBegun);
    QCOMPARE(QFileInfo(copy).size(), 0);
}

void TestStaging::holesAreFilled()
{
    constexpr int size = 1024 * 1024;
    QCOMPARE(truncate(qPrintable(source), size), 0);
    QVERIFY(stage());
    QVERIFY(readFile(copy) == contents + QByteArray(size - contents.size(), 0));
}

void TestStaging::leaseIsNotWaitedFor()
{
    // Its holder is told by this signal, and has 45 seconds to give it up.
    signal(SIGIO, SIG_IGN);
    const int holder = open(qPrintable(source), O_RDWR | O_CLOEXEC);
    QVERIFY(holder >= 0);
    QCOMPARE(fcntl(holder, F_SETLEASE, F_WRLCK), 0);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!stage());
    QVERIFY(timer.elapsed() < 20000);
    close(holder);
}

void TestStaging::nothingIsOverwritten_data()
{
    QTest::addColumn<bool>("isLink");
    QTest::newRow("file") << false;
    QTest::newRow("link to nowhere") << true;
}

void TestStaging::nothingIsOverwritten()
{
    QFETCH(bool, isLink);
    if (isLink)
        QVERIFY(QFile::link(QStringLiteral("/run/apps/nowhere"), copy));
    else
        writeFile(copy, "old");
    QVERIFY(!stage());
    QCOMPARE(readFile(copy), isLink ? QByteArray("missing") : QByteArray("old"));
    QVERIFY(!QFile::exists(QStringLiteral("/run/apps/nowhere")));
}

void TestStaging::fileIsOpenedWithTheGivenRights_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<uint>("group");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("foldersMode");
    QTest::addColumn<bool>("isCopied");
    const QString link = QStringLiteral("/run/link.apk");
    QTest::newRow("for all") << source << 0U << 0644 << 0755 << true;
    QTest::newRow("for root") << source << 0U << 0600 << 0755 << false;
    QTest::newRow("for root's group") << source << 0U << 0640 << 0755 << false;
    QTest::newRow("for the group") << source << 2002U << 0640 << 0755 << true;
    QTest::newRow("for another of the groups") << source << 3003U << 0640 << 0755 << true;
    QTest::newRow("for a group that is none of them") << source << 4004U << 0640 << 0755 << false;
    QTest::newRow("folder without a way in") << source << 0U << 0644 << 0744 << false;
    QTest::newRow("folder without a list") << source << 0U << 0644 << 0711 << true;
    QTest::newRow("link to a file for all") << link << 0U << 0644 << 0755 << true;
    QTest::newRow("link to a file for root") << link << 0U << 0600 << 0755 << false;
    QTest::newRow("link into a shut folder") << link << 0U << 0644 << 0700 << false;
}

void TestStaging::fileIsOpenedWithTheGivenRights()
{
    QFETCH(QString, path);
    QFETCH(uint, group);
    QFETCH(int, mode);
    QFETCH(int, foldersMode);
    QFETCH(bool, isCopied);
    QFile::remove(QStringLiteral("/run/link.apk"));
    QVERIFY(QFile::link(source, QStringLiteral("/run/link.apk")));
    if (hasUsers())
        QCOMPARE(chown(qPrintable(source), 0, group), 0);
    QCOMPARE(chmod(qPrintable(source), mode_t(mode)), 0);
    QCOMPARE(chmod("/run/apps", mode_t(foldersMode)), 0);
    // Where there is but root nobody's rights can be had, and nothing is copied.
    QCOMPARE(copyForStaging(path, nemos, copy), hasUsers() && isCopied);
    QVERIFY(QFile::exists(copy) == (hasUsers() && isCopied));

    QFile::remove(copy);
    QVERIFY(stage(path));
    QCOMPARE(readFile(copy), contents);
}

void TestStaging::ownDescriptorsAreOpenedWithTheGivenRights()
{
    QCOMPARE(chmod(qPrintable(source), 0600), 0);
    QFile held(source);
    QVERIFY(held.open(QIODevice::ReadOnly));
    for (const char *folder : {"/proc/self/fd/", "/dev/fd/", "/proc/thread-self/fd/"}) {
        const QString path = QLatin1String(folder) + QString::number(held.handle());
        QVERIFY2(!copyForStaging(path, nemos, copy), folder);
        QVERIFY(!QFile::exists(copy));
        QVERIFY2(stage(path), folder);
        QVERIFY(QFile::remove(copy));
    }
}

LUM_TEST_MAIN(TestStaging)
#include "tst_staging.moc"
