// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import com.tovra.lumd.apps 1.0

// Who cannot see or cannot point reaches everything all the same.
AppsTest {
    name: "Access"

    // The names of what gets the focus by the key, until it is where it was.
    function focusChain() {
        const names = []
        for (let i = 0; i < 40; ++i) {
            keyClick(Qt.Key_Tab)
            const item = window.activeFocusItem
            const name = item.objectName || (item.parent ? item.parent.objectName : "")
            if (names.includes(name + "|" + item))
                break
            names.push(name + "|" + item)
            const accessible = world.accessible(item)
            verify(accessible.split("|")[1].length > 0, name + " has no name for a screen reader: " + item)
        }
        return names.map(name => name.split("|")[0])
    }
    function verifyReached(chain, names) {
        for (const name of names)
            verify(chain.includes(name), name + " is not reached by the keyboard: " + chain)
    }

    function test_keyboardReachesEverythingOfTheList() {
        startUp()
        announce("com.clock", "Clock")
        open()
        waitFor("app-com.clock")
        tryCompare(waitFor("runtimeOnBoot"), "enabled", true, 10000)
        verifyReached(focusChain(), ["search", "stop", "runtimeOnBoot", "app-com.clock"])
    }

    function test_keyboardOpensAnApp() {
        startUp()
        announce("com.alarm", "Alarm")
        announce("com.clock", "Clock")
        open()
        const list = waitFor("list")
        tryCompare(AppList, "count", 2, 10000)
        list.forceActiveFocus()
        compare(list.currentIndex, 0)
        keyClick(Qt.Key_Down)
        compare(list.currentIndex, 1)
        keyClick(Qt.Key_Return)
        waitForText("appName", "Clock")
    }

    function test_keyboardReachesEverythingOfAnApp() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        tryCompare(waitFor("appOnBoot"), "enabled", true, 10000)
        verifyReached(focusChain(), ["launch", "stopApp", "clear", "appOnBoot", "settings", "remove"])
    }

    function test_keyboardAloneGoesToAnAppAndBack_data() {
        return [{ tag: "phone", width: phoneWidth }, { tag: "desktop", width: 960 }]
    }
    function test_keyboardAloneGoesToAnAppAndBack(row) {
        if (row.tag === "phone") {
            startUp()
            announce("com.alarm", "Alarm")
            announce("com.clock", "Clock")
        }
        open(row.width)
        waitFor("app-com.clock")
        waitFor("search").forceActiveFocus()
        keyClick(Qt.Key_Down)
        tryCompare(seen("list"), "activeFocus", true, 10000)
        keyClick(Qt.Key_Down)
        keyClick(Qt.Key_Return)
        waitForText("appName", "Clock")
        // What has the focus looks like it.
        tryVerify(() => seen("launch").visualFocus, 10000)
        compare(seen("launch").highlighted, false)
        keyClick(Qt.Key_Tab)
        tryCompare(seen("stopApp"), "activeFocus", true, 10000)
        keyClick(Qt.Key_Escape)
        waitForNo("appPage")
        tryCompare(seen("list"), "activeFocus", true, 10000)
        compare(seen("list").currentIndex, 1)
    }

    function test_keyboardStaysOnThePageThatIsSeen() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        tryCompare(waitFor("appOnBoot"), "enabled", true, 10000)
        const chain = focusChain()
        for (const name of ["search", "stop", "runtimeOnBoot", "app-com.clock"])
            verify(!chain.includes(name), name + " is not to be seen, and has the focus")
        keyClick(Qt.Key_Left, Qt.AltModifier)
        waitForNo("appPage")
        verifyReached(focusChain(), ["search", "stop", "runtimeOnBoot", "app-com.clock"])
    }

    function test_returnPressesWhatHasTheFocus_data() {
        return [{ tag: "button" }, { tag: "switch" }]
    }
    function test_returnPressesWhatHasTheFocus(row) {
        if (row.tag === "button")
            startUp()
        announce("com.clock", "Clock")
        open()
        waitFor("app-com.clock")
        const item = waitFor(row.tag === "button" ? "stop" : "runtimeOnBoot")
        tryCompare(item, "enabled", true, 10000)
        item.forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Return)
        const call = row.tag === "button" ? "StopUnit" : "EnableUnitFiles"
        tryVerify(() => world.systemdCalls().some(text => text.startsWith(call)), 10000)
        compare(seen("appPage"), null)
    }

    function test_keyboardGoesThroughAnInstall() {
        startUp()
        open()
        Installer.install([world.makeApk("a.apk"), world.makeApk("b.apk")])
        waitForText("installTitle", "Installing")
        verifyReached(focusChain(), ["back"])
        // Whoever looks at the apps meanwhile is told of the result.
        keyClick(Qt.Key_Escape)
        waitForNo("installPage")
        verify(world.finishInstall(1, "com.a", ""))
        waitForText("installTitle", "Installed")
        tryCompare(waitFor("goOn"), "visualFocus", true, 10000)
        verifyReached(focusChain(), ["back", "goOn"])
        // No file is forgotten.
        keyClick(Qt.Key_Escape)
        waitForText("installFile", "b.apk")
        waitForText("installTitle", "Installing")
        verify(world.finishInstall(1, "com.b", ""))
        waitForText("installTitle", "Installed")
        tryCompare(seen("goOn"), "activeFocus", true, 10000)
        keyClick(Qt.Key_Return)
        waitForNo("installPage")
    }

    function test_iconsAreAsDarkOrLightAsTheirText() {
        world.setDark(true)
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        for (const name of ["launch", "stopApp", "settings", "remove"])
            compare(seen(name).icon.color, seen(name).palette.buttonText, name)
        compare(seen("back").icon.color, seen("appName").color)
    }

    function test_questionIsAnsweredByTheKeyboard() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        tryCompare(waitFor("launch"), "activeFocus", true, 10000)
        seen("remove").forceActiveFocus()
        keyClick(Qt.Key_Space)
        waitFor("questionText")
        // What harms nobody is what a hasty key does.
        tryVerify(() => seen("cancel") !== null && seen("cancel").visualFocus, 10000)
        keyClick(Qt.Key_Escape)
        waitForNo("questionText")
        compare(AppList.find("com.clock").removal, App.Installed)
    }

    function test_screenReaderGetsWhatIsSeen() {
        world.setTotal(1e9)
        world.setSizes("com.clock", 6e6, 3e6, 1e6)
        startUp()
        announce("com.clock", "Clock")
        open()
        const item = waitFor("app-com.clock")
        compare(world.accessible(item), "ListItem|Clock")
        tryVerify(() => world.accessibleDescription(item) === "10.0 MB", 10000)
        compare(world.accessible(seen("stop")), "Button|Stop")
        verify(world.accessible(seen("runtimeOnBoot")).endsWith("|Start Android with the device"))
        for (const text of ["Android is running", "All apps together use 1.0 GB", "Clock", "Search apps"])
            verify(world.isReadOut(window, text), text)
        openApp("com.clock")
        tryVerify(() => seen("appOnBoot").enabled, 10000)
        for (const text of ["Cache 1.0 MB", "Launch", "Start the app with the device", "com.clock"])
            verify(world.isReadOut(window, text), text)
        click("launch")
        waitFor("remark")
        compare(world.accessible(seen("remark")), "AlertMessage|The app is on its way.")
    }

    function test_screenReaderGetsTheStates() {
        open()
        waitForText("stateTitle", "The service lumd is not running")
        compare(world.accessible(seen("state")), "AlertMessage|The service lumd is not running")
        verify(world.accessibleDescription(seen("state")).length > 0)
    }
}
