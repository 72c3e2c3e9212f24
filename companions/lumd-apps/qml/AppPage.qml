// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami
import com.tovra.lumd.apps 1.0

Kirigami.ScrollablePage {
    id: page
    objectName: "appPage"
    title: qsTrId("lumd-apps-details")

    property App app
    // The focus is shown where a key has led to it.
    property int openedBy: Qt.OtherFocusReason
    readonly property bool isUp: Runtime.state === Runtime.Up
    readonly property bool isStaying: app !== null && app.removal === App.Installed

    function ask() {
        if (!app || !isUp)
            return
        app.askForSizes()
        app.askForStartOnBoot()
    }
    function leave() {
        const stack = applicationWindow().pageStack
        stack.pop(stack.items[0])
        stack.items[0].takeFocus()
    }
    // The keyboard does not go where nothing is to be seen.
    enabled: applicationWindow().pageStack.wideMode || isCurrentPage
    Keys.onEscapePressed: leave()
    onBackRequested: {
        event.accepted = true
        leave()
    }
    Component.onCompleted: {
        ask()
        // Behind Kirigami's own choice.
        Qt.callLater(() => launch.forceActiveFocus(openedBy))
    }
    onIsUpChanged: ask()
    // It has been removed.
    onAppChanged: if (!app) leave()

    titleDelegate: PageTitle {
        text: page.title
        canLeave: !applicationWindow().pageStack.wideMode
        onLeft: page.leave()
    }

    ColumnLayout {
        visible: page.app !== null
        spacing: Kirigami.Units.largeSpacing

        RowLayout {
            Layout.fillWidth: true
            spacing: Kirigami.Units.largeSpacing
            AppIcon {
                source: page.app ? page.app.icon : ""
                Layout.preferredWidth: Kirigami.Units.iconSizes.large
                Layout.preferredHeight: Kirigami.Units.iconSizes.large
                Layout.alignment: Qt.AlignTop
            }
            ColumnLayout {
                spacing: 0
                Layout.fillWidth: true
                Kirigami.Heading {
                    objectName: "appName"
                    Layout.fillWidth: true
                    text: page.app ? page.app.name : ""
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    maximumLineCount: 3
                    elide: Text.ElideRight
                }
                Detail {
                    objectName: "appPackage"
                    text: page.app ? page.app.shownPackage : ""
                }
                Detail {
                    objectName: "appVersion"
                    text: page.app && page.app.version ? qsTrId("lumd-apps-version").arg(page.app.version) : ""
                }
                Detail {
                    objectName: "appLaunchers"
                    text: page.app && page.app.otherLaunchers
                        ? qsTrId("lumd-apps-other-launchers").arg(page.app.otherLaunchers) : ""
                }
            }
        }

        Notice {
            objectName: "remark"
            isProblem: page.app !== null && page.app.isProblem
            text: !page.app ? "" : page.app.removal === App.Queued ? qsTrId("lumd-apps-remove-queued")
                : page.app.removal === App.Removing ? qsTrId("lumd-apps-removing") : page.app.remark
        }

        Flow {
            Layout.fillWidth: true
            spacing: Kirigami.Units.smallSpacing
            ActionButton {
                id: launch
                objectName: "launch"
                text: qsTrId("lumd-apps-launch")
                icon.name: "media-playback-start"
                enabled: page.isStaying
                onClicked: page.app.launch()
            }
            ActionButton {
                objectName: "stopApp"
                text: qsTrId("lumd-apps-stop")
                icon.name: "media-playback-stop"
                enabled: page.isStaying && page.isUp
                onClicked: page.app.stop()
            }
        }

        Kirigami.Heading {
            level: 3
            text: qsTrId("lumd-apps-space")
        }
        AppSpace {
            Layout.fillWidth: true
            app: page.app
            canClear: page.isStaying && page.isUp
            onClearDataWished: dataQuestion.open()
        }

        Kirigami.Separator { Layout.fillWidth: true }

        ConfirmedSwitch {
            objectName: "appOnBoot"
            Layout.fillWidth: true
            text: qsTrId("lumd-apps-app-on-boot")
            enabled: page.isStaying && page.isUp && page.app.knowsStartOnBoot
            isOn: page.app !== null && page.app.startOnBoot
            onWished: page.app.setStartOnBoot(isWanted)
        }

        Flow {
            Layout.fillWidth: true
            spacing: Kirigami.Units.smallSpacing
            ActionButton {
                objectName: "settings"
                text: qsTrId("lumd-apps-settings")
                icon.name: "configure"
                enabled: page.isStaying
                onClicked: page.app.openSettings()
            }
            ActionButton {
                objectName: "remove"
                text: qsTrId("lumd-apps-remove")
                icon.name: "edit-delete"
                enabled: page.isStaying
                onClicked: removeQuestion.open()
            }
        }
    }

    Question {
        id: dataQuestion
        objectName: "dataQuestion"
        title: qsTrId("lumd-apps-clear-data-title")
        text: page.app ? qsTrId("lumd-apps-clear-data-question").arg(page.app.name) : ""
        consent: qsTrId("lumd-apps-clear-data-consent")
        onAccepted: page.app.clearData()
    }
    Question {
        id: removeQuestion
        objectName: "removeQuestion"
        title: qsTrId("lumd-apps-remove-title")
        text: page.app ? qsTrId("lumd-apps-remove-question").arg(page.app.name) : ""
        consent: qsTrId("lumd-apps-remove-consent")
        onAccepted: page.app.remove()
    }
}
