// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtTest 1.15
import com.tovra.lumd.apps 1.0

// A test case with the window, and ways to find what is in it.
TestCase {
    id: testCase
    when: windowShown

    property var window: null
    readonly property int phoneWidth: 360
    readonly property int phoneHeight: 640

    // Of a phone unless told.
    function open(width, height) {
        const component = Qt.createComponent("qrc:/lumd-apps/Main.qml")
        compare(component.errorString(), "")
        window = component.createObject(null, { width: width || phoneWidth, height: height || phoneHeight })
        verify(window !== null)
        tryCompare(window, "active", true)
        waitForRendering(window.contentItem)
    }
    function cleanup() {
        if (window)
            window.destroy()
        window = null
        // Apps may bring pictures that are none.
        const complaints = world.complaints().filter(text => text.startsWith("qrc:/lumd-apps/") && !text.includes("Error decoding"))
        compare(complaints, [])
    }

    // The first of that name that is to be seen, or null.
    function seen(name) {
        return search(window.contentItem, name) || search(window.overlay, name)
    }
    function search(item, name) {
        if (!item || !item.visible || item.opacity === 0)
            return null
        if (item.objectName === name)
            return item
        for (let i = 0; i < item.children.length; ++i) {
            const found = search(item.children[i], name)
            if (found)
                return found
        }
        return null
    }
    function waitFor(name) {
        tryVerify(() => seen(name) !== null, 10000, name + " does not show")
        return seen(name)
    }
    function waitForNo(name) {
        tryVerify(() => seen(name) === null, 10000, name + " still shows")
    }
    function waitForText(name, text) {
        tryVerify(() => seen(name) !== null && seen(name).text === text, 10000)
        compare(seen(name).text, text)
    }
    function waitForState(state) {
        tryCompare(Runtime, "state", state, 10000)
    }
    function click(name) {
        waitFor(name)
        tryVerify(() => seen(name) !== null && seen(name).enabled, 10000, name + " is not enabled")
        hitWhat(() => seen(name))
    }
    function hit(item) {
        hitWhat(() => item)
    }
    // Pages slide, and take no click before they have come to rest; a list may make its rows anew
    // until then.
    function hitWhat(find) {
        let before = null
        let item = null
        for (let tries = 0; tries < 160; ++tries) {
            const found = find()
            const now = found === null ? null : found.mapToItem(null, 0, 0)
            if (found !== null && found === item && now.x === before.x && now.y === before.y
                && !window.pageStack.layers.busy) {
                mouseClick(found)
                return
            }
            item = found
            before = now
            wait(60)
        }
        fail("it does not come to rest")
    }
    // What lumd has told of before that has come, too.
    function waitForLumd() {
        const calls = world.systemdCalls().length
        world.setUnitFileState("enabled")
        Runtime.setStartOnBoot(true)
        tryVerify(() => world.systemdCalls().length > calls, 10000)
        tryCompare(Runtime, "startOnBoot", true, 10000)
    }
    // The daemon with the runtime up.
    function startUp() {
        verify(world.start())
        verify(world.bringUp())
        waitForState(Runtime.Up)
    }
    function announce(package_, caption) {
        verify(world.announce(package_, caption))
    }
    function openApp(package_) {
        click("app-" + package_)
        waitFor("appPage")
    }
}
