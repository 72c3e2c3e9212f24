// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/shiftedclock.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDir>
#include <QProcess>

#include <csignal>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

const QString du = QStringLiteral("/usr/bin/du");
const QString arguments = QStringLiteral("/run/du-arguments");
const QString processId = QStringLiteral("/run/du-process");
const QString noAnswer = QStringLiteral("warning Could not determine android app data usage");

QString textOf(const QDBusMessage &reply)
{
    const QString result = reply.arguments().value(0).toString();
    return errorOf(reply) + reply.signature() + QLatin1Char(' ') + result;
}

QString usage()
{
    return textOf(DaemonFixture::call(QStringLiteral("getAndroidAppDataUsage")));
}

/// The same without waiting for the answer.
QDBusPendingCall ask()
{
    return QDBusConnection::systemBus().asyncCall(QDBusMessage::createMethodCall(
        QStringLiteral("com.tovra.lumd"), QStringLiteral("/com/tovra/lumd"),
        QStringLiteral("com.tovra.lumd"), QStringLiteral("getAndroidAppDataUsage")));
}

} // namespace

class TestAppManagementDataUsage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void firstNumberIsTheAnswer_data();
    void firstNumberIsTheAnswer();
    void toolIsAskedAboutTheFolderOfTheApps_data();
    void toolIsAskedAboutTheFolderOfTheApps();
    void realToolCountsTheFolder();
    void toolThatCannotRunGivesNothing_data();
    void toolThatCannotRunGivesNothing();
    void toolIsGivenHalfAMinute_data();
    void toolIsGivenHalfAMinute();
    void toolThatTakesItsTimeHoldsNobody();

private:
    static void replaceByOneThatGoesOn(const QByteArray &printed);

    std::unique_ptr<AppFixture> m_world;
};

void TestAppManagementDataUsage::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
}

void TestAppManagementDataUsage::cleanup()
{
    m_world->renew();
}

void TestAppManagementDataUsage::firstNumberIsTheAnswer_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("bytes");
    QTest::addColumn<bool>("isWarned");
    const auto row = [](const char *title, const char *script, const char *bytes, bool isWarned) {
        QTest::newRow(title) << QByteArray(script) << QString::fromLatin1(bytes) << isWarned;
    };
    row("number, tab, path", "printf '4096\\t/home\\n'", "4096", false);
    row("number and tab", "printf '4096\\t'", "4096", false);
    row("above 32 bits", "printf '5000000000\\t/home\\n'", "5000000000", false);
    row("greatest number", "printf '18446744073709551615\\t'", "18446744073709551615", false);
    row("too great a number", "printf '18446744073709551616\\t'", "0", false);
    row("several lines", "printf '1\\t/a\\n2\\t/b\\n'", "1", false);
    row("zero", "printf '0\\t/home\\n'", "0", false);
    row("negative", "printf -- '-1\\t/home\\n'", "0", false);
    row("not a number", "printf 'much\\t/home\\n'", "0", false);
    row("hexadecimal", "printf '0x10\\t/home\\n'", "0", false);
    row("not a whole number", "printf '1.5\\t/home\\n'", "0", false);
    row("tab alone", "printf '\\t'", "0", false);
    row("total in spite of a failure", "printf '4096\\t/home\\n'; exit 1", "4096", false);
    row("errors beside the total", "echo 'cannot read /a' >&2; printf '7\\t/home\\n'; exit 1", "7",
        false);
    row("no tab", "printf '4096 /home\\n'", "0", true);
    row("nothing", "exit 0", "0", true);
    row("failure alone", "exit 1", "0", true);
    row("killed", "printf '4096\\t/home\\n'; kill -9 $$", "0", true);
}

void TestAppManagementDataUsage::firstNumberIsTheAnswer()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, bytes);
    QFETCH(bool, isWarned);
    TestNamespace::replaceProgram(du, "#!/bin/sh\n" + script + '\n');
    QVERIFY(m_world->start());
    QCOMPARE(usage(), QStringLiteral("t ") + bytes);
    QCOMPARE(DaemonFixture::settle(), true);
    QCOMPARE(m_world->starts(), 0);
    QTRY_COMPARE(m_world->daemonLines(), isWarned ? QStringList{noAnswer} : QStringList());
}

void TestAppManagementDataUsage::toolIsAskedAboutTheFolderOfTheApps_data()
{
    QTest::addColumn<QString>("root");
    QTest::addColumn<QString>("folder");
    QTest::newRow("usual root") << QString() << QStringLiteral("/home/.android/data/data/");
    QTest::newRow("root with blanks")
        << QStringLiteral("/run/a b") << QStringLiteral("/run/a b/data/data/");
}

void TestAppManagementDataUsage::toolIsAskedAboutTheFolderOfTheApps()
{
    QFETCH(QString, root);
    QFETCH(QString, folder);
    TestNamespace::replaceProgram(
        du, "#!/bin/sh\nprintf '%s\\n' \"$0\" \"$@\" > " + arguments.toLatin1() + '\n');
    if (!root.isNull())
        m_world->daemon->setEnvironment(QStringLiteral("ANDROID_DATA_ROOT"), root);
    QVERIFY(m_world->start());
    usage();
    QCOMPARE(QString::fromUtf8(fileContents(arguments)),
        QStringLiteral("/usr/bin/du\n-sxb\n%1\n").arg(folder));
}

void TestAppManagementDataUsage::realToolCountsTheFolder()
{
    const QString folder = QStringLiteral("/home/.android/data/data/");
    makeFile(folder + QStringLiteral("com.foo/a"), QByteArray(5000, 'a'));
    makeFile(folder + QStringLiteral("com.foo/b/c"), QByteArray(3, 'a'));
    // Since coreutils 9.5 the folders themselves count nothing.
    QProcess tool;
    tool.start(du,
        {QStringLiteral("--summarize"), QStringLiteral("--apparent-size"),
            QStringLiteral("--block-size=1"), folder});
    QVERIFY(tool.waitForFinished());
    const qint64 counted = tool.readAllStandardOutput().split('\t').value(0).toLongLong();
    QVERIFY(counted >= 5003);
    QVERIFY(m_world->start());
    QCOMPARE(usage(), QStringLiteral("t %1").arg(counted));
    QVERIFY(QDir(folder).removeRecursively());
    QCOMPARE(usage(), QStringLiteral("t 0"));
    QTRY_COMPARE(m_world->daemonLines(), QStringList{noAnswer});
}

void TestAppManagementDataUsage::toolThatCannotRunGivesNothing_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("isExecutable");
    QTest::newRow("missing interpreter") << QByteArray("#!/run/no-such-program\n") << true;
    QTest::newRow("not executable") << QByteArray("#!/bin/sh\nprintf '1\\t'\n") << false;
}

void TestAppManagementDataUsage::toolThatCannotRunGivesNothing()
{
    QFETCH(QByteArray, script);
    QFETCH(bool, isExecutable);
    TestNamespace::replaceProgram(du, script);
    if (!isExecutable)
        QVERIFY(QFile::setPermissions(du, QFileDevice::ReadOwner));
    QVERIFY(m_world->start());
    QCOMPARE(usage(), QStringLiteral("t 0"));
    QTRY_COMPARE(m_world->daemonLines(), QStringList{noAnswer});
}

void TestAppManagementDataUsage::toolIsGivenHalfAMinute_data()
{
    QTest::addColumn<QByteArray>("printed");
    QTest::addColumn<QString>("bytes");
    QTest::newRow("total printed")
        << QByteArray("printf '7\\t/home\\n'\n") << QStringLiteral("t 7");
    QTest::newRow("nothing printed") << QByteArray() << QStringLiteral("t 0");
}

void TestAppManagementDataUsage::toolIsGivenHalfAMinute()
{
    QFETCH(QByteArray, printed);
    QFETCH(QString, bytes);
    replaceByOneThatGoesOn(printed);
    ShiftedClock clock;
    clock.giveTo(*m_world->daemon);
    QVERIFY(m_world->start());
    const QDBusPendingCall call = ask();
    QTRY_VERIFY(fileContents(processId).endsWith('\n'));
    clock.forward(29s);
    QVERIFY(DaemonFixture::settle());
    QVERIFY(!call.isFinished());
    clock.forward(1s);
    QVERIFY(DaemonFixture::settle());
    QTRY_VERIFY(call.isFinished());
    QCOMPARE(textOf(call.reply()), bytes);
    const QStringList expected = printed.isEmpty() ? QStringList{noAnswer} : QStringList();
    QTRY_COMPARE(m_world->daemonLines(), expected);
    // It does not live on, nor is it left for init.
    const pid_t process = fileContents(processId).trimmed().toInt();
    QVERIFY(process > 0);
    QTRY_COMPARE(kill(process, 0), -1);
}

void TestAppManagementDataUsage::toolThatTakesItsTimeHoldsNobody()
{
    replaceByOneThatGoesOn("printf '7\\t/home\\n'\n");
    QVERIFY(m_world->start());
    const QDBusPendingCall first = ask();
    QTRY_VERIFY(fileContents(processId).endsWith('\n'));
    const pid_t process = fileContents(processId).trimmed().toInt();
    const QDBusPendingCall second = ask();
    QVERIFY(DaemonFixture::settle());
    QCOMPARE(errorOf(DaemonFixture::call(QStringLiteral("isRunning"))), QString());
    QVERIFY(!first.isFinished() && !second.isFinished());
    // Both get what the one has found.
    QCOMPARE(kill(process, SIGTERM), 0);
    QTRY_VERIFY(first.isFinished() && second.isFinished());
    QCOMPARE(textOf(first.reply()), QStringLiteral("t 0"));
    QCOMPARE(textOf(second.reply()), QStringLiteral("t 0"));
    QTRY_COMPARE(m_world->daemonLines(), QStringList{noAnswer});
    QCOMPARE(fileContents(processId).count('\n'), 1);
}

void TestAppManagementDataUsage::replaceByOneThatGoesOn(const QByteArray &printed)
{
    QFile::remove(processId);
    TestNamespace::replaceProgram(du,
        "#!/bin/sh\n" + printed + "echo $$ >> " + processId.toLatin1()
            + "\nexec tail -f /dev/null\n");
}

LUM_TEST_MAIN(TestAppManagementDataUsage)
#include "tst_appmanagementdatausage.moc"
