// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami

// What stands above a page that can be left. Kirigami's own button has no name for a screen reader.
RowLayout {
    id: pageTitle
    property alias text: heading.text
    property alias canLeave: back.visible
    signal left()

    Controls.ToolButton {
        id: back
        objectName: "back"
        icon.name: LayoutMirroring.enabled ? "go-previous-symbolic-rtl" : "go-previous-symbolic"
        icon.color: Kirigami.Theme.textColor
        Accessible.name: qsTrId("lumd-apps-back")
        Keys.onReturnPressed: clicked()
        Keys.onEnterPressed: clicked()
        onClicked: pageTitle.left()
    }
    Kirigami.Heading {
        id: heading
        objectName: "detailsTitle"
        Layout.fillWidth: true
        elide: Text.ElideRight
    }
}
