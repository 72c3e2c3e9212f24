// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami

// A line that says what has happened, which is not there without a text. No control: the role of
// those is not for us to choose.
Rectangle {
    id: notice
    property alias text: label.text
    property bool isProblem: false
    readonly property color mark: isProblem ? Kirigami.Theme.negativeTextColor : Kirigami.Theme.highlightColor
    Layout.fillWidth: true
    implicitHeight: label.implicitHeight + Kirigami.Units.largeSpacing * 2
    visible: text.length > 0
    radius: Kirigami.Units.smallSpacing
    color: Kirigami.ColorUtils.tintWithAlpha(Kirigami.Theme.backgroundColor, mark, 0.15)
    border { width: 1; color: mark }
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Controls.Label {
        id: label
        anchors { fill: parent; margins: Kirigami.Units.largeSpacing }
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
