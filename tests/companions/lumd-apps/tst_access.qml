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

    function test_questionIsAnsweredByTheKeyboard() {
        startUp()
        announce("com.clock", "Clock")
        open()
        openApp("com.clock")
        waitFor("remove").forceActiveFocus()
        keyClick(Qt.Key_Space)
        waitFor("questionText")
        // What harms nobody is what a hasty key does.
        tryVerify(() => seen("cancel") !== null && seen("cancel").activeFocus, 10000)
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
