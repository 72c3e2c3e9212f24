// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import org.kde.kirigami 2.20 as Kirigami

// What parts make up a whole, as lengths side by side.
Item {
    id: bar
    // Each with "size", a number that is not negative, and "color".
    property var parts: []
    readonly property real total: parts.reduce((sum, part) => sum + part.size, 0)
    implicitHeight: Kirigami.Units.gridUnit
    Accessible.role: Accessible.Chart

    Rectangle {
        anchors.fill: parent
        radius: Kirigami.Units.smallSpacing
        color: "transparent"
        border { width: 1; color: Kirigami.Theme.disabledTextColor }
    }
    Row {
        anchors { fill: parent; margins: 2 }
        Repeater {
            model: bar.total > 0 ? bar.parts : []
            Rectangle {
                objectName: "part" + index
                height: parent.height
                width: parent.width * modelData.size / bar.total
                color: modelData.color
            }
        }
    }
}
