// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami

// A line that says what has happened, which is not there without a text.
Controls.Control {
    id: notice
    property string text
    property bool isProblem: false
    readonly property color mark: isProblem ? Kirigami.Theme.negativeTextColor : Kirigami.Theme.highlightColor
    Layout.fillWidth: true
    visible: text.length > 0
    padding: Kirigami.Units.largeSpacing
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    background: Rectangle {
        radius: Kirigami.Units.smallSpacing
        color: Kirigami.ColorUtils.tintWithAlpha(Kirigami.Theme.backgroundColor, notice.mark, 0.15)
        border { width: 1; color: notice.mark }
    }
    contentItem: Controls.Label {
        text: notice.text
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
