// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami
import com.tovra.lumd.apps 1.0

Kirigami.AbstractListItem {
    id: item
    required property int index
    required property var model
    // Null when it has gone and its row is about to.
    readonly property App app: model.app
    objectName: app ? "app-" + app.package : ""
    highlighted: ListView.isCurrentItem && (ListView.view.activeFocus || isOpen)
    // Its page stands beside the list.
    readonly property bool isOpen: applicationWindow().pageStack.wideMode && applicationWindow().pageStack.depth > 1
    Accessible.role: Accessible.ListItem
    Accessible.name: app ? app.name : ""
    Accessible.description: app ? app.sizeText : ""
    Accessible.onPressAction: chosen(Qt.OtherFocusReason)
    Keys.onReturnPressed: chosen(Qt.TabFocusReason)
    Keys.onEnterPressed: chosen(Qt.TabFocusReason)
    onClicked: chosen(Qt.MouseFocusReason)
    // With the reason of a focus that follows from it.
    signal chosen(int reason)

    function wish() {
        if (Runtime.state === Runtime.Up && app && !app.knowsSizes)
            app.askForSizes()
    }
    onAppChanged: wish()

    contentItem: RowLayout {
        spacing: Kirigami.Units.largeSpacing
        Connections {
            target: Runtime
            function onStateChanged() { item.wish() }
        }
        AppIcon {
            source: item.app ? item.app.icon : ""
            Layout.preferredWidth: Kirigami.Units.iconSizes.medium
            Layout.preferredHeight: Kirigami.Units.iconSizes.medium
            Layout.margins: Kirigami.Units.smallSpacing
        }
        ColumnLayout {
            spacing: 0
            Layout.fillWidth: true
            Controls.Label {
                objectName: "name"
                Layout.fillWidth: true
                text: item.app ? item.app.name : ""
                // Of whatever script, it stands beside its icon.
                horizontalAlignment: Text.AlignLeft
                textFormat: Text.PlainText
                elide: Text.ElideRight
                maximumLineCount: 1
                color: item.highlighted ? Kirigami.Theme.highlightedTextColor : Kirigami.Theme.textColor
            }
            Controls.Label {
                objectName: "detail"
                Layout.fillWidth: true
                text: !item.app ? "" : item.app.removal === App.Installed ? item.app.sizeText
                    : item.app.removal === App.Queued ? qsTrId("lumd-apps-remove-queued")
                    : qsTrId("lumd-apps-removing")
                visible: text.length > 0
                textFormat: Text.PlainText
                elide: Text.ElideRight
                font: Kirigami.Theme.smallFont
                opacity: 0.75
                color: item.highlighted ? Kirigami.Theme.highlightedTextColor : Kirigami.Theme.textColor
            }
        }
    }
}
