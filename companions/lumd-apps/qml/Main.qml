// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import org.kde.kirigami 2.20 as Kirigami
import com.tovra.lumd.apps 1.0

Kirigami.ApplicationWindow {
    id: window
    objectName: "window"
    title: qsTrId("lumd-apps-title")
    visible: true
    width: Kirigami.Units.gridUnit * 50
    height: Kirigami.Units.gridUnit * 38
    minimumWidth: Kirigami.Units.gridUnit * 15
    minimumHeight: Kirigami.Units.gridUnit * 15

    // Styles that know nothing of Kirigami take their colours from here.
    palette {
        window: Kirigami.Theme.backgroundColor
        windowText: Kirigami.Theme.textColor
        base: systemPalette.base
        alternateBase: systemPalette.alternateBase
        text: systemPalette.text
        button: systemPalette.button
        buttonText: systemPalette.buttonText
        highlight: systemPalette.highlight
        highlightedText: systemPalette.highlightedText
        light: systemPalette.light
        midlight: systemPalette.midlight
        mid: systemPalette.mid
        dark: systemPalette.dark
        shadow: systemPalette.shadow
        toolTipBase: systemPalette.base
        toolTipText: systemPalette.text
        link: Kirigami.Theme.linkColor
    }
    SystemPalette { id: systemPalette }

    pageStack.defaultColumnWidth: Kirigami.Units.gridUnit * 20
    // Its buttons have no name for a screen reader; pages that can be left bring their own.
    pageStack.globalToolBar.style: pageStack.layers.depth > 1 ? Kirigami.ApplicationHeaderStyle.None
        : Kirigami.ApplicationHeaderStyle.ToolBar
    pageStack.globalToolBar.showNavigationButtons: Kirigami.ApplicationHeaderStyle.NoNavigationButtons
    pageStack.initialPage: AppListPage {
        onAppChosen: window.showApp(app, reason)
    }

    function showApp(app, reason) {
        pageStack.pop(pageStack.items[0])
        pageStack.push(Qt.resolvedUrl("AppPage.qml"), { app: app, openedBy: reason })
    }

    function showInstaller() {
        const isShown = pageStack.layers.depth > 1
        if (Installer.state === Installer.Idle) {
            if (isShown)
                pageStack.layers.pop()
        } else if (!isShown) {
            pageStack.layers.push(Qt.resolvedUrl("InstallPage.qml"))
        }
    }

    Connections {
        target: Installer
        function onChanged() { window.showInstaller() }
    }
}
