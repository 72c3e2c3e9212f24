// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/daemon/buscallgenerator.h"
#include "tests/daemon/buscalls.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/mockpackagekit.h"
#include "tests/support/testmain.h"

#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
using FakeBinder::Request;

namespace {

constexpr char packagedFile[] = "/home/.android/data/aas-staging/app/packaged/com.a.apk";
constexpr char entryFile[] = "/usr/share/applications/lumd_launcher_com_a-Main.desktop";
constexpr char fifo[] = "/run/apps/fifo.apk";
constexpr char sparseFile[] = "/run/apps/sparse.apk";

/// As lumd's users have them, and others that no install ends well with.
std::vector<std::string> files()
{
    return {"/run/apps/a.apk", "/run/apps/:b.apk", "/run/apps/no.apk", "/run/apps", packagedFile,
        entryFile, fifo, sparseFile, "/dev/zero", "/dev/full", "/dev/tty", "/proc/self/maps",
        "/proc/kmsg", "/proc/self/fd/0"};
}

void makeFiles()
{
    for (const char *path : {"/run/apps/a.apk", "/run/apps/:b.apk", packagedFile, entryFile})
        makeFile(QString::fromLatin1(path), "[Desktop Entry]\nX-lumd-packageName=com.a\nName=A\n");
    makeFile(QString::fromLatin1(sparseFile));
    constexpr off_t tebibyte = off_t(1) << 40;
    if (mkfifo(fifo, 0644) != 0 || truncate(sparseFile, tebibyte) != 0)
        qFatal("cannot make the odd files");
}

/// A good answer, a failed call, one without an answer, or a few bytes.
Reply anyReply(std::mt19937 &random)
{
    switch (random() % 5) {
    case 0:
        return Reply::failure(-22);
    case 1:
        return Reply::none();
    case 2:
        return Reply::data(ParcelWriter().int32(0).bytes());
    case 3:
        return Reply::data(QByteArray(int(random() % 40), char(random())));
    default:
        return Reply::data(ParcelWriter().int32(0).int32(1).int64(1).int64(2).int64(3).bytes());
    }
}

int callCount()
{
    const int count = qEnvironmentVariableIntValue("LUMD_BUS_CALLS");
    return count > 0 ? count : 2000;
}

} // namespace

class TestBusCalls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void daemonComesThroughThemAll();

private:
    /// What it holds on to while the runtime is down and nothing is under way.
    struct Holdings
    {
        int descriptors = 0;
        qint64 kilobytes = 0;
        QStringList handles;
    };

    void makeServices();
    bool bringRuntime(const char *first, const char *second);
    void sendSome(int count);
    bool waitForTheWaits() const;
    Holdings holdings() const;

    std::unique_ptr<AppFixture> m_world;
    std::unique_ptr<MockPackageKit> m_packageKit;
    std::unique_ptr<BusCalls> m_calls;
    std::unique_ptr<BusCallGenerator> m_generator;
    qint64 m_binderBytes = 0; ///< which the fake libgbinder keeps, within the daemon
    std::mt19937 m_answers; // of the Android side's thread alone
};

void TestBusCalls::initTestCase()
{
    // On the system's own bus no answer arrives that was not asked for; here even these do.
    makeFile(QStringLiteral("/run/dbus/system_bus_socket.policy"),
        "<busconfig><policy context=\"default\"><allow send_requested_reply=\"false\"/>"
        "<allow receive_requested_reply=\"false\"/></policy></busconfig>");
    m_world = std::make_unique<AppFixture>();
    m_packageKit = std::make_unique<MockPackageKit>();
    makeFiles();
    // Where the daemon starts, so that what a relative path makes stays in the namespace.
    QVERIFY(QDir::setCurrent(QStringLiteral("/run")));
    m_calls = std::make_unique<BusCalls>(m_world->systemBus.address());
}

void TestBusCalls::makeServices()
{
    for (const char *name : {"package", "alien", "activity", "storagestats", "deviceidle", "alarm"})
        m_world->android->registerService(
            QString::fromLatin1(name), [this](const Request &) { return anyReply(m_answers); });
    // With no window ever, the queue of launches would only grow.
    m_world->android->registerService(QStringLiteral("SurfaceFlinger"),
        [](const Request &) { return Reply::data(ParcelWriter().boolean(true).bytes()); });
}

bool TestBusCalls::bringRuntime(const char *first, const char *second)
{
    m_world->daemon->clearLines();
    m_world->systemd.clearCalls();
    for (const Request &request : m_world->android->requests())
        m_binderBytes += request.bytes.size();
    m_world->android->clearRequests();
    m_world->android->clearLedger();
    return m_world->see(QString::fromLatin1(first)) && m_world->see(QString::fromLatin1(second));
}

void TestBusCalls::sendSome(int count)
{
    constexpr int atOnce = 25;
    for (int left = count; left > 0; left -= atOnce) {
        for (int i = 0; i < qMin(left, atOnce); ++i)
            m_calls->send(m_generator->next());
        QVERIFY(m_calls->settle());
        QVERIFY(m_world->daemon->isRunning());
    }
    QCOMPARE(m_world->android->errors(), QStringList());
}

/// A wait for a window holds its question until its time is over, with the runtime down too.
bool TestBusCalls::waitForTheWaits() const
{
    constexpr int patience = 20000;
    return QTest::qWaitFor(
        [this] {
            return m_world->android->leaks().filter(QStringLiteral("SurfaceFlinger")).isEmpty();
        },
        patience);
}

TestBusCalls::Holdings TestBusCalls::holdings() const
{
    const QString process = QStringLiteral("/proc/%1/").arg(m_world->daemon->processId());
    const QDir descriptors(process + QLatin1String("fd"));
    const qint64 pages =
        fileContents(process + QLatin1String("statm")).split(' ').value(1).toLongLong();
    return {descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size(),
        pages * sysconf(_SC_PAGESIZE) / 1024, m_world->android->leaks()};
}

void TestBusCalls::daemonComesThroughThemAll()
{
    constexpr uint32_t seed = 9;
    constexpr int phase = 100;
    m_generator = std::make_unique<BusCallGenerator>(seed, files());
    makeServices();
    // What was freed is not to be kept back for long, nor each place that it came from.
    m_world->daemon->setEnvironment(QStringLiteral("ASAN_OPTIONS"),
        qEnvironmentVariable("ASAN_OPTIONS")
            + QStringLiteral(":quarantine_size_mb=1:malloc_context_size=1"));
    QVERIFY(m_world->start());
    Holdings first;
    for (int sent = 0; sent < callCount(); sent += 2 * phase) {
        QVERIFY(bringRuntime("activating", "active"));
        sendSome(phase);
        if (QTest::currentTestFailed())
            return;
        QVERIFY(bringRuntime("deactivating", "inactive"));
        if (sent == 0) {
            QVERIFY(waitForTheWaits());
            first = holdings();
        }
        sendSome(phase);
        if (QTest::currentTestFailed())
            return;
    }
    // What has waited goes out.
    QVERIFY(bringRuntime("activating", "active"));
    QVERIFY(bringRuntime("deactivating", "inactive"));
    QVERIFY(waitForTheWaits());
    const Holdings last = holdings();
    qInfo("%d calls: %d descriptors, then %d; %lld KB, then %lld, and %lld by binder", callCount(),
        first.descriptors, last.descriptors, first.kilobytes, last.kilobytes, m_binderBytes / 1024);
    QCOMPARE(last.descriptors, first.descriptors);
    QCOMPARE(last.handles, first.handles);
    // The fake library frees nothing; a message takes twice its size there and more, and in a long
    // run what stands for the handles of each call shows, too: some 2 KB.
    constexpr int longRun = 2000;
    const qint64 kept = 3 * m_binderBytes / 1024 + 2 * qMax(0, callCount() - longRun);
    QVERIFY(last.kilobytes - first.kilobytes < 16 * 1024 + kept);
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("isRunning"))), QString());
    m_world->android->quitDaemon();
    QVERIFY(m_world->daemon->waitForExit(30000));
    QCOMPARE(m_world->daemon->exitCode(), 0);
}

LUM_TEST_MAIN(TestBusCalls)
#include "tst_buscalls.moc"
