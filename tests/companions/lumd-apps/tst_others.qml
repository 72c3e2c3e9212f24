// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import com.tovra.lumd.apps 1.0

// What goes on beside the window is not taken for what it has asked for.
AppsTest {
    name: "Others"

    readonly property int installCode: 60
    readonly property int uninstallCode: 64

    function test_removalThatTheRuntimeLosesMayBeAskedForAgain() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        click("remove")
        click("consent")
        tryVerify(() => world.requests("package", uninstallCode, "com.clock") === 1, 10000)
        waitForText("remark", "Is being removed")
        verify(world.takeDown())
        waitForNo("remark")
        tryVerify(() => seen("remove").enabled, 10000)
    }

    function test_launchThatIsKeptIsNoRemoval() {
        startUp()
        announce("com.clock", "Clock")
        verify(world.takeDown())
        open()
        openApp("com.clock")
        click("launch")
        waitForText("remark", "The app is on its way.")
        waitForLumd()
        compare(AppList.find("com.clock").removal, App.Installed)
    }

    function test_fileOfSomebodyElseIsNotWaitedFor() {
        startUp()
        open()
        Installer.install([world.makeApk("clock.apk")])
        waitForText("installTitle", "Installing")
        verify(world.takeDown())
        waitForState(Runtime.Down)
        verify(world.installElsewhere(world.makeApk("other.apk")))
        waitForLumd()
        compare(Installer.state, Installer.Installing)
    }

    function test_installOfSomebodyElseShowsNoPage() {
        startUp()
        open()
        verify(world.installElsewhere(world.makeApk("other.apk")))
        tryVerify(() => world.requests("package", installCode, "") === 1, 10000)
        verify(world.finishInstall(1, "com.other", ""))
        waitForLumd()
        compare(Installer.state, Installer.Idle)
        compare(seen("installPage"), null)
    }

    function test_daemonThatEndsWhileItTakesTheFileIsTold() {
        verify(world.start())
        open()
        waitForState(Runtime.Down)
        world.halt()
        Installer.install([world.makeApk("clock.apk")])
        waitFor("installPage")
        world.killDaemon()
        waitForText("installTitle", "Not installed")
        waitForState(Runtime.NoDaemon)
        // The call's own failure follows, which says less.
        wait(200)
        verify(seen("installExplanation").text.startsWith("lumd ended in the middle"))
    }

    function test_startWithTheDeviceIsUnknownWhenSystemdRefuses() {
        verify(world.start())
        open()
        tryCompare(Runtime, "knowsStartOnBoot", true, 10000)
        world.refuse("org.freedesktop.systemd1")
        Runtime.setStartOnBoot(true)
        tryCompare(Runtime, "knowsStartOnBoot", false, 10000)
        compare(waitFor("runtimeOnBoot").enabled, false)
    }

    function test_sizesOfNothingAreUnknown() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        tryVerify(() => world.requests("storagestats", 6, "") > 0, 10000)
        waitForLumd()
        compare(AppList.find("com.clock").knowsSizes, false)
        verify(seen("spaceUnknown") !== null)
    }
}
