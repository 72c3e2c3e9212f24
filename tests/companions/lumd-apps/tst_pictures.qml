// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import com.tovra.lumd.apps 1.0

// Draws each screen as a phone and a desktop show it, light and dark, and looks that what matters is
// on it.
AppsTest {
    name: "Pictures"

    readonly property int desktopWidth: 960
    readonly property int desktopHeight: 600
    // The background, the text and what anti-aliasing makes of them are more.
    readonly property int fewestColours: 20

    function resize(width, height) {
        window.width = width
        window.height = height
        tryCompare(window.contentItem, "width", width)
        tryCompare(window.contentItem, "height", height)
    }
    // `names` are of items that must be seen whole.
    function draw(picture, names) {
        const looks = [["phone", phoneWidth, phoneHeight, false], ["phone-dark", phoneWidth, phoneHeight, true],
            ["desktop", desktopWidth, desktopHeight, false], ["desktop-dark", desktopWidth, desktopHeight, true]]
        for (const [look, width, height, isDark] of looks) {
            world.setDark(isDark)
            resize(width, height)
            names.forEach(waitFor)
            settle()
            for (const name of names)
                verifyWhole(name, picture + " " + look)
            verify(world.draw(window, picture + "-" + look + ".png") > fewestColours, picture + " " + look)
        }
    }
    // Pages slide in; a progress bar goes on for ever.
    function settle() {
        let before = ""
        for (let i = 0; i < 10; ++i) {
            wait(150)
            const now = world.digest(window)
            if (now === before)
                return
            before = now
        }
    }
    function verifyWhole(name, where) {
        const item = seen(name)
        verify(item.width > 0 && item.height > 0, name + " is empty: " + where)
        const corner = item.mapToItem(window.contentItem, 0, 0)
        verify(corner.x >= 0 && corner.x + item.width <= window.width + 0.5, name + " is cut off at a side: " + where)
        verify(corner.y >= 0 && corner.y + item.height <= window.height + 0.5, name + " is cut off: " + where)
        if (item.truncated === undefined)
            return
        verify(item.text.length > 0, name + " has no text: " + where)
        verify(!item.truncated, name + " is truncated: " + where)
    }

    function startWithApps() {
        startUp()
        const apps = [["org.fediverse.reader", "Fedi Reader", 48, 130, 22], ["org.transit.map", "Transit Map", 96, 310, 84],
            ["com.bank.token", "Bank Token", 34, 2, 1], ["org.podcast.player", "Podcasts", 28, 940, 120],
            ["net.chat.secure", "Chat", 61, 205, 38], ["org.weather.simple", "Weather", 12, 1, 6],
            ["org.scanner.code", "Code Scanner", 19, 0, 3]]
        const million = 1e6
        for (const [package_, caption, code, data, cache] of apps) {
            world.setSizes(package_, code * million, data * million, cache * million)
            verify(world.announce(package_, caption, ".Main", "4.2.1"))
        }
        tryCompare(AppList, "count", apps.length, 10000)
    }

    function test_pictureOfNoDaemon() {
        open()
        draw("no-daemon", ["stateTitle", "stateExplanation"])
    }

    function test_pictureOfRefusal() {
        verify(world.startRefused())
        open()
        waitForText("stateTitle", "You may not use lumd")
        draw("refused", ["stateTitle", "stateExplanation"])
    }

    function test_pictureOfDown() {
        world.setTotal(2.1e9)
        startWithApps()
        verify(world.takeDown())
        open()
        waitForText("runtimeTitle", "Android is off")
        draw("down", ["search", "start", "runtimeTitle", "runtimeExplanation", "runtimeOnBoot", "total",
            "app-com.bank.token"])
    }

    function test_pictureOfStarting() {
        verify(world.start())
        verify(world.see("activating"))
        open()
        waitForText("runtimeTitle", "Android is starting")
        draw("starting", ["stop", "runtimeTitle", "runtimeProgress", "stateTitle"])
    }

    function test_pictureOfNoApps() {
        startUp()
        open()
        waitForText("stateTitle", "No apps yet")
        draw("no-apps", ["stop", "runtimeTitle", "stateTitle", "stateExplanation"])
    }

    function test_pictureOfApps() {
        world.setTotal(2.1e9)
        startWithApps()
        open()
        tryVerify(() => AppList.find("com.bank.token").knowsSizes, 10000)
        draw("apps", ["search", "stop", "total", "app-com.bank.token", "app-net.chat.secure"])
    }

    function test_pictureOfApp() {
        world.setTotal(2.1e9)
        startWithApps()
        open()
        openApp("org.transit.map")
        tryVerify(() => AppList.find("org.transit.map").knowsStartOnBoot, 10000)
        draw("app", ["detailsTitle", "appName", "appPackage", "appVersion", "launch", "stopApp", "sizeBar", "codePart", "dataPart",
            "cachePart", "appOnBoot", "settings", "remove"])
    }

    function test_pictureInGerman() {
        world.setLanguage("de")
        startWithApps()
        open()
        openApp("org.transit.map")
        tryVerify(() => AppList.find("org.transit.map").knowsStartOnBoot, 10000)
        draw("german", ["detailsTitle", "appName", "launch", "stopApp", "codePart", "dataPart", "cachePart",
            "appOnBoot", "settings", "remove"])
    }

    function test_pictureOfQuestion() {
        startWithApps()
        open()
        openApp("org.transit.map")
        click("remove")
        draw("question", ["questionText", "cancel", "consent"])
    }

    function test_pictureOfInstalling() {
        startUp()
        open()
        Installer.install([world.makeApk("transit-map.apk")])
        waitForText("installTitle", "Installing")
        draw("installing", ["installTitle", "installFile", "installProgress"])
    }

    function test_pictureOfInstalled() {
        startWithApps()
        open()
        Installer.install([world.makeApk("transit-map.apk")])
        waitForText("installTitle", "Installing")
        verify(world.finishInstall(1, "org.transit.map", ""))
        waitForText("installTitle", "Installed")
        draw("installed", ["installTitle", "installFile", "launchInstalled", "goOn"])
    }

    function test_pictureOfFailure() {
        startUp()
        open()
        Installer.install([world.makeApk("transit-map.apk")])
        waitForText("installTitle", "Installing")
        verify(world.finishInstall(-4, "org.transit.map", "INSTALL_FAILED_INSUFFICIENT_STORAGE"))
        waitForText("installTitle", "Not installed")
        draw("not-installed", ["installTitle", "installFile", "installExplanation", "goOn"])
    }
}
