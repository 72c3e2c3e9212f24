// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import com.tovra.lumd.apps 1.0

// What the window says of the daemon and of the runtime.
AppsTest {
    name: "States"

    function test_missingDaemonIsToldAndAwaited() {
        open()
        waitForText("stateTitle", "The service lumd is not running")
        compare(seen("runtimeCard"), null)
        verify(world.start())
        waitForState(Runtime.Down)
        waitForText("stateTitle", "No apps yet")
        world.killDaemon()
        waitForState(Runtime.NoDaemon)
        waitForText("stateTitle", "The service lumd is not running")
        compare(seen("runtimeCard"), null)
    }

    function test_refusalIsTold() {
        verify(world.startRefused())
        open()
        waitForText("stateTitle", "You may not use lumd")
        verify(seen("stateExplanation").text.length > 0)
        compare(seen("runtimeCard"), null)
    }

    function test_daemonWithoutMonitorIsTooOld() {
        verify(world.startOutdated())
        open()
        waitForText("stateTitle", "lumd is too old")
    }

    function test_runtimeThatIsDownCanBeStarted() {
        verify(world.start())
        open()
        waitForText("runtimeTitle", "Android is off")
        compare(seen("stop"), null)
        click("start")
        tryVerify(() => world.systemdCalls().includes("StartUnit(aliendalvik.service, replace)"), 10000)
        verify(world.see("activating"))
        waitForText("runtimeTitle", "Android is starting")
        verify(seen("runtimeProgress") !== null)
        compare(seen("start"), null)
        verify(world.bringUp())
        waitForText("runtimeTitle", "Android is running")
        compare(seen("runtimeProgress"), null)
        click("stop")
        tryVerify(() => world.systemdCalls().includes("StopUnit(aliendalvik.service, replace)"), 10000)
        verify(world.see("deactivating"))
        waitForText("runtimeTitle", "Android is stopping")
        verify(world.see("failed"))
        waitForText("runtimeTitle", "Android has crashed")
        verify(seen("start") !== null)
    }

    function test_runtimeIsStartingUntilItTakesApps() {
        verify(world.start())
        verify(world.see("active"))
        open()
        waitForText("runtimeTitle", "Android is starting")
        waitForLumd()
        waitForText("runtimeTitle", "Android is starting")
        verify(world.bringUp())
        waitForText("runtimeTitle", "Android is running")
    }

    function test_startWithTheDeviceShowsWhatSystemdHolds() {
        verify(world.start())
        open()
        const onBoot = waitFor("runtimeOnBoot")
        tryCompare(onBoot, "enabled", true, 10000)
        compare(onBoot.checked, false)
        click("runtimeOnBoot")
        tryVerify(() => world.systemdCalls().includes("EnableUnitFiles([aliendalvik.service], false, true)"), 10000)
        // Not before it is so.
        compare(onBoot.checked, false)
        world.setUnitFileState("enabled")
        click("runtimeOnBoot")
        tryCompare(onBoot, "checked", true, 10000)
        world.setUnitFileState("disabled")
        click("runtimeOnBoot")
        tryVerify(() => world.systemdCalls().includes("DisableUnitFiles([aliendalvik.service], false)"), 10000)
        tryCompare(onBoot, "checked", false, 10000)
    }

    function test_daemonThatHangsHoldsNothingUp() {
        verify(world.start())
        open()
        waitForText("runtimeTitle", "Android is off")
        world.halt()
        click("start")
        const before = Date.now()
        mouseClick(waitFor("runtimeOnBoot"))
        verify(Date.now() - before < 2000)
        waitFor("late")
        world.goOn()
        waitForNo("late")
        tryVerify(() => world.systemdCalls().includes("StartUnit(aliendalvik.service, replace)"), 10000)
    }

    function test_totalIsTold() {
        world.setTotal(1234567890)
        verify(world.start())
        open()
        waitForText("total", "All apps together use 1.2 GB")
    }

    function test_textsAreGermanForGermans() {
        world.setLanguage("de")
        verify(world.start())
        open()
        waitForText("runtimeTitle", "Android ist aus")
        waitForText("stateTitle", "Noch keine Apps")
        compare(seen("start").text, "Starten")
    }
}
