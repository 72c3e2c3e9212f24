// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami
import com.tovra.lumd.apps 1.0

// The runtime's state, and what can be done about it.
Controls.Control {
    id: card
    objectName: "runtimeCard"
    padding: Kirigami.Units.largeSpacing
    horizontalPadding: Kirigami.Units.largeSpacing + Kirigami.Units.smallSpacing
    Kirigami.Theme.colorSet: Kirigami.Theme.Window
    Kirigami.Theme.inherit: false
    background: Rectangle {
        color: Kirigami.Theme.backgroundColor
        Kirigami.Separator {
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        }
    }

    contentItem: ColumnLayout {
        spacing: Kirigami.Units.smallSpacing
        Notice {
            objectName: "late"
            isProblem: true
            text: Runtime.isLate ? qsTrId("lumd-apps-late") : ""
        }
        RowLayout {
            spacing: Kirigami.Units.largeSpacing
            Rectangle {
                readonly property bool isMoving: Runtime.state === Runtime.Starting || Runtime.state === Runtime.Stopping
                Layout.preferredWidth: Kirigami.Units.gridUnit * 0.7
                Layout.preferredHeight: width
                radius: width / 2
                color: Runtime.state === Runtime.Up ? Kirigami.Theme.positiveTextColor
                    : Runtime.state === Runtime.Failed ? Kirigami.Theme.negativeTextColor
                    : isMoving ? Kirigami.Theme.neutralTextColor : Kirigami.Theme.disabledTextColor
                Accessible.ignored: true
            }
            Controls.Label {
                objectName: "runtimeTitle"
                Layout.fillWidth: true
                text: Runtime.title
                wrapMode: Text.Wrap
                textFormat: Text.PlainText
                font.bold: true
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            ActionButton {
                objectName: "start"
                visible: Runtime.canStart
                text: qsTrId("lumd-apps-start")
                icon.name: "media-playback-start"
                onClicked: Runtime.start()
            }
            ActionButton {
                objectName: "stop"
                visible: Runtime.canStop
                text: qsTrId("lumd-apps-stop")
                icon.name: "media-playback-stop"
                onClicked: Runtime.stop()
            }
        }
        Controls.Label {
            objectName: "runtimeExplanation"
            Layout.fillWidth: true
            visible: text.length > 0
            text: Runtime.explanation
            wrapMode: Text.Wrap
            textFormat: Text.PlainText
        }
        Controls.ProgressBar {
            objectName: "runtimeProgress"
            Layout.fillWidth: true
            visible: Runtime.state === Runtime.Starting || Runtime.state === Runtime.Stopping
            indeterminate: true
            Accessible.name: Runtime.title
        }
        ConfirmedSwitch {
            objectName: "runtimeOnBoot"
            Layout.fillWidth: true
            text: qsTrId("lumd-apps-runtime-on-boot")
            enabled: Runtime.knowsStartOnBoot
            isOn: Runtime.startOnBoot
            onWished: Runtime.setStartOnBoot(isWanted)
        }
        Controls.Label {
            objectName: "total"
            Layout.fillWidth: true
            visible: text.length > 0
            text: AppList.totalText
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
