// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtTest 1.15
import com.tovra.lumd.apps 1.0

// The list and what can be done to an app.
AppsTest {
    name: "Apps"

    // Codes on Android level 27.
    readonly property int launchCode: 1
    readonly property int stopCode: 72
    readonly property int clearCacheCode: 100
    readonly property int clearDataCode: 101
    readonly property int uninstallCode: 64
    readonly property int startActivityCode: 3

    function test_appsAreInTheOrderOfTheirNames() {
        startUp()
        announce("org.b", "beta")
        announce("org.c", "Alpha")
        announce("org.a", "Gamma")
        open()
        tryCompare(Apps, "count", 3, 10000)
        const names = [0, 1, 2].map(row => Apps.data(Apps.index(row, 0), 258))
        compare(names, ["Alpha", "beta", "Gamma"])
        waitFor("app-org.a")
    }

    function test_listFollowsAnnouncements() {
        startUp()
        open()
        waitForText("stateTitle", "No apps yet")
        announce("com.clock", "Clock")
        const item = waitFor("app-com.clock")
        compare(search(item, "name").text, "Clock")
        compare(seen("stateTitle"), null)
        verify(world.announce("com.clock", "Uhr", ".Main", "2"))
        tryVerify(() => search(item, "name").text === "Uhr", 10000)
        verify(world.announceGone("com.clock"))
        waitForNo("app-com.clock")
        waitForText("stateTitle", "No apps yet")
    }

    function test_listGoesAndComesWithTheDaemon() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        world.killDaemon()
        waitForNo("appPage")
        waitForText("stateTitle", "The service lumd is not running")
        compare(AppList.count, 0)
    }

    function test_searchLooksInNameAndPackage() {
        startUp()
        announce("com.clock", "Clock")
        announce("org.map", "Karte")
        open()
        waitFor("app-org.map")
        Apps.searched = "KAR"
        waitForNo("app-com.clock")
        verify(seen("app-org.map") !== null)
        Apps.searched = "com.cl"
        waitForNo("app-org.map")
        waitFor("app-com.clock")
        Apps.searched = "nobody"
        waitForText("stateTitle", "No app is called that")
    }

    function test_sizesAreABarAndNumbers() {
        startUp()
        world.setSizes("com.clock", 6e6, 3e6, 1e6)
        announce("com.clock", "Clock")
        open()
        const item = waitFor("app-com.clock")
        tryVerify(() => search(item, "detail") !== null && search(item, "detail").text === "10.0 MB", 10000)
        openApp("com.clock")
        const bar = waitFor("sizeBar")
        tryVerify(() => search(bar, "part2") !== null, 10000)
        const widths = [0, 1, 2].map(index => search(bar, "part" + index).width)
        fuzzyCompare(widths[0] / widths[1], 2, 0.01)
        fuzzyCompare(widths[1] / widths[2], 3, 0.01)
        const texts = ["codePart", "dataPart", "cachePart"].map(name => search(seen(name), "size").text)
        compare(texts, ["6.0 MB", "3.0 MB", "1.0 MB"])
    }

    function test_sizesAreUnknownWhileTheRuntimeIsDown() {
        startUp()
        world.setSizes("com.clock", 6e6, 3e6, 1e6)
        announce("com.clock", "Clock")
        verify(world.takeDown())
        open()
        openApp("com.clock")
        waitForText("spaceUnknown", "Known when Android runs")
        for (const name of ["stopApp", "appOnBoot"])
            compare(seen(name).enabled, false, name)
        for (const name of ["launch", "settings", "remove"])
            compare(seen(name).enabled, true, name)
        // It comes up while the page is open.
        verify(world.bringUp())
        tryVerify(() => search(seen("codePart"), "size") !== null, 10000)
        compare(search(seen("codePart"), "size").text, "6.0 MB")
    }

    function test_actionsReachAndroid_data() {
        return [
            { tag: "launch", button: "launch", service: "alien", code: launchCode },
            { tag: "stop", button: "stopApp", service: "activity", code: stopCode }
        ]
    }
    function test_actionsReachAndroid(row) {
        if (row.tag === "launch") {
            startUp()
            announce("com.clock", "Clock")
        }
        open()
        openApp("com.clock")
        click(row.button)
        tryVerify(() => world.requests(row.service, row.code, "com.clock") === 1, 10000)
        waitFor("remark")
        verify(seen("remark").text.length > 0)
    }

    function test_settingsPageOfAndroidIsOpened() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        click("settings")
        tryVerify(() => world.requests("activity", startActivityCode, "") === 1, 10000)
    }

    function test_cacheIsClearedAtOnceAndMeasuredAgain() {
        startUp()
        world.setSizes("com.clock", 6e6, 3e6, 1e6)
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        const part = waitFor("cachePart")
        tryVerify(() => search(part, "size") !== null && search(part, "size").text === "1.0 MB", 10000)
        world.setSizes("com.clock", 6e6, 3e6, 0)
        hit(search(part, "clear"))
        tryVerify(() => world.requests("package", clearCacheCode, "com.clock") === 1, 10000)
        tryVerify(() => search(part, "size") !== null && search(part, "size").text === "0 bytes", 10000)
    }

    function test_dataIsClearedAfterAQuestion() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        const button = search(waitFor("dataPart"), "clear")
        tryCompare(button, "enabled", true, 10000)
        hit(button)
        click("cancel")
        waitForNo("questionText")
        compare(world.requests("package", clearDataCode, ""), 0)
        hit(button)
        verify(waitFor("questionText").text.includes("Clock"))
        click("consent")
        tryVerify(() => world.requests("package", clearDataCode, "com.clock") === 1, 10000)
    }

    function test_removalAsksAndIsFollowed() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        click("remove")
        verify(waitFor("questionText").text.includes("Clock"))
        click("cancel")
        waitForNo("questionText")
        compare(world.requests("package", uninstallCode, ""), 0)
        click("remove")
        click("consent")
        tryVerify(() => world.requests("package", uninstallCode, "com.clock") === 1, 10000)
        waitForText("remark", "Is being removed")
        compare(seen("remove").enabled, false)
        verify(world.announceGone("com.clock"))
        waitForNo("appPage")
        waitForText("stateTitle", "No apps yet")
    }

    function test_failedRemovalIsTold() {
        startUp()
        announce("com.clock", "Clock")
        world.failRemovals(true)
        open()
        openApp("com.clock")
        click("remove")
        click("consent")
        waitForText("remark", "Android did not remove the app.")
        compare(seen("remove").enabled, true)
    }

    function test_removalWaitsForTheRuntime() {
        startUp()
        announce("com.clock", "Clock")
        verify(world.takeDown())
        open()
        openApp("com.clock")
        click("remove")
        click("consent")
        waitForText("remark", "Will be removed when Android runs")
        tryVerify(() => world.systemdCalls().includes("StartUnit(aliendalvik.service, replace)"), 10000)
    }

    function test_removalMayBeForbidden() {
        world.forbidChanges()
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        click("remove")
        click("consent")
        waitForText("remark", "You may not remove apps on this device.")
    }

    function test_startOnBootShowsWhatAndroidHolds() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        const onBoot = waitFor("appOnBoot")
        tryCompare(onBoot, "enabled", true, 10000)
        compare(onBoot.checked, false)
        click("appOnBoot")
        tryCompare(onBoot, "checked", true, 10000)
        click("appOnBoot")
        tryCompare(onBoot, "checked", false, 10000)
    }

    function test_captionsAreNoMarkupAndNoCodes_data() {
        return [
            { tag: "markup", caption: "<b>Bold</b><img src='file:///x'>", shown: "<b>Bold</b><img src='file:///x'>" },
            { tag: "line feed", caption: "two\nlines", shown: "two lines" },
            { tag: "escape", caption: "\u001b[31mred", shown: " [31mred" },
            { tag: "override", caption: "exe\u202ekpa", shown: "exekpa" },
            { tag: "right to left", caption: "\u05e9\u05dc\u05d5\u05dd", shown: "\u05e9\u05dc\u05d5\u05dd" },
            { tag: "emoji", caption: "\ud83d\ude00\ud83d\udc4d", shown: "\ud83d\ude00\ud83d\udc4d" },
            { tag: "long", caption: "x".repeat(5000), shown: "x".repeat(200) + "\u2026" },
            { tag: "blank", caption: " ", shown: "com.odd" }
        ]
    }
    function test_captionsAreNoMarkupAndNoCodes(row) {
        if (row.tag === "markup")
            startUp()
        open()
        announce("com.odd", row.caption)
        const item = waitFor("app-com.odd")
        const label = search(item, "name")
        tryCompare(label, "text", row.shown, 10000)
        compare(label.textFormat, Text.PlainText)
        verify(label.width <= item.width)
        compare(label.lineCount, 1)
        compare(label.effectiveHorizontalAlignment, Text.AlignLeft)
        openApp("com.odd")
        const name = waitFor("appName")
        compare(name.text, row.shown)
        compare(name.textFormat, Text.PlainText)
        verify(name.lineCount <= 3)
        click("remove")
        compare(waitFor("questionText").textFormat, Text.PlainText)
        verify(seen("questionText").text.includes(row.shown))
        verify(seen("consent").mapToItem(window.contentItem, 0, 0).y < window.height)
    }

    function test_fiveHundredAppsAreListed() {
        startUp()
        verify(world.announceMany(500))
        open()
        tryCompare(AppList, "count", 500, 30000)
        waitFor("app-org.many.app0")
        const list = waitFor("list")
        list.positionViewAtEnd()
        waitFor("app-org.many.app499")
        // Only what was seen was asked for.
        wait(0)
        verify(world.requests("storagestats", 6, "") < 100)
    }
}
