// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami

// One line of the legend, with the button that clears this part.
RowLayout {
    id: part
    property alias color: square.color
    property alias label: name.text
    property alias size: number.text
    property alias action: button.text
    property alias canAct: button.enabled
    signal acted()
    Layout.fillWidth: true
    Layout.minimumHeight: Kirigami.Units.gridUnit * 2
    spacing: Kirigami.Units.largeSpacing

    Rectangle {
        id: square
        Layout.preferredWidth: Kirigami.Units.gridUnit * 0.8
        Layout.preferredHeight: width
        radius: 2
        Accessible.ignored: true
    }
    ColumnLayout {
        spacing: 0
        Controls.Label {
            id: name
            Layout.fillWidth: true
            elide: Text.ElideRight
            textFormat: Text.PlainText
            Accessible.ignored: number.text.length > 0
        }
        Controls.Label {
            id: number
            objectName: "size"
            Layout.fillWidth: true
            visible: text.length > 0
            elide: Text.ElideRight
            textFormat: Text.PlainText
            font: Kirigami.Theme.smallFont
            opacity: 0.75
            Accessible.role: Accessible.StaticText
            Accessible.name: name.text + " " + text
        }
    }
    ActionButton {
        id: button
        objectName: "clear"
        visible: text.length > 0
        Layout.preferredWidth: Kirigami.Units.gridUnit * 8
        onClicked: part.acted()
    }
}
