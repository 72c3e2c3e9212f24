// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import com.tovra.lumd.apps 1.0

// An apk that was opened with the window.
AppsTest {
    name: "Install"

    readonly property int installCode: 60

    function test_fileIsInstalledAndItsResultTold() {
        startUp()
        open()
        Installer.install([world.makeApk("clock.apk")])
        waitForText("installTitle", "Installing")
        waitForText("installFile", "clock.apk")
        verify(seen("installProgress") !== null)
        compare(seen("goOn"), null)
        compare(world.requests("package", installCode, world.pathInRuntime("clock.apk")), 1)
        announce("com.clock", "Clock")
        verify(world.finishInstall(1, "com.clock", ""))
        waitForText("installTitle", "Installed")
        waitForText("installFile", "Clock")
        compare(seen("installProgress"), null)
        click("launchInstalled")
        tryVerify(() => world.requests("alien", 1, "com.clock") === 1, 10000)
        click("goOn")
        waitForNo("installPage")
        waitFor("app-com.clock")
    }

    function test_failureIsExplained() {
        startUp()
        open()
        Installer.install([world.makeApk("clock.apk")])
        waitForText("installTitle", "Installing")
        verify(world.finishInstall(-4, "com.clock", "INSTALL_FAILED_INSUFFICIENT_STORAGE"))
        waitForText("installTitle", "Not installed")
        verify(waitFor("installExplanation").text.length > 0)
        compare(seen("launchInstalled"), null)
    }

    function test_installWaitsForTheRuntime() {
        verify(world.start())
        open()
        Installer.install([world.makeApk("clock.apk")])
        waitForText("installTitle", "Waiting for Android")
        verify(world.bringUp())
        waitForText("installTitle", "Installing")
        compare(world.requests("package", installCode, ""), 1)
        verify(world.finishInstall(1, "com.clock", ""))
        waitForText("installTitle", "Installed")
    }

    function test_crashedRuntimeCanBeStartedFromHere() {
        verify(world.start())
        verify(world.see("failed"))
        open()
        Installer.install([world.makeApk("clock.apk")])
        waitForText("installTitle", "Waiting for Android")
        click("startForInstall")
        tryVerify(() => world.systemdCalls().includes("StartUnit(aliendalvik.service, replace)"), 10000)
    }

    function test_severalFilesComeOneAfterTheOther() {
        startUp()
        open()
        Installer.install([world.makeApk("a.apk"), world.makeApk("b.apk")])
        waitForText("installTitle", "Installing")
        waitForText("installFile", "a.apk")
        verify(world.finishInstall(-2, "com.a", ""))
        waitForText("installTitle", "Not installed")
        compare(waitFor("goOn").text, "Next file")
        click("goOn")
        waitForText("installFile", "b.apk")
        waitForText("installTitle", "Installing")
        verify(world.finishInstall(1, "com.b", ""))
        waitForText("installTitle", "Installed")
        compare(seen("goOn").text, "Done")
    }

    function test_refusalIsExplained() {
        world.forbidChanges()
        startUp()
        open()
        Installer.install([world.makeApk("clock.apk")])
        waitForText("installTitle", "Not installed")
        verify(seen("installExplanation").text.startsWith("lumd did not take the file"))
    }

    function test_fileThatIsNotThereIsNotAskedFor_data() {
        return [
            { tag: "missing", url: "file:///run/apps/none.apk", words: "The file is not there, or you may not read it." },
            { tag: "remote", url: "https://example.org/a.apk", words: "Only files on this device can be installed." }
        ]
    }
    function test_fileThatIsNotThereIsNotAskedFor(row) {
        if (row.tag === "missing")
            startUp()
        open()
        Installer.install([row.url])
        waitForText("installTitle", "Not installed")
        compare(seen("installExplanation").text, row.words)
        compare(world.requests("package", installCode, ""), 0)
        click("goOn")
        waitForNo("installPage")
    }

    function test_daemonThatEndsInBetweenIsTold() {
        startUp()
        open()
        Installer.install([world.makeApk("clock.apk")])
        waitForText("installTitle", "Installing")
        world.killDaemon()
        waitForText("installTitle", "Not installed")
        verify(seen("installExplanation").text.startsWith("lumd ended in the middle"))
    }

    function test_missingDaemonIsTold() {
        open()
        waitForState(Runtime.NoDaemon)
        Installer.install([world.makeApk("clock.apk")])
        waitForText("installTitle", "Not installed")
    }

    function test_oddFileNameIsShownHarmlessly() {
        startUp()
        open()
        Installer.install([world.makeApk("<b>x\n\u001b.apk")])
        waitForText("installFile", "<b>x\u240a\u241b.apk")
        compare(seen("installFile").textFormat, Text.PlainText)
    }
}
