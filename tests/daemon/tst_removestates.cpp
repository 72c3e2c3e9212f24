// SPDX-License-Identifier: BSD-3-Clause
// Removals in every state of the runtime's unit and of the links to it.
#include "tests/daemon/appfixture.h"
#include "tests/support/mockpackagekit.h"
#include "tests/support/testmain.h"

namespace {

const QString packageService = QStringLiteral("package");
const QString package = QStringLiteral("com.foo");

QString remove(const QString &name)
{
    return resultOf(DaemonFixture::call(QStringLiteral("removeFile"), {name}));
}

} // namespace

class TestRemoveStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_world = std::make_unique<AppFixture>(); }
    void cleanup() { m_world->renew(); }

    void runtimeIsStartedOnlyWhenItIsDown_data();
    void runtimeIsStartedOnlyWhenItIsDown();
    void runtimeThatIsDownIsStartedBesideLiveLinks();
    void markerAndRpmPackageGoWhileTheRuntimeRuns();

private:
    int startsForARemoval();

    std::unique_ptr<AppFixture> m_world;
};

int TestRemoveStates::startsForARemoval()
{
    m_world->systemd.clearCalls();
    if (remove(package) != QLatin1String("true"))
        return -1;
    // What was sent before this has arrived when it has.
    DaemonFixture::call(QStringLiteral("controlServiceAutostart"), {false});
    return m_world->systemd.waitForCall(QStringLiteral("DisableUnitFiles")) ? m_world->starts()
                                                                            : -1;
}

void TestRemoveStates::runtimeIsStartedOnlyWhenItIsDown_data()
{
    addStatesAndStarts();
}

void TestRemoveStates::runtimeIsStartedOnlyWhenItIsDown()
{
    QFETCH(QString, state);
    m_world->systemd.setUnitStateSilently(state, QStringLiteral("test"));
    QVERIFY(m_world->start());
    QTEST(startsForARemoval(), "starts");
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug removeFile: \"com.foo\""),
            QStringLiteral("debug Aliendalvik not running. Will remove  \"com.foo\"  later")}));
}

void TestRemoveStates::runtimeThatIsDownIsStartedBesideLiveLinks()
{
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    // The links go when the runtime is told to stop, not when it has.
    QVERIFY(m_world->see(QStringLiteral("inactive")));
    QCOMPARE(startsForARemoval(), 1);
    QCOMPARE(names(m_world->requests(packageService, uninstallCode)), QStringList{package});
}

void TestRemoveStates::markerAndRpmPackageGoWhileTheRuntimeRuns()
{
    MockPackageKit packageKit;
    const QString id = QStringLiteral("mirlane-apk-com.foo;1.0-1;noarch;installed");
    packageKit.setPackages(QStringLiteral("mirlane-apk-com.foo"), {id});
    makeFile(marker(QStringLiteral("com.foo.apk")));
    makeFile(packaged(QStringLiteral("com.foo.apk")));
    QVERIFY(m_world->start());
    QVERIFY(m_world->bringUpRuntime());
    m_world->daemon->clearLines();
    QCOMPARE(remove(QStringLiteral("/a/com.foo-3.apk")), QStringLiteral("true"));
    QCOMPARE(names(m_world->requests(packageService, uninstallCode)), QStringList{package});
    QCOMPARE(entries(marker()), QStringList());
    QTRY_COMPARE(packageKit.callTexts(),
        QStringList({QStringLiteral("Resolve(4, [mirlane-apk-com.foo])"),
            QStringLiteral("RemovePackages(2, [%1], false, false)").arg(id)}));
    QTRY_COMPARE(m_world->daemonLines(),
        QStringList({QStringLiteral("debug removeFile: \"/a/com.foo-3.apk\""),
            QStringLiteral("debug Uninstalling \"com.foo\""),
            QStringLiteral("debug Requesting uninstall of RPM ' \"mirlane-apk-com.foo\" ' from "
                           "PackageKit")}));
}

LUM_TEST_MAIN(TestRemoveStates)
#include "tst_removestates.moc"
