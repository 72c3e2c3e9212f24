// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/daemonfixture.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDir>
#include <QFileInfo>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char standardRoot[] = "/home/.android";
constexpr char daemonDebug[] = "debug com.tovra.lumd.daemon ";
constexpr char daemonWarning[] = "warning com.tovra.lumd.daemon ";

QString incoming(const QString &name = {}, const QString &root = QLatin1String(standardRoot))
{
    return root + QStringLiteral("/data/aas-staging/app/incoming/") + name;
}

QString packaged(const QString &name = {}, const QString &root = QLatin1String(standardRoot))
{
    return root + QStringLiteral("/data/aas-staging/app/packaged/") + name;
}

/// Owner and mode, as "0:0 755".
QString rights(const QString &path)
{
    struct stat status = {};
    if (stat(qPrintable(path), &status) != 0)
        return QStringLiteral("missing");
    return QStringLiteral("%1:%2 %3")
        .arg(status.st_uid)
        .arg(status.st_gid)
        .arg(status.st_mode & 07777, 0, 8);
}

QString removing(const QString &path)
{
    return QLatin1String(daemonDebug)
        + QStringLiteral("Removing old incoming file: \"%1\"").arg(path);
}

/// A mount on a file keeps it from being removed, by root too.
bool pinDown(const QString &path)
{
    return mount("/dev/null", qPrintable(path), nullptr, MS_BIND, nullptr) == 0;
}

} // namespace

class TestStagingFolders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void foldersAreMade_data();
    void foldersAreMade();
    void incomingFolderGetsItsOwnerAndMode_data();
    void incomingFolderGetsItsOwnerAndMode();
    void staleFilesGoAndAllElseStays();
    void fileThatCannotBeRemovedStopsNothing();
    void rootThatIsAFileIsWarnedOfAndSurvived();
    void readOnlyFolderIsWarnedOfAndSurvived();

private:
    QStringList daemonLines() const;

    std::unique_ptr<DaemonFixture> m_world;
};

void TestStagingFolders::initTestCase()
{
    m_world = std::make_unique<DaemonFixture>();
}

void TestStagingFolders::init()
{
    m_world->daemon->setLoggingRules(QStringLiteral("com.tovra.lumd.daemon=true"));
    QVERIFY(QDir(QLatin1String(standardRoot)).removeRecursively());
}

void TestStagingFolders::cleanup()
{
    m_world->renew();
}

QStringList TestStagingFolders::daemonLines() const
{
    return m_world->daemon->lines().filter(QStringLiteral(" com.tovra.lumd.daemon "));
}

void TestStagingFolders::foldersAreMade_data()
{
    QTest::addColumn<QString>("root");
    QTest::newRow("standard") << QString();
    QTest::newRow("of the environment") << QStringLiteral("/run/a/b");
    QTest::newRow("of the environment, not ASCII") << QStringLiteral("/run/\u00e4 \u20ac");
    QTest::newRow("of the environment, with a slash") << QStringLiteral("/run/c/");
}

void TestStagingFolders::foldersAreMade()
{
    QFETCH(QString, root);
    if (!root.isNull())
        m_world->daemon->setEnvironment(QStringLiteral("ANDROID_DATA_ROOT"), root);
    QVERIFY(m_world->start());

    const QString used = root.isNull() ? QString(QLatin1String(standardRoot)) : root;
    QVERIFY(QFileInfo(incoming({}, used)).isDir());
    QVERIFY(QFileInfo(packaged({}, used)).isDir());
    QCOMPARE(rights(incoming({}, used)), QStringLiteral("0:0 755"));
    QCOMPARE(QFileInfo::exists(QLatin1String(standardRoot)), root.isNull());
    QCOMPARE(daemonLines(), QStringList());
}

void TestStagingFolders::incomingFolderGetsItsOwnerAndMode_data()
{
    QTest::addColumn<uint>("mode");
    QTest::newRow("too narrow") << 0700U;
    QTest::newRow("too wide") << 0777U;
    QTest::newRow("sticky") << 01777U;
    QTest::newRow("right") << 0755U;
}

void TestStagingFolders::incomingFolderGetsItsOwnerAndMode()
{
    QFETCH(uint, mode);
    QVERIFY(QDir().mkpath(incoming()));
    // Where the namespace knows no other user, only the mode is put to the test.
    if (chown(qPrintable(incoming()), 1, 1) != 0)
        QCOMPARE(errno, EINVAL);
    QCOMPARE(chmod(qPrintable(incoming()), mode), 0);

    QVERIFY(m_world->start());
    QCOMPARE(rights(incoming()), QStringLiteral("0:0 755"));
    QCOMPARE(daemonLines(), QStringList());
}

void TestStagingFolders::staleFilesGoAndAllElseStays()
{
    const QStringList stale{incoming(QStringLiteral("a.apk")),
        incoming(QStringLiteral("b.apk.tmp")), incoming(QStringLiteral("\u00e4\nb")),
        incoming(QStringLiteral(":x.apk"))};
    for (const QString &path : stale)
        makeFile(path);
    const QStringList kept{incoming(QStringLiteral("folder/c.apk")),
        incoming(QStringLiteral(".hidden")), packaged(QStringLiteral("d-1.apk"))};
    for (const QString &path : kept)
        makeFile(path, QByteArrayLiteral("kept"));
    const QString linked = incoming(QStringLiteral("link"));
    QVERIFY(QFile::link(packaged(QStringLiteral("d-1.apk")), linked));

    QVERIFY(m_world->start());
    for (const QString &path : stale + QStringList{linked})
        QVERIFY2(!QFileInfo(path).isSymLink() && !QFileInfo::exists(path), qPrintable(path));
    for (const QString &path : kept)
        QCOMPARE(fileContents(path), QByteArray("kept"));

    QStringList expected{removing(stale.at(0)), removing(stale.at(1)), removing(linked),
        removing(incoming(QStringLiteral("\u00e4\\nb"))), removing(stale.at(3))};
    expected.sort();
    QTRY_COMPARE(daemonLines().size(), expected.size());
    QStringList lines = daemonLines(); // the folder is not sorted
    lines.sort();
    QCOMPARE(lines, expected);
}

void TestStagingFolders::fileThatCannotBeRemovedStopsNothing()
{
    const QString first = incoming(QStringLiteral("a.apk"));
    const QString stuck = incoming(QStringLiteral("b.apk"));
    const QString last = incoming(QStringLiteral("c.apk"));
    for (const QString &path : {first, stuck, last})
        makeFile(path);
    QVERIFY(pinDown(stuck));

    QVERIFY(m_world->start());
    QCOMPARE(umount(qPrintable(stuck)), 0);
    QCOMPARE(QDir(incoming()).entryList(QDir::Files), QStringList{QStringLiteral("b.apk")});

    QTRY_COMPARE(daemonLines().size(), 4);
    const QStringList lines = daemonLines();
    const QString failure =
        QLatin1String(daemonDebug) + QStringLiteral("Could not remove file:: \"%1\"").arg(stuck);
    QVERIFY(lines.contains(removing(first)) && lines.contains(removing(last)));
    QCOMPARE(lines.indexOf(failure), lines.indexOf(removing(stuck)) + 1);
}

void TestStagingFolders::rootThatIsAFileIsWarnedOfAndSurvived()
{
    makeFile(QStringLiteral("/run/file"));
    m_world->daemon->setEnvironment(
        QStringLiteral("ANDROID_DATA_ROOT"), QStringLiteral("/run/file"));
    m_world->daemon->setLoggingRules(QString());
    QVERIFY(m_world->start());
    QTRY_COMPARE(daemonLines(),
        QStringList({QLatin1String(daemonWarning)
                + QStringLiteral("Cannot create incoming apk directory: "
                                 "\"/run/file/data/aas-staging/app/incoming\""),
            QLatin1String(daemonWarning)
                + QStringLiteral("Cannot set ownership of directory: "
                                 "\"/run/file/data/aas-staging/app/incoming\""),
            QLatin1String(daemonWarning)
                + QStringLiteral("Cannot set permission of directory: "
                                 "\"/run/file/data/aas-staging/app/incoming\"")}));
    QCOMPARE(fileContents(QStringLiteral("/run/file")), QByteArray("old"));
}

void TestStagingFolders::readOnlyFolderIsWarnedOfAndSurvived()
{
    const QString stale = incoming(QStringLiteral("a.apk"));
    makeFile(stale);
    TestNamespace::setReadOnly(incoming(), true);
    QVERIFY(m_world->start());
    TestNamespace::setReadOnly(incoming(), false);
    QCOMPARE(umount(qPrintable(incoming())), 0);

    const QString folder = QStringLiteral("\"/home/.android/data/aas-staging/app/incoming\"");
    QTRY_COMPARE(daemonLines(),
        QStringList({QLatin1String(daemonWarning)
                + QStringLiteral("Cannot set ownership of directory: ") + folder,
            QLatin1String(daemonWarning) + QStringLiteral("Cannot set permission of directory: ")
                + folder,
            removing(stale),
            QLatin1String(daemonDebug)
                + QStringLiteral("Could not remove file:: \"%1\"").arg(stale)}));
    QCOMPARE(fileContents(stale), QByteArray("old"));
}

LUM_TEST_MAIN(TestStagingFolders)
#include "tst_stagingfolders.moc"
